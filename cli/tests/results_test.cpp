// The tables of codes: every operation's rows, what decides between them, and the document that shows them.
#include "cli/operations/results.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/operations/lost_contact.h"
#include "cli/operations/operation.h"

namespace Orvane::cli {
namespace {

using ::testing::ElementsAreArray;
using ::testing::UnorderedElementsAreArray;

Log::Record Line(const std::string& text) {
  Log::Record record;
  record.level = 3;
  record.text = text;
  return record;
}

// Every table with the heading that it has in the document.
std::map<std::string, const ResultTable*> AllTables() {
  std::map<std::string, const ResultTable*> tables;
  for (const Operation& operation : Operations()) {
    tables[operation.name] = &operation.results();
    if (operation.resultsWithoutWait != nullptr) {
      tables[std::string(operation.name) + " --no-wait"] = &operation.resultsWithoutWait();
    }
  }
  return tables;
}

std::set<int> CodesOf(const std::string& name) {
  std::set<int> codes;
  for (const ResultRow& row : *AllTables().at(name)) {
    if (row.code != kEveryOtherCode) codes.insert(row.code);
  }
  return codes;
}

struct Codes {
  const char* operation;
  std::set<int> codes;
};

void PrintTo(const Codes& codes, std::ostream* out) { *out << codes.operation; }

class CodesOfAnOperation : public ::testing::TestWithParam<Codes> {};

// Every code that the library may give, and no other.
TEST_P(CodesOfAnOperation, AreAllThere) { EXPECT_EQ(CodesOf(GetParam().operation), GetParam().codes); }

INSTANTIATE_TEST_SUITE_P(
    All, CodesOfAnOperation,
    ::testing::Values(Codes{"cmm update", {0, 1, 2, 6, 7, 8, 9}}, Codes{"cmm reboot", {-1, 0, 1, 2, 7, 9}},
                      Codes{"cmm reboot --no-wait", {-1, 0, 1, 2, 7, 9}},
                      Codes{"switch update", {0,  1,  2,  5,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                              16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 35}},
                      Codes{"switch activate", {0, 1, 2, 3}},
                      Codes{"switch reboot", {-6, -5, -4, -3, -2, -1, 0, 4, 24}},
                      Codes{"switch reseat", {-6, -5, -4, -3, -2, -1, 0, 4, 24}},
                      Codes{"switch verify", {0, 6, 16, 19, 20, 22, 23, 24, 27}},
                      Codes{"switch ehcm", {0, 1, 29, 30, 32}}, Codes{"switch deferred", {1, 6, 29, 33, 34}},
                      Codes{"passthru update", {0, 1, 2, 5, 6, 15, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 212}},
                      Codes{"passthru reboot", {0, 1, 4, 24}}, Codes{"passthru reseat", {0, 1, 4, 24}},
                      Codes{"passthru verify", {0, 16, 19, 20, 22, 23, 24, 27}},
                      Codes{"blade reseat", {-6, -5, -4, -3, -2, -1, 0, 1, 3, 5, 6, 7, 8, 9, 10, 11, 12}}),
    [](const auto& test) {
      std::string name = test.param.operation;
      std::replace_if(
          name.begin(), name.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
      return name;
    });

TEST(ResultTables, EndWithTheRowForEveryOtherCode) {
  for (const auto& [name, table] : AllTables()) {
    ASSERT_FALSE(table->empty()) << name;
    EXPECT_EQ(table->back().code, kEveryOtherCode) << name;
    EXPECT_EQ(table->back().line, nullptr) << name;
  }
}

TEST(ResultTables, HaveNoRowThatIsNeverReached) {
  for (const auto& [name, table] : AllTables()) {
    std::set<int> closed;
    std::set<std::pair<int, std::string>> seen;
    for (const ResultRow& row : *table) {
      EXPECT_EQ(closed.count(row.code), 0U) << name << " " << row.code << " " << row.text;
      if (row.line == nullptr) {
        closed.insert(row.code);
      } else {
        EXPECT_TRUE(seen.emplace(row.code, row.line).second) << name << " " << row.line;
      }
    }
  }
}

TEST(ResultTables, SayWhatToDoAboutEveryFailure) {
  for (const auto& [name, table] : AllTables()) {
    for (const ResultRow& row : *table) {
      EXPECT_STRNE(row.text, "") << name << " " << row.code;
      if (row.status != ExitStatus::kDone) {
        EXPECT_STRNE(row.advice, "") << name << " " << row.code;
      }
    }
  }
}

struct Decided {
  const char* operation;
  int code;
  std::vector<std::string> lines;
  ExitStatus status;
};

void PrintTo(const Decided& decided, std::ostream* out) {
  *out << decided.operation << " " << decided.code << " " << (decided.lines.empty() ? "" : decided.lines.back());
}

class FindResultOf : public ::testing::TestWithParam<Decided> {};

TEST_P(FindResultOf, TakesTheMostTellingRow) {
  const Decided& decided = GetParam();
  std::vector<Log::Record> records;
  for (const std::string& line : decided.lines) records.push_back(Line(line));

  EXPECT_EQ(FindResult(*AllTables().at(decided.operation), decided.code, records).row->status, decided.status);
}

const char* const kJob = "Parameter Name: Job, Parameter Value: C.InstanceID=\"JOB_1\"";
const char* const kSkipped = "deferedupdatesupported==null or 0 and have fallback section, in this case, ...";

const char* const kStateChanged = "Invoke method 'RequestStateChange': Completed with No Error";
const char* const kInvokeError = "Unknown error happened when invokeMethod Connection closed by CIM Server.";

INSTANTIATE_TEST_SUITE_P(
    Table, FindResultOf,
    ::testing::Values(
        Decided{"cmm update", 0, {kJob, "CMM is doing reboot operation!"}, ExitStatus::kDone},
        Decided{"cmm update", 0, {kJob}, ExitStatus::kFailed},
        Decided{"cmm update", 0, {"No need to reboot CMM now, exit CMM installing procedure."}, ExitStatus::kDone},
        Decided{"cmm update", 1, {}, ExitStatus::kNoConnection}, Decided{"cmm update", 1, {kJob}, ExitStatus::kGaveUp},
        Decided{"cmm update", 1, {kJob, "Cannot connect to CMM after rebooting CMM."}, ExitStatus::kGaveUp},
        Decided{"cmm update",
                1,
                {kJob, "Cannot connect to CMM before reboot CMM, exit reboot procedure."},
                ExitStatus::kNoConnection},
        Decided{"cmm update", 2, {}, ExitStatus::kFailed},
        Decided{"cmm update", 2, {kJob, "Installing job is in error state 10 with status is x"}, ExitStatus::kFailed},
        Decided{"cmm update", 2, {kJob, "Job is still not in running after 11 times query"}, ExitStatus::kGaveUp},
        Decided{
            "cmm update", 2, {kJob, "the return code of installPackage_CMM is 0", kInvokeError}, ExitStatus::kFailed},
        Decided{"cmm update", 7, {}, ExitStatus::kNotFound}, Decided{"cmm update", 8, {kJob}, ExitStatus::kGaveUp},
        Decided{"cmm update", 99, {}, ExitStatus::kFailed},
        Decided{"cmm reboot", 0, {"CMM is doing reboot operation!"}, ExitStatus::kDone},
        Decided{"cmm reboot --no-wait", 0, {"CMM is doing reboot operation!"}, ExitStatus::kDone},
        Decided{"cmm reboot --no-wait", 0, {}, ExitStatus::kFailed},
        Decided{"cmm reboot --no-wait", 1, {"Connect CIMMOM Failed. RC: -4"}, ExitStatus::kNoConnection},
        Decided{"cmm reboot", 0, {}, ExitStatus::kFailed}, Decided{"cmm reboot", 1, {}, ExitStatus::kGaveUp},
        Decided{"cmm reboot", 1, {"Connect CIMMOM Failed. RC: -4"}, ExitStatus::kNoConnection},
        Decided{"cmm reboot", 9, {}, ExitStatus::kNotFound},
        Decided{"switch update", 0, {kJob, "Error happened when reboot the switch."}, ExitStatus::kFailed},
        Decided{"switch update", 0, {kJob, kSkipped}, ExitStatus::kDone},
        Decided{"switch update",
                0,
                {kJob, "cmm connection error while getting deferedupdatesupported property", kSkipped},
                ExitStatus::kFailed},
        Decided{"switch update", 0, {kJob, "Failed to connect to the CMM", kSkipped}, ExitStatus::kFailed},
        Decided{"switch update",
                0,
                {kJob, "Failed to collect instancesIOMElement instances.", kStateChanged},
                ExitStatus::kFailed},
        Decided{"switch update", 2, {kInvokeError}, ExitStatus::kFailed},
        Decided{"switch update", 2, {kJob, kInvokeError}, ExitStatus::kGaveUp},
        Decided{"switch update",
                2,
                {kJob, "Update completed successfully and the message is x", kInvokeError},
                ExitStatus::kFailed},
        Decided{"switch update", 2, {kJob, "StartUpdate ended by an exception: x"}, ExitStatus::kFailed},
        Decided{"passthru update", 212, {kJob, kInvokeError}, ExitStatus::kGaveUp},
        Decided{"passthru update", 212, {kInvokeError}, ExitStatus::kFailed},
        Decided{"switch update", 18, {}, ExitStatus::kNotFound}, Decided{"switch update", 5, {}, ExitStatus::kRefused},
        Decided{"switch update", 35, {}, ExitStatus::kFailed},
        Decided{"switch reboot", 0, {"switch deferedupdatesupported is null or 0", kSkipped}, ExitStatus::kNotFound},
        Decided{"switch reboot",
                0,
                {"cmm connection error while getting deferedupdatesupported property", kSkipped},
                ExitStatus::kNoConnection},
        Decided{"switch reboot", 0, {"Invoke method 'RequestStateChange': Completed with No Error"}, ExitStatus::kDone},
        Decided{"switch reboot", 4, {"Invoke method 'RequestStateChange': Busy"}, ExitStatus::kNotFound},
        Decided{"switch reseat", -4, {}, ExitStatus::kNoConnection},
        Decided{"switch verify", 16, {}, ExitStatus::kGaveUp}, Decided{"switch deferred", 33, {}, ExitStatus::kDone},
        Decided{"switch deferred", 34, {}, ExitStatus::kDone},
        Decided{
            "passthru reboot", 0, {"Invoke method 'RequestStateChange': Completed with No Error"}, ExitStatus::kDone},
        Decided{"passthru reboot",
                0,
                {"unknown error happened when invokeMethod :connection timed out"},
                ExitStatus::kDone},
        Decided{"passthru reboot", 0, {"Invoke method 'RequestStateChange': Not Supported"}, ExitStatus::kFailed},
        Decided{"passthru reboot", 0, {"Invoke method 'RequestStateChange':Busy"}, ExitStatus::kNotFound},
        Decided{"passthru reboot", 0, {}, ExitStatus::kFailed},
        Decided{"passthru reseat", 4, {"The switch is not ready to change state."}, ExitStatus::kNotFound},
        Decided{"blade reseat", 0, {"The blade is not ready to change state."}, ExitStatus::kNotFound},
        Decided{"blade reseat", 0, {}, ExitStatus::kDone}, Decided{"blade reseat", -4, {}, ExitStatus::kNoConnection},
        Decided{"blade reseat", -1, {"The blade is not ready to change state."}, ExitStatus::kNotFound}));

// The rows of the document's tables, by the heading that they stand under.
std::map<std::string, std::vector<std::string>> DocumentedRows() {
  std::ifstream file(ORVANE_SOURCE_DIR "/docs/return-codes.md");
  std::map<std::string, std::vector<std::string>> rows;
  std::string heading;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("## ", 0) == 0) heading = line.substr(3);
    const bool isRow = line.rfind("| ", 0) == 0 && line.rfind("| code |", 0) != 0 &&
                       line.rfind("| pattern |", 0) != 0 && line.rfind("| cause |", 0) != 0;
    if (isRow) rows[heading].push_back(line);
  }
  return rows;
}

std::string RowText(const ResultRow& row) {
  std::ostringstream text;
  text << "| ";
  if (row.code == kEveryOtherCode) {
    text << "other";
  } else {
    text << row.code;
  }
  text << " | " << (row.line == nullptr ? "" : "`" + std::string(row.line) + "`") << " | " << row.text << " | "
       << row.cause << " | " << row.advice << " | " << ToInt(row.status) << " |";
  return text.str();
}

TEST(ReturnCodesDocument, ShowsTheTablesOfEveryOperation) {
  auto documented = DocumentedRows();
  for (const auto& [name, table] : AllTables()) {
    std::vector<std::string> rows;
    for (const ResultRow& row : *table) rows.push_back(RowText(row));
    EXPECT_THAT(documented[name], ElementsAreArray(rows)) << name;
    documented.erase(name);
  }
  std::vector<std::string> others;
  others.reserve(documented.size());
  for (const auto& [heading, rows] : documented) others.push_back(heading);
  EXPECT_THAT(others,
              UnorderedElementsAreArray({"Connections that broke off", "Texts of GetUpdateResultMessage",
                                         "Texts of GetUpdateErrorMessage", "Failed jobs: CheckUpdateErrorCode"}));
}

TEST(ReturnCodesDocument, ShowsWhatConnectionsThatBrokeOffMean) {
  std::vector<std::string> rows;
  for (const LostContact& row : LostContacts()) {
    rows.push_back(std::string("| ") + row.cause + " | " + row.advice + " | " + std::to_string(ToInt(row.status)) +
                   " |");
  }

  EXPECT_THAT(DocumentedRows().at("Connections that broke off"), ElementsAreArray(rows));
}

TEST(LostContacts, AreAllCausesThatConcernTheTalkButARefusedUser) {
  for (const CauseKind kind :
       {CauseKind::kNone, CauseKind::kUnknownHost, CauseKind::kNoConnection, CauseKind::kRefused, CauseKind::kNotReady,
        CauseKind::kTimeout, CauseKind::kClosed, CauseKind::kNotCim, CauseKind::kOther}) {
    EXPECT_EQ(FindLostContact(kind) != nullptr, IsHard(kind) && kind != CauseKind::kRefused);
  }
}

TEST(ReturnCodesDocument, ShowsTheTextsOfTheLibrary) {
  const auto documented = DocumentedRows();
  std::vector<std::string> results;
  for (unsigned code = 0; code <= 9; ++code) {
    results.push_back("| " + std::to_string(code) + " | " + GetUpdateResultMessage(code) + " |");
  }
  EXPECT_THAT(documented.at("Texts of GetUpdateResultMessage"), ElementsAreArray(results));

  std::vector<std::string> errors;
  for (int code = 200; code < 300; ++code) {
    if (GetUpdateErrorMessage(code) != GetUpdateErrorMessage(0)) {
      errors.push_back("| " + std::to_string(code) + " | " + GetUpdateErrorMessage(code) + " |");
    }
  }
  EXPECT_THAT(documented.at("Texts of GetUpdateErrorMessage"), ElementsAreArray(errors));
}

TEST(ReturnCodesDocument, ShowsHowFailedJobsAreClassified) {
  const auto documented = DocumentedRows();
  const std::vector<std::string>& rows = documented.at("Failed jobs: CheckUpdateErrorCode");
  EXPECT_EQ(rows.size(), 11U);
  const unsigned levelBefore = Log::GetMinLogLevel();
  Log::SetMinLogLevel(0);  // every pattern that is found is logged
  for (const std::string& row : rows) {
    const std::size_t first = row.find('`');
    const std::size_t last = row.rfind('`');
    ASSERT_NE(first, last) << row;
    const int code = CheckUpdateErrorCode(row.substr(first + 1, last - first - 1));
    // A pattern that holds another, later one is told by that one's code; the row says so.
    const std::string shown = row.substr(last + 1);
    EXPECT_NE(shown.find(" " + std::to_string(code) + " "), std::string::npos) << row;
    EXPECT_EQ(CodesOf("switch update").count(code), 1U) << row;
  }
  Log::SetMinLogLevel(levelBefore);
}

}  // namespace
}  // namespace Orvane::cli
