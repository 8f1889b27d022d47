// Reboot and reseat of a pass-through module: the steps, the offered states, what the module may answer, and what each
// failure gives.
#include "cmm/inventory_update/switch_PassThru_update_state.h"
#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kTargetLine[] = "3 Targetinstance is //cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module\"";
constexpr char kEnumerateLine[] = "3 enumerateInstances for VORTA_PassThroughModuleEnabledLogicalElementCapabilities";
constexpr char kFirstLine[] =
    "3 VORTA_PassThroughModuleEnabledLogicalElementCapabilities is "
    "VORTA_PassThroughModuleEnabledLogicalElementCapabilities.InstanceID=\"capabilities\"";
constexpr char kSuccessLine[] =
    "3 successfully get the instances for VORTA_PassThroughModuleEnabledLogicalElementCapabilities.";
constexpr char kReadyLine[] = "3 The Pass-Thru is ready to change state.";
constexpr char kNotReadyLine[] = "1 The switch is not ready to change state.";

class PassThruState : public PassThruTest {
 protected:
  PassThruState() {
    server.OnEnumerate(kCapabilities, Objects({Capabilities({2, 3, 11, 32769})}));
    server.OnInvoke("RequestStateChange", MethodResult(Uint32Value(0)));
  }
};

TEST_F(PassThruState, RebootFollowsItsStepsInOrder) {
  WatchEverything();
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::RebootPassThru()", "callback start reboot pass-through switch",
                          SessionConnected(), SessionConnected(), kTargetLine, SessionConnected(), kEnumerateLine,
                          kFirstLine, kSuccessLine, kReadyLine, "3 Invoke Cim Method",
                          "3 Invoke method 'RequestStateChange', return CIMValue string = 0",
                          "3 Invoke method 'RequestStateChange': Completed with No Error"));
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect", "connect",
                  "AssociatorNames CIM_Slot.Tag=\"iomodule02\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_Realizes, CIM_PassThroughModule]", "disconnect",
                  "connect", "EnumerateInstances VORTA_PassThroughModuleEnabledLogicalElementCapabilities",
                  "InvokeMethod CIM_PassThroughModule.DeviceID=\"module\" RequestStateChange", "disconnect"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(PassThruState, ReseatFollowsItsStepsInOrder) {
  EXPECT_EQ(update.Reseat(2), 0);
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::ReseatPassThru()", "callback Start reseat pass-through switch",
                          kTargetLine, kEnumerateLine, kFirstLine, kSuccessLine, kReadyLine,
                          "3 Invoke method 'RequestStateChange', return CIMValue string = 0",
                          "3 Invoke method 'RequestStateChange': Completed with No Error"));
}

TEST_F(PassThruState, TheModuleIsAskedForTheState) {
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_EQ(update.Reseat(2), 0);
  ASSERT_EQ(Invocations().size(), 2U);
  for (const CimRequest& request : Invocations()) {
    EXPECT_EQ(request.nameSpace, "root/cimv2");
    EXPECT_EQ(request.objectText, "CIM_PassThroughModule.DeviceID=\"module\"");
  }
  EXPECT_THAT(ArgumentTexts(Invocations()[0]), ElementsAre("RequestedState uint16 11"));
  EXPECT_THAT(ArgumentTexts(Invocations()[1]), ElementsAre("RequestedState uint16 32769"));
}

TEST_F(PassThruState, TheBayOfTheCallCountsNotThatOfTheObject) {
  SwitchPassThruUpdate other("127.0.0.1", "USERID", "s3cret", server.Port(), "", 99);
  EXPECT_EQ(other.Reboot(2), 0);
  EXPECT_EQ(update.Reboot(99), 24);
  EXPECT_EQ(update.Reseat(3), 24);
}

TEST_F(PassThruState, TheObjectSearchesForTheKindOfTargetItIsTold) {
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("switch", {12})}));
  EXPECT_EQ(object.RebootPassThru(2, kTargetIOModule), 0);
  EXPECT_EQ(Invocations()[0].objectText, "CIM_ComputerSystem.Name=\"switch\"");
}

TEST_F(PassThruState, AnyStateCanBeAskedFor) {
  EXPECT_EQ(object.changePassThruState(2, kTargetPassThru, 3), 0);
  EXPECT_THAT(ArgumentTexts(Invocations()[0]), ElementsAre("RequestedState uint16 3"));
}

TEST_F(PassThruState, WithoutAModuleEndsWith24) {
  server.OnEnumerate("CIM_Slot", NoObjects());
  EXPECT_EQ(update.Reboot(2), 24);
  EXPECT_EQ(Lines().back(), "3 Don't find targetinstance for switch.");
  EXPECT_EQ(update.Reseat(2), 24);
  EXPECT_EQ(Lines().back(), "3 Don't find targetinstance for switch.");
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(PassThruState, AConnectionThatFailsNamesTheSessionsCodeAndGivesOne) {
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, ThenRefuse(Objects({PassThru("module")})));
  EXPECT_EQ(update.Reboot(2), 1);
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::RebootPassThru()", "callback start reboot pass-through switch",
                          kTargetLine, "1 Connect CIMMOM Failed. RC: -4"));
}

/// A CMM that speaks no TLS.
class PassThruPlainHttp : public PassThruTest {
 protected:
  PassThruPlainHttp() : PassThruTest(CimServer::Options()) {
    server.OnEnumerate(kCapabilities, Objects({Capabilities({11, 32769})}));
    server.OnInvoke("RequestStateChange", MethodResult(Uint32Value(0)));
  }
};

TEST_F(PassThruPlainHttp, IsAskedForAStateAllTheSame) {
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_EQ(update.Reseat(2), 0);
  EXPECT_EQ(Invocations().size(), 2U);
}

// Offered states.

struct OfferCase {
  const char* name;
  CimObjectSpec capabilities;
  int reboot;
  int reseat;
};
class PassThruOffer : public PassThruState, public ::testing::WithParamInterface<OfferCase> {};

TEST_P(PassThruOffer, IsASubstringTest) {
  server.OnEnumerate(kCapabilities, Objects({GetParam().capabilities, Capabilities({11, 32769})}));
  for (const bool reboot : {true, false}) {
    const int expected = reboot ? GetParam().reboot : GetParam().reseat;
    EXPECT_EQ(reboot ? update.Reboot(2) : update.Reseat(2), expected);
    const std::vector<std::string> lines = Lines();
    EXPECT_THAT(lines, Contains(expected == 0 ? kReadyLine : kNotReadyLine));
    if (expected != 0) {
      EXPECT_EQ(lines.back(), kNotReadyLine);
    }
  }
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

CimObjectSpec CapabilitiesWith(const CimValue& states) {
  return CimObjectSpec(kCapabilities).Key("InstanceID", "capabilities").With("RequestedStatesSupported", states);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PassThruOffer,
    ::testing::Values(OfferCase{"RebootOnly", Capabilities({2, 3, 4, 11}), 0, 4},
                      OfferCase{"ReseatOnly", Capabilities({2, 32769}), 4, 0},
                      OfferCase{"Longer", CapabilitiesWith(CimString("132769")), 4, 0},
                      OfferCase{"Inside", CapabilitiesWith(CimString("2110")), 0, 4},
                      OfferCase{"Split", Capabilities({1, 1, 3276, 9}), 4, 4},
                      OfferCase{"Empty", CapabilitiesWith(CimUint16Array({})), 4, 4},
                      OfferCase{"Null", CapabilitiesWith(CimNull("uint16", true)), 4, 4},
                      OfferCase{"Absent", CimObjectSpec(kCapabilities).Key("InstanceID", "capabilities"), 4, 4}),
    [](const auto& param) { return param.param.name; });

TEST_F(PassThruState, TheFirstCapabilitiesCount) {
  server.OnEnumerate(kCapabilities,
                     Objects({Capabilities({11}), CimObjectSpec(kCapabilities).Key("InstanceID", "others")}));
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_THAT(Lines(), Contains(kFirstLine));
}

TEST_F(PassThruState, WhatIsNotOfferedIsNotAskedFor) {
  server.OnEnumerate(kCapabilities, Objects({Capabilities({2, 3})}));
  EXPECT_EQ(update.Reseat(2), 4);
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::ReseatPassThru()", "callback Start reseat pass-through switch",
                          kTargetLine, kEnumerateLine, kFirstLine, kSuccessLine, kNotReadyLine));
}

// The capabilities cannot be read.

struct StatusCase {
  unsigned status;
  const char* name;
};
std::string StatusCaseName(const ::testing::TestParamInfo<StatusCase>& param) { return param.param.name; }

class PassThruCapabilitiesStatus : public PassThruState, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(PassThruCapabilitiesStatus, IsNamedAndGivesFour) {
  server.OnEnumerate(kCapabilities, CimError(GetParam().status, "no"));
  EXPECT_EQ(update.Reboot(2), 4);
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::RebootPassThru()", "callback start reboot pass-through switch",
                          kTargetLine, kEnumerateLine, std::string("1 ") + GetParam().name));
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(Table, PassThruCapabilitiesStatus,
                         ::testing::Values(StatusCase{1, "CIM_ERR_FAILED"}, StatusCase{2, "CIM_ERR_ACCESS_DENIED"},
                                           StatusCase{4, "CIM_ERR_INVALID_PARAMETER"},
                                           StatusCase{5, "CIM_ERR_INVALID_CLASS"},
                                           StatusCase{7, "CIM_ERR_NOT_SUPPORTED"}),
                         StatusCaseName);

struct ErrorCase {
  const char* name;
  CimAnswer answer;
  const char* message;
};
std::string ErrorCaseName(const ::testing::TestParamInfo<ErrorCase>& param) { return param.param.name; }

class PassThruCapabilitiesError : public PassThruState, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(PassThruCapabilitiesError, IsLoggedWithItsMessageAndGivesFour) {
  server.OnEnumerate(kCapabilities, GetParam().answer);
  EXPECT_EQ(update.Reboot(2), 4);
  EXPECT_THAT(Lines(1), ElementsAre(std::string("unknown error happened when enumerate "
                                                "VORTA_PassThroughModuleEnabledLogicalElementCapabilities Instance :") +
                                    GetParam().message));
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

// A status without a name leaves the list empty, like a server that has no capabilities.
INSTANTIATE_TEST_SUITE_P(Answers, PassThruCapabilitiesError,
                         ::testing::Values(ErrorCase{"None", NoObjects(), "index out of bounds"},
                                           ErrorCase{"Status3", CimError(3, "no"), "index out of bounds"},
                                           ErrorCase{"Status6", CimError(6, "no"), "index out of bounds"},
                                           ErrorCase{"Http", HttpStatus(500, "Internal Server Error"),
                                                     "HTTP Error (500 Internal Server Error)."},
                                           ErrorCase{"Unauthorized", HttpStatus(401, "Unauthorized"),
                                                     "HTTP Error (401 Unauthorized)."},
                                           ErrorCase{"Closed", Close(), "Connection closed by CIM Server."}),
                         ErrorCaseName);

TEST_F(PassThruState, NoCapabilitiesFailWithTheLogOffToo) {
  server.OnEnumerate(kCapabilities, NoObjects());
  Log::SetMinLogLevel(0);
  EXPECT_EQ(update.Reboot(2), 4);
  EXPECT_THAT(Invocations(), IsEmpty());
}

// What the module answers is told and changes nothing.

struct AnswerCase {
  unsigned value;
  const char* line;
};
class PassThruStateAnswer : public PassThruState, public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(PassThruStateAnswer, IsToldAndGivesZero) {
  server.OnInvoke("RequestStateChange", MethodResult(Uint32Value(GetParam().value)));
  EXPECT_EQ(update.Reboot(2), 0);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(
      std::vector<std::string>(lines.end() - 2, lines.end()),
      ElementsAre("3 Invoke method 'RequestStateChange', return CIMValue string = " + std::to_string(GetParam().value),
                  GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Table, PassThruStateAnswer,
    ::testing::Values(AnswerCase{0, "3 Invoke method 'RequestStateChange': Completed with No Error"},
                      AnswerCase{1, "1 Invoke method 'RequestStateChange': Not Supported"},
                      AnswerCase{2, "1 Invoke method 'RequestStateChange': Unknown or Unspecified Error"},
                      AnswerCase{3, "1 Invoke method 'RequestStateChange': Cannot complete within Timeout Period"},
                      AnswerCase{4, "1 Invoke method 'RequestStateChange': Failed (4)"},
                      AnswerCase{5, "1 Invoke method 'RequestStateChange': Invalid Parameter"},
                      AnswerCase{6, "1 Invoke method 'RequestStateChange': In Use"},
                      AnswerCase{4096, "1 Invoke method 'RequestStateChange':Method Parameters Checked - Job Started"},
                      AnswerCase{4097, "1 Invoke method 'RequestStateChange':Invalid State Transitiond"},
                      AnswerCase{4098, "1 Invoke method 'RequestStateChange':Use of Timeout Parameter Not Supported"},
                      AnswerCase{4099, "1 Invoke method 'RequestStateChange':Busy"},
                      AnswerCase{7, "1 Invoke method 'RequestStateChange': return value Reserved"},
                      AnswerCase{40, "1 Invoke method 'RequestStateChange': return value Reserved"},
                      AnswerCase{4095, "1 Invoke method 'RequestStateChange': return value Reserved"},
                      AnswerCase{4100, "1 Invoke method 'RequestStateChange': return value Reserved"},
                      AnswerCase{4294967295U, "1 Invoke method 'RequestStateChange': return value Reserved"}),
    [](const auto& param) { return std::to_string(param.param.value); });

// The request fails.

class PassThruRequestStatus : public PassThruState, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(PassThruRequestStatus, IsNamedAndGivesFour) {
  server.OnInvoke("RequestStateChange", CimError(GetParam().status, "no"));
  EXPECT_EQ(update.Reseat(2), 4);
  EXPECT_THAT(Lines(1), ElementsAre(GetParam().name));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

INSTANTIATE_TEST_SUITE_P(Table, PassThruRequestStatus,
                         ::testing::Values(StatusCase{1, "CIM_ERR_FAILED"}, StatusCase{2, "CIM_ERR_ACCESS_DENIED"},
                                           StatusCase{3, "CIM_ERR_INVALID_NAMESPACE"},
                                           StatusCase{4, "CIM_ERR_INVALID_PARAMETER"},
                                           StatusCase{6, "CIM_ERR_NOT_FOUND"}, StatusCase{7, "CIM_ERR_NOT_SUPPORTED"},
                                           StatusCase{16, "CIM_ERR_METHOD_NOT_AVAILABLE"},
                                           StatusCase{17, "CIM_ERR_METHOD_NOT_FOUND"}),
                         StatusCaseName);

class PassThruRequestOtherStatus : public PassThruState, public ::testing::WithParamInterface<unsigned> {};

TEST_P(PassThruRequestOtherStatus, IsNotLoggedAndChangesNothing) {
  server.OnInvoke("RequestStateChange", CimError(GetParam(), "connection timed out"));
  EXPECT_EQ(update.Reboot(2), 0);
  EXPECT_EQ(Lines().back(), kReadyLine);
}

INSTANTIATE_TEST_SUITE_P(Statuses, PassThruRequestOtherStatus, ::testing::Values(5U, 8U, 12U, 20U, 99U));

class PassThruRequestError : public PassThruState, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(PassThruRequestError, IsLoggedWithItsMessageAndGivesFour) {
  server.OnInvoke("RequestStateChange", GetParam().answer);
  EXPECT_EQ(update.Reboot(2), 4);
  EXPECT_EQ(Lines().back(), std::string("1 unknown error happened when invokeMethod :") + GetParam().message);
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, PassThruRequestError,
    ::testing::Values(ErrorCase{"Http", HttpStatus(503, "Service Unavailable"),
                                "HTTP Error (503 Service Unavailable)."},
                      ErrorCase{"Unauthorized", HttpStatus(401, "Unauthorized"), "HTTP Error (401 Unauthorized)."},
                      ErrorCase{"Closed", Close(), "Connection closed by CIM Server."},
                      ErrorCase{"NoReturnValue", MethodResult({}), "type mismatch"},
                      ErrorCase{"ReturnValueIsText", MethodResult(CimString("0")), "type mismatch"}),
    ErrorCaseName);

TEST_F(PassThruState, AMissingReturnValueFailsWithTheLogOffToo) {
  server.OnInvoke("RequestStateChange", MethodResult({}));
  Log::SetMinLogLevel(0);
  EXPECT_EQ(update.Reboot(2), 4);
}

// A request may wait five minutes, so the time-out itself comes from here and not from a silent server.

TEST_F(PassThruState, ARequestThatTimesOutIsASuccess) {
  EXPECT_EQ(passthru::OutcomeOfStateChange([]() -> Pegasus::CIMValue { throw Pegasus::ConnectionTimeoutException(); }),
            0);
  EXPECT_THAT(Lines(), ElementsAre("1 unknown error happened when invokeMethod :connection timed out"));
}

TEST_F(PassThruState, OnlyTheExactMessageIsASuccess) {
  for (const char* message : {"Connection timed out", "connection timed out.", "the connection timed out", ""}) {
    EXPECT_EQ(passthru::OutcomeOfStateChange(
                  [message]() -> Pegasus::CIMValue { throw Pegasus::Exception(Pegasus::String(message)); }),
              4);
    EXPECT_THAT(Lines(), ElementsAre(std::string("1 unknown error happened when invokeMethod :") + message));
  }
}

}  // namespace
}  // namespace Orvane::testing
