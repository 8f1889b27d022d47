// What the library's codes mean, operation by operation: text, cause, what to do and the exit status of the command.
// docs/return-codes.md shows the same tables.
#pragma once

#include <orvane/log.h>

#include <limits>
#include <string>
#include <vector>

#include "cli/exit_status.h"

namespace Orvane::cli {

/// Stands for every code that has no row of its own.
constexpr int kEveryOtherCode = std::numeric_limits<int>::max();

/// One code means several things where only the library's log tells them apart, and the library reports as success some
/// things that were not done: then the row also wants a log line.
struct ResultRow {
  int code;
  const char* line;  ///< How a log line of the operation begins; null: no line is wanted.
  ExitStatus status;
  const char* text;    ///< What happened, as the end of a sentence that begins with the operation's name.
  const char* cause;   ///< Why; empty when the text says it.
  const char* advice;  ///< What to do, with BAY for the bay; empty when there is nothing to do.
};

/// The rows of an operation in the order in which they are tried.
using ResultTable = std::vector<ResultRow>;

/// The first row that fits; its last one is for every other code, so there is always one.
struct Result {
  const ResultRow* row;
  std::string detail;  ///< The log line that decided, raw; empty when none did.
};
Result FindResult(const ResultTable& table, int code, const std::vector<Log::Record>& records);

const ResultTable& CmmUpdateResults();
const ResultTable& CmmRebootResults();
const ResultTable& CmmRebootNoWaitResults();
const ResultTable& SwitchUpdateResults();
const ResultTable& SwitchActivateResults();
const ResultTable& SwitchRebootResults();
const ResultTable& SwitchReseatResults();
const ResultTable& SwitchVerifyResults();
const ResultTable& SwitchEhcmResults();
const ResultTable& SwitchDeferredResults();
const ResultTable& PassThruUpdateResults();
const ResultTable& PassThruRebootResults();
const ResultTable& PassThruReseatResults();
const ResultTable& PassThruVerifyResults();
const ResultTable& BladeReseatResults();

}  // namespace Orvane::cli
