// One write for a whole line keeps lines of several processes apart.
#include "cli/write_all.h"

#include <unistd.h>

#include <cerrno>

namespace Orvane::cli {

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace Orvane::cli
