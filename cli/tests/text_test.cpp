// Text from a server on a terminal: harmless, measured and cut by columns.
#include "cli/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvane::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Neutralise, KeepsPrintableUtf8) { EXPECT_EQ(Neutralise("Zürich 東京 ✓"), "Zürich 東京 ✓"); }

TEST(Neutralise, ShowsControlCharacters) { EXPECT_EQ(Neutralise("a\nb\r\tc\x1B[2J\x7F"), "a\\nb\\r\\tc\\x1B[2J\\x7F"); }

TEST(Neutralise, ShowsC1ControlsAndDirectionOverrides) {
  EXPECT_EQ(Neutralise("\xC2\x9B|\xE2\x80\xAE|"), "\\x9B|\\u202E|");
}

TEST(Neutralise, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(Neutralise("a\xFF"), "a\xEF\xBF\xBD");
  EXPECT_EQ(Neutralise("\xC3"), "\xEF\xBF\xBD");
  EXPECT_EQ(Neutralise("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Neutralise("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(DisplayWidth, CountsColumnsAndNotBytes) {
  EXPECT_EQ(DisplayWidth("Zürich"), 6U);
  EXPECT_EQ(DisplayWidth("東京"), 4U);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U);
}

TEST(Truncate, KeepsWhatFits) { EXPECT_EQ(Truncate("12345", 5), "12345"); }

TEST(Truncate, CutsBetweenCharacters) {
  EXPECT_EQ(Truncate("123456", 5), "1234…");
  EXPECT_EQ(Truncate("東京都", 4), "東…");
}

TEST(Trim, TakesTheBlankBehindAnArrayAway) {
  EXPECT_EQ(Trim("2 "), "2");
  EXPECT_EQ(Trim("  "), "");
}

TEST(SplitBlanks, GivesTheElementsOfAnArray) {
  EXPECT_THAT(SplitBlanks("2 32769 "), ElementsAre("2", "32769"));
  EXPECT_THAT(SplitBlanks(""), IsEmpty());
}

}  // namespace
}  // namespace Orvane::cli
