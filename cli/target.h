// The management module that a command works on: runs the library's calls against it one by one and turns a failed or
// suspiciously empty result into the Failure that tells the real cause.
#pragma once

#include <orvane/cmm.h>

#include <string>
#include <string_view>

#include "cli/cause.h"
#include "cli/connection.h"
#include "cli/log_capture.h"

namespace Orvane::cli {

class Target {
 public:
  /// @param log  has to outlive the target; its records are those of the last call.
  Target(Connection connection, LogCapture& log);

  /// Runs @p call with the inventory and returns what it returns. Forgets the log records of the call before.
  template <typename Call>
  auto Run(Call call) {
    log_.Clear();
    return call(inventory_);
  }

  /// Why the last call failed, as far as its log records tell.
  Cause LastCause() const;

  /// True when the last call logged a line that begins with @p start.
  bool Logged(std::string_view start) const;

  /// Ends the command if talking to the host failed during the last call, whatever the call returned.
  /// @param code  what the call returned, for the report; 0 counts as none.
  void RequireAnswers(int code) const;

  /// Ends the command unless the host is a management module. For results that are empty: asks the host once.
  void RequireManagementModule();

  /// Ends the command because the last call failed: with the real cause, and if the records show none, after asking
  /// whether the host is a management module at all.
  /// @param what  what was being done, for "... failed with code N".
  [[noreturn]] void Fail(const std::string& what, int code);

  /// Host and port for sentences.
  std::string Where() const;

 private:
  [[noreturn]] void FailHard(const Cause& cause, int code) const;

  Connection connection_;
  LogCapture& log_;
  CMMInventory inventory_;
};

}  // namespace Orvane::cli
