// The codes that a failed job's status text yields, and the texts of the update's result codes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <cctype>
#include <locale>
#include <string>
#include <vector>

#include "cmm/tests/update_message_copies.h"
#include "testing/scoped_log.h"

namespace Orvane {

testing::UpdateMessageCopies testing::CopiesOfAnotherSource() { return CopiesOfThisSource(); }

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedLog;

std::vector<std::string> Lines(const ScopedLog& log) {
  std::vector<std::string> lines;
  for (const Log::Record& record : log.Records()) lines.push_back(std::to_string(record.level) + " " + record.text);
  return lines;
}

struct Pattern {
  const char* text;
  int code;
};
constexpr Pattern kPatterns[] = {
    {"CURLE(127) - THIS IS AN UNKNOWN CURL ERROR", 7},
    {"DCSS_RC_RECV_FAIL", 9},
    {"FINGERPRINT MISMATCH", 10},
    {"FIRMWARE DOWNLOAD OPERATION FAILED", 11},
    {"DCSS_RC_CDT_FAIL", 12},
    {"HOST KEY AUTHENTICATION FAILED", 13},
    {"FAILED TO CONTACT HOST", 14},
    {"FLASHING ENDED WITH FAILURE", 15},
    {"TIMEOUT", 16},
    {"FILE DOES NOT EXIST", 35},
};

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

class OnePattern : public ::testing::TestWithParam<Pattern> {};
INSTANTIATE_TEST_SUITE_P(CheckUpdateErrorCode, OnePattern, ::testing::ValuesIn(kPatterns));

TEST_P(OnePattern, IsTheWholeText) {
  const ScopedLog log;
  EXPECT_EQ(CheckUpdateErrorCode(GetParam().text), GetParam().code);
  const std::string text = GetParam().text;
  EXPECT_THAT(
      Lines(log),
      ElementsAre("4 Enter CheckUpdateErrorCode", "4 CheckUpdateErrorCode CMMJobStatusStrFlagLocal=" + text,
                  "1 " + text, "4 Enter CheckUpdateErrorCode ErrorCodeResult: " + std::to_string(GetParam().code)));
}

TEST_P(OnePattern, StandsAnywhereInAnyCase) {
  const ScopedLog log;
  EXPECT_EQ(CheckUpdateErrorCode("Job 17: " + Lower(GetParam().text) + ", gave up."), GetParam().code);
  EXPECT_THAT(log.Texts(1), ElementsAre(GetParam().text));
}

TEST_P(OnePattern, MustBeWhole) {
  std::string text = GetParam().text;
  text.insert(text.size() / 2, "?");
  EXPECT_EQ(CheckUpdateErrorCode(text), 0);
}

struct Several {
  const char* status;
  int code;
  std::vector<std::string> found;
};
class SeveralPatterns : public ::testing::TestWithParam<Several> {};
INSTANTIATE_TEST_SUITE_P(
    CheckUpdateErrorCode, SeveralPatterns,
    ::testing::Values(
        Several{"DCSC_RC_TIMEOUT", 16, {"DCSC_RC_TIMEOUT", "TIMEOUT"}},
        Several{"dcsc_rc_timeout", 16, {"DCSC_RC_TIMEOUT", "TIMEOUT"}},
        Several{"Dcsc_Rc_TimeOut while flashing", 16, {"DCSC_RC_TIMEOUT", "TIMEOUT"}},
        Several{"failed to contact host, fingerprint mismatch", 14, {"FINGERPRINT MISMATCH", "FAILED TO CONTACT HOST"}},
        Several{"fingerprint mismatch, failed to contact host", 14, {"FINGERPRINT MISMATCH", "FAILED TO CONTACT HOST"}},
        Several{"Firmware Download operation FAILED: file does NOT exist",
                35,
                {"FIRMWARE DOWNLOAD OPERATION FAILED", "FILE DOES NOT EXIST"}},
        Several{"FILE DOES NOT EXIST - FIRMWARE DOWNLOAD OPERATION FAILED",
                35,
                {"FIRMWARE DOWNLOAD OPERATION FAILED", "FILE DOES NOT EXIST"}},
        Several{"timeout: host key authentication failed", 16, {"HOST KEY AUTHENTICATION FAILED", "TIMEOUT"}}));

TEST_P(SeveralPatterns, LastOfTheTableWins) {
  const ScopedLog log;
  EXPECT_EQ(CheckUpdateErrorCode(GetParam().status), GetParam().code);
  EXPECT_EQ(log.Texts(1), GetParam().found);
}

TEST(CheckUpdateErrorCode, LogsEveryPatternInTheOrderOfTheTable) {
  std::string status;
  std::vector<std::string> texts;
  for (auto pattern = std::rbegin(kPatterns); pattern != std::rend(kPatterns); ++pattern) {
    status += pattern->text;
    texts.insert(texts.begin(), pattern->text);
  }
  const ScopedLog log;
  EXPECT_EQ(CheckUpdateErrorCode(status), 35);
  EXPECT_EQ(log.Texts(1), texts);
}

TEST(CheckUpdateErrorCode, OfUnknownTextsIsZero) {
  EXPECT_EQ(CheckUpdateErrorCode("The job completed"), 0);
  EXPECT_EQ(CheckUpdateErrorCode("TIME OUT"), 0);
  EXPECT_EQ(CheckUpdateErrorCode(std::string(65536, 'T')), 0);
}

TEST(CheckUpdateErrorCode, OfNoTextIsZero) {
  const ScopedLog log;
  EXPECT_EQ(CheckUpdateErrorCode(""), 0);
  EXPECT_THAT(Lines(log),
              ElementsAre("4 Enter CheckUpdateErrorCode", "4 CheckUpdateErrorCode CMMJobStatusStrFlagLocal=",
                          "4 Enter CheckUpdateErrorCode ErrorCodeResult: 0"));
}

TEST(CheckUpdateErrorCode, LooksBehindAZeroByte) {
  EXPECT_EQ(CheckUpdateErrorCode(std::string("status\0timeout", 14)), 16);
}

TEST(CheckUpdateErrorCode, DoesNotDependOnTheLog) {
  const ScopedLog log(0);
  EXPECT_EQ(CheckUpdateErrorCode("flashing ended with failure"), 15);
  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(CheckUpdateErrorCode, NamesItsSource) {
  const ScopedLog log;
  CheckUpdateErrorCode("timeout");
  EXPECT_EQ(log.Records().size(), 4U);
  for (const Log::Record& record : log.Records()) {
    EXPECT_EQ(record.file, "cmm/inventory_update/cmm_util");
    EXPECT_GT(record.line, 0);
  }
}

/// Upper-cases "#" to "T", like a locale with letters of its own.
class OddCharacters : public std::ctype<char> {
 protected:
  char do_toupper(char c) const override { return c == '#' ? 'T' : std::ctype<char>::do_toupper(c); }
  const char* do_toupper(char* begin, const char* end) const override {
    for (; begin != end; ++begin) *begin = do_toupper(*begin);
    return end;
  }
};

TEST(CheckUpdateErrorCode, AsksTheGlobalLocaleOfTheMoment) {
  EXPECT_EQ(CheckUpdateErrorCode("#ime-out: #imeou#"), 0);
  const std::locale previous = std::locale::global(std::locale(std::locale::classic(), new OddCharacters));
  const int code = CheckUpdateErrorCode("#ime-out: #imeou#");
  std::locale::global(previous);
  EXPECT_EQ(code, 16);
}

TEST(UpdateResultMessage, OfEveryCode) {
  EXPECT_EQ(GetUpdateResultMessage(0), "success");
  EXPECT_EQ(GetUpdateResultMessage(1), "Connect CIMOM failed.");
  EXPECT_EQ(GetUpdateResultMessage(2), "Internal function perform failed.");
  EXPECT_EQ(GetUpdateResultMessage(3), "CIMOM operation failed.");
  EXPECT_EQ(GetUpdateResultMessage(4), "Unkown exception.");
  EXPECT_EQ(GetUpdateResultMessage(5), "not found specific information");
  EXPECT_EQ(GetUpdateResultMessage(7), "Not found specific instance.");
  EXPECT_EQ(GetUpdateResultMessage(9), "Failed to reboot CMM.");
}

TEST(UpdateResultMessage, OfOtherCodesIsTheUnknownOne) {
  for (const unsigned int code : {6U, 8U, 10U, 207U, 4294967295U}) {
    EXPECT_EQ(GetUpdateResultMessage(code), "Unkown exception.") << code;
  }
}

}  // namespace
}  // namespace Orvane
