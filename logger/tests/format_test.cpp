// The text form of a record.
#include <gmock/gmock.h>
#include <orvane/log.h>

#include <chrono>
#include <string>

namespace Orvane {
namespace {

Log::Record RecordWith(const std::string& text) {
  // 2026-11-21T09:14:02.123Z
  return {std::chrono::system_clock::time_point(std::chrono::milliseconds(1795252442123)), 3,
          "cmm/inventory_update/cmm_peg_client", 42, text};
}

TEST(FormatRecord, WritesTimeLevelPlaceAndText) {
  EXPECT_EQ(
      FormatRecord(RecordWith("Connect CIMOM . H:cmm1 P:0 U:admin RC: 0")),
      "2026-11-21T09:14:02.123Z 3 cmm/inventory_update/cmm_peg_client:42 Connect CIMOM . H:cmm1 P:0 U:admin RC: 0");
}

TEST(FormatRecord, PadsMilliseconds) {
  Log::Record record = RecordWith("x");
  record.time = std::chrono::system_clock::time_point(std::chrono::milliseconds(1795252442007));

  EXPECT_THAT(FormatRecord(record), ::testing::StartsWith("2026-11-21T09:14:02.007Z "));
}

TEST(FormatRecord, FloorsTimesBeforeTheEpoch) {
  Log::Record record = RecordWith("x");
  record.time = std::chrono::system_clock::time_point(std::chrono::milliseconds(-1));

  EXPECT_THAT(FormatRecord(record), ::testing::StartsWith("1969-12-31T23:59:59.999Z "));
}

struct Escape {
  std::string text;
  std::string written;
};
class FormatRecordEscapes : public ::testing::TestWithParam<Escape> {};

TEST_P(FormatRecordEscapes, ControlCharactersStandCStyle) {
  EXPECT_THAT(FormatRecord(RecordWith(GetParam().text)), ::testing::EndsWith(":42 " + GetParam().written));
}

INSTANTIATE_TEST_SUITE_P(All, FormatRecordEscapes,
                         ::testing::Values(Escape{"a\nb", "a\\nb"}, Escape{"a\rb", "a\\rb"}, Escape{"a\tb", "a\\tb"},
                                           Escape{std::string("a\0b", 3), "a\\x00b"}, Escape{"\x1b[31m", "\\x1B[31m"},
                                           Escape{"\x7f", "\\x7F"},
                                           Escape{"\xc3\xa9 \xe2\x82\xac", "\xc3\xa9 \xe2\x82\xac"},
                                           Escape{"50% {} %s", "50% {} %s"}));

}  // namespace
}  // namespace Orvane
