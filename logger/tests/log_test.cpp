// The log seen from one program, and from several that share a file.
#include <gmock/gmock.h>
#include <orvane/log.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "testing/scoped_log.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-log-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

std::vector<std::string> Lines(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Runs a shell line; returns its exit status.
int RunShell(const std::string& line) {
  const int status = std::system(line.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

const std::string kWriter = ORVANE_LOGGER_WRITER;

class LogLevel : public ::testing::TestWithParam<unsigned> {};

TEST_P(LogLevel, LinesUpToTheConfiguredLevelAreWanted) {
  const testing::ScopedLog log(GetParam());

  for (unsigned level = 1; level <= 4; ++level) {
    if (Log::GetMinLogLevel() >= level) Log(level, "f", 1).Stream() << "line";
  }

  EXPECT_THAT(log.Records(), SizeIs(GetParam()));
  for (const Log::Record& record : log.Records()) EXPECT_LE(record.level, GetParam());
}

INSTANTIATE_TEST_SUITE_P(ZeroToFour, LogLevel, ::testing::Range(0U, 5U));

TEST(Log, CarriesLevelPlaceAndText) {
  const testing::ScopedLog log;

  Log(2, "cmm/inventory_update/cmm_util", 17).Stream() << "bay " << 3 << " of " << 14U;

  ASSERT_THAT(log.Records(), SizeIs(1));
  const Log::Record record = log.Records().front();
  EXPECT_EQ(record.level, 2U);
  EXPECT_EQ(record.file, "cmm/inventory_update/cmm_util");
  EXPECT_EQ(record.line, 17);
  EXPECT_EQ(record.text, "bay 3 of 14");
}

TEST(Log, DropsOneLineEndAtTheEnd) {
  const testing::ScopedLog log;

  Log(1, "f", 1).Stream() << "a\n";
  Log(1, "f", 2).Stream() << "b\r\n";
  Log(1, "f", 3).Stream() << "c\n\n";

  EXPECT_THAT(log.Texts(1), ElementsAre("a", "b", "c\n"));
}

TEST(Log, LevelAboveFourCountsAsFour) {
  const testing::ScopedLog log;

  Log::SetMinLogLevel(9);

  EXPECT_EQ(Log::GetMinLogLevel(), 4U);
}

TEST(Log, ASinkThatThrowsDoesNotEndTheProgram) {
  const testing::ScopedLog restores;
  int calls = 0;
  Log::SetSink([&](const Log::Record&) {
    ++calls;
    throw std::runtime_error("disk full");
  });

  Log(1, "f", 1).Stream() << "x";

  EXPECT_EQ(calls, 1);
}

TEST(Log, NorDoesOneThatThrowsWhatIsNoException) {
  const testing::ScopedLog restores;
  int calls = 0;
  Log::SetSink([&](const Log::Record&) {
    ++calls;
    throw 28;
  });

  Log(1, "f", 1).Stream() << "x";
  Log(1, "f", 2).Stream() << "the next line still comes";

  EXPECT_EQ(calls, 2);
}

TEST(Log, SinkGetsEveryRecordOfEightThreads) {
  const testing::ScopedLog log;

  constexpr int kThreads = 8;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread] {
      for (int line = 0; line < 100; ++line) Log(1, "f", line).Stream() << thread << ':' << line;
    });
  }
  for (std::thread& thread : threads) thread.join();

  std::set<std::string> texts;
  for (const std::string& text : log.Texts(1)) texts.insert(text);
  EXPECT_THAT(texts, SizeIs(800));
}

TEST(LogFile, AppendsFormattedLines) {
  const TemporaryFolder folder;
  std::ofstream(folder / "log") << "already here\n";
  Log::SetFile((folder / "log").string());

  Log(1, "a/b", 5).Stream() << "one\ntwo";
  Log::SetFile("");

  EXPECT_THAT(Lines(folder / "log"),
              ElementsAre("already here",
                          MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\\.[0-9]{3}Z 1 a/b:5 one\\\\ntwo")));
}

TEST(LogFile, LinesOfEightThreadsInTwoProcessesStayWhole) {
  const TemporaryFolder folder;
  const std::string file = (folder / "log").string();
  const std::string environment = "ORVANE_LOG_LEVEL=4 ORVANE_LOG_FILE='" + file + "' ";

  // 9000 characters: longer than a pipe or page would take in one piece.
  ASSERT_EQ(RunShell(environment + "'" + kWriter + "' p1 8 20 9000 >/dev/null & " + environment + "'" + kWriter +
                     "' p2 8 20 9000 >/dev/null; status=$?; wait; exit $status"),
            0);

  std::set<std::string> seen;
  const std::string tail = " " + std::string(9000, 'x') + " end";
  for (const std::string& line : Lines(file)) {
    ASSERT_GT(line.size(), tail.size());
    ASSERT_EQ(line.substr(line.size() - tail.size()), tail);
    const std::string head = line.substr(0, line.size() - tail.size());
    ASSERT_THAT(head, MatchesRegex("[0-9T:.Z-]{24} [1-4] writer:[0-9]+ p[12]\\.[0-7]\\.[0-9]+\\.[1-4]"));
    seen.insert(head.substr(head.rfind(' ')));
  }
  EXPECT_THAT(seen, SizeIs(2 * 8 * 20 * 4));
}

struct EnvironmentCase {
  std::string name;
  std::string level;  // as in the shell; empty: unset
  std::size_t linesOfOneRound;
  std::size_t complaints;
};
class LogEnvironment : public ::testing::TestWithParam<EnvironmentCase> {};

TEST_P(LogEnvironment, LevelComesFromTheEnvironment) {
  const TemporaryFolder folder;
  const std::string set =
      GetParam().level.empty() ? "unset ORVANE_LOG_LEVEL; " : "export ORVANE_LOG_LEVEL='" + GetParam().level + "'; ";

  ASSERT_EQ(RunShell(set + "unset ORVANE_LOG_FILE; '" + kWriter + "' p 1 1 3 >'" + (folder / "out").string() + "' 2>'" +
                     (folder / "err").string() + "'"),
            0);

  std::size_t complaints = 0;
  std::size_t records = 0;
  for (const std::string& line : Lines(folder / "err")) {
    if (line.find("orvane: ORVANE_LOG_LEVEL is '" + GetParam().level + "', which is not 0 to 4; using 1") == 0) {
      ++complaints;
    } else {
      EXPECT_THAT(line, HasSubstr(" writer:1 p.0.0."));
      ++records;
    }
  }
  EXPECT_EQ(complaints, GetParam().complaints);
  EXPECT_EQ(records, GetParam().linesOfOneRound);
  EXPECT_THAT(Lines(folder / "out"), ElementsAre("done"));
}

INSTANTIATE_TEST_SUITE_P(All, LogEnvironment,
                         ::testing::Values(EnvironmentCase{"unset", "", 1, 0}, EnvironmentCase{"zero", "0", 0, 0},
                                           EnvironmentCase{"one", "1", 1, 0}, EnvironmentCase{"two", "2", 2, 0},
                                           EnvironmentCase{"three", "3", 3, 0}, EnvironmentCase{"four", "4", 4, 0},
                                           EnvironmentCase{"five", "5", 1, 1}, EnvironmentCase{"word", "debug", 1, 1},
                                           EnvironmentCase{"padded", " 3", 1, 1},
                                           EnvironmentCase{"negative", "-1", 1, 1}),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(LogFile, OneThatCannotBeOpenedIsToldOnceAndTheProgramGoesOn) {
  const TemporaryFolder folder;
  const std::string missing = (folder / "no-such-folder/log").string();

  ASSERT_EQ(RunShell("ORVANE_LOG_LEVEL=2 ORVANE_LOG_FILE='" + missing + "' '" + kWriter + "' p 1 2 3 >'" +
                     (folder / "out").string() + "' 2>'" + (folder / "err").string() + "'"),
            0);

  EXPECT_THAT(Lines(folder / "out"), ElementsAre("done"));
  EXPECT_THAT(Lines(folder / "err"), ElementsAre("orvane: cannot open log file '" + missing +
                                                     "': No such file or directory; logging to standard error",
                                                 HasSubstr(" 1 writer:1 "), HasSubstr(" 2 writer:1 "),
                                                 HasSubstr(" 1 writer:2 "), HasSubstr(" 2 writer:2 ")));
}

}  // namespace
}  // namespace Orvane
