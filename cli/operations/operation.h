// The operations that the command knows: what each one works on, which of the library's calls carries it out, and which
// codes it may give.
#pragma once

#include <orvane/cmm.h>

#include <optional>
#include <string>
#include <vector>

#include "cli/connection.h"
#include "cli/operations/results.h"

namespace Orvane::cli {

/// What the command line says about an operation.
struct OperationOptions {
  int bay = 0;                        ///< 0 for the CMM.
  std::vector<std::string> packages;  ///< URIs; a switch may get two.
  bool noReboot = false;
  bool noWait = false;
  bool check = false;
  bool yes = false;
  std::optional<std::string> journal;
  std::string progress = "auto";
};

enum class TargetKind { kCmm, kSwitch, kPassThru, kNode };

struct Operation {
  const char* name;  ///< The command's words: "switch update".
  const char* help;
  TargetKind target;
  bool changes;          ///< Asks before it begins, keeps a journal, can be checked.
  std::size_t packages;  ///< How many packages it takes at most.
  bool mayStay;          ///< Knows --no-reboot.
  bool comparesVersions;
  const ResultTable& (*results)();
  const ResultTable& (*resultsWithoutWait)();  ///< With --no-wait; null: it does not know that option.
  /// What will be done, as the steps of a sentence: "install the package", "restart the CMM".
  std::vector<std::string> (*plan)(const OperationOptions& options);
  /// @return  the library's code, or kNoLibraryCode when it gave none.
  int (*run)(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress);
};

const std::vector<Operation>& Operations();

}  // namespace Orvane::cli
