// See append_file_sink.h.
#include "append_file_sink.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace Orvane::logging {

AppendFileSink::AppendFileSink(const std::string& path)
    : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0640)) {
  if (descriptor_ < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot open log file '" + path + "'");
  }
}

AppendFileSink::~AppendFileSink() { ::close(descriptor_); }

void AppendFileSink::sink_it_(const spdlog::details::log_msg& message) {
  spdlog::memory_buf_t line;
  formatter_->format(message, line);
  std::string_view rest(line.data(), line.size());
  // The lock keeps a line whole between processes even when the system takes it in pieces (a full disk, a signal).
  ::flock(descriptor_, LOCK_EX);
  while (!rest.empty()) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      break;
    }
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  ::flock(descriptor_, LOCK_UN);
}

}  // namespace Orvane::logging
