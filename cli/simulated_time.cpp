// Who waits for an answer that the chassis delays does not pause, so nobody would move the chassis's time on; a thread
// does so then. It starts late, so that the times shown do not depend on how busy this machine is.
#include "cli/simulated_time.h"

#include <orvane/simulator/clock.h>

#include <utility>

namespace Orvane::cli {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kSlice{10000};
// For each slice, in real time: a minute's pause is seen to pass.
constexpr milliseconds kShownFor{10};
// Nothing passed for so long in real time: then it passes by itself, a slice at a time.
constexpr milliseconds kPatience{5000};
constexpr milliseconds kBetweenSlices{100};

}  // namespace

SimulatedTime::SimulatedTime(std::shared_ptr<simulator::ManualClock> clock)
    : clock_(std::move(clock)), mover_([this] { MoveOnWhenNothingPasses(); }) {}

SimulatedTime::~SimulatedTime() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  changed_.notify_all();
  mover_.join();
}

milliseconds SimulatedTime::Now() const { return clock_->Now(); }

void SimulatedTime::Pass(milliseconds duration) {
  clock_->Advance(duration);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    passed_ = true;
  }
  changed_.notify_all();
  std::this_thread::sleep_for(kShownFor);
}

milliseconds SimulatedTime::Slice() const { return kSlice; }

void SimulatedTime::MoveOnWhenNothingPasses() {
  std::unique_lock<std::mutex> lock(mutex_);
  milliseconds wait = kPatience;
  while (!stop_) {
    if (changed_.wait_for(lock, wait, [this] { return stop_ || passed_; })) {
      passed_ = false;
      wait = kPatience;
      continue;
    }
    lock.unlock();
    clock_->Advance(kSlice);
    lock.lock();
    wait = kBetweenSlices;
  }
}

}  // namespace Orvane::cli
