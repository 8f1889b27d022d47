// The command line: its grammar, and the way from arguments to an exit status.
#pragma once

namespace Orvane::cli {

/// Runs the command: the result goes to standard output, everything else to standard error.
/// @return the exit status of the process (ExitStatus).
int RunApp(int argc, const char* const* argv);

}  // namespace Orvane::cli
