// Real time needs no more than the clock that never goes back.
#include "cli/passing_time.h"

#include <thread>

namespace Orvane::cli {

std::chrono::milliseconds RealTime::Now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

void RealTime::Pass(std::chrono::milliseconds duration) { std::this_thread::sleep_for(duration); }

std::chrono::milliseconds RealTime::Slice() const { return std::chrono::milliseconds(500); }

}  // namespace Orvane::cli
