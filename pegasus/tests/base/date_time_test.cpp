// Date-times: the recorded forms, comparisons and conversions, and the arithmetic.
#include <Pegasus/Common/CIMDateTime.h>
#include <gtest/gtest.h>

#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::ExpectedThrow;
using test::TextOf;
using test::Utf8;
using test::Vector;

void ExpectFields(const CIMDateTime& time, const nlohmann::json& record) {
  EXPECT_EQ(Utf8(time.toString()), record.at("toString").get<std::string>());
  EXPECT_EQ(time.isInterval(), record.at("isInterval").get<bool>());
  EXPECT_EQ(std::to_string(time.toMicroSeconds()), record.at("toMicroSeconds").get<std::string>());
}

class DateTimeVector : public testing::TestWithParam<Vector> {};
TEST_P(DateTimeVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const String input = TextOf(record.at("input"));
  CIMDateTime made;
  CIMDateTime set(5, true);
  EXPECT_EQ(Catch([&] { made = CIMDateTime(input); }), ExpectedThrow(record));
  EXPECT_EQ(Catch([&] { set.set(input); }), ExpectedThrow(record));
  if (record.contains("throws")) {
    EXPECT_EQ(set.toMicroSeconds(), 5U) << "a refused text must leave the value alone";
    return;
  }
  ExpectFields(made, record);
  ExpectFields(set, record);
}
INSTANTIATE_TEST_SUITE_P(Texts, DateTimeVector, testing::ValuesIn(test::LoadVectors("datetimes.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class DateTimeFromMicroseconds : public testing::TestWithParam<Vector> {};
TEST_P(DateTimeFromMicroseconds, IsAsRecorded) {
  const auto& record = GetParam().record;
  const Uint64 microseconds = std::stoull(record.at("usec").get<std::string>());
  CIMDateTime time;
  EXPECT_EQ(Catch([&] { time = CIMDateTime(microseconds, record.at("isIntervalArg").get<bool>()); }),
            ExpectedThrow(record));
  if (!record.contains("throws")) {
    ExpectFields(time, record);
  }
}
INSTANTIATE_TEST_SUITE_P(Numbers, DateTimeFromMicroseconds,
                         testing::ValuesIn(test::LoadVectors("datetimes_from_usec.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

class DateTimeComparison : public testing::TestWithParam<Vector> {};
TEST_P(DateTimeComparison, IsAsRecorded) {
  const auto& record = GetParam().record;
  const CIMDateTime a(TextOf(record.at("a")));
  const CIMDateTime b(TextOf(record.at("b")));
  bool equal = false;
  bool less = false;
  EXPECT_EQ(Catch([&] { equal = a == b; }), ExpectedThrow(record));
  EXPECT_EQ(Catch([&] { less = a < b; }), ExpectedThrow(record.value("lessThrows", nlohmann::json::object())));
  if (!record.contains("throws")) {
    EXPECT_EQ(equal, record.at("equal").get<bool>());
    EXPECT_EQ(a.equal(b), equal);
    EXPECT_EQ(a != b, !equal);
    EXPECT_EQ(less, record.at("less").get<bool>());
    EXPECT_EQ(a <= b, less || equal);
    EXPECT_EQ(a >= b, !less);
    EXPECT_EQ(a > b, !less && !equal);
  }
}
INSTANTIATE_TEST_SUITE_P(Pairs, DateTimeComparison, testing::ValuesIn(test::LoadVectors("datetimes_compare.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

std::string Text(const CIMDateTime& time) { return Utf8(time.toString()); }

TEST(DateTime, RefusesTextsThatAreNoDateTimes) {
  for (const char* text : {"20260131235959.12345*+0*0", "2026013123595*.******+000", "2026**31235959.123456+000",
                           "202601**235959.******+000", "0000000*******.******:000", "*00000********.******:000",
                           "20260131235959.12*456+000", "20260131235959.123456+0000", "20260131235959.123456+00",
                           "2026x131235959.123456+000", "20260131235959.123456+0a0", "20260131235959.123456*000",
                           "-0260131235959.123456+000"}) {
    EXPECT_EQ(Catch([&] { CIMDateTime time(text); }).name, "InvalidDateTimeFormatException") << text;
  }
}

TEST(DateTime, RefusesNumbersOutsideTheirFields) {
  const std::pair<const char*, const char*> cases[] = {
      {"20260001000000.000000+000", "illegal month number"},   {"20260132000000.000000+000", "illegal day number"},
      {"20260431000000.000000+000", "illegal day number"},     {"19000229000000.000000+000", "illegal day number"},
      {"20260101240000.000000+000", "illegal hours number "},  {"00000000006000.000000:000", "illegal minutes number "},
      {"00000000000060.000000:000", "illegal seconds number "}};
  for (const auto& [text, reason] : cases) {
    EXPECT_EQ(Catch([&, time = text] { CIMDateTime made(time); }),
              (test::Thrown{"DateTimeOutOfRangeException", std::string("DateTime is out of range : ") + reason}));
  }
  EXPECT_EQ(Text(CIMDateTime("20000229000000.000000+000")), "20000229000000.000000+000");
}

TEST(DateTime, KeepsWildcardsOfWholeFieldsAndOfSingleMicrosecondDigits) {
  for (const char* text : {"20260131235959.12345*-300", "2026013123****.******-300", "202601********.******+000",
                           "2026**********.******+000", "00000012******.******:000", "0000001203****.******:000"}) {
    EXPECT_EQ(Text(CIMDateTime(text)), text);
  }
  EXPECT_EQ(CIMDateTime("202602********.******+000").toMicroSeconds(),
            CIMDateTime("20260201000000.000000+000").toMicroSeconds());
}

TEST(DateTime, EveryDayOfFourCenturiesSurvivesTheWayThroughMicroseconds) {
  constexpr Uint64 kDay = 86400000000ULL;
  const Uint64 begin = CIMDateTime("19000101000000.000000+000").toMicroSeconds();
  const Uint64 end = CIMDateTime("23000101000000.000000+000").toMicroSeconds();
  EXPECT_EQ((end - begin) / kDay, 146097U);
  for (Uint64 day = begin; day < end; day += kDay) {
    ASSERT_EQ(CIMDateTime(CIMDateTime(day, false).toString()).toMicroSeconds(), day);
  }
}

TEST(DateTime, ATimeBeforeTheYear0InUtcCountsAs0) {
  const CIMDateTime time("00000101000000.000000+060");
  EXPECT_EQ(time.toMicroSeconds(), 0U);
  EXPECT_LT(time, CIMDateTime("00000101000000.000000+000"));
}

TEST(DateTime, UnknownFieldsCompareInTheirOwnTimeZone) {
  const CIMDateTime day("20260131******.******+060");
  EXPECT_EQ(day, CIMDateTime("20260131120000.000000+060"));
  EXPECT_EQ(CIMDateTime("20260130233000.000000+000"), day);
  EXPECT_LT(day, CIMDateTime("20260131233000.000000+000"));
  EXPECT_EQ(CIMDateTime("2026**********.******+000"), CIMDateTime("20261231235959.999999+000"));
  EXPECT_EQ(CIMDateTime("202602********.******+000"), CIMDateTime("20260228******.******+000"));
  EXPECT_EQ(CIMDateTime("**************.******+000"), CIMDateTime("20260228******.******+000"));
  EXPECT_EQ(CIMDateTime("**************.******:000"), CIMDateTime());
  EXPECT_EQ(CIMDateTime("00000001******.******:000"), CIMDateTime("00000001235959.999999:000"));
  EXPECT_GT(CIMDateTime("0000000101****.******:000"), CIMDateTime("00000001005959.9*****:000"));
  EXPECT_EQ(CIMDateTime("000000010101**.******:000"), CIMDateTime("00000001010159.9*****:000"));
}

TEST(DateTime, AddsIntervalsToTimesAndIntervals) {
  CIMDateTime time("20260131235959.123456+060");
  EXPECT_EQ(Text(time + CIMDateTime(1000000, true)), "20260201000000.123456+060");
  EXPECT_EQ(Text(CIMDateTime(5, true) + CIMDateTime(7, true)), "00000000000000.000012:000");
  time += CIMDateTime(86400000000, true);
  EXPECT_EQ(Text(time), "20260201235959.123456+060");
  EXPECT_EQ(Text(time + CIMDateTime("00000000000002.12****:000")), "20260202000001.24****+060");
  EXPECT_EQ(Catch([&] { time += time; }).name, "TypeMismatchException");
  EXPECT_EQ(Catch([&] { static_cast<void>(CIMDateTime() + time); }).name, "TypeMismatchException");
  EXPECT_EQ(Text(time), "20260201235959.123456+060") << "a failed addition must leave the value alone";
}

TEST(DateTime, RefusesResultsOutsideTheRange) {
  const CIMDateTime longest("99999999235959.999999:000");
  const CIMDateTime last("99991231235959.999999+000");
  const test::Thrown tooLong{
      "DateTimeOutOfRangeException",
      "DateTime is out of range : Cannot create a CIMDateTime interval greater than 100 million days"};
  EXPECT_EQ(Catch([&] { static_cast<void>(longest + longest); }), tooLong);
  EXPECT_EQ(Catch([&] { static_cast<void>(longest * 2); }), tooLong);
  EXPECT_EQ(Catch([&] { static_cast<void>(longest * 18446744073709551615ULL); }), tooLong);
  EXPECT_EQ(Catch([&] { static_cast<void>(last + CIMDateTime(1, true)); }),
            (test::Thrown{"DateTimeOutOfRangeException",
                          "DateTime is out of range : Cannot create a CIMDateTime time stamp beyond the year 10,000"}));
  EXPECT_EQ(Catch([&] { static_cast<void>(CIMDateTime() - CIMDateTime(1, true)); }).name,
            "DateTimeOutOfRangeException");
  EXPECT_EQ(Catch([&] { static_cast<void>(CIMDateTime(0, false) - CIMDateTime(1, true)); }).name,
            "DateTimeOutOfRangeException");
}

TEST(DateTime, SubtractsTimesAndIntervals) {
  const CIMDateTime late("20260201010000.000000+060");
  const CIMDateTime early("20260131235959.000000+000");
  EXPECT_EQ(Text(late - early), "00000000000001.000000:000");
  EXPECT_EQ(Catch([&] { static_cast<void>(early - late); }).name, "DateTimeOutOfRangeException");
  EXPECT_EQ(Text(late - CIMDateTime(3600000000, true)), "20260201000000.000000+060");
  EXPECT_EQ(Text(CIMDateTime(12, true) - CIMDateTime(5, true)), "00000000000000.000007:000");
  EXPECT_EQ(Catch([&] { static_cast<void>(CIMDateTime() - late); }).name, "TypeMismatchException");
  EXPECT_EQ(Text(CIMDateTime("202602********.******+000") - CIMDateTime("20250101000000.000000+000")),
            "**************.******:000");
  CIMDateTime time = late;
  time -= CIMDateTime(1000000, true);
  EXPECT_EQ(Text(time), "20260201005959.000000+060");
}

TEST(DateTime, MultipliesAndDividesIntervals) {
  CIMDateTime interval(90000000, true);
  EXPECT_EQ(Text(interval * 2), "00000000000300.000000:000");
  EXPECT_EQ(Text(interval / 4), "00000000000022.500000:000");
  EXPECT_EQ(interval / CIMDateTime(40000000, true), 2U);
  EXPECT_EQ(Text(CIMDateTime() * 18446744073709551615ULL), "00000000000000.000000:000");
  interval *= 3;
  EXPECT_EQ(interval.toMicroSeconds(), 270000000U);
  interval /= 2;
  EXPECT_EQ(interval.toMicroSeconds(), 135000000U);
  const CIMDateTime time("20260201010000.000000+060");
  EXPECT_EQ(Catch([&] { static_cast<void>(time * 2); }).name, "TypeMismatchException");
  EXPECT_EQ(Catch([&] { static_cast<void>(time / 2); }).name, "TypeMismatchException");
  EXPECT_EQ(Catch([&] { static_cast<void>(time / time); }).name, "TypeMismatchException");
  EXPECT_EQ(Catch([&] { static_cast<void>(interval / 0); }).name, "Exception");
  EXPECT_EQ(Catch([&] { static_cast<void>(interval / CIMDateTime()); }).name, "Exception");
}

TEST(DateTime, DifferenceIsSignedAndNeedsOneKind) {
  const CIMDateTime early("20260131235959.000000+000");
  const CIMDateTime late("20260201010000.000001+060");
  EXPECT_EQ(CIMDateTime::getDifference(early, late), 1000001);
  EXPECT_EQ(CIMDateTime::getDifference(late, early), -1000001);
  EXPECT_EQ(CIMDateTime::getDifference(CIMDateTime(7, true), CIMDateTime(5, true)), -2);
  EXPECT_EQ(Catch([&] { CIMDateTime::getDifference(early, CIMDateTime()); }).name, "TypeMismatchException");
}

TEST(DateTime, TheCurrentTimeIsATimestampThatSurvivesItsText) {
  const CIMDateTime now = CIMDateTime::getCurrentDateTime();
  EXPECT_FALSE(now.isInterval());
  EXPECT_EQ(CIMDateTime(now.toString()).toMicroSeconds(), now.toMicroSeconds());
}

TEST(DateTime, ClearGivesTheIntervalOfLength0) {
  CIMDateTime time("20260201010000.000001+060");
  time.clear();
  EXPECT_EQ(Text(time), "00000000000000.000000:000");
  EXPECT_TRUE(time.isInterval());
}

}  // namespace
}  // namespace Pegasus
