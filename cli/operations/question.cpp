// No answer, as at the end of the input, is a no.
#include "cli/operations/question.h"

#include <unistd.h>

#include <iostream>

#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {

bool CanAsk() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

bool Confirmed(const std::string& text) {
  WriteAll(STDERR_FILENO, text + "Go on? [y/N] ");
  std::string answer;
  std::getline(std::cin, answer);
  answer = Trim(answer);
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "YES" || answer == "Yes";
}

}  // namespace Orvane::cli
