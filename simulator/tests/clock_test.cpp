// The clocks: order and instants of actions, taking back, standing still for work, real time times a factor.
#include "orvane/simulator/clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Orvane::simulator {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

constexpr auto kPatience = std::chrono::seconds(20);

TEST(ManualClock, RunsActionsAtTheirInstantsInOrder) {
  ManualClock clock;
  std::vector<std::string> ran;
  const auto note = [&](const char* name) {
    return [&ran, &clock, name] { ran.push_back(name + std::to_string(clock.Now().count())); };
  };
  clock.RunAt(milliseconds(30), note("c"));
  clock.RunAt(milliseconds(10), note("a"));
  clock.RunAt(milliseconds(10), note("b"));
  clock.RunAt(milliseconds(31), note("d"));

  clock.Advance(milliseconds(30));

  EXPECT_THAT(ran, ElementsAre("a10", "b10", "c30"));
  EXPECT_EQ(clock.Now(), milliseconds(30));
}

TEST(ManualClock, RunsWhatAnActionAsksForWithinTheSameMove) {
  ManualClock clock;
  std::vector<milliseconds> ran;
  clock.RunAt(milliseconds(5), [&] {
    ran.push_back(clock.Now());
    clock.RunAt(clock.Now() + milliseconds(5), [&] { ran.push_back(clock.Now()); });
  });

  clock.Advance(milliseconds(10));

  EXPECT_THAT(ran, ElementsAre(milliseconds(5), milliseconds(10)));
}

TEST(ManualClock, RunsWhatIsOverdueWithoutGoingBack) {
  ManualClock clock;
  clock.Advance(milliseconds(100));
  milliseconds ran{0};
  clock.RunAt(milliseconds(1), [&] { ran = clock.Now(); });

  clock.Advance(milliseconds(-5));

  EXPECT_EQ(ran, milliseconds(100));
}

TEST(ManualClock, LeavesOutWhatIsTakenBack) {
  ManualClock clock;
  bool ran = false;
  const Clock::TimerId timer = clock.RunAt(milliseconds(1), [&] { ran = true; });
  clock.Cancel(timer);
  clock.Cancel(timer);

  clock.Advance(milliseconds(10));

  EXPECT_FALSE(ran);
}

TEST(ManualClock, AnActionMayTakeItselfBack) {
  ManualClock clock;
  Clock::TimerId timer = 0;
  bool ran = false;
  timer = clock.RunAt(milliseconds(1), [&] {
    clock.Cancel(timer);
    ran = true;
  });

  clock.Advance(milliseconds(1));

  EXPECT_TRUE(ran);
}

TEST(ManualClock, StandsStillWhileWorkGoesOn) {
  ManualClock clock;
  clock.BeginWork();
  std::promise<void> started;
  std::atomic<bool> workIsDone{false};
  std::atomic<bool> workWasDone{false};
  clock.RunAt(milliseconds(1), [&] { workWasDone = workIsDone.load(); });
  std::thread mover([&] {
    started.set_value();
    clock.Advance(milliseconds(10));
  });
  started.get_future().wait();
  std::this_thread::sleep_for(milliseconds(20));
  EXPECT_EQ(clock.Now(), milliseconds(0));
  workIsDone = true;
  clock.EndWork();
  mover.join();

  EXPECT_TRUE(workWasDone);
  EXPECT_EQ(clock.Now(), milliseconds(10));
}

TEST(ManualClock, MovesToAnInstantThatSomebodyWaitsForAndNeverBack) {
  ManualClock clock;
  milliseconds ran{0};
  clock.RunAt(milliseconds(30), [&] { ran = clock.Now(); });

  clock.PassUntil(milliseconds(50));
  clock.PassUntil(milliseconds(20));

  EXPECT_EQ(ran, milliseconds(30));
  EXPECT_EQ(clock.Now(), milliseconds(50));
}

TEST(ManualClock, AddsUpTheMovesOfSeveralThreads) {
  ManualClock clock;
  constexpr int kThreads = 4;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&clock] {
      for (int n = 0; n < 100; ++n) clock.Advance(milliseconds(3));
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(clock.Now(), milliseconds(1200));
}

TEST(ScaledClock, RunsActionsByItself) {
  ScaledClock clock(1000);
  std::promise<milliseconds> ran;
  clock.RunAt(milliseconds(2000), [&] { ran.set_value(clock.Now()); });
  std::future<milliseconds> instant = ran.get_future();

  ASSERT_EQ(instant.wait_for(kPatience), std::future_status::ready);
  EXPECT_GE(instant.get(), milliseconds(2000));
}

TEST(ScaledClock, WakesForAnActionThatIsDueBeforeTheOthers) {
  ScaledClock clock(1);
  std::promise<void> ran;
  const Clock::TimerId late = clock.RunAt(std::chrono::hours(24), [] {});
  clock.RunAt(milliseconds(1), [&] { ran.set_value(); });

  EXPECT_EQ(ran.get_future().wait_for(kPatience), std::future_status::ready);
  clock.Cancel(late);
}

TEST(ScaledClock, WaitsForARunningActionThatIsTakenBack) {
  ScaledClock clock(1000);
  std::promise<void> started;
  std::atomic<bool> ended{false};
  const Clock::TimerId timer = clock.RunAt(milliseconds(0), [&] {
    started.set_value();
    std::this_thread::sleep_for(milliseconds(20));
    ended = true;
  });
  started.get_future().wait();

  clock.Cancel(timer);

  EXPECT_TRUE(ended);
}

TEST(ScaledClock, RefusesSenselessScales) {
  for (const double scale : {0.0, -1.0, 0.0009, 1000001.0}) EXPECT_THROW(ScaledClock{scale}, std::invalid_argument);
}

}  // namespace
}  // namespace Orvane::simulator
