// The file is examined through the descriptor that is then read, so that nobody can swap it in between.
#include "cli/password.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <istream>
#include <ostream>

#include "cli/failure.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr std::size_t kLongestLine = 4096;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return fd_; }

 private:
  int fd_;
};

[[noreturn]] void Refuse(const std::string& sentence) { throw Failure(ExitStatus::kUsage, kNoLibraryCode, sentence); }

std::string FirstLine(const std::string& text) {
  std::string line = text.substr(0, text.find('\n'));
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

// Set by the handlers below, which exist only while a password is being typed.
volatile std::sig_atomic_t interrupted = 0;

void OnSignal(int) { interrupted = 1; }

// While it lives, the signals that end a program only interrupt the reading, so that echo can be put back first.
class InterruptibleReading {
 public:
  InterruptibleReading() {
    interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = OnSignal;  // no SA_RESTART: read() has to return
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &action, &before_[i]);
  }
  ~InterruptibleReading() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before_[i], nullptr);
  }
  InterruptibleReading(const InterruptibleReading&) = delete;
  InterruptibleReading& operator=(const InterruptibleReading&) = delete;

 private:
  static constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};
  std::array<struct sigaction, 3> before_ = {};
};

class EchoOff {
 public:
  explicit EchoOff(int fd) : fd_(fd) {
    if (tcgetattr(fd_, &before_) != 0) Refuse("cannot ask for a password: standard input is no terminal");
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    quiet.c_lflag |= ICANON;
    if (tcsetattr(fd_, TCSAFLUSH, &quiet) != 0) Refuse("cannot ask for a password: the terminal's echo stays on");
  }
  ~EchoOff() { tcsetattr(fd_, TCSAFLUSH, &before_); }
  EchoOff(const EchoOff&) = delete;
  EchoOff& operator=(const EchoOff&) = delete;

 private:
  int fd_;
  termios before_ = {};
};

std::string ReadTypedLine(int fd) {
  std::string line;
  char c = 0;
  while (interrupted == 0 && line.size() < kLongestLine) {
    const ssize_t got = read(fd, &c, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0 || c == '\n') break;
    line += c;
  }
  return line;
}

}  // namespace

std::string ReadPasswordFile(const std::string& path) {
  const std::string name = "the password file " + Neutralise(path);
  // O_NONBLOCK: opening a FIFO must not wait for somebody who writes to it.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0) Refuse(name + " cannot be read: " + std::strerror(errno));

  struct stat status = {};
  if (fstat(file.Get(), &status) != 0) Refuse(name + " cannot be examined: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode)) Refuse(name + " is no regular file");
  if ((status.st_mode & (S_IRGRP | S_IROTH)) != 0) {
    Refuse(name + " can be read by others; allow only its owner to read it: chmod 600 " + Neutralise(path));
  }

  std::string text;
  std::array<char, kLongestLine> buffer = {};
  ssize_t got = 0;
  while ((got = read(file.Get(), buffer.data(), buffer.size())) > 0 && text.size() < kLongestLine) {
    text.append(buffer.data(), static_cast<std::size_t>(got));
  }
  if (got < 0) Refuse(name + " cannot be read: " + std::strerror(errno));
  std::string password = FirstLine(text);
  if (password.empty()) Refuse(name + " holds no password in its first line");
  return password;
}

std::string ReadPasswordLine(std::istream& input) {
  std::string line;
  std::getline(input, line);
  line = FirstLine(line);
  if (line.empty()) Refuse("--password-stdin: standard input holds no password in its first line");
  return line;
}

std::string AskPassword(int fd, std::ostream& prompt, const std::string& question) {
  std::string password;
  bool stopped = false;
  {
    const InterruptibleReading signals;
    const EchoOff echo(fd);
    prompt << question << std::flush;
    password = ReadTypedLine(fd);
    prompt << std::endl;  // the line end that was typed did not show
    stopped = interrupted != 0;
  }
  if (stopped) throw Failure(ExitStatus::kInterrupted, kNoLibraryCode, "interrupted");
  if (password.empty()) Refuse("no password was typed");
  return password;
}

}  // namespace Orvane::cli
