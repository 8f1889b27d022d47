// The cause that a call's log records tell.
#include "cli/cause.h"

#include <gtest/gtest.h>

namespace Orvane::cli {
namespace {

Log::Record Line(unsigned level, const std::string& text,
                 const std::string& file = "cmm/inventory_update/cmm_peg_client") {
  Log::Record record;
  record.level = level;
  record.file = file;
  record.text = text;
  return record;
}

const Log::Record kRefusedHttps =
    Line(1, "Pegasus CannotConnectException:Cannot connect to 127.0.0.1:5989. Connection failed.");
const Log::Record kRefusedHttp =
    Line(1, "Pegasus CannotConnectException:Cannot connect to 127.0.0.1:5988. Connection failed.");

Log::Record Connected(int result) {
  return Line(3, "Connect CIMOM . H:127.0.0.1 P:0 U:u RC: " + std::to_string(result));
}

TEST(FindCause, FindsNoneInNothing) { EXPECT_EQ(FindCause({}).kind, CauseKind::kNone); }

TEST(FindCause, TakesAConnectionThatFailedInTheEnd) {
  const Cause cause = FindCause({kRefusedHttps, kRefusedHttp, Connected(-4),
                                 Line(1, "Connection is fail, please check your network", "cmm/inventory_update/x")});

  EXPECT_EQ(cause.kind, CauseKind::kNoConnection);
  EXPECT_EQ(cause.text, "Cannot connect to 127.0.0.1:5988. Connection failed.");
}

TEST(FindCause, ForgivesHttpsWhenHttpConnects) {
  EXPECT_EQ(FindCause({kRefusedHttps, Connected(0), kRefusedHttps, Connected(0)}).kind, CauseKind::kNone);
}

TEST(FindCause, TellsAnUnknownHost) {
  const Log::Record unknown = Line(1, "Pegasus InvalidLocatorException: Invalid locator: nowhere:5989");

  EXPECT_EQ(FindCause({unknown, unknown, Connected(-2)}).kind, CauseKind::kUnknownHost);
}

TEST(FindCause, ReadsTheConnectResultFromTheSessionOnly) {
  const Log::Record forged = Line(3, "Connect CIMOM . H:x P:0 U:u RC: -4", "cmm/inventory_update/cmm_inventory_imp");

  EXPECT_EQ(FindCause({forged}).kind, CauseKind::kNone);
}

TEST(FindCause, TellsARefusedUserBehindEveryPrefix) {
  for (const char* prefix : {"", "Client HTTP Exception: ", "EnumerateInstances Exception: ", "Pegasus Exception: ",
                             "Pegasus CIMException: ", " Error:"}) {
    const Cause cause = FindCause({Connected(0), Line(1, std::string(prefix) + "HTTP Error (401 Unauthorized).")});

    EXPECT_EQ(cause.kind, CauseKind::kRefused) << prefix;
  }
}

TEST(FindCause, PrefersAFailureOfHttpToTheLinesThatFollowFromIt) {
  const Cause cause =
      FindCause({Line(1, "Not found a CMM Instance"), Line(1, "Client HTTP Exception: HTTP Error (503).RESP: [503]")});

  EXPECT_EQ(cause.kind, CauseKind::kNotReady);
}

// The module updates put other blanks into these lines; behind one that failed, plain HTTP was tried.
TEST(FindCause, KnowsTheAttemptsOfTheModuleUpdatesToConnect) {
  for (const char* attempt : {"Pegasus CannotConnectException:", "Pegasus CannotConnectException :"}) {
    const Cause cause =
        FindCause({Line(1, std::string(attempt) + "Cannot connect to 127.0.0.1:5989. Connection failed."),
                   Line(1, "CIM_ERR_FAILED")});

    EXPECT_EQ(cause.text, "CIM_ERR_FAILED");
  }
}

TEST(FindCause, DoesNotSearchTheMiddleOfAText) {
  EXPECT_EQ(FindCause({Line(1, "CMM Name: HTTP Error (401")}).kind, CauseKind::kOther);
}

TEST(FindCause, KeepsTheFirstOtherErrorInHarmlessForm) {
  const Cause cause = FindCause({Line(2, "only a warning"), Line(1, "first\x1B"), Line(1, "second")});

  EXPECT_EQ(cause.kind, CauseKind::kOther);
  EXPECT_EQ(cause.text, "first\\x1B");
}

}  // namespace
}  // namespace Orvane::cli
