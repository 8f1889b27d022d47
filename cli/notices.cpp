// Written to the descriptor, so that they keep their order with the lines of the log and of progress.
#include "cli/notices.h"

#include <unistd.h>

#include "cli/records_json.h"
#include "cli/write_all.h"

namespace Orvane::cli {

void Notices::Write(const char* event, const char* prefix, const std::string& sentence) const {
  if (jsonLines_) {
    const Json line = {{"event", event}, {"text", sentence}};
    WriteAll(STDERR_FILENO, line.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n");
  } else {
    WriteAll(STDERR_FILENO, "orvane: " + (prefix + sentence) + "\n");
  }
}

}  // namespace Orvane::cli
