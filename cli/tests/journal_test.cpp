// The journal's file: lines of JSON, appended, private.
#include "cli/journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cli/failure.h"

namespace Orvane::cli {
namespace {

using ::testing::MatchesRegex;

class JournalTest : public ::testing::Test {
 protected:
  JournalTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-journal-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~JournalTest() override { std::filesystem::remove_all(folder_); }

  std::vector<Json> Lines() const {
    std::ifstream file(folder_ / "journal");
    std::vector<Json> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(Json::parse(line));
    return lines;
  }

  std::filesystem::path folder_;
};

TEST_F(JournalTest, HoldsALineForEachRecordWithTheTimeInFront) {
  Journal journal(folder_ / "journal");

  EXPECT_FALSE(journal.Append({{"event", "started"}}));
  EXPECT_FALSE(journal.Append({{"event", "finished"}, {"code", 0}}));

  const std::vector<Json> lines = Lines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].begin().key(), "time");
  EXPECT_THAT(lines[0]["time"].get<std::string>(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z"));
  EXPECT_EQ(lines[1]["code"], 0);
}

TEST_F(JournalTest, IsAppendedToAndNeverTruncated) {
  Journal(folder_ / "journal").Append({{"run", 1}});
  Journal(folder_ / "journal").Append({{"run", 2}});

  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(JournalTest, IsReadableByItsOwnerOnly) {
  const Journal journal(folder_ / "journal");

  struct stat status = {};
  ASSERT_EQ(stat(journal.Path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(JournalTest, KeepsALineOfTextThatIsNoUtf8) {
  Journal(folder_ / "journal").Append({{"target", "line\nend \xFF"}});

  ASSERT_EQ(Lines().size(), 1U);
  EXPECT_EQ(Lines()[0]["target"], "line\nend \xEF\xBF\xBD");
}

TEST_F(JournalTest, ThatCannotBeOpenedIsWrongUsage) {
  try {
    const Journal journal(folder_ / "missing" / "journal");
    FAIL() << "opened";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Status(), ExitStatus::kUsage);
    EXPECT_THAT(failure.what(), ::testing::HasSubstr("cannot be opened"));
  }
}

TEST_F(JournalTest, TellsWhyARecordIsNotOnTheDisk) {
  EXPECT_EQ(Journal("/dev/full").Append({{"event", "x"}}), std::errc::no_space_on_device);
}

// What a process that was killed or a full disk leaves behind.
TEST_F(JournalTest, LeavesATornLineALineOfItsOwn) {
  const std::string torn = R"({"time":"2026-11-21T17:30:03.804Z","event":"sta)";
  Journal(folder_ / "journal").Append({{"run", 1}});
  std::ofstream(folder_ / "journal", std::ios::app) << torn;

  Journal journal(folder_ / "journal");
  journal.Append({{"run", 2}});
  journal.Append({{"run", 3}});

  std::ifstream file(folder_ / "journal");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(Json::parse(lines[0])["run"], 1);
  EXPECT_EQ(lines[1], torn);
  EXPECT_EQ(Json::parse(lines[2])["run"], 2);
  EXPECT_EQ(Json::parse(lines[3])["run"], 3);
}

TEST_F(JournalTest, ThatMayOnlyBeWrittenIsAppendedTo) {
  { const Journal journal(folder_ / "journal"); }
  ASSERT_EQ(chmod((folder_ / "journal").c_str(), 0200), 0);

  EXPECT_FALSE(Journal(folder_ / "journal").Append({{"run", 1}}));
}

}  // namespace
}  // namespace Orvane::cli
