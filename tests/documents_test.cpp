// What the documents promise is what the programs do: the README's example and printed result, the table of exit
// statuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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

TEST(Readme, NamesTheTwoScripts) {
  for (const char* script : {"scripts/demo", "scripts/test"}) {
    EXPECT_THAT(Source("README.md"), HasSubstr(script));
    EXPECT_FALSE(Source(script).empty());
  }
}

}  // namespace
}  // namespace Orvane::tests
