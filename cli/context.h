// What a command works with while it runs.
#pragma once

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

}  // namespace Orvane::cli
