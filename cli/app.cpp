// Puts the pieces together: command line, log, simulator or connection, command, output.
#include "cli/app.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <variant>

#include "cli/command_line.h"
#include "cli/connection.h"
#include "cli/context.h"
#include "cli/embedded_simulator.h"
#include "cli/failure.h"
#include "cli/log_capture.h"
#include "cli/notices.h"
#include "cli/output.h"
#include "cli/passing_time.h"
#include "cli/target.h"
#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

// The simulator, when asked for, has to live until the command is done.
struct Opened {
  std::unique_ptr<EmbeddedSimulator> simulator;
  std::unique_ptr<PassingTime> time;
  Connection connection;
};

Opened Open(const Request& request) {
  Opened opened;
  if (request.simulate) {
    opened.simulator = std::make_unique<EmbeddedSimulator>(request.simulation);
    opened.time = opened.simulator->Time();
    opened.connection = opened.simulator->Access();
  } else {
    opened.time = std::make_unique<RealTime>();
    opened.connection = ResolveConnection(request.connection, ProcessSurroundings());
  }
  return opened;
}

ExitStatus Print(const std::string& text, const Notices& notices) {
  if (WriteAll(STDOUT_FILENO, text)) return ExitStatus::kDone;
  notices.Error(std::string("the result cannot be written to standard output: ") + std::strerror(errno));
  return ExitStatus::kFailed;
}

ExitStatus Carry(const Request& request, const Notices& notices) {
  LogCapture log(request.log);
  if (request.prepare) request.prepare();
  const Opened opened = Open(request);
  Target target(opened.connection, log);
  const Context context{target, opened.connection, log, *opened.time, notices, request.simulate, request.json};
  Outcome outcome;
  try {
    outcome = request.run(context);
  } catch (const Failure& failure) {
    // Programs that read the JSON get a document whatever happens once the command line was understood.
    notices.Error(failure.what());
    if (request.json) Print(JsonText(request.operation, failure), notices);
    return failure.Status();
  }
  for (const std::string& note : outcome.notes) notices.Note(note);
  for (const std::string& warning : outcome.warnings) notices.Warning(warning);
  if (!outcome.error.empty()) notices.Error(outcome.error);
  const ExitStatus printed = Print(request.json ? JsonText(request.operation, outcome) : outcome.text, notices);
  return printed == ExitStatus::kDone ? outcome.status : printed;
}

// A journal or a connection that got the number of a closed standard stream would receive what is meant for that
// stream.
void OpenClosedStreams() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest number that is free is the one that is closed. Opened the wrong way round it stays without use.
    const int mode = fd == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", mode) < 0) return;
  }
}

}  // namespace

int RunApp(int argc, const char* const* argv) {
  OpenClosedStreams();
  const auto parsed = ParseCommandLine(argc, argv);
  if (const auto* finished = std::get_if<Finished>(&parsed)) return ToInt(finished->status);
  const auto& request = std::get<Request>(parsed);
  const Notices notices(request.jsonLines);
  try {
    return ToInt(Carry(request, notices));
  } catch (const Failure& failure) {
    notices.Error(failure.what());
    return ToInt(failure.Status());
  } catch (const std::exception& error) {
    notices.Error("internal error: " + Neutralise(error.what()));
    return ToInt(ExitStatus::kFailed);
  }
}

}  // namespace Orvane::cli
