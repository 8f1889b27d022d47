// The library's level is never set below 3, whatever is shown: the line that tells how a connect ended has that level,
// and without it a plain HTTP connection that follows a failed HTTPS one cannot be told from no connection.
#include "cli/log_capture.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr unsigned kNeededLevel = 3;
constexpr unsigned kLevelOfFiles = 1;

std::optional<std::string> Environment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::string(value);
}

}  // namespace

LogCapture::LogCapture(const LogOptions& options) : levelBefore_(Log::GetMinLogLevel()), fd_(STDERR_FILENO) {
  const auto file = options.file ? options.file : Environment("ORVANE_LOG_FILE");
  if (options.level) {
    shownLevel_ = *options.level;
  } else if (Environment("ORVANE_LOG_LEVEL")) {
    shownLevel_ = levelBefore_;
  } else if (file) {
    shownLevel_ = kLevelOfFiles;
  }
  if (file && shownLevel_ > 0) {
    const int opened = open(file->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (opened < 0) {
      std::cerr << "orvane: the log file " << Neutralise(*file) << " cannot be opened (" << std::strerror(errno)
                << "); its lines go to standard error\n";
    } else {
      fd_ = opened;
      ownsFd_ = true;
    }
  }
  Log::SetMinLogLevel(std::max(kNeededLevel, shownLevel_));
  Log::SetSink([this](const Log::Record& record) { Take(record); });
}

LogCapture::~LogCapture() {
  Log::SetSink({});
  Log::SetMinLogLevel(levelBefore_);
  if (ownsFd_) close(fd_);
}

void LogCapture::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  records_.clear();
}

std::vector<Log::Record> LogCapture::Records() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return records_;
}

void LogCapture::Take(const Log::Record& record) {
  const std::lock_guard<std::mutex> lock(mutex_);
  records_.push_back(record);
  if (record.level > shownLevel_) return;
  // One write per line: several processes may append to one file.
  const std::string line = FormatRecord(record) + "\n";
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = write(fd_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;  // a full disk must not end an inventory
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace Orvane::cli
