// A point in time by which something must have happened. Counts on the steady clock, so setting the system's clock
// neither shortens nor lengthens a time-out.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Pegasus::transport {

class Deadline {
 public:
  using Clock = std::chrono::steady_clock;

  static Deadline After(std::chrono::milliseconds wait) { return Deadline(Clock::now() + wait); }
  static Deadline After(std::uint32_t milliseconds) { return After(std::chrono::milliseconds(milliseconds)); }

  Clock::time_point Time() const { return time_; }
  bool HasPassed() const { return Clock::now() >= time_; }
  /// This deadline, or `other` when that comes first.
  Deadline Earlier(Deadline other) const { return Deadline(std::min(time_, other.time_)); }

 private:
  explicit Deadline(Clock::time_point time) : time_(time) {}

  Clock::time_point time_;
};

}  // namespace Pegasus::transport
