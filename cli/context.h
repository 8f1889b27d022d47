// What a command works with while it runs.
#pragma once

#include <string>

#include "cli/connection.h"
#include "cli/log_capture.h"
#include "cli/notices.h"
#include "cli/passing_time.h"
#include "cli/target.h"

namespace Orvane::cli {

struct Context {
  Target& target;
  const Connection& access;
  LogCapture& log;
  PassingTime& time;
  const Notices& notices;
  bool simulated;  ///< The chassis ends with the command.
  bool json;
};

/// Tells the person and, where JSON is asked for, the program that the command was interrupted. Writes to the
/// descriptors alone, so that it may run beside whatever the command does.
void TellInterruption(const Context& context, const std::string& operation, const std::string& sentence);

}  // namespace Orvane::cli
