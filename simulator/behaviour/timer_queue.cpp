// Actions wait ordered by instant, then by the order in which they were added.
#include "behaviour/timer_queue.h"

namespace Orvane::simulator {

Clock::TimerId TimerQueue::Add(std::chrono::milliseconds due, Clock::Action action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Clock::TimerId timer = ++last_;
  waiting_.emplace(Key(due, timer), std::move(action));
  dueOf_.emplace(timer, due);
  return timer;
}

void TimerQueue::Cancel(Clock::TimerId timer) {
  Clock::Action dropped;  // destroyed after the lock: an action may own what takes locks to go
  std::unique_lock<std::mutex> lock(mutex_);
  const auto found = dueOf_.find(timer);
  if (found != dueOf_.end()) {
    const auto entry = waiting_.find(Key(found->second, timer));
    dropped = std::move(entry->second);
    waiting_.erase(entry);
    dueOf_.erase(found);
  } else if (runner_ != std::this_thread::get_id()) {
    ended_.wait(lock, [&] { return running_ != timer; });
  }
  lock.unlock();
}

std::optional<std::chrono::milliseconds> TimerQueue::FirstDue() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (waiting_.empty()) return std::nullopt;
  return waiting_.begin()->first.first;
}

bool TimerQueue::RunFirst(std::chrono::milliseconds now) {
  Clock::Action action;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (waiting_.empty() || waiting_.begin()->first.first > now) return false;
    const auto first = waiting_.begin();
    action = std::move(first->second);
    running_ = first->first.second;
    runner_ = std::this_thread::get_id();
    dueOf_.erase(running_);
    waiting_.erase(first);
  }
  action();
  action = nullptr;
  const std::lock_guard<std::mutex> lock(mutex_);
  running_ = 0;
  runner_ = {};
  ended_.notify_all();
  return true;
}

}  // namespace Orvane::simulator
