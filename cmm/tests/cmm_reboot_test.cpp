// The reboot of the primary chassis manager: log, standard output, requests and waits of every way through it.
#include "cmm/inventory_update/cmm_reboot.h"

#include <Pegasus/Client/CIMClient.h>

#include "cmm/tests/cmm_update_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

using Sleeps = std::vector<std::uint32_t>;

constexpr char kGoingDown[] = "stdout CMM is doing reboot operation!\n";
constexpr char kWaiting[] = "stdout Waiting for CMM reboot success!\n";

class CmmRebootTest : public CmmUpdateTest {
 protected:
  CmmRebootTest() {
    onSleep = [this](std::uint32_t /*milliseconds*/) {
      const std::size_t sleeps = clock.Sleeps().size();
      if (sleeps == downAt) cmm.Down(kSessionA);
      if (sleeps == upAt) cmm.Up();
    };
  }

  Lines TargetLines() const {
    return {ConnectLine(), "cmm_inventory_target 3 the size of insts_CmptSys is 1",
            "cmm_inventory_target 4 Primary CMM found!", std::string("cmm_reboot 3 Targetinstance is ") + kCmmPath};
  }
  Lines EnumerationLines() const {
    return TargetLines() +
           Lines{ConnectLine(), std::string("cmm_reboot 3 enumerateInstances for ") + kCapabilitiesClass};
  }
  Lines CapabilitiesLines(const std::string& states) const {
    return EnumerationLines() +
           Lines{std::string("cmm_reboot 3 Reboot Instances is :") + kCapabilitiesPath +
                     "successfully get the instances for VORTA_CMMEnabledLogicalElementCapabilities.",
                 "cmm_reboot 3 the RequestedStates is " + states};
  }
  Lines InvokeLines(const std::string& returned = "0") const {
    return CapabilitiesLines("2 11 ") +
           Lines{"cmm_reboot 3 The CMM is ready to restart.", "cmm_peg_client 3 Invoke Cim Method",
                 "cmm_reboot 3 Invoke method 'RequestStateChange',return CIMValue string = " + returned};
  }
  Lines RefusedRound() const { return Lines{"sleep 2000"} + RefusedConnect(); }
  void ReplaceCapabilities(const CimAnswer& answer) {
    cmm.Do([answer](CimServer& server) { server.OnEnumerate(kCapabilitiesClass, answer); });
  }

  /// Connections of the client during down detection, while session B has none.
  static constexpr unsigned kSessionA = 1;
  std::size_t downAt = 0;  ///< number of the sleep, from 1, in which the CMM goes down
  std::size_t upAt = 0;    ///< in which it comes back
};

TEST_F(CmmRebootTest, GoesDownInTheThirdRoundAndComesBack) {
  downAt = 3;
  upAt = 3 + 2;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_THAT(
      transcript.All(),
      ElementsAreArray(InvokeLines() + Repeat(2, {"sleep 2000", ConnectLine()}) + RefusedRound() +
                       Lines{"cmm_reboot 3 CMM is doing reboot operation!", kGoingDown, kWaiting, "sleep 50000"} +
                       RefusedConnect() + Lines{"sleep 50000", ConnectLine()}));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect",            // target
                          "connect", "EnumerateInstances VORTA_CMMEnabledLogicalElementCapabilities",  // session A
                          std::string("InvokeMethod ") + kCmmPath + " RequestStateChange",             //
                          "connect", "disconnect", "connect", "disconnect",                            // session B
                          "connect", "disconnect"));  // after the reboot
}

TEST_F(CmmRebootTest, WithoutWaitingReturnsWhenTheCmmIsDown) {
  downAt = 3;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  EXPECT_THAT(transcript.All(),
              ElementsAreArray(InvokeLines() + Repeat(2, {"sleep 2000", ConnectLine()}) + RefusedRound() +
                               Lines{"cmm_reboot 3 CMM is doing reboot operation!", kGoingDown}));
}

TEST_F(CmmRebootTest, DownBeforeTheFirstRound) {
  downAt = 1;
  upAt = 2;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{2000, 50000}));
}

TEST_F(CmmRebootTest, DownInTheLastRoundIsStillSeen) {
  downAt = 61;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  EXPECT_EQ(clock.Sleeps(), Sleeps(61, 2000));
  EXPECT_THAT(transcript.Of("stdout "), ElementsAre("CMM is doing reboot operation!\n"));
}

TEST_F(CmmRebootTest, WithoutWaitingAndWithoutGoingDownTakes61Rounds) {
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  EXPECT_THAT(transcript.All(), ElementsAreArray(InvokeLines() + Repeat(61, {"sleep 2000", ConnectLine()})));
  EXPECT_EQ(clock.Elapsed(), std::chrono::seconds(122));
}

TEST_F(CmmRebootTest, WithoutGoingDownTheWaitConnectsAtOnce) {
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_THAT(transcript.All(), ElementsAreArray(InvokeLines() + Repeat(61, {"sleep 2000", ConnectLine()}) +
                                                 Lines{kWaiting, "sleep 50000", ConnectLine()}));
}

TEST_F(CmmRebootTest, SessionAStaysOpenToTheEnd) {
  onSleep = [this](std::uint32_t /*milliseconds*/) { EXPECT_TRUE(cmm.WaitForOpenConnections(kSessionA)); };
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  ASSERT_TRUE(cmm.WaitForOpenConnections(0));
  constexpr unsigned kConnectionOfSessionA = 2;  // behind that of the target lookup
  constexpr unsigned kConnectionOfTheWait = 2 + 61 + 1;
  const auto position = [events = cmm.Server().Events()](CimServer::EventKind kind, unsigned connection) {
    return std::find_if(
               events.begin(), events.end(),
               [&](const CimServer::Event& event) { return event.kind == kind && event.connection == connection; }) -
           events.begin();
  };
  EXPECT_LT(position(CimServer::EventKind::kOpened, kConnectionOfTheWait),
            position(CimServer::EventKind::kClosed, kConnectionOfSessionA));
}

TEST_F(CmmRebootTest, ThatNeverComesBackGivesOneAfter80Attempts) {
  downAt = 2;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 1);
  EXPECT_THAT(transcript.All(),
              ElementsAreArray(InvokeLines() + Lines{"sleep 2000", ConnectLine()} + RefusedRound() +
                               Lines{"cmm_reboot 3 CMM is doing reboot operation!", kGoingDown, kWaiting} +
                               Repeat(80, Lines{"sleep 50000"} + RefusedConnect())));
  EXPECT_EQ(clock.Elapsed(), std::chrono::seconds(4 + 4000));
}

TEST_F(CmmRebootTest, ThatComesBackForTheLastAttemptGivesZero) {
  downAt = 1;
  upAt = 81;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_EQ(clock.Sleeps().size(), 81U);
}

TEST_F(CmmRebootTest, SendsTheResetStateToThePrimaryCmm) {
  downAt = 1;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  const std::vector<CimRequest> invokes = Requests("InvokeMethod");
  ASSERT_EQ(invokes.size(), 1U);
  EXPECT_EQ(invokes[0].objectText, kCmmPath);
  EXPECT_EQ(invokes[0].nameSpace, "root/cimv2");
  EXPECT_EQ(invokes[0].method, "RequestStateChange");
  ASSERT_EQ(invokes[0].arguments.size(), 1U);
  EXPECT_EQ(invokes[0].arguments[0].name, "RequestedState");
  EXPECT_EQ(invokes[0].arguments[0].type, "uint16");
  EXPECT_FALSE(invokes[0].arguments[0].isArray);
  EXPECT_THAT(invokes[0].arguments[0].values, ElementsAre("11"));
  for (const CimRequest& request : cmm.Requests()) EXPECT_EQ(request.nameSpace, "root/cimv2");
}

TEST_F(CmmRebootTest, NoPrimaryCmmGivesSevenWithoutAConnectionOfItsOwn) {
  cmm.Do([](CimServer& server) { server.OnEnumerate("CIM_ComputerSystem", NoObjects()); });
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 7);
  EXPECT_THAT(transcript.All(), ElementsAre(ConnectLine(), "cmm_inventory_target 3 the size of insts_CmptSys is 0",
                                            "cmm_reboot 1 collect CMM info failed. [CMM instance is uninitialized]."));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
}

TEST_F(CmmRebootTest, NobodyThereGivesSeven) {
  cmm.Down();
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 7);
  EXPECT_THAT(transcript.All(),
              ElementsAreArray(RefusedConnect() +
                               Lines{"cmm_inventory_target 1 Connection is fail, please check your network",
                                     "cmm_reboot 1 collect CMM info failed. [CMM instance is uninitialized]."}));
}

TEST_F(CmmRebootTest, LostBehindTheLookupGivesOne) {
  cmm.Do([](CimServer& server) { server.OnEnumerate("CIM_ComputerSystem", ThenRefuse(Objects({PrimaryCmm()}))); });
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 1);
  EXPECT_THAT(transcript.All(),
              ElementsAreArray(TargetLines() + RefusedConnect() + Lines{"cmm_reboot 1 Connect CIMMOM Failed. RC: -4"}));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

struct Enumeration {
  const char* name;
  CimAnswer answer;
  std::string line;
};
class CmmRebootEnumeration : public CmmRebootTest, public ::testing::WithParamInterface<Enumeration> {};
INSTANTIATE_TEST_SUITE_P(
    Failing, CmmRebootEnumeration,
    ::testing::Values(
        Enumeration{"Http503", HttpStatus(503, "Service Unavailable"),
                    "cmm_peg_client 1 Client HTTP Exception: HTTP Error (503 Service Unavailable).RESP: [503]"},
        Enumeration{"Http404", HttpStatus(404, "Not Found"),
                    "cmm_peg_client 1 Client HTTP Exception: HTTP Error (404 Not Found).RESP: [404]"},
        Enumeration{"CimError", CimError(1, "broken"),
                    "cmm_peg_client 1 EnumerateInstances error. return code:1error message:broken"},
        Enumeration{"Closed", Close(),
                    "cmm_peg_client 1 unknown error happened when enumerate Reboot Instance :Connection closed by "
                    "CIM Server."}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_P(CmmRebootEnumeration, GivesTwo) {
  ReplaceCapabilities(GetParam().answer);
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 2);
  EXPECT_THAT(transcript.All(),
              ElementsAreArray(EnumerationLines() +
                               Lines{GetParam().line, "cmm_reboot 1 perform func[EnumerateInstances] failed"}));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

struct Capability {
  const char* name;
  CimAnswer answer;
  std::string states;
};

class CmmThatIsNotReady : public CmmRebootTest, public ::testing::WithParamInterface<Capability> {};
INSTANTIATE_TEST_SUITE_P(
    Reboot, CmmThatIsNotReady,
    ::testing::Values(
        Capability{"Absent", Objects({CimObjectSpec(kCapabilitiesClass).Key("InstanceID", "restart")}), ""},
        Capability{"Null", Objects({Capabilities(CimNull("uint16", true))}), ""},
        Capability{"EmptyList", Objects({Capabilities(CimUint16Array({}))}), ""},
        Capability{"OneCharacter", Objects({Capabilities(CimUint16(1))}), "1"},
        Capability{"OtherStates", Objects({Capabilities(CimUint16Array({2, 3, 10, 1, 1}))}), "2 3 10 1 1 "},
        Capability{
            "SecondInstanceOnly",
            Objects({Capabilities(CimUint16Array({2})), CimObjectSpec(kCapabilitiesClass)
                                                            .Key("InstanceID", "second")
                                                            .With("RequestedStatesSupported", CimUint16Array({11}))}),
            "2 "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_P(CmmThatIsNotReady, GivesNine) {
  ReplaceCapabilities(GetParam().answer);
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 9);
  EXPECT_THAT(transcript.All(), ElementsAreArray(CapabilitiesLines(GetParam().states) +
                                                 Lines{"cmm_reboot 1 The CMM is not ready to restart."}));
  EXPECT_THAT(Requests("InvokeMethod"), IsEmpty());
  EXPECT_EQ(Conversation().back(), "disconnect");
}

class CmmThatIsReady : public CmmRebootTest, public ::testing::WithParamInterface<Capability> {};
INSTANTIATE_TEST_SUITE_P(
    Reboot, CmmThatIsReady,
    ::testing::Values(Capability{"Alone", Objects({Capabilities(CimUint16Array({11}))}), "11 "},
                      Capability{"Scalar", Objects({Capabilities(CimUint16(11))}), "11"},
                      Capability{"InsideANumber", Objects({Capabilities(CimUint16Array({2, 3, 110}))}), "2 3 110 "},
                      Capability{"InsideALargerNumber", Objects({Capabilities(CimUint16Array({32112}))}), "32112 "},
                      Capability{"Text", Objects({Capabilities(CimString("2 3 110"))}), "2 3 110"}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_P(CmmThatIsReady, IsRebooted) {
  ReplaceCapabilities(GetParam().answer);
  downAt = 1;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  EXPECT_TRUE(transcript.Has("cmm_reboot 3 the RequestedStates is " + GetParam().states));
  EXPECT_TRUE(transcript.Has("cmm_reboot 3 The CMM is ready to restart."));
  EXPECT_EQ(Requests("InvokeMethod").size(), 1U);
}

class CmmRebootReturnValue : public CmmRebootTest, public ::testing::WithParamInterface<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Any, CmmRebootReturnValue, ::testing::Values(0U, 1U, 2U, 5U, 4096U, 32769U, 4294967295U));

TEST_P(CmmRebootReturnValue, IsOnlyLogged) {
  cmm.Do([](CimServer& server) { server.OnInvoke("RequestStateChange", RebootAccepted(GetParam())); });
  downAt = 1;
  upAt = 2;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_TRUE(transcript.Has("cmm_reboot 3 Invoke method 'RequestStateChange',return CIMValue string = " +
                             std::to_string(GetParam())));
}

struct Invocation {
  const char* name;
  CimAnswer answer;
};
class CmmRebootInvocation : public CmmRebootTest, public ::testing::WithParamInterface<Invocation> {};
INSTANTIATE_TEST_SUITE_P(Failing, CmmRebootInvocation,
                         ::testing::Values(Invocation{"CimError", CimError(1, "busy")}, Invocation{"Closed", Close()},
                                           Invocation{"NoReturnValue", MethodResult({})},
                                           Invocation{"WrongType", MethodResult(CimUint16(0))}),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_P(CmmRebootInvocation, ThrowsWhatReadingTheReturnValueThrows) {
  cmm.Do([](CimServer& server) { server.OnInvoke("RequestStateChange", GetParam().answer); });
  EXPECT_THROW(Reboot(CMM_REBOOT_WAIT), Pegasus::TypeMismatchException);
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
  EXPECT_EQ(Conversation().back(), "disconnect") << "the connection is closed all the same";
}

TEST_P(CmmRebootInvocation, ThrowsAlsoWithTheLogOff) {
  const TranscribedLog off(transcript, 0);
  cmm.Do([](CimServer& server) { server.OnInvoke("RequestStateChange", GetParam().answer); });
  EXPECT_THROW(Reboot(CMM_REBOOT_NOWAIT), Pegasus::TypeMismatchException);
}

TEST_F(CmmRebootTest, FailedInvocationIsLoggedOnce) {
  cmm.Do([](CimServer& server) { server.OnInvoke("RequestStateChange", CimError(1, "busy")); });
  EXPECT_THROW(Reboot(CMM_REBOOT_WAIT), Pegasus::TypeMismatchException);
  EXPECT_THAT(transcript.Of("cmm_peg_client 1 "), ElementsAre("Pegasus CIMException: busy"));
}

class CmmWithoutCapabilities : public CmmRebootTest, public ::testing::WithParamInterface<Invocation> {};
INSTANTIATE_TEST_SUITE_P(Reboot, CmmWithoutCapabilities,
                         ::testing::Values(Invocation{"NoInstance", NoObjects()},
                                           Invocation{"Http401", HttpStatus(401, "Unauthorized")},
                                           Invocation{"Http500", HttpStatus(500, "Internal Server Error")}),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_P(CmmWithoutCapabilities, ThrowsWhatReadingTheFirstThrows) {
  const TranscribedLog off(transcript, 0);
  ReplaceCapabilities(GetParam().answer);
  EXPECT_THROW(Reboot(CMM_REBOOT_WAIT), Pegasus::IndexOutOfBoundsException);
  EXPECT_THAT(Requests("InvokeMethod"), IsEmpty());
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(CmmRebootTest, StandardOutputDoesNotDependOnTheLog) {
  const TranscribedLog off(transcript, 0);
  downAt = 1;
  upAt = 2;
  EXPECT_EQ(Reboot(CMM_REBOOT_WAIT), 0);
  EXPECT_THAT(transcript.All(), ElementsAre("sleep 2000", kGoingDown, kWaiting, "sleep 50000"));
}

TEST_F(CmmRebootTest, LogNamesItsSourceAndLine) {
  const ScopedLog records;
  downAt = 1;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  std::size_t own = 0;
  for (const Log::Record& record : records.Records()) {
    EXPECT_GT(record.line, 0);
    if (record.file == "cmm/inventory_update/cmm_reboot") ++own;
  }
  EXPECT_EQ(own, 7U);
}

TEST_F(CmmRebootTest, NeverLogsThePassword) {
  downAt = 1;
  EXPECT_EQ(Reboot(CMM_REBOOT_NOWAIT), 0);
  for (const std::string& line : transcript.All()) EXPECT_EQ(line.find(kAnyPassword), std::string::npos) << line;
}

TEST_F(CmmRebootTest, ThroughTheUpdateAlwaysWaits) {
  downAt = 1;
  upAt = 2;
  CMMUpdate update = Update();
  update.SetLogCallBack(&callback);
  EXPECT_EQ(update.Reboot(), 0);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{2000, 50000}));
  EXPECT_THAT(transcript.All(), Not(Contains(StartsWith("callback")))) << "the reboot alone reports nothing";
  EXPECT_THAT(transcript.Of("stdout "),
              ElementsAre("CMM is doing reboot operation!\n", "Waiting for CMM reboot success!\n"));
}

TEST_F(CmmRebootTest, ThroughTheUpdateGivesItsCode) {
  CMMUpdate update = Update();
  ReplaceCapabilities(Objects({Capabilities(CimUint16Array({2}))}));
  EXPECT_EQ(update.Reboot(), 9);
  cmm.Down();
  EXPECT_EQ(update.Reboot(), 7);
}

class WaitForServer : public CmmUpdateTest {
 protected:
  int Wait(int rounds, std::uint32_t pauseMs) {
    return WaitForCIMServer("127.0.0.1", cmm.Port(), "USERID", kAnyPassword, rounds, pauseMs);
  }
};

TEST_F(WaitForServer, ConnectsAfterAPause) {
  EXPECT_EQ(Wait(5, 123), 0);
  EXPECT_THAT(transcript.All(), ElementsAre("sleep 123", ConnectLine()));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "disconnect"));
}

TEST_F(WaitForServer, TriesAsOftenAsAsked) {
  cmm.Down();
  EXPECT_EQ(Wait(3, 7), 3);
  EXPECT_THAT(transcript.All(), ElementsAreArray(Repeat(3, Lines{"sleep 7"} + RefusedConnect())));
}

TEST_F(WaitForServer, SucceedsWithTheLastAttempt) {
  cmm.Down();
  onSleep = [this](std::uint32_t /*milliseconds*/) {
    if (clock.Sleeps().size() == 3) cmm.Up();
  };
  EXPECT_EQ(Wait(3, 7), 0);
}

TEST_F(WaitForServer, WithoutRoundsMakesNoAttempt) {
  EXPECT_EQ(Wait(0, 7), 3);
  EXPECT_EQ(Wait(-1, 7), 3);
  EXPECT_THAT(transcript.All(), IsEmpty());
  EXPECT_THAT(cmm.Conversation(), IsEmpty());
}

}  // namespace
}  // namespace Orvane::testing
