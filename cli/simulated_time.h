// The time of the simulated chassis inside the command: pauses pass at once, and a request that takes long does not
// stand still in it.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "cli/passing_time.h"

namespace Orvane::simulator {
class ManualClock;
}

namespace Orvane::cli {

class SimulatedTime : public PassingTime {
 public:
  explicit SimulatedTime(std::shared_ptr<simulator::ManualClock> clock);
  ~SimulatedTime() override;

  std::chrono::milliseconds Now() const override;
  void Pass(std::chrono::milliseconds duration) override;
  std::chrono::milliseconds Slice() const override;

 private:
  void MoveOnWhenNothingPasses();

  std::shared_ptr<simulator::ManualClock> clock_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool passed_ = false;
  bool stop_ = false;
  std::thread mover_;  // last: it uses what stands above
};

}  // namespace Orvane::cli
