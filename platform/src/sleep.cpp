// Holds the process-wide replacement of Sleep. A shared library of its own, so that a replacement set by the program
// reaches the code inside the other shared libraries.
#include <platform/sleep.h>

#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

namespace Orvane::platform {
namespace {

struct Seam {
  std::mutex mutex;
  SleepOverride::Function replacement;
};

Seam& TheSeam() {
  static Seam seam;
  return seam;
}

SleepOverride::Function Exchange(SleepOverride::Function next) {
  Seam& seam = TheSeam();
  const std::lock_guard lock(seam.mutex);
  return std::exchange(seam.replacement, std::move(next));
}

}  // namespace

void Sleep(std::uint32_t milliseconds) {
  SleepOverride::Function replacement;
  {
    Seam& seam = TheSeam();
    const std::lock_guard lock(seam.mutex);
    replacement = seam.replacement;
  }
  if (replacement) {
    replacement(milliseconds);
  } else {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
}

SleepOverride::SleepOverride(Function replacement) : previous_(Exchange(std::move(replacement))) {}

SleepOverride::~SleepOverride() { Exchange(std::move(previous_)); }

}  // namespace Orvane::platform
