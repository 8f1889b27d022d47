// What the documents promise is what the programs do: the README's example, printed results and sessions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/process.h"

namespace Orvane::tests {
namespace {

using ::testing::HasSubstr;

std::string Source(const std::string& path) { return ReadFile(std::string(ORVANE_SOURCE_DIR "/") + path); }

TEST(Readme, HoldsTheLibraryExampleThatIsCompiled) {
  const std::string example = Source("docs/examples/inventory.cpp");

  EXPECT_THAT(Source("README.md"), HasSubstr("```cpp\n" + example + "```\n"));
  EXPECT_LE(std::count(example.begin(), example.end(), '\n'), 30);
}

TEST(Readme, LibraryExampleReadsAChassis) {
  const SimulatorProgram simulator;

  const Result result = RunProgram(ORVANE_EXAMPLE, {{"127.0.0.1", simulator.HttpsPort(), SimulatorProgram::kUser},
                                                    {{"CMM_PASSWORD", SimulatorProgram::kPassword}},
                                                    ""});

  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("chassis CHASSIS001"));
  EXPECT_THAT(result.output, HasSubstr("switch in bay "));
}

TEST(Readme, PrintsWhatTheInventoryPrints) {
  const Result result = RunOrvane({{"--simulate", "inventory"}, {}, ""});

  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(Source("README.md"), HasSubstr("```text\n" + result.output + "```\n"));
}

// A session shown in the README: commands behind "$ ", each with what it prints.
struct Shown {
  std::string command;
  std::string output;
};

std::vector<Shown> SessionsIn(const std::string& document) {
  std::vector<Shown> shown;
  std::istringstream lines(document);
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = line == "```console";
    } else if (inside && line.rfind("$ ", 0) == 0) {
      shown.push_back({line.substr(2), ""});
    } else if (inside) {
      shown.back().output += line + "\n";
    }
  }
  return shown;
}

// What differs from run to run and from machine to machine.
std::string Comparable(std::string text, const std::string& folder) {
  for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
    text.replace(at, folder.size(), "FOLDER");
  text = std::regex_replace(text, std::regex("\"time\":\"[^\"]*Z\""), "TIME");
  text = std::regex_replace(text, std::regex("\"port\":[0-9]+"), "PORT");
  return std::regex_replace(text, std::regex("127\\.0\\.0\\.1:[0-9]+"), "HOST:PORT");
}

TEST(Readme, ShowsSessionsAsTheyAre) {
  constexpr const char* kShownFolder = "/home/you/orvane";
  const std::vector<Shown> sessions = SessionsIn(Source("README.md"));
  const Folder folder;
  std::filesystem::create_directory_symlink(ORVANE_SOURCE_DIR "/docs", folder.Path("docs"));
  const std::string command = ORVANE_COMMAND;
  const std::string setUp = "exec 2>&1; cd '" + folder.Path(".") + "'; cd \"$(pwd -P)\"; PATH='" +
                            command.substr(0, command.rfind('/')) + "':$PATH; ";

  EXPECT_EQ(sessions.size(), 5U);
  for (const Shown& shown : sessions) {
    const Result result = RunProgram("/bin/sh", {{"-c", setUp + shown.command}, {}, ""});

    EXPECT_EQ(result.status, 0) << shown.command;
    const std::string path = std::filesystem::canonical(folder.Path("."));
    EXPECT_EQ(Comparable(result.output, path), Comparable(shown.output, kShownFolder)) << shown.command;
  }
}

TEST(Readme, NamesTheTwoScripts) {
  for (const char* script : {"scripts/demo", "scripts/test"}) {
    EXPECT_THAT(Source("README.md"), HasSubstr(script));
    EXPECT_FALSE(Source(script).empty());
  }
}

}  // namespace
}  // namespace Orvane::tests
