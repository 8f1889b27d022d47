// The time that a simulated chassis lives in: real time, faster than real, or moved by hand as a test wants it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace Orvane::simulator {

/// A source of simulated time that also runs what is due. All members of all clocks may be called from any thread.
class Clock {
 public:
  using Action = std::function<void()>;
  using TimerId = std::uint64_t;

  virtual ~Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;

  /// Simulated time since the clock was made; never goes back.
  virtual std::chrono::milliseconds Now() const = 0;

  /// Runs an action once when Now() has come to an instant, at the next opportunity when that is past already. Actions
  /// run one at a time, in the order of their instants, those of one instant in the order in which they were asked
  /// for; never inside this call. An action must not throw.
  virtual TimerId RunAt(std::chrono::milliseconds due, Action action) = 0;

  /// Takes an action back; without effect when it ran already. Returns after the action, should it be running just now
  /// on another thread.
  virtual void Cancel(TimerId timer) = 0;

  /// Between these calls something goes on that takes real time, a download for instance. A clock that is moved by
  /// hand stands still as long, others do not care. Every BeginWork needs its EndWork.
  virtual void BeginWork() = 0;
  virtual void EndWork() = 0;

  /// Somebody waits for the chassis until an instant and moves nothing meanwhile: a clock that is moved by hand moves
  /// there, as with Advance and with its restrictions, others pay no heed.
  virtual void PassUntil(std::chrono::milliseconds instant) = 0;

 protected:
  Clock() = default;
};

/// Runs on a thread of its own, at real time's pace times a factor.
class ScaledClock : public Clock {
 public:
  /// @param scale  seconds of simulated time per second, from 0.001 to 1000000
  /// @throws std::invalid_argument when the scale is out of range
  explicit ScaledClock(double scale);
  ~ScaledClock() override;

  std::chrono::milliseconds Now() const override;
  TimerId RunAt(std::chrono::milliseconds due, Action action) override;
  void Cancel(TimerId timer) override;
  void BeginWork() override {}
  void EndWork() override {}
  void PassUntil(std::chrono::milliseconds /*instant*/) override {}

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// Stands still until it is moved. One that replaces a program's sleep moves on by each pause, so that the chassis has
/// done within the pause whatever it does in that time.
class ManualClock : public Clock {
 public:
  ManualClock();
  ~ManualClock() override;

  /// Moves time on, running on this thread whatever becomes due, each action at its own instant; returns after the last
  /// of them. Calls of several threads take their turns and add up. Not to be called by an action.
  /// @param duration  0 runs what is due now; negative durations count as 0
  void Advance(std::chrono::milliseconds duration);

  std::chrono::milliseconds Now() const override;
  TimerId RunAt(std::chrono::milliseconds due, Action action) override;
  void Cancel(TimerId timer) override;
  void BeginWork() override;
  void EndWork() override;
  void PassUntil(std::chrono::milliseconds instant) override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Orvane::simulator
