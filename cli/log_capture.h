// Takes the records that the library logs: keeps those of the running call, for finding out why it failed, and writes
// the ones the user asked for to standard error or to a file.
#pragma once

#include <orvane/log.h>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::cli {

struct LogOptions {
  std::optional<unsigned> level;    ///< --log-level, 0 to 4.
  std::optional<std::string> file;  ///< --log-file.
};

/// One at a time in a process. While it lives it is the destination of every record; it may be fed by several threads.
class LogCapture {
 public:
  /// Without a level in @p options the environment's ORVANE_LOG_LEVEL decides; without that, lines are written only
  /// when a file (@p options or ORVANE_LOG_FILE) was named, at level 1. A file that cannot be opened is reported on
  /// standard error and the lines go there instead.
  explicit LogCapture(const LogOptions& options);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// Forgets the records kept so far.
  void Clear();

  /// The records kept since the last Clear(), in order: levels 1 to 3, and 4 when it is shown or watched. Credentials
  /// in URIs are masked. Of very many those in the middle are gone.
  std::vector<Log::Record> Records() const;

  /// True when one of those records begins with @p start.
  bool Holds(std::string_view start) const;

  /// Receives every record before it is written; must not log. @p shown: a line on standard error follows.
  using Observer = std::function<void(const Log::Record& record, bool shown)>;

  /// While it lives, records of all levels go to an observer. One at a time.
  class Watch {
   public:
    Watch(LogCapture& log, Observer observer);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

   private:
    LogCapture& log_;
  };

 private:
  void SetObserver(Observer observer);
  void Take(const Log::Record& record);

  unsigned shownLevel_ = 0;
  unsigned levelBefore_ = 0;
  int fd_ = -1;
  bool ownsFd_ = false;
  mutable std::mutex mutex_;
  std::deque<Log::Record> records_;
  Observer observer_;
};

}  // namespace Orvane::cli
