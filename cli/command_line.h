// The grammar of the command line, apart from what the commands do: arguments in, one Request out.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "cli/connection.h"
#include "cli/context.h"
#include "cli/embedded_simulator.h"
#include "cli/exit_status.h"
#include "cli/log_capture.h"
#include "cli/outcome.h"

namespace Orvane::cli {

/// What the user asked for.
struct Request {
  ConnectionOptions connection;
  LogOptions log;
  bool simulate = false;
  Simulation simulation;
  bool json = false;
  bool jsonLines = false;         ///< Standard error consists of JSON lines.
  std::string operation;          ///< The command's words: "cmm list".
  std::function<void()> prepare;  ///< May be empty; refuses what cannot go well before anything is connected.
  std::function<Outcome(const Context&)> run;
};

/// The program has nothing more to do: help was asked for, or the usage was wrong. The texts are printed already.
struct Finished {
  ExitStatus status;
};

/// Parses the command line. Help goes to standard output, what is wrong to standard error.
std::variant<Request, Finished> ParseCommandLine(int argc, const char* const* argv);

}  // namespace Orvane::cli
