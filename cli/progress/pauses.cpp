// A pause is never shortened: whoever interrupts the command ends the process from another thread.
#include "cli/progress/pauses.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Orvane::cli {

Pauses::Pauses(PassingTime& time, Progress& progress)
    : override_([&time, &progress](std::uint32_t milliseconds) {
        std::chrono::milliseconds left(milliseconds);
        progress.OnPauseBegin(left);
        while (left.count() > 0) {
          const std::chrono::milliseconds piece = std::min(left, time.Slice());
          time.Pass(piece);
          left -= piece;
          progress.OnTick();
        }
      }) {}

}  // namespace Orvane::cli
