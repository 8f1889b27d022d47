// A process without descriptors to spare: connecting ends in a documented exception, and once there are more the client
// connects.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "faults/answers.h"
#include "faults/row.h"
#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using namespace test;  // NOLINT(google-build-using-namespace): the words of the table
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;

/// Leaves the process `free` more descriptors while it lives.
class FewDescriptors {
 public:
  explicit FewDescriptors(int free) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit few = before_;
    constexpr rlim_t kEnough = 64;
    few.rlim_cur = static_cast<rlim_t>(Descriptors()) + kEnough;
    setrlimit(RLIMIT_NOFILE, &few);
    for (int next = ::dup(STDERR_FILENO); next >= 0; next = ::dup(STDERR_FILENO)) taken_.push_back(next);
    for (; free > 0 && !taken_.empty(); --free) Release();
  }
  ~FewDescriptors() {
    while (!taken_.empty()) Release();
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  void Release() {
    ::close(taken_.back());
    taken_.pop_back();
  }

  rlimit before_{};
  std::vector<int> taken_;
};

class DescriptorsLeft : public ::testing::TestWithParam<int> {};

TEST_P(DescriptorsLeft, EndInADocumentedExceptionAndTheClientConnectsOnceThereAreMore) {
  FaultRow fault;
  RawServerOptions options;
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  const auto connect = [&] { client.connect(kHost, server.Port(), kUser, kPassword); };
  Thrown thrown;
  {
    const FewDescriptors few(GetParam());
    thrown = fault.Watch(connect);
  }
  const std::vector<std::string> documented{"CannotCreateSocketException", "CannotConnectException",
                                            "InvalidLocatorException"};
  EXPECT_EQ(std::count(documented.begin(), documented.end(), thrown.name), 1) << thrown.name << thrown.message;
  connect();
  EXPECT_EQ(Enumerate(client), 0U);
}

// A connection takes four: its socket and three of the loop that waits for it.
INSTANTIATE_TEST_SUITE_P(Process, DescriptorsLeft, ::testing::Range(0, 4),
                         [](const auto& left) { return "DescriptorsLeft" + std::to_string(left.param); });

}  // namespace
}  // namespace Pegasus
