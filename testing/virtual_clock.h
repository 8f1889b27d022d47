// Time for tests: every Sleep of the library moves this clock on and returns at once, so that hours of waiting take
// milliseconds and the exact sequence of waits can be asserted.
#pragma once

#include <platform/sleep.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Orvane::testing {

/// Replaces Sleep for the whole process while it lives. Thread-safe.
class VirtualClock {
 public:
  /// Called on the sleeping thread after the clock has moved on.
  /// @param index         how many sleeps were before this one
  /// @param milliseconds  its length
  using Listener = std::function<void(std::size_t index, std::uint32_t milliseconds)>;

  VirtualClock();
  /// @param listener  makes things happen during a wait: scripts a server anew, lets a simulated chassis go on.
  explicit VirtualClock(Listener listener);
  VirtualClock(const VirtualClock&) = delete;
  VirtualClock& operator=(const VirtualClock&) = delete;

  /// The waits so far, in milliseconds and in order.
  std::vector<std::uint32_t> Sleeps() const;
  /// The sum of all waits.
  std::chrono::milliseconds Elapsed() const;
  void Forget();

 private:
  struct Journal {
    mutable std::mutex mutex;
    std::vector<std::uint32_t> sleeps;
  };
  std::shared_ptr<Journal> journal_;
  platform::SleepOverride override_;
};

}  // namespace Orvane::testing
