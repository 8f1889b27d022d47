// Shows progress: as plain lines, as a live line on a terminal or as lines of JSON, always on standard error.
#pragma once

#include <memory>
#include <string>

#include "cli/progress/event.h"

namespace Orvane::cli {

enum class ProgressMode { kPlain, kLive, kJsonLines };

/// Calls come one at a time. All texts are masked and harmless already.
class Reporter {
 public:
  virtual ~Reporter() = default;
  Reporter(const Reporter&) = delete;
  Reporter& operator=(const Reporter&) = delete;

  virtual void Report(const Event& event, const ProgressState& state) = 0;

  /// Takes away whatever must not stand before a line that somebody else writes to standard error.
  virtual void Clear() {}

 protected:
  Reporter() = default;
};

/// @param fd  where to write.
std::unique_ptr<Reporter> MakeReporter(ProgressMode mode, int fd);

/// "0:07  switch in bay 3: installing the package; waiting without limit for job JOB_7", no line end.
std::string StatusLine(const ProgressState& state);

}  // namespace Orvane::cli
