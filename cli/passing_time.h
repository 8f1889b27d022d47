// The time in which the library's pauses go by: real, or that of the simulated chassis, which passes as fast as
// somebody waits for it.
#pragma once

#include <chrono>

namespace Orvane::cli {

class PassingTime {
 public:
  virtual ~PassingTime() = default;
  PassingTime(const PassingTime&) = delete;
  PassingTime& operator=(const PassingTime&) = delete;

  /// Since some fixed instant. Thread-safe.
  virtual std::chrono::milliseconds Now() const = 0;

  /// Lets time pass.
  virtual void Pass(std::chrono::milliseconds duration) = 0;

  /// How long a piece of a pause may be, so that somebody who watches sees it pass.
  virtual std::chrono::milliseconds Slice() const = 0;

 protected:
  PassingTime() = default;
};

/// The time of this machine.
class RealTime : public PassingTime {
 public:
  std::chrono::milliseconds Now() const override;
  void Pass(std::chrono::milliseconds duration) override;
  std::chrono::milliseconds Slice() const override;
};

}  // namespace Orvane::cli
