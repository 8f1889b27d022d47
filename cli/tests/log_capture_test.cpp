// The records that are kept of an operation, however long it takes.
#include "cli/log_capture.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvane::cli {
namespace {

TEST(LogCapture, KeepsHowALongOperationBeganAndHowItEnded) {
  constexpr int kMany = 30000;
  LogCapture log({/*level=*/0U, /*file=*/{}});
  for (int i = 0; i < kMany; ++i) Log(3, "test", 1).Stream() << i;

  const auto records = log.Records();

  ASSERT_LT(records.size(), static_cast<std::size_t>(kMany));
  EXPECT_EQ(records.front().text, "0");
  EXPECT_EQ(records[999].text, "999");
  EXPECT_EQ(records.back().text, std::to_string(kMany - 1));
  EXPECT_EQ(records[1000].text, std::to_string(kMany - static_cast<int>(records.size() - 1000)));
}

}  // namespace
}  // namespace Orvane::cli
