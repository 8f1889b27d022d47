// The system's clock set by a day while a client works: time-outs last as long as they should, and what the calendar
// does decide, certificates and TLS sessions, follows the new time.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <openssl/x509_vfy.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "faults/answers.h"
#include "faults/row.h"
#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

constexpr long kDay = 24L * 60 * 60;

/// By how many seconds this program's calendar clock is wrong.
std::atomic<long>& Offset() {
  static std::atomic<long> offset{0};
  return offset;
}

/// The system's own clock.
int Ask(clockid_t clock, timespec* time) { return static_cast<int>(::syscall(SYS_clock_gettime, clock, time)); }

}  // namespace
}  // namespace Pegasus

// These stand before the system's functions in this program.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const int failed = Pegasus::Ask(clock, time);
  if (failed == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) time->tv_sec += Pegasus::Offset();
  return failed;
}

extern "C" time_t time(time_t* result) noexcept {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (result != nullptr) *result = now.tv_sec;
  return now.tv_sec;
}

extern "C" int gettimeofday(timeval* result, void* /*zone*/) noexcept {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  constexpr long kNanosecondsPerMicrosecond = 1000;
  *result = {now.tv_sec, now.tv_nsec / kNanosecondsPerMicrosecond};
  return 0;
}

namespace Pegasus {
namespace {

using namespace test;  // NOLINT(google-build-using-namespace): the words of the table
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;

/// Sets the calendar clock while it lives.
class ClockSetBy {
 public:
  explicit ClockSetBy(long seconds) { Offset() = seconds; }
  ~ClockSetBy() { Offset() = 0; }
  ClockSetBy(const ClockSetBy&) = delete;
  ClockSetBy& operator=(const ClockSetBy&) = delete;
};

struct Jump {
  const char* name;
  long seconds;
};

void PrintTo(const Jump& jump, std::ostream* out) { *out << jump.name; }

class ClockJump : public ::testing::TestWithParam<Jump> {
 protected:
  ClockJump() { LastError() = X509_V_OK; }
  ~ClockJump() override { Offset() = 0; }

  static Uint32& LastError() {
    static Uint32 error = X509_V_OK;
    return error;
  }
  static Boolean Accept(SSLCertificateInfo& info) {
    LastError() = info.getErrorCode();
    return true;
  }

  /// Does `action`, and sets the clock once the server has got its request.
  template <typename Action>
  static void JumpDuring(const RawServer& server, Action action) {
    const std::size_t before = server.Requests().size();
    std::thread jumper([&] {
      while (server.Requests().size() == before) std::this_thread::yield();
      Offset() = GetParam().seconds;
    });
    action();
    jumper.join();
  }

  FaultRow fault_;
};

TEST_P(ClockJump, IsSeenByTheWholeProgram) {
  using std::chrono::seconds;
  using std::chrono::steady_clock;
  using std::chrono::system_clock;
  const auto calendar = system_clock::now();
  const time_t old = ::time(nullptr);
  const auto steady = steady_clock::now();
  {
    const ClockSetBy set(GetParam().seconds);
    constexpr seconds kPatience{60};
    EXPECT_LT(std::chrono::abs(system_clock::now() - calendar - seconds(GetParam().seconds)), kPatience);
    EXPECT_LT(std::abs(::time(nullptr) - old - GetParam().seconds), kPatience.count());
    EXPECT_LT(steady_clock::now() - steady, kPatience);
  }
  fault_.Saw("the calendar jumps, the steady clock does not");
}

TEST_P(ClockJump, DuringAnExchangeCutsNoTimeoutShort) {
  RawServerOptions options;
  constexpr std::chrono::milliseconds kEnoughToJump{200};
  options.script = {{RawAction::Sleep(kEnoughToJump), RawAction::Send(Answer(kEmptyResult))}};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  JumpDuring(server, [&] { fault_.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {}); });
}

TEST_P(ClockJump, DuringAnExchangeMakesNoTimeoutLonger) {
  RawServerOptions options;
  options.script = {{RawAction::Hang()}};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  client.setTimeout(kShort);
  JumpDuring(server, [&] {
    fault_.Expect([&] { Enumerate(client); }, {"ConnectionTimeoutException", "connection timed out"});
  });
}

TEST_P(ClockJump, MakesTlsSessionsOldAndLeavesClientsToTheirWork) {
  RawServerOptions options;
  options.certificate = Orvane::testing::MakeSelfSignedCertificate();
  options.script.assign(3, Sends(Answer(kEmptyResult)));
  const RawServer server(options);
  const SSLContext context(String(), &Accept);
  CIMClient client;
  client.connect(kHost, server.Port(), context, kUser, kPassword);
  EXPECT_EQ(Enumerate(client), 0U);
  const ClockSetBy set(GetParam().seconds);
  // The open connection goes on, and a new one is made with a session or without.
  EXPECT_EQ(Enumerate(client), 0U);
  client.disconnect();
  client.connect(kHost, server.Port(), context, kUser, kPassword);
  fault_.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {});
  EXPECT_EQ(server.Connections(), 2U);
  EXPECT_EQ(server.FullHandshakes(), 2U) << "a session of another day was resumed";
}

TEST_P(ClockJump, DecidesWhetherACertificateIsValid) {
  RawServerOptions options;
  Orvane::testing::CertificateOptions today;
  today.notBeforeDays = 0;
  today.notAfterDays = 1;
  options.certificate = Orvane::testing::MakeSelfSignedCertificate(today);
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  // Some hours more, so that the day is over on either side.
  const ClockSetBy set(GetParam().seconds + GetParam().seconds / 2);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  fault_.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {});
  const Uint32 expected = GetParam().seconds > 0 ? X509_V_ERR_CERT_HAS_EXPIRED : X509_V_ERR_CERT_NOT_YET_VALID;
  EXPECT_EQ(LastError(), expected) << "the callback has the last word, and was told";
}

INSTANTIATE_TEST_SUITE_P(Clock, ClockJump, ::testing::Values(Jump{"ADayForward", kDay}, Jump{"ADayBack", -kDay}),
                         [](const auto& jump) { return std::string(jump.param.name); });

}  // namespace
}  // namespace Pegasus
