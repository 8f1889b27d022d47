// Timing marks: the line, the pairing of begin and end, the level.
#include <gmock/gmock.h>
#include <orvane/log.h>

#include <thread>

#include "testing/scoped_log.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

TEST(AddDetailTimeDebugLog, EndTellsTheTimeSinceItsBegin) {
  const testing::ScopedLog log(3);

  AddDetailTimeDebugLog(3, "a/b", 7, "[B]", 32, 0, "http://10.0.0.1/p.bin");
  AddDetailTimeDebugLog(3, "a/b", 9, "[E]", 32, 5, "http://10.0.0.1/p.bin");

  EXPECT_THAT(log.Texts(3),
              ElementsAre("[B] step=32 value=0 http://10.0.0.1/p.bin",
                          MatchesRegex("\\[E\\] step=32 value=5 http://10.0.0.1/p.bin elapsed=[0-9]+ms")));
  EXPECT_EQ(log.Records()[0].file, "a/b");
  EXPECT_EQ(log.Records()[1].line, 9);
}

TEST(AddDetailTimeDebugLog, EndWithoutBeginHasNoElapsedTime) {
  const testing::ScopedLog log(3);

  AddDetailTimeDebugLog(3, "a/b", 7, "[E]", 63, -1, "");

  EXPECT_THAT(log.Texts(3), ElementsAre("[E] step=63 value=-1 "));
}

TEST(AddDetailTimeDebugLog, BeginOfAnotherStepOrThreadDoesNotCount) {
  const testing::ScopedLog log(3);

  AddDetailTimeDebugLog(3, "a/b", 1, "[B]", 71, 0, "");
  AddDetailTimeDebugLog(3, "a/b", 2, "[E]", 72, 0, "");
  std::thread([] { AddDetailTimeDebugLog(3, "a/b", 3, "[E]", 71, 0, ""); }).join();

  EXPECT_THAT(log.Texts(3), ElementsAre("[B] step=71 value=0 ", "[E] step=72 value=0 ", "[E] step=71 value=0 "));
}

TEST(AddDetailTimeDebugLog, PairsNestAndEachBeginServesOnce) {
  const testing::ScopedLog log(3);

  AddDetailTimeDebugLog(3, "f", 1, "[B]", 81, 0, "");
  AddDetailTimeDebugLog(3, "f", 2, "[B]", 81, 0, "");
  AddDetailTimeDebugLog(3, "f", 3, "[E]", 81, 0, "");
  AddDetailTimeDebugLog(3, "f", 4, "[E]", 81, 0, "");
  AddDetailTimeDebugLog(3, "f", 5, "[E]", 81, 0, "");

  const auto texts = log.Texts(3);
  ASSERT_EQ(texts.size(), 5U);
  EXPECT_THAT(texts[2], MatchesRegex(".*elapsed=[0-9]+ms"));
  EXPECT_THAT(texts[3], MatchesRegex(".*elapsed=[0-9]+ms"));
  EXPECT_EQ(texts[4], "[E] step=81 value=0 ");
}

TEST(AddDetailTimeDebugLog, WritesNothingBelowItsLevel) {
  const testing::ScopedLog log(2);

  AddDetailTimeDebugLog(3, "f", 1, "[B]", 91, 0, "");

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(AddDetailTimeDebugLog, WritesNothingAtALevelThatIsNone) {
  const testing::ScopedLog log(0);

  for (const int level : {-1, 0}) AddDetailTimeDebugLog(level, "f", 1, "[B]", 92, 0, "");

  EXPECT_THAT(log.Records(), IsEmpty()) << "verbosity 0 means that nothing is logged";
}

}  // namespace
}  // namespace Orvane
