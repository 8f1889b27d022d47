// Puts the pieces together: command line, log, simulator or connection, command, output.
#include "cli/app.h"

#include <exception>
#include <iostream>
#include <memory>
#include <variant>

#include "cli/command_line.h"
#include "cli/connection.h"
#include "cli/embedded_simulator.h"
#include "cli/failure.h"
#include "cli/log_capture.h"
#include "cli/output.h"
#include "cli/target.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

// The simulator, when asked for, has to live until the command is done.
struct Opened {
  std::unique_ptr<EmbeddedSimulator> simulator;
  Connection connection;
};

Opened Open(const Request& request) {
  Opened opened;
  if (request.simulate) {
    opened.simulator = std::make_unique<EmbeddedSimulator>(request.modelPath);
    opened.connection = opened.simulator->Access();
  } else {
    opened.connection = ResolveConnection(request.connection, ProcessSurroundings());
  }
  return opened;
}

void Tell(const std::string& sentence) { std::cerr << "orvane: " << sentence << "\n"; }

ExitStatus Print(const std::string& text) {
  std::cout << text << std::flush;
  if (std::cout) return ExitStatus::kDone;
  Tell("the result cannot be written to standard output");
  return ExitStatus::kFailed;
}

ExitStatus Carry(const Request& request) {
  LogCapture log(request.log);
  const Opened opened = Open(request);
  Target target(opened.connection, log);
  Outcome outcome;
  try {
    outcome = request.run(target);
  } catch (const Failure& failure) {
    // Programs that read the JSON get a document whatever happens once the command line was understood.
    Tell(failure.what());
    if (request.json) Print(JsonText(request.operation, failure));
    return failure.Status();
  }
  for (const std::string& warning : outcome.warnings) Tell("warning: " + warning);
  const ExitStatus printed = Print(request.json ? JsonText(request.operation, outcome) : outcome.text);
  return printed == ExitStatus::kDone ? outcome.status : printed;
}

}  // namespace

int RunApp(int argc, const char* const* argv) {
  const auto parsed = ParseCommandLine(argc, argv);
  if (const auto* finished = std::get_if<Finished>(&parsed)) return ToInt(finished->status);
  try {
    return ToInt(Carry(std::get<Request>(parsed)));
  } catch (const Failure& failure) {
    Tell(failure.what());
    return ToInt(failure.Status());
  } catch (const std::exception& error) {
    Tell("internal error: " + Neutralise(error.what()));
    return ToInt(ExitStatus::kFailed);
  }
}

}  // namespace Orvane::cli
