// Each action is wrapped so that it strikes itself off the list when it has run.
#include "behaviour/timers.h"

#include <utility>

namespace Orvane::simulator {

Timers::~Timers() {
  std::map<std::uint64_t, Clock::TimerId> left;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    left = running_;
  }
  // A copy: an action that runs just now strikes itself off the original.
  for (const auto& [number, timer] : left) clock_.Cancel(timer);
}

void Timers::RunAt(std::chrono::milliseconds due, Clock::Action action) {
  // The clock may run the action before this call ends; then it waits here for its entry.
  const std::lock_guard<std::mutex> lock(mutex_);
  if (closed_) return;
  const std::uint64_t number = ++last_;
  running_[number] = clock_.RunAt(due, [this, number, run = std::move(action)] {
    run();
    const std::lock_guard<std::mutex> ended(mutex_);
    running_.erase(number);
  });
}

}  // namespace Orvane::simulator
