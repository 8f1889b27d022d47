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
#include <utility>

#include "cli/masking.h"
#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

constexpr unsigned kNeededLevel = 3;
constexpr unsigned kLevelOfFiles = 1;
constexpr unsigned kWatchedLevel = 4;
// An operation may be followed for days. How it began and how it ended tell what became of it.
constexpr std::size_t kMostRecords = 20000;
constexpr std::size_t kFirstRecords = 1000;

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
  return {records_.begin(), records_.end()};
}

bool LogCapture::Holds(std::string_view start) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::any_of(records_.begin(), records_.end(), [start](const Log::Record& record) {
    return std::string_view(record.text).substr(0, start.size()) == start;
  });
}

void LogCapture::SetObserver(Observer observer) {
  const bool watched = observer != nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    observer_ = std::move(observer);
  }
  Log::SetMinLogLevel(std::max(watched ? kWatchedLevel : kNeededLevel, shownLevel_));
}

LogCapture::Watch::Watch(LogCapture& log, Observer observer) : log_(log) { log_.SetObserver(std::move(observer)); }

LogCapture::Watch::~Watch() { log_.SetObserver({}); }

void LogCapture::Take(const Log::Record& taken) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Log::Record record = taken;
  record.text = MaskCredentials(record.text);
  const bool shown = record.level <= shownLevel_;
  if (observer_) observer_(record, shown && fd_ == STDERR_FILENO);
  // A full disk must not end an operation. One write per line: several processes may append to one file.
  if (shown) WriteAll(fd_, FormatRecord(record) + "\n");
  records_.push_back(std::move(record));
  if (records_.size() > kMostRecords) records_.erase(records_.begin() + kFirstRecords);
}

}  // namespace Orvane::cli
