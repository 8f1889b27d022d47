// Collects the log lines of one test and puts level and sink back afterwards.
#pragma once

#include <orvane/log.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvane::testing {

/// Captures every record while it lives. Thread-safe.
class ScopedLog {
 public:
  /// @param level  the verbosity in force during the test, 0 to 4.
  explicit ScopedLog(unsigned level = 4);
  ~ScopedLog();
  ScopedLog(const ScopedLog&) = delete;
  ScopedLog& operator=(const ScopedLog&) = delete;

  std::vector<Log::Record> Records() const;
  /// Texts of the records of exactly @p level, in order.
  std::vector<std::string> Texts(unsigned level) const;
  /// Whether a record of exactly @p level has exactly @p text.
  bool Has(unsigned level, const std::string& text) const;

 private:
  struct Journal {
    mutable std::mutex mutex;
    std::vector<Log::Record> records;
  };
  unsigned previousLevel_;
  std::shared_ptr<Journal> journal_;
};

}  // namespace Orvane::testing
