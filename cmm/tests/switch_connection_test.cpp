// The facade of the switch update and the connection that its operations share, seen through the shortest of them.
#include <sys/resource.h>
#include <unistd.h>

#include <optional>

#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kEnter[] = "3 Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported().";
constexpr char kFailed[] = "1 Failed to connect to the CMM.";

class SwitchConnection : public SwitchTest {};

/// The two lines that each of the three attempts of one check leaves.
std::vector<std::string> Attempt(const std::string& host, std::uint16_t port) {
  const VirtualClock clock;
  const ScopedLog log;
  SwitchIOModuleUpdate update(host, "USERID", "s3cret", port, "", "", kBay);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 1);
  std::vector<std::string> lines;
  for (const Log::Record& record : log.Records()) lines.push_back(std::to_string(record.level) + " " + record.text);
  EXPECT_EQ(lines.size(), 8u);
  if (lines.size() != 8) return lines;
  EXPECT_EQ(lines.front(), kEnter);
  EXPECT_EQ(lines.back(), kFailed);
  std::vector<std::string> first(lines.begin() + 1, lines.begin() + 3);
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 3, lines.begin() + 5), first);
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 5, lines.begin() + 7), first);
  return first;
}

TEST_F(SwitchConnection, ConstructionConnectsToNothing) {
  EXPECT_THAT(server.Events(), IsEmpty());
  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST_F(SwitchConnection, APortIsTriedWithHttpsFirst) {
  ScriptDeferred("1");

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  EXPECT_EQ(Lines()[1], kConnectedLine);
  EXPECT_TRUE(server.Requests().front().tls);
}

TEST(SwitchConnectionPlain, ThenWithHttpOnTheSamePort) {
  CimServer server;
  server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", "1")}));
  const VirtualClock clock;
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", kBay);

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus CannotConnectException:Cannot connect to 127.0.0.1:" +
                                        std::to_string(server.Port()) + ". Connection failed."));
  EXPECT_TRUE(log.Has(3, "Successfully connected to host : 127.0.0.1"));
  EXPECT_FALSE(server.Requests().front().tls);
  EXPECT_THAT(clock.Sleeps(), IsEmpty()) << "both belong to one attempt";
}

TEST(SwitchConnectionFailures, ARefusedPortIsTriedTwice) {
  EXPECT_THAT(Attempt("127.0.0.1", 1), ElementsAre(kRefusedLine, kRefusedLine));
}

// 127.0.0.0 is no address of this machine's interfaces that anything could listen on.
TEST(SwitchConnectionFailures, PortZeroMeansTheStandardPorts) {
  EXPECT_THAT(Attempt("127.0.0.0", 0),
              ElementsAre("1 Pegasus CannotConnectException:Cannot connect to 127.0.0.0:5989. Connection failed.",
                          "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.0:5988. Connection failed."));
}

TEST(SwitchConnectionFailures, AHostWithoutAddress) {
  EXPECT_THAT(Attempt("no such host", 1),
              ElementsAre("1 Pegasus InvalidLocatorException : Invalid locator: no such host:1",
                          "1 Pegasus InvalidLocatorException : Invalid locator: no such host:1"));
}

TEST(SwitchConnectionFailures, AHostThatIsNoUtf8) {
  EXPECT_THAT(Attempt("\xff\xfe", 1), Each(HasSubstr("1 Unknown Exception: ")));
}

TEST(SwitchConnectionFailures, NoSocket) {
  rlimit previous{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &previous), 0);
  const int next = dup(0);
  ASSERT_GE(next, 0);
  close(next);
  rlimit none = previous;
  none.rlim_cur = static_cast<rlim_t>(next);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const std::vector<std::string> lines = Attempt("127.0.0.1", 1);
  setrlimit(RLIMIT_NOFILE, &previous);

  EXPECT_THAT(lines, ElementsAre("1 Pegasus CannotCreateSocketException:Cannot create socket",
                                 "1 Pegasus CannotCreateSocketException:Cannot create socket"));
}

TEST_F(SwitchConnection, EveryRequestOnItMayLastFiveMinutes) {
  const ModuleClientTexts texts = {"cmm/inventory_update/switch_IO_update", 3, "", "", "", "", "", "", 1};
  ModuleClient client(texts, "127.0.0.1", server.Port(), "USERID", "s3cret");

  client.Client().setTimeout(1);
  EXPECT_TRUE(client.Connect());
  EXPECT_EQ(client.Client().getTimeout(), 300000u);
  client.Disconnect();
}

TEST_F(SwitchConnection, IsTriedThreeTimesWithASecondBetween) {
  EXPECT_EQ(nobody.CheckDeferedUpdateSupported(kBay), 1);

  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000u, 1000u));
}

/// A chassis manager that comes up during the given pause.
class SwitchConnectionLate : public ::testing::TestWithParam<unsigned> {};

TEST_P(SwitchConnectionLate, IsMetByTheNextAttempt) {
  CimServer::Options options = HttpsServer();
  options.port = CimServer(options).Port();
  std::optional<CimServer> server;
  const VirtualClock clock([&](std::size_t index, std::uint32_t) {
    if (index + 1 != GetParam()) return;
    server.emplace(options);
    server->OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", "1")}));
  });
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", options.port, "", "", kBay);

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  EXPECT_EQ(clock.Sleeps(), std::vector<std::uint32_t>(GetParam(), 1000u));
}

INSTANTIATE_TEST_SUITE_P(Pauses, SwitchConnectionLate, ::testing::Values(1u, 2u));

TEST_F(SwitchConnection, OneThatIsOpenCountsAsConnected) {
  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "2")}),
                     Objects({EhcmSystem("IO Module 03", "1")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 0);

  const std::vector<std::string> lines = Lines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), kConnectedLine), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), kAlreadyConnectedLine), 1);
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_IOModuleComputerSystem",
                                          "EnumerateInstances VORTA_IOModuleComputerSystem", "disconnect"));
}

TEST_F(SwitchConnection, EachCallStartsWithANewOne) {
  ScriptDeferred("1");

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_IOModuleComputerSystem", "disconnect",
                                          "connect", "EnumerateInstances VORTA_IOModuleComputerSystem", "disconnect"));
}

TEST(SwitchConnectionCredentials, AnswerTheServersChallengeAndStayOutOfTheLog) {
  CimServer::Options options = HttpsServer();
  options.user = "USERID";
  options.password = "s3cret";
  CimServer server(options);
  server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", "1")}));
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", kBay);

  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);

  for (const Log::Record& record : log.Records()) EXPECT_THAT(record.text, Not(HasSubstr("s3cret")));
}

TEST_F(SwitchConnection, LogsNothingAtLevelZero) {
  const ScopedLog silent(0);

  EXPECT_EQ(nobody.CheckDeferedUpdateSupported(kBay), 1);

  EXPECT_THAT(silent.Records(), IsEmpty());
}

TEST_F(SwitchConnection, LogsItsErrorsAtLevelOneAndItsSuccessAtLevelThree) {
  ScriptDeferred("1");
  {
    const ScopedLog errors(1);
    EXPECT_EQ(nobody.CheckDeferedUpdateSupported(kBay), 1);
    EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);
    EXPECT_EQ(errors.Records().size(), 7u) << "six attempts and the end";
  }
  {
    const ScopedLog warnings(2);
    EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);
    EXPECT_THAT(warnings.Records(), IsEmpty());
  }
  const ScopedLog all(3);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 33);
  EXPECT_TRUE(all.Has(3, "Successfully connected to host : 127.0.0.1"));
}

TEST_F(SwitchConnection, CopiesShareOneObject) {
  Progress first;
  Progress second;
  SwitchIOModuleUpdate assigned("127.0.0.1", "USERID", "s3cret", 1, "", "", 9);
  assigned = update;
  {
    SwitchIOModuleUpdate copied(update);
    copied.SetLogCallBack(&first);
  }
  assigned.Reseat(kBay);
  assigned.SetLogCallBack(&second);
  update.Reseat(kBay);

  EXPECT_THAT(first.texts, ElementsAre("start reseat I/O Module switch"));
  EXPECT_THAT(second.texts, ElementsAre("start reseat I/O Module switch"));
  EXPECT_EQ(Count("EnumerateInstances CIM_Slot"), 2u) << "the assigned one talks to this server as well";
}

TEST(SwitchFacade, ACopyOutlivesTheOriginal) {
  const VirtualClock clock;
  const ScopedLog log;
  SwitchIOModuleUpdate copy("127.0.0.1", "USERID", "s3cret", 1, "", "", kBay);
  {
    const SwitchIOModuleUpdate original("127.0.0.1", "USERID", "s3cret", 1, "", "", kBay);
    copy = original;
  }

  EXPECT_EQ(copy.EHCMCheck(kBay), 1);
}

}  // namespace
}  // namespace Orvane::testing
