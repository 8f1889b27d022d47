// The handler only writes one byte into a pipe, which is all that may safely be done there.
#include "cli/interruption.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "cli/exit_status.h"

namespace Orvane::cli {
namespace {

constexpr char kSignalled = 's';
constexpr char kNoLongerWatched = 'n';
constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

// What the handler needs: where to write, and what to put back afterwards.
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may use nothing else");
std::array<struct sigaction, kSignals.size()> actionsBefore;
// The signals of a failed write, after which the write itself tells what is wrong.
constexpr std::array<int, 2> kWriteSignals = {SIGPIPE, SIGXFSZ};
std::array<struct sigaction, kWriteSignals.size()> writeActionsBefore;

void OnSignal(int) {
  const int before = errno;
  // A full or closed pipe needs no second byte.
  if (write(writeEnd.load(), &kSignalled, 1) < 0) errno = before;
}

}  // namespace

Interruption::Interruption(std::function<void()> report) : report_(std::move(report)) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe2");
  readEnd_ = ends[0];
  writeEnd = ends[1];
  watcher_ = std::thread([this] { Watch(); });
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  // Requests go on undisturbed; the second signal has its own effect again.
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &action, &actionsBefore[i]);
    // Who started the command with nohup wants it to outlive the terminal.
    const bool outlives = kSignals[i] == SIGHUP && actionsBefore[i].sa_handler == SIG_IGN;
    if (outlives) sigaction(SIGHUP, &actionsBefore[i], nullptr);
  }
  // Who reads the progress may go away, and a journal or a log may not grow any more; an operation goes on to its end
  // all the same.
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  for (std::size_t i = 0; i < kWriteSignals.size(); ++i) sigaction(kWriteSignals[i], &ignore, &writeActionsBefore[i]);
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &actionsBefore[i], nullptr);
  for (std::size_t i = 0; i < kWriteSignals.size(); ++i) sigaction(kWriteSignals[i], &writeActionsBefore[i], nullptr);
  while (write(writeEnd.load(), &kNoLongerWatched, 1) < 0 && errno == EINTR) {
  }
  watcher_.join();
  close(writeEnd.load());
  close(readEnd_);
  writeEnd = -1;
}

void Interruption::Watch() {
  char what = 0;
  while (read(readEnd_, &what, 1) < 0 && errno == EINTR) {
  }
  if (what != kSignalled) return;
  report_();
  _exit(ToInt(ExitStatus::kInterrupted));
}

}  // namespace Orvane::cli
