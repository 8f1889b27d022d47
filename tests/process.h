// Runs programs from outside, as a user or a script does: arguments, environment and standard input go in; exit status,
// standard output and standard error come out.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace Orvane::tests {

struct Invocation {
  std::vector<std::string> arguments;              ///< Without the program's own name.
  std::map<std::string, std::string> environment;  ///< On top of the test's, which has no ORVANE_ variable left.
  std::string input;
};

struct Result {
  int status = -1;  ///< Exit status; 128 + number when a signal ended the program.
  std::string output;
  std::string errors;
};

/// Runs @p program to its end. It is killed after 60 seconds, and the test fails then.
Result RunProgram(const std::string& program, const Invocation& run);

/// Runs the command.
Result RunOrvane(const Invocation& run);

/// Runs the command and sends it @p signal once its standard error shows @p text; the test fails when it never does.
Result RunOrvaneUntil(const std::string& text, int signal, const Invocation& run);

/// Runs the command on a terminal of its own (TERM is xterm unless @p run says otherwise), types @p typed once it shows
/// @p prompt, and returns all that the terminal showed as Result::output.
Result RunOrvaneOnTerminal(const Invocation& run, const std::string& prompt, const std::string& typed);

/// A temporary folder, removed with everything in it.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  /// Writes a file with exactly these permissions and returns its path.
  std::string Write(const std::string& name, const std::string& text, mode_t mode) const;
  std::string Path(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// The program orvane-simulator, serving the built-in chassis until this object is destroyed.
class SimulatorProgram {
 public:
  static constexpr const char* kUser = "USERID";
  static constexpr const char* kPassword = "simulated pass";
  SimulatorProgram();
  ~SimulatorProgram();
  SimulatorProgram(const SimulatorProgram&) = delete;
  SimulatorProgram& operator=(const SimulatorProgram&) = delete;
  std::string HttpsPort() const { return httpsPort_; }
  std::string HttpPort() const { return httpPort_; }

 private:
  Folder folder_;
  pid_t pid_ = -1;
  std::string httpsPort_;
  std::string httpPort_;
};

std::string ReadFile(const std::string& path);

}  // namespace Orvane::tests
