// What is to be run at which simulated instant: the part that all clocks share. Guarded by a mutex of its own, which is
// never held while an action runs.
#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "orvane/simulator/clock.h"

namespace Orvane::simulator {

class TimerQueue {
 public:
  Clock::TimerId Add(std::chrono::milliseconds due, Clock::Action action);

  /// Returns after the action, should it be running on another thread.
  void Cancel(Clock::TimerId timer);

  /// The instant of the first action; none when nothing waits.
  std::optional<std::chrono::milliseconds> FirstDue() const;

  /// Runs the first action when it is due by this instant; only one thread may do so at a time.
  /// @return whether there was one
  bool RunFirst(std::chrono::milliseconds now);

 private:
  using Key = std::pair<std::chrono::milliseconds, Clock::TimerId>;

  mutable std::mutex mutex_;
  std::condition_variable ended_;
  std::map<Key, Clock::Action> waiting_;
  std::map<Clock::TimerId, std::chrono::milliseconds> dueOf_;
  Clock::TimerId last_ = 0;
  Clock::TimerId running_ = 0;  // 0: none
  std::thread::id runner_;
};

}  // namespace Orvane::simulator
