// The seam of Sleep: replaced, nested, restored.
#include <gmock/gmock.h>
#include <platform/sleep.h>

#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace Orvane::platform {
namespace {

using ::testing::ElementsAre;

TEST(Sleep, CallsTheReplacementWithTheMilliseconds) {
  std::vector<std::uint32_t> waits;
  const SleepOverride virtualTime([&](std::uint32_t ms) { waits.push_back(ms); });

  Sleep(300000);
  Sleep(0);

  EXPECT_THAT(waits, ElementsAre(300000U, 0U));
}

TEST(Sleep, ReachesTheReplacementFromAnotherThread) {
  std::vector<std::uint32_t> waits;
  const SleepOverride virtualTime([&](std::uint32_t ms) { waits.push_back(ms); });

  std::thread([] { Sleep(5000); }).join();

  EXPECT_THAT(waits, ElementsAre(5000U));
}

TEST(Sleep, InnerOverrideRulesAndTheOuterComesBack) {
  std::vector<std::uint32_t> outer;
  std::vector<std::uint32_t> inner;
  const SleepOverride outerTime([&](std::uint32_t ms) { outer.push_back(ms); });

  {
    const SleepOverride innerTime([&](std::uint32_t ms) { inner.push_back(ms); });
    Sleep(1);
  }
  Sleep(2);

  EXPECT_THAT(inner, ElementsAre(1U));
  EXPECT_THAT(outer, ElementsAre(2U));
}

TEST(Sleep, WithoutAReplacementRealTimePasses) {
  const auto before = std::chrono::steady_clock::now();

  Sleep(20);

  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

}  // namespace
}  // namespace Orvane::platform
