// Children get pipes for their three streams; both outputs are read while they run, so that none of them can block.
#include "tests/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <system_error>

extern char** environ;

namespace Orvane::tests {
namespace {

constexpr auto kLongestRun = std::chrono::seconds(60);

struct Pipe {
  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe2");
    read = ends[0];
    write = ends[1];
  }
  ~Pipe() {
    CloseRead();
    CloseWrite();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void CloseRead() { Close(read); }
  void CloseWrite() { Close(write); }
  static void Close(int& fd) {
    if (fd >= 0) close(fd);
    fd = -1;
  }
  int read = -1;
  int write = -1;
};

std::vector<std::string> ChildEnvironment(const std::map<std::string, std::string>& extra) {
  std::vector<std::string> variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string variable = *entry;
    const bool replaced = extra.count(variable.substr(0, variable.find('='))) != 0;
    if (!replaced && variable.rfind("ORVANE_", 0) != 0) variables.push_back(variable);
  }
  for (const auto& [name, value] : extra) variables.push_back(name + "=" + value);
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int StatusOf(int waited) {
  constexpr int kSignalBase = 128;
  return WIFSIGNALED(waited) ? kSignalBase + WTERMSIG(waited) : WEXITSTATUS(waited);
}

// What is sent to the child once a text was read from the last stream.
struct Trigger {
  std::string text;
  int signal = 0;
};

// Reads both descriptors to their ends, or kills the child when it takes too long.
void Drain(pid_t child, std::array<std::pair<int, std::string*>, 2> streams, Trigger trigger = {}) {
  const auto deadline = std::chrono::steady_clock::now() + kLongestRun;
  std::array<pollfd, 2> waiting = {{{streams[0].first, POLLIN, 0}, {streams[1].first, POLLIN, 0}}};
  while (waiting[0].fd >= 0 || waiting[1].fd >= 0) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      ADD_FAILURE() << "the program takes too long";
      kill(child, SIGKILL);
      return;
    }
    poll(waiting.data(), waiting.size(), static_cast<int>(left.count()));
    for (std::size_t i = 0; i < waiting.size(); ++i) {
      if (waiting[i].fd < 0 || waiting[i].revents == 0) continue;
      std::array<char, 4096> buffer{};
      const ssize_t got = read(waiting[i].fd, buffer.data(), buffer.size());
      if (got > 0) {
        streams[i].second->append(buffer.data(), static_cast<std::size_t>(got));
      } else {
        waiting[i].fd = -1;
      }
    }
    if (trigger.signal != 0 && streams[1].second->find(trigger.text) != std::string::npos) {
      kill(child, trigger.signal);
      trigger.signal = 0;
    }
  }
  EXPECT_EQ(trigger.signal, 0) << "never showed: " << trigger.text;
}

pid_t Start(const std::string& program, const Invocation& run, Pipe& in, Pipe& out, Pipe& err) {
  std::vector<std::string> arguments = run.arguments;
  arguments.insert(arguments.begin(), program);
  std::vector<std::string> variables = ChildEnvironment(run.environment);
  const std::vector<char*> argv = Pointers(arguments);
  const std::vector<char*> envp = Pointers(variables);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    dup2(in.read, STDIN_FILENO);
    dup2(out.write, STDOUT_FILENO);
    dup2(err.write, STDERR_FILENO);
    execve(program.c_str(), argv.data(), envp.data());
    _exit(127);
  }
  in.CloseRead();
  out.CloseWrite();
  err.CloseWrite();
  return child;
}

}  // namespace

namespace {

Result RunWith(const std::string& program, const Invocation& run, const Trigger& trigger) {
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t child = Start(program, run, in, out, err);
  if (!run.input.empty()) {
    EXPECT_EQ(write(in.write, run.input.data(), run.input.size()), static_cast<ssize_t>(run.input.size()));
  }
  in.CloseWrite();
  Result result;
  Drain(child, {{{out.read, &result.output}, {err.read, &result.errors}}}, trigger);
  int waited = 0;
  waitpid(child, &waited, 0);
  result.status = StatusOf(waited);
  return result;
}

}  // namespace

Result RunProgram(const std::string& program, const Invocation& run) { return RunWith(program, run, {}); }

Result RunOrvaneUntil(const std::string& text, int signal, const Invocation& run) {
  return RunWith(ORVANE_COMMAND, run, {text, signal});
}

Result RunOrvane(const Invocation& run) { return RunProgram(ORVANE_COMMAND, run); }

Result RunOrvaneOnTerminal(const Invocation& run, const std::string& prompt, const std::string& typed) {
  std::vector<std::string> texts = run.arguments;
  texts.insert(texts.begin(), ORVANE_COMMAND);
  std::map<std::string, std::string> environment = run.environment;
  environment.emplace("TERM", "xterm");  // of the tests' own terminal nothing is known
  std::vector<std::string> variables = ChildEnvironment(environment);
  const std::vector<char*> argv = Pointers(texts);
  const std::vector<char*> envp = Pointers(variables);
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
  if (child == 0) {
    execve(ORVANE_COMMAND, argv.data(), envp.data());
    _exit(127);
  }
  Result result;
  bool asked = false;
  const auto deadline = std::chrono::steady_clock::now() + kLongestRun;
  pollfd waiting = {terminal, POLLIN, 0};
  while (std::chrono::steady_clock::now() < deadline) {
    if (poll(&waiting, 1, 100) <= 0) continue;
    std::array<char, 4096> buffer{};
    const ssize_t got = read(terminal, buffer.data(), buffer.size());
    if (got <= 0) break;  // the other end is closed: the program has ended
    result.output.append(buffer.data(), static_cast<std::size_t>(got));
    if (!asked && result.output.find(prompt) != std::string::npos) {
      asked = true;
      EXPECT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    }
  }
  if (std::chrono::steady_clock::now() >= deadline) kill(child, SIGKILL);
  int waited = 0;
  waitpid(child, &waited, 0);
  close(terminal);
  result.status = StatusOf(waited);
  return result;
}

Folder::Folder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvane-e2e-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category(), "mkdtemp");
  path_ = pattern;
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Write(const std::string& name, const std::string& text, mode_t mode) const {
  std::string path = Path(name);
  std::ofstream(path, std::ios::binary) << text;
  if (chmod(path.c_str(), mode) != 0) throw std::system_error(errno, std::generic_category(), "chmod");
  return path;
}

SimulatorProgram::SimulatorProgram() {
  const std::string file = folder_.Write("password", std::string(kPassword) + "\n", 0600);
  Pipe in;
  Pipe out;
  std::vector<std::string> texts = {ORVANE_SIMULATOR, "--user", kUser, "--password-file", file};
  const std::vector<char*> argv = Pointers(texts);
  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ == 0) {
    dup2(in.read, STDIN_FILENO);
    dup2(out.write, STDOUT_FILENO);
    execv(ORVANE_SIMULATOR, argv.data());
    _exit(127);
  }
  out.CloseWrite();
  std::string line;
  char c = 0;
  while (read(out.read, &c, 1) == 1 && c != '\n') line += c;
  const auto ports = nlohmann::json::parse(line);
  httpPort_ = std::to_string(ports.at("http").get<int>());
  httpsPort_ = std::to_string(ports.at("https").get<int>());
}

SimulatorProgram::~SimulatorProgram() {
  if (pid_ <= 0) return;
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace Orvane::tests
