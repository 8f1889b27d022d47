#include "testing/virtual_clock.h"

#include <numeric>
#include <utility>

namespace Orvane::testing {

VirtualClock::VirtualClock() : VirtualClock(Listener()) {}

VirtualClock::VirtualClock(Listener listener)
    : journal_(std::make_shared<Journal>()),
      override_([journal = journal_, listener = std::move(listener)](std::uint32_t milliseconds) {
        std::size_t index = 0;
        {
          const std::lock_guard<std::mutex> lock(journal->mutex);
          index = journal->sleeps.size();
          journal->sleeps.push_back(milliseconds);
        }
        if (listener) listener(index, milliseconds);
      }) {}

std::vector<std::uint32_t> VirtualClock::Sleeps() const {
  const std::lock_guard<std::mutex> lock(journal_->mutex);
  return journal_->sleeps;
}

std::chrono::milliseconds VirtualClock::Elapsed() const {
  const std::vector<std::uint32_t> sleeps = Sleeps();
  return std::chrono::milliseconds(std::accumulate(sleeps.begin(), sleeps.end(), std::int64_t{0}));
}

void VirtualClock::Forget() {
  const std::lock_guard<std::mutex> lock(journal_->mutex);
  journal_->sleeps.clear();
}

}  // namespace Orvane::testing
