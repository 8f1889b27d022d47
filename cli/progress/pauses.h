// The library's pauses while an operation runs: they pass in pieces, and the progress hears of each.
#pragma once

#include <platform/sleep.h>

#include "cli/passing_time.h"
#include "cli/progress/progress.h"

namespace Orvane::cli {

/// Replaces the process's Sleep while it lives.
class Pauses {
 public:
  /// Both have to outlive this object.
  Pauses(PassingTime& time, Progress& progress);

 private:
  platform::SleepOverride override_;
};

}  // namespace Orvane::cli
