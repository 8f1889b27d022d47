// The two lookups of the blade reseat, and objects that share what they look with.
#include <thread>

#include "cmm/tests/blade_reseat_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string PathOf(const Pegasus::CIMInstance& instance) {
  return instance.isUninitialized() ? "" : std::string(instance.getPath().toString().getCString());
}

class BladeLookup : public BladeReseatTest {
 protected:
  std::vector<std::string> Conversation() {
    EXPECT_TRUE(server.WaitUntilAllClosed());
    return server.Conversation();
  }
};

TEST_F(BladeLookup, FindsTheFirstSystemWhosePathContainsTheName) {
  server.OnEnumerate(kNodeClass, Objects({Node("node01"), Node("x node10"), Node("node10")}));
  Pegasus::CIMInstance element;
  EXPECT_EQ(reseat.GetManagedElementREF("node10", element), 0);
  EXPECT_EQ(PathOf(element), "VORTA_ComputerSystem.Name=\"x node10\"");
  EXPECT_THAT(Lines(), ElementsAre(SessionConnected(), "3 enumerateInstances for VORTA_ComputerSystem",
                                   "3 successfully get the instances for VORTA_ComputerSystem."));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_ComputerSystem", "disconnect"));
  EXPECT_EQ(server.Requests()[0].nameSpace, "root/cimv2");
}

TEST_F(BladeLookup, FindsNoSystemAndLeavesTheResultAlone) {
  server.OnEnumerate(kNodeClass, Objects({Node("node01")}));
  Pegasus::CIMInstance element(Pegasus::CIMName("CIM_Before"));
  EXPECT_EQ(reseat.GetManagedElementREF("node03", element), -1);
  EXPECT_EQ(PathOf(element), "CIM_Before");
}

TEST_F(BladeLookup, ReadsTheStatesOfTheFirstAssociationWhosePathContainsTheName) {
  server.OnEnumerate(kPowerAssociation,
                     Objects({PowerAssociation("node01", {1}), PowerAssociation("node03", {2, 8, 32769}),
                              PowerAssociation("node03", {4})}));
  std::string states = "before";
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node03", states), 0);
  EXPECT_EQ(states, "2 8 32769 ");
  EXPECT_THAT(Lines(), ElementsAre(SessionConnected(), "3 enumerateInstances for CIM_AssociatedPowerManagementService",
                                   "3 successfully get the instances for CIM_AssociatedPowerManagementService."));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_AssociatedPowerManagementService", "disconnect"));
  EXPECT_EQ(server.Requests()[0].nameSpace, "root/cimv2");
}

TEST_F(BladeLookup, ANameWithoutZeroMeetsLongerOnes) {
  server.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node10", {10}), PowerAssociation("node1", {1})}));
  std::string states;
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node1", states), 0);
  EXPECT_EQ(states, "10 ") << "the first in the server's order";
}

TEST_F(BladeLookup, FindsNoAssociationAndLeavesTheResultAlone) {
  server.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node01", {1})}));
  std::string states = "before";
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node03", states), -1);
  EXPECT_EQ(states, "before");
}

TEST_F(BladeLookup, StatesThatAreMissingReadAsEmpty) {
  server.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node03")}));
  std::string states = "before";
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node03", states), 0);
  EXPECT_EQ(states, "");
}

TEST_F(BladeLookup, ErrorsAreTheSessionsAndFindNothing) {
  server.OnAnything(CimError(2, "no"), HttpStatus(401, "Unauthorized"), Close(), Body("<html>"));
  Pegasus::CIMInstance element;
  std::string states;
  EXPECT_EQ(reseat.GetManagedElementREF("node03", element), -1);
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node03", states), -1);
  EXPECT_EQ(reseat.GetManagedElementREF("node03", element), -1);
  EXPECT_EQ(reseat.GetAvailableRequestedPowerStates("node03", states), -1);
  EXPECT_TRUE(element.isUninitialized());
  EXPECT_EQ(log.Texts(1).size(), 4U);
  for (const Log::Record& record : log.Records()) {
    if (record.level == 1) {
      EXPECT_EQ(record.file, "cmm/inventory_update/cmm_peg_client");
    }
  }
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(BladeLookup, WithoutAConnectionGivesOne) {
  Cmm_Blade_Reseat nobody("127.0.0.1", 1, "USERID", "s3cret", 0);
  Pegasus::CIMInstance element;
  std::string states;
  EXPECT_EQ(nobody.GetManagedElementREF("node03", element), 1);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"1 Connect CIMMOM Failed. RC: -4"});
  EXPECT_EQ(nobody.GetAvailableRequestedPowerStates("node03", states), 1);
  EXPECT_EQ(OwnLines().size(), 2U);
  EXPECT_EQ(OwnLines()[1], "1 Connect CIMMOM Failed. RC: -4");
}

TEST_F(BladeLookup, CopiesGoOnWhenTheOriginalIsGone) {
  ScriptNodes({"node03"});
  auto original = std::make_unique<Cmm_Blade_Reseat>("127.0.0.1", server.Port(), "USERID", "s3cret", 1);
  Cmm_Blade_Reseat copy(*original);
  Cmm_Blade_Reseat assigned("127.0.0.1", 1, "other", "other", 2);
  assigned = copy;
  assigned = *&assigned;
  original.reset();
  EXPECT_EQ(copy.ReseatBlade(3), 0);
  EXPECT_EQ(assigned.ReseatBlade(3), 0);
}

TEST_F(BladeLookup, AWrongPasswordReachesNoLogLine) {
  CimServer::Options options = HttpsServer();
  options.user = "USERID";
  options.password = "right";
  CimServer guarded(options);
  Cmm_Blade_Reseat wrong("127.0.0.1", guarded.Port(), "USERID", "wr0ng-word", 0);
  std::string states;
  EXPECT_EQ(wrong.ReseatBlade(3), 9);
  EXPECT_EQ(wrong.GetAvailableRequestedPowerStates("node03", states), -1);
  for (const Log::Record& record : log.Records()) EXPECT_EQ(record.text.find("wr0ng-word"), std::string::npos);
  Cmm_Blade_Reseat right("127.0.0.1", guarded.Port(), "USERID", "right", 0);
  guarded.OnEnumerate(kPowerAssociation, Objects({PowerAssociation("node03", {2})}));
  EXPECT_EQ(right.GetAvailableRequestedPowerStates("node03", states), 0);
}

TEST_F(BladeLookup, TwoObjectsWorkOnTwoThreads) {
  ScriptNodes({"node03", "node10"});
  const auto reseatOften = [this](int bay) {
    Cmm_Blade_Reseat own("127.0.0.1", server.Port(), "USERID", "s3cret", 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(own.ReseatBlade(bay), 0);
  };
  std::thread first(reseatOften, 3);
  std::thread second(reseatOften, 10);
  first.join();
  second.join();
  EXPECT_EQ(Invocations().size(), 10U);
}

}  // namespace
}  // namespace Orvane::testing
