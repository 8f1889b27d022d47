// The two clocks: one with a thread that sleeps until the next action is due, one that is moved from outside.
#include "orvane/simulator/clock.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "behaviour/timer_queue.h"

namespace Orvane::simulator {

namespace {

using std::chrono::milliseconds;
using RealClock = std::chrono::steady_clock;

constexpr double kLowestScale = 0.001;
constexpr double kHighestScale = 1000000;
// Longer waits are cut in pieces, so that no instant of real time overflows.
constexpr auto kLongestWait = std::chrono::hours(1);

}  // namespace

class ScaledClock::Impl {
 public:
  explicit Impl(double scale) : scale_(scale), thread_([this] { Run(); }) {}

  ~Impl() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stop_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  milliseconds Now() const {
    const std::chrono::duration<double, std::milli> real = RealClock::now() - start_;
    return milliseconds(static_cast<milliseconds::rep>(real.count() * scale_));
  }

  TimerId RunAt(milliseconds due, Action action) {
    const TimerId timer = queue_.Add(due, std::move(action));
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      isNew_ = true;
    }
    changed_.notify_all();
    return timer;
  }

  void Cancel(TimerId timer) { queue_.Cancel(timer); }

 private:
  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stop_) {
      isNew_ = false;
      lock.unlock();
      while (queue_.RunFirst(Now())) {
      }
      const std::optional<milliseconds> due = queue_.FirstDue();
      lock.lock();
      const auto woken = [this] { return stop_ || isNew_; };
      if (due) {
        changed_.wait_for(lock, RealUntil(*due), woken);
      } else {
        changed_.wait(lock, woken);
      }
    }
  }

  // Real time until an instant, a little more than less: rounding down would only mean to look once too often.
  RealClock::duration RealUntil(milliseconds due) const {
    const double seconds = static_cast<double>((due - Now()).count() + 1) / 1000.0 / scale_;
    const std::chrono::duration<double> longest = kLongestWait;
    return std::chrono::duration_cast<RealClock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, longest.count())));
  }

  const double scale_;
  const RealClock::time_point start_ = RealClock::now();
  TimerQueue queue_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stop_ = false;
  bool isNew_ = false;
  std::thread thread_;  // last: it uses what stands above
};

ScaledClock::ScaledClock(double scale) {
  if (!(scale >= kLowestScale && scale <= kHighestScale)) {
    throw std::invalid_argument("the time scale must be from 0.001 to 1000000");
  }
  impl_ = std::make_unique<Impl>(scale);
}
ScaledClock::~ScaledClock() = default;

milliseconds ScaledClock::Now() const { return impl_->Now(); }
Clock::TimerId ScaledClock::RunAt(milliseconds due, Action action) { return impl_->RunAt(due, std::move(action)); }
void ScaledClock::Cancel(TimerId timer) { impl_->Cancel(timer); }

class ManualClock::Impl {
 public:
  void Advance(milliseconds duration) {
    const std::lock_guard<std::mutex> turn(turn_);
    Pass(Now() + std::max(duration, milliseconds::zero()));
  }

  void PassUntil(milliseconds instant) {
    const std::lock_guard<std::mutex> turn(turn_);
    Pass(instant);
  }

  milliseconds Now() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return now_;
  }

  TimerQueue& Queue() { return queue_; }

  void BeginWork() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++works_;
  }

  void EndWork() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      --works_;
    }
    workEnded_.notify_all();
  }

 private:
  void Pass(milliseconds end) {
    while (true) {
      WaitForWork();
      const std::optional<milliseconds> due = queue_.FirstDue();
      if (!due || *due > end) break;
      MoveTo(*due);
      queue_.RunFirst(*due);
    }
    MoveTo(end);
  }

  void WaitForWork() {
    std::unique_lock<std::mutex> lock(mutex_);
    workEnded_.wait(lock, [this] { return works_ == 0; });
  }

  void MoveTo(milliseconds instant) {
    const std::lock_guard<std::mutex> lock(mutex_);
    now_ = std::max(now_, instant);
  }

  std::mutex turn_;
  mutable std::mutex mutex_;
  std::condition_variable workEnded_;
  milliseconds now_{0};
  unsigned works_ = 0;
  TimerQueue queue_;
};

ManualClock::ManualClock() : impl_(std::make_unique<Impl>()) {}
ManualClock::~ManualClock() = default;

void ManualClock::Advance(milliseconds duration) { impl_->Advance(duration); }
milliseconds ManualClock::Now() const { return impl_->Now(); }
Clock::TimerId ManualClock::RunAt(milliseconds due, Action action) {
  return impl_->Queue().Add(due, std::move(action));
}
void ManualClock::Cancel(TimerId timer) { impl_->Queue().Cancel(timer); }
void ManualClock::BeginWork() { impl_->BeginWork(); }
void ManualClock::EndWork() { impl_->EndWork(); }
void ManualClock::PassUntil(milliseconds instant) { impl_->PassUntil(instant); }

}  // namespace Orvane::simulator
