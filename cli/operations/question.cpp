// No answer, as at the end of the input, is a no.
#include "cli/operations/question.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {

namespace {

// Straight from the terminal. It waits in poll(), where a signal is delivered under the thread sanitizer too.
std::string ReadLine() {
  std::string line;
  for (char next = 0;;) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, -1) < 0 && errno == EINTR) continue;
    const ssize_t count = read(STDIN_FILENO, &next, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0 || next == '\n') return line;
    line += next;
  }
}

}  // namespace

bool CanAsk() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

bool Confirmed(const std::string& text) {
  WriteAll(STDERR_FILENO, text + "Go on? [y/N] ");
  const std::string answer = Trim(ReadLine());
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "YES" || answer == "Yes";
}

}  // namespace Orvane::cli
