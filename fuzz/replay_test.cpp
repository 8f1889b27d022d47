// The replay of a corpus: every file reaches the target, and a corpus that is empty or cannot be read is a failure.
#include "replay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string>& Replayed() {
  static std::vector<std::string> inputs;
  return inputs;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Replayed().emplace_back(reinterpret_cast<const char*>(data), size);
  return 0;
}

namespace Orvane::fuzz {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class ReplayTest : public testing::Test {
 protected:
  ReplayTest() {
    std::string name = (fs::temp_directory_path() / "orvane-replay-XXXXXX").string();
    folder_ = ::mkdtemp(name.data());
    Replayed().clear();
  }
  ~ReplayTest() override { fs::remove_all(folder_); }

  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }

  int Run() { return Replay(folder_.string(), out_, errors_); }

  fs::path folder_;
  std::ostringstream out_;
  std::ostringstream errors_;
};

TEST_F(ReplayTest, GivesEveryFileToTheTarget) {
  Write("b", std::string("\0\xFF", 2));
  Write("a", "");
  Write("c", "text\n");

  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(Replayed(), ElementsAre("", std::string("\0\xFF", 2), "text\n"));
  EXPECT_EQ(out_.str(), "3 inputs replayed\n");
  EXPECT_EQ(errors_.str(), "");
}

TEST_F(ReplayTest, AnEmptyFolderFails) {
  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(errors_.str(), "no file in " + folder_.string() + "\n");
  EXPECT_EQ(out_.str(), "");
}

TEST_F(ReplayTest, AMissingFolderFails) {
  EXPECT_EQ(Replay((folder_ / "missing").string(), out_, errors_), 1);
  EXPECT_EQ(errors_.str(), "cannot list " + (folder_ / "missing").string() + ": No such file or directory\n");
}

TEST_F(ReplayTest, AFileThatIsNotThereFails) {
  Write("a", "one");
  fs::create_symlink(folder_ / "nowhere", folder_ / "b");

  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(errors_.str(), "cannot read " + (folder_ / "b").string() + "\n");
  EXPECT_THAT(out_.str(), IsEmpty());
}

TEST_F(ReplayTest, WhatIsNoFileFailsWithoutWaiting) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), S_IRUSR | S_IWUSR), 0);

  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(errors_.str(), "cannot read " + (folder_ / "pipe").string() + "\n");
}

TEST_F(ReplayTest, AFileWithoutPermissionFails) {
  Write("a", "one");
  fs::permissions(folder_ / "a", fs::perms::none);
  // Root reads it all the same.
  const bool isReadable = std::ifstream(folder_ / "a").is_open();

  EXPECT_EQ(Run(), isReadable ? 0 : 1);
  EXPECT_EQ(errors_.str(), isReadable ? "" : "cannot read " + (folder_ / "a").string() + "\n");
}

}  // namespace
}  // namespace Orvane::fuzz
