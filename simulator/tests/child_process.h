// Runs a program for a test: its output can be read while it runs, every wait is bounded, and nothing outlives the
// test.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Orvane::simulator::tests {

/// The reading end of a pipe.
class Pipe {
 public:
  Pipe() {
    if (::pipe2(ends_.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  ~Pipe() {
    ::close(ends_[0]);
    CloseWriter();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Writer() const { return ends_[1]; }
  void CloseWriter() {
    if (ends_[1] >= 0) ::close(std::exchange(ends_[1], -1));
  }

  /// Up to and including the next line end; what there is when the writer closes or the time is over.
  std::string ReadLine(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (text_.find('\n') == std::string::npos && ReadSome(end)) {
    }
    const std::size_t lineEnd = text_.find('\n');
    const std::size_t length = lineEnd == std::string::npos ? text_.size() : lineEnd + 1;
    std::string line = text_.substr(0, length);
    text_.erase(0, length);
    return line;
  }

  /// All until the writer closes or the time is over.
  std::string ReadAll(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (ReadSome(end)) {
    }
    return std::exchange(text_, {});
  }

 private:
  bool ReadSome(std::chrono::steady_clock::time_point end) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
    pollfd ready{ends_[0], POLLIN, 0};
    if (left <= 0 || ::poll(&ready, 1, static_cast<int>(left)) <= 0) return false;
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(ends_[0], buffer.data(), buffer.size());
    if (count <= 0) return false;
    text_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
  }

  std::array<int, 2> ends_{-1, -1};
  std::string text_;
};

class ChildProcess {
 public:
  /// @param arguments  the program's path first
  explicit ChildProcess(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output_.Writer(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, error_.Writer(), STDERR_FILENO);
    const int failed = ::posix_spawn(&id_, pointers[0], &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    output_.CloseWriter();
    error_.CloseWriter();
    if (failed != 0) throw std::runtime_error("cannot start " + arguments[0]);
  }

  ~ChildProcess() {
    if (ended_) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void Signal(int signal) const { ::kill(id_, signal); }

  /// The exit status; none when the program was ended by a signal or has not ended in time.
  std::optional<int> Wait(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    int status = 0;
    while (!ended_ && std::chrono::steady_clock::now() < end) {
      ended_ = ::waitpid(id_, &status, WNOHANG) == id_;
      if (!ended_) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (!ended_ || !WIFEXITED(status)) return std::nullopt;
    return WEXITSTATUS(status);
  }

  Pipe& Output() { return output_; }
  Pipe& Error() { return error_; }

 private:
  Pipe output_;
  Pipe error_;
  pid_t id_ = -1;
  bool ended_ = false;
};

}  // namespace Orvane::simulator::tests
