// A command that was interrupted prints a document as every other one does.
#include "cli/context.h"

#include <unistd.h>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/write_all.h"

namespace Orvane::cli {

void TellInterruption(const Context& context, const std::string& operation, const std::string& sentence) {
  context.notices.Error(sentence);
  if (context.json) {
    WriteAll(STDOUT_FILENO, JsonText(operation, Failure(ExitStatus::kInterrupted, kNoLibraryCode, sentence)));
  }
}

}  // namespace Orvane::cli
