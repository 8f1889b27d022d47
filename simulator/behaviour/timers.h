// The timers that one owner has running on a clock; none of them runs any more once the owner is gone.
#pragma once

#include <chrono>
#include <map>
#include <mutex>

#include "orvane/simulator/clock.h"

namespace Orvane::simulator {

/// Thread-safe.
class Timers {
 public:
  explicit Timers(Clock& clock) : clock_(clock) {}

  /// Takes back what has not run, waiting for what is running. Whoever destroys it holds no lock that an action takes.
  ~Timers();

  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;

  std::chrono::milliseconds Now() const { return clock_.Now(); }
  void RunAt(std::chrono::milliseconds due, Clock::Action action);
  void RunAfter(std::chrono::milliseconds delay, Clock::Action action) { RunAt(Now() + delay, std::move(action)); }

 private:
  Clock& clock_;
  std::mutex mutex_;
  bool closed_ = false;
  std::uint64_t last_ = 0;
  std::map<std::uint64_t, Clock::TimerId> running_;
};

}  // namespace Orvane::simulator
