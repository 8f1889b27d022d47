// The one wait of the whole process. Everything that pauses goes through Sleep, so that a program can replace the
// operating system's sleep (tests run on virtual time with it). Internal: not installed with the package.
#pragma once

#include <platform/export.h>

#include <cstdint>
#include <functional>

namespace Orvane::platform {

/// Pauses the calling thread.
/// @param milliseconds  how long; 0 returns at once.
/// Thread-safe. With a SleepOverride in force the replacement is called instead, on the calling thread.
ORVANE_PLATFORM_EXPORT void Sleep(std::uint32_t milliseconds);

/// Replaces Sleep for the whole process while it lives; its destructor puts back what was in force before.
/// Overrides nest: destroy them in reverse order of construction. Thread-safe, but a replacement may still be running
/// on another thread when its override is destroyed, so it must own what it touches.
class ORVANE_PLATFORM_EXPORT SleepOverride {
 public:
  using Function = std::function<void(std::uint32_t milliseconds)>;

  /// @param replacement  called for every Sleep, on the thread that sleeps; empty means the operating system's sleep.
  explicit SleepOverride(Function replacement);
  ~SleepOverride();
  SleepOverride(const SleepOverride&) = delete;
  SleepOverride& operator=(const SleepOverride&) = delete;

 private:
  Function previous_;
};

}  // namespace Orvane::platform
