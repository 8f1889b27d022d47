// SIGINT, SIGTERM and SIGHUP while a command runs: the person is told what goes on at the management module, and the
// command ends at once, even when a request is waiting for its answer.
#pragma once

#include <functional>
#include <thread>

namespace Orvane::cli {

/// One at a time in a process. While it lives, the first SIGINT, SIGTERM or (unless ignored) SIGHUP has the report made
/// on a thread of its own and then ends the process with status 130; a second one ends it without a report. A broken
/// pipe and a file that has reached its size limit end nothing.
class Interruption {
 public:
  /// @param report  runs beside whatever the program does; must not wait for it.
  explicit Interruption(std::function<void()> report);
  /// Puts the signals' former actions back. Does not return when the process is being ended.
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  void Watch();

  std::function<void()> report_;
  int readEnd_ = -1;
  std::thread watcher_;
};

}  // namespace Orvane::cli
