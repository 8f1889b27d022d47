// The reseat of a compute node: its steps, what is sent, and what every answer and failure gives.
#include "cmm/tests/blade_reseat_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kNotReady[] = "1 The blade is not ready to change state.";

class BladeReseat : public BladeReseatTest {
 protected:
  BladeReseat() { ScriptNodes({"node01", "node03", "node10"}); }
};

TEST_F(BladeReseat, FollowsItsStepsInOrder) {
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
  EXPECT_THAT(
      Lines(),
      ElementsAre(SessionConnected(), "3 the size of la_insts_CmpmServ is 3", "4 node bay: node03",
                  "4 Target blade's CIM_PowerManagementService instance found!",
                  "3 Targetinstance is CIM_PowerManagementService.Name=\"power node03\"", SessionConnected(),
                  "4 Target Node bay: node03", SessionConnected(), "3 enumerateInstances for VORTA_ComputerSystem",
                  "3 successfully get the instances for VORTA_ComputerSystem.", SessionConnected(),
                  "3 enumerateInstances for CIM_AssociatedPowerManagementService",
                  "3 successfully get the instances for CIM_AssociatedPowerManagementService.", "3 PowerState: 32769",
                  "3 Invoke Cim Method", "3 Invoke method 'RequestPowerStateChange' retCode:0",
                  "3 Invoke method 'RequestPowerStateChange': Completed with No Error"));
  EXPECT_TRUE(server.WaitUntilAllClosed());
  EXPECT_THAT(server.Summaries(),
              ElementsAre("EnumerateInstances CIM_PowerManagementService", "EnumerateInstances VORTA_ComputerSystem",
                          "EnumerateInstances CIM_AssociatedPowerManagementService",
                          "InvokeMethod CIM_PowerManagementService.Name=\"power node03\" RequestPowerStateChange"));
}

TEST_F(BladeReseat, EveryStepHasAConnectionOfItsOwn) {
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
  EXPECT_TRUE(server.WaitUntilAllClosed());
  std::vector<unsigned> connections;
  for (const CimRequest& request : server.Requests()) connections.push_back(request.connection);
  // The second connection is opened before the lookups and waits for the method call.
  EXPECT_THAT(connections, ElementsAre(connections[0], connections[0] + 2, connections[0] + 3, connections[0] + 1));
}

TEST_F(BladeReseat, SendsThreeParametersInTheirOrder) {
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
  ASSERT_EQ(Invocations().size(), 1U);
  const CimRequest request = Invocations()[0];
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  ASSERT_EQ(request.arguments.size(), 3U);
  EXPECT_EQ(request.arguments[0].name, "PowerState");
  EXPECT_EQ(request.arguments[0].type, "uint16");
  EXPECT_THAT(request.arguments[0].values, ElementsAre("32769"));
  EXPECT_EQ(request.arguments[1].name, "ManagedElement");
  EXPECT_EQ(request.arguments[1].type, "reference");
  EXPECT_THAT(request.arguments[1].values, ElementsAre("VORTA_ComputerSystem.Name=\"node03\""));
  EXPECT_EQ(request.arguments[2].name, "TimeoutPeriod");
  EXPECT_EQ(request.arguments[2].type, "datetime");
  EXPECT_THAT(request.arguments[2].values, ElementsAre("00000000000000.000120:000")) << "120 microseconds";
}

TEST_F(BladeReseat, EveryLineNamesItsSourceAndItsPlaceInIt) {
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
  for (const Log::Record& record : log.Records()) EXPECT_GT(record.line, 0) << record.file;
  EXPECT_EQ(OwnLines().size(), 9U);
}

struct BayCase {
  int bay;
  const char* node;
};
class BladeReseatBay : public BladeReseatTest, public ::testing::WithParamInterface<BayCase> {};

TEST_P(BladeReseatBay, HasItsNodeName) {
  ScriptNodes({"elsewhere", GetParam().node});
  EXPECT_EQ(reseat.ReseatBlade(GetParam().bay), 0);
  EXPECT_TRUE(log.Has(4, std::string("Target Node bay: ") + GetParam().node));
  EXPECT_EQ(Invocations()[0].objectText,
            std::string("CIM_PowerManagementService.Name=\"power ") + GetParam().node + "\"");
  EXPECT_THAT(Invocations()[0].arguments[1].values,
              ElementsAre(std::string("VORTA_ComputerSystem.Name=\"") + GetParam().node + "\""));
}

INSTANTIATE_TEST_SUITE_P(Bays, BladeReseatBay,
                         ::testing::Values(BayCase{0, "node0"}, BayCase{1, "node01"}, BayCase{3, "node03"},
                                           BayCase{9, "node09"}, BayCase{10, "node10"}, BayCase{12, "node12"},
                                           BayCase{99, "node99"}, BayCase{-1, "node-1"}),
                         [](const auto& param) {
                           return param.param.bay < 0 ? std::string("Negative") : std::to_string(param.param.bay);
                         });

TEST_F(BladeReseat, BayWithoutAServiceEndsWithNine) {
  for (const int bay : {2, 11, 99, -1}) EXPECT_EQ(reseat.ReseatBlade(bay), 9) << bay;
  EXPECT_EQ(OwnLines().back(), "3 Don't find targetinstance for blade.");
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(BladeReseat, ServicesThatCannotBeReadEndWithNine) {
  for (const CimAnswer& answer : {CimError(2, "no"), HttpStatus(401, "Unauthorized"), Close(), NoObjects()}) {
    server.OnEnumerate(kPowerServiceClass, answer);
    EXPECT_EQ(reseat.ReseatBlade(3), 9);
  }
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(BladeReseat, ACmmThatIsAwayEndsWithNine) {
  Cmm_Blade_Reseat nobody("127.0.0.1", 1, "USERID", "s3cret", 0);
  EXPECT_EQ(nobody.ReseatBlade(3), 9);
}

TEST_F(BladeReseat, AConnectionThatFailsAfterTheLookupGivesTheSessionsCode) {
  server.OnEnumerate(kPowerServiceClass, ThenRefuse(Objects({PowerService("node03")})));
  EXPECT_EQ(reseat.ReseatBlade(3), -4);
  EXPECT_THAT(OwnLines(), ElementsAre("3 Targetinstance is CIM_PowerManagementService.Name=\"power node03\"",
                                      "1 Connect CIMMOM Failed. RC: -4"));
}

TEST_F(BladeReseat, TheInventoryHasTheLowBitsOfThePort) {
  Cmm_Blade_Reseat high("127.0.0.1", 65536U + server.Port(), "USERID", "s3cret", 0);
  EXPECT_EQ(high.ReseatBlade(3), -4) << "found the target, but no session on a port that does not exist";
  EXPECT_THAT(server.Summaries(), ElementsAre("EnumerateInstances CIM_PowerManagementService"));
}

// What the node offers.

struct OfferCase {
  const char* name;
  CimObjectSpec association;
  bool offered;
};
class BladeReseatOffer : public BladeReseat, public ::testing::WithParamInterface<OfferCase> {};

TEST_P(BladeReseatOffer, IsASubstringTestAndZeroEitherWay) {
  server.OnEnumerate(kPowerAssociation, Objects({GetParam().association}));
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
  EXPECT_EQ(Invocations().size(), GetParam().offered ? 1U : 0U);
  if (!GetParam().offered) {
    EXPECT_EQ(OwnLines().back(), kNotReady);
  }
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

CimObjectSpec Offering(const CimValue& states) {
  return PowerAssociation("node03").With("AvailableRequestedPowerStates", states);
}

INSTANTIATE_TEST_SUITE_P(States, BladeReseatOffer,
                         ::testing::Values(OfferCase{"Offered", PowerAssociation("node03", {32769}), true},
                                           OfferCase{"Inside", Offering(CimString("1327690")), true},
                                           OfferCase{"FiveCharacters", Offering(CimString("32769")), true},
                                           OfferCase{"NotOffered", PowerAssociation("node03", {2, 8}), false},
                                           OfferCase{"OthersOnly", PowerAssociation("node03", {32768, 3276, 9}), false},
                                           OfferCase{"FourCharacters", Offering(CimString("3276")), false},
                                           OfferCase{"Empty", Offering(CimUint16Array({})), false},
                                           OfferCase{"Null", Offering(CimNull("uint16", true)), false},
                                           OfferCase{"Absent", PowerAssociation("node03"), false}),
                         [](const auto& param) { return param.param.name; });

TEST_F(BladeReseat, AnUnknownNodeGivesMinusOne) {
  server.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node01", {32769})}));
  EXPECT_EQ(reseat.ReseatBlade(3), -1);
  EXPECT_EQ(OwnLines().back(), kNotReady);
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(BladeReseat, AssociationsThatCannotBeReadGiveMinusOne) {
  for (const CimAnswer& answer : {CimError(2, "no"), HttpStatus(503, "Service Unavailable"), NoObjects()}) {
    server.OnEnumerate(kPowerAssociation, answer);
    EXPECT_EQ(reseat.ReseatBlade(3), -1);
    EXPECT_EQ(OwnLines().back(), kNotReady);
  }
}

TEST_F(BladeReseat, ALookupWithoutAConnectionGivesOne) {
  server.OnEnumerate(kNodeClass, ThenRefuse(Objects({Node("node03")})));
  EXPECT_EQ(reseat.ReseatBlade(3), 1);
  const std::vector<std::string> lines = OwnLines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("1 Connect CIMMOM Failed. RC: -4", kNotReady));
}

TEST_F(BladeReseat, AMissingElementIsNoticedWhenItsPathIsAskedFor) {
  server.OnEnumerate(kNodeClass, Objects({Node("node01")}));
  EXPECT_EQ(reseat.ReseatBlade(3), 3);
  const std::vector<std::string> lines = OwnLines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("3 PowerState: 32769", "1 unknown error happened when invokeMethod :uninitialized object"));
  EXPECT_THAT(Invocations(), IsEmpty());
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(BladeReseat, AMissingElementDoesNotMatterToANodeThatIsNotReady) {
  server.OnEnumerate(kNodeClass, CimError(1, "no"));
  server.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node03", {2, 8})}));
  EXPECT_EQ(reseat.ReseatBlade(3), 0);
}

// The method call.

class BladeReseatAnswer : public BladeReseat, public ::testing::WithParamInterface<unsigned> {};

TEST_P(BladeReseatAnswer, OtherThanZeroGivesThree) {
  const std::string value = std::to_string(GetParam());
  server.OnInvoke(kRequestPowerChange, MethodResult(CimTyped("uint32", value)));
  EXPECT_EQ(reseat.ReseatBlade(3), 3);
  const std::vector<std::string> lines = OwnLines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("3 Invoke method 'RequestPowerStateChange' retCode:" + value,
                          "1 Invoke method 'RequestPowerStateChange' with err: " + value));
}

INSTANTIATE_TEST_SUITE_P(Values, BladeReseatAnswer, ::testing::Values(1U, 2U, 6U, 10U, 4096U, 4294967295U));

struct StatusCase {
  unsigned status;
  int result;
};
class BladeReseatStatus : public BladeReseat, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(BladeReseatStatus, OfTheMethodCallHasItsCode) {
  server.OnInvoke(kRequestPowerChange, CimError(GetParam().status, "the node says no"));
  EXPECT_EQ(reseat.ReseatBlade(3), GetParam().result);
  const std::string last = OwnLines().back();
  EXPECT_EQ(last.rfind("1 ", 0), 0U);
  EXPECT_THAT(last, ::testing::HasSubstr("the node says no"));
  EXPECT_THAT(log.Texts(1), ElementsAre(last.substr(2))) << "one line, the operation's own";
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_P(BladeReseatStatus, IsParsedTheSameWay) {
  EXPECT_EQ(reseat.ParseError(static_cast<Pegasus::CIMStatusCode>(GetParam().status)), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, BladeReseatStatus,
                         ::testing::Values(StatusCase{1, 12}, StatusCase{2, 5}, StatusCase{3, 7}, StatusCase{4, 8},
                                           StatusCase{5, 3}, StatusCase{6, 9}, StatusCase{7, 6}, StatusCase{8, 3},
                                           StatusCase{12, 3}, StatusCase{16, 11}, StatusCase{17, 10}, StatusCase{20, 3},
                                           StatusCase{99, 3}),
                         [](const auto& param) { return "Status" + std::to_string(param.param.status); });

struct ErrorCase {
  const char* name;
  CimAnswer answer;
  const char* message;
};
class BladeReseatError : public BladeReseat, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(BladeReseatError, IsLoggedWithItsMessageAndGivesThree) {
  server.OnInvoke(kRequestPowerChange, GetParam().answer);
  EXPECT_EQ(reseat.ReseatBlade(3), 3);
  EXPECT_EQ(OwnLines().back(), std::string("1 unknown error happened when invokeMethod :") + GetParam().message);
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, BladeReseatError,
    ::testing::Values(ErrorCase{"Http", HttpStatus(503, "Service Unavailable"),
                                "HTTP Error (503 Service Unavailable)."},
                      ErrorCase{"Unauthorized", HttpStatus(401, "Unauthorized"), "HTTP Error (401 Unauthorized)."},
                      ErrorCase{"Closed", Close(), "Connection closed by CIM Server."},
                      ErrorCase{"NoReturnValue", MethodResult({}), "type mismatch"},
                      ErrorCase{"ReturnValueIsText", MethodResult(CimString("0")), "type mismatch"}),
    [](const auto& param) { return param.param.name; });

TEST_F(BladeReseat, AMissingReturnValueFailsWithTheLogOffToo) {
  server.OnInvoke(kRequestPowerChange, MethodResult({}));
  Log::SetMinLogLevel(0);
  EXPECT_EQ(reseat.ReseatBlade(3), 3);
}

}  // namespace
}  // namespace Orvane::testing
