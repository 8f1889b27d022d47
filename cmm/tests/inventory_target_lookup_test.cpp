// The lookup of the CIM instance that an update or reboot acts on, mode by mode.
#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TargetLookup : public InventoryTest {
 protected:
  /// Path text of what was found, empty for nothing.
  std::string Find(int bayId, int mode) {
    const Pegasus::CIMInstance instance = imp.GetTargetInstance(bayId, mode);
    return instance.isUninitialized() ? "" : std::string(instance.getPath().toString().getCString());
  }
  static CimObjectSpec Cmm(const std::string& name, const CimValue& dedicated, const CimValue& state) {
    return CimObjectSpec("CIM_ComputerSystem")
        .Key("Name", name)
        .With("Dedicated", dedicated)
        .With("EnabledState", state);
  }
};

TEST_F(TargetLookup, PrimaryCmmIsTheFirstEnabledOne) {
  server.OnEnumerate(
      "CIM_ComputerSystem",
      Objects({Cmm("node01", CimUint16Array({3}), CimUint16(2)), Cmm("cmm02", CimUint16Array({29}), CimUint16(3)),
               Cmm("cmm01", CimUint16Array({29}), CimUint16(2)), Cmm("cmm03", CimUint16Array({29}), CimUint16(2))}));
  EXPECT_EQ(Find(0, 0), SystemPath("cmm01"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), "3 the size of insts_CmptSys is 4", "4 Primary CMM found!"));
}

TEST_F(TargetLookup, PrimaryCmmTestsAreSubstringTests) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({Cmm("a", CimUint16Array({1, 29, 3}), CimUint16(12))}),
                     Objects({Cmm("b", CimUint16Array({290}), CimString("is 2"))}),
                     Objects({Cmm("c", CimUint16Array({2, 9}), CimUint16(2))}));
  EXPECT_EQ(Find(5, 0), SystemPath("a")) << "the bay plays no part";
  EXPECT_EQ(Find(-3, 0), SystemPath("b"));
  EXPECT_EQ(Find(0, 0), "") << "\"2 9 \" does not contain 29";
}

TEST_F(TargetLookup, PrimaryCmmIsNotToldFromTheRedundancySet) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({Cmm("cmm01", CimUint16Array({29}), CimUint16(2))}));
  server.OnAssociators("", kIsSpare, kRedundancySet,
                       Objects({CimObjectSpec("CIM_RedundancySet").Key("InstanceID", "set")}));
  EXPECT_EQ(Find(0, 0), SystemPath("cmm01"));
  EXPECT_THAT(server.Summaries(), ElementsAre("EnumerateInstances CIM_ComputerSystem"));
}

TEST_F(TargetLookup, IOModuleOfTheBay) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("node03", "3"), Slot("iomodule03", "3")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("empty"), Package("p")}));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem",
                       Objects({System("first", {12}), System("second", {12})}));
  EXPECT_EQ(Find(3, 1), "//cmm01/root/cimv2:" + SystemPath("first"));
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect", "connect",
                  "AssociatorNames CIM_Slot.Tag=\"iomodule03\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"empty\" [CIM_ComputerSystemPackage, CIM_ComputerSystem]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_ComputerSystemPackage, CIM_ComputerSystem]",
                  "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), ConnectLine()));
}

TEST_F(TargetLookup, PassThruOfTheBay) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("switch", {12})}));
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, Objects({PassThru("module")}));
  EXPECT_EQ(Find(2, 2), "//cmm01/root/cimv2:" + PassThruPath("module"));
  EXPECT_EQ(server.Summaries().back(),
            "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_Realizes, CIM_PassThroughModule]");
}

TEST_F(TargetLookup, EmptyBayIsLoggedAndMissingSlotIsNot) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  EXPECT_EQ(Find(2, 1), "");
  EXPECT_THAT(log.Texts(1), ElementsAre("not find intereting instance"));
  EXPECT_EQ(Find(2, 2), "");
  EXPECT_EQ(log.Texts(1).size(), 2U);
  EXPECT_EQ(Find(3, 1), "");
  EXPECT_EQ(log.Texts(1).size(), 2U);
}

TEST_F(TargetLookup, ModuleThatCannotBeReachedAgainWarns) {
  server.OnEnumerate("CIM_Slot", ThenRefuse(Objects({Slot("iomodule02", "2")})));
  EXPECT_EQ(Find(2, 1), "");
  EXPECT_THAT(log.Texts(2), ElementsAre("Connection is fail, please check your network"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect"));
}

CimObjectSpec PowerService(const std::string& system) {
  return CimObjectSpec("CIM_PowerManagementService").Key("Name", "power").Key("SystemName", system);
}

TEST_F(TargetLookup, PowerServiceOfTheBlade) {
  server.OnEnumerate("CIM_PowerManagementService", Objects({PowerService("node10"), PowerService("node01"),
                                                            PowerService("node03"), PowerService("x node03")}));
  EXPECT_EQ(Find(3, 4), "CIM_PowerManagementService.Name=\"power\",SystemName=\"node03\"");
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), "3 the size of la_insts_CmpmServ is 4", "4 node bay: node03",
                                   "4 Target blade's CIM_PowerManagementService instance found!"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_PowerManagementService", "disconnect"));
}

struct NodeCase {
  int bayId;
  const char* name;
};
class NodeNames : public TargetLookup, public ::testing::WithParamInterface<NodeCase> {};

TEST_P(NodeNames, OfABay) {
  server.OnEnumerate("CIM_PowerManagementService", Objects({PowerService("elsewhere"), PowerService(GetParam().name)}));
  EXPECT_EQ(Find(GetParam().bayId, 4),
            std::string("CIM_PowerManagementService.Name=\"power\",SystemName=\"") + GetParam().name + "\"");
  EXPECT_TRUE(log.Has(4, std::string("node bay: ") + GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Bays, NodeNames,
                         ::testing::Values(NodeCase{0, "node0"}, NodeCase{1, "node01"}, NodeCase{3, "node03"},
                                           NodeCase{9, "node09"}, NodeCase{10, "node10"}, NodeCase{14, "node14"},
                                           NodeCase{-1, "node-1"}),
                         [](const ::testing::TestParamInfo<NodeCase>& param) {
                           return param.param.bayId < 0 ? std::string("Negative") : std::to_string(param.param.bayId);
                         });

TEST_F(TargetLookup, BayZeroTakesTheFirstServiceOfAnyNodeBelowTen) {
  server.OnEnumerate("CIM_PowerManagementService", Objects({PowerService("node10"), PowerService("node04")}));
  EXPECT_EQ(Find(0, 4), "CIM_PowerManagementService.Name=\"power\",SystemName=\"node04\"");
}

TEST_F(TargetLookup, NoPowerServiceIsLogged) {
  EXPECT_EQ(Find(3, 4), "");
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), "3 the size of la_insts_CmpmServ is 0",
                                   "3 Cannot get instance CIM_PowerManagementService"));
}

TEST_F(TargetLookup, NoServiceOfTheBladeIsNotLogged) {
  server.OnEnumerate("CIM_PowerManagementService", Objects({PowerService("node01")}));
  EXPECT_EQ(Find(2, 4), "");
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), "3 the size of la_insts_CmpmServ is 1", "4 node bay: node02"));
}

TEST_F(TargetLookup, OtherModesConnectAndFindNothing) {
  for (const int mode : {-1, 3, 5}) {
    server.ForgetJournal();
    EXPECT_EQ(Find(3, mode), "") << mode;
    EXPECT_THAT(Conversation(), ElementsAre("connect", "disconnect")) << mode;
  }
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(TargetLookup, NothingConnectedIsLogged) {
  CMMTarnInventoryImp nobody("127.0.0.1", 1, "USERID", "s3cret");
  EXPECT_TRUE(nobody.GetTargetInstance(0, 0).isUninitialized());
  EXPECT_EQ(log.Texts(1).back(), "Connection is fail, please check your network");
}

struct StatusCase {
  unsigned code;
  const char* name;  // empty: not logged
};
class TargetStatus : public TargetLookup, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(TargetStatus, OfACimError) {
  const StatusCase& status = GetParam();
  server.OnAnything(CimError(status.code, "the server's own words"));
  for (const int mode : {0, 1, 2, 4}) EXPECT_EQ(Find(3, mode), "") << mode;
  EXPECT_TRUE(server.WaitUntilAllClosed());
  if (*status.name == '\0') {
    EXPECT_THAT(log.Texts(1), IsEmpty());
  } else {
    EXPECT_THAT(log.Texts(1), ElementsAre(status.name, status.name, status.name, status.name));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Codes, TargetStatus,
    ::testing::Values(StatusCase{1, "CIM_ERR_FAILED"}, StatusCase{2, "CIM_ERR_ACCESS_DENIED"}, StatusCase{3, ""},
                      StatusCase{4, "CIM_ERR_INVALID_PARAMETER"}, StatusCase{5, "CIM_ERR_INVALID_CLASS"},
                      StatusCase{6, ""}, StatusCase{7, "CIM_ERR_NOT_SUPPORTED"}, StatusCase{8, ""}, StatusCase{11, ""},
                      StatusCase{16, ""}, StatusCase{17, ""}, StatusCase{200, ""}),
    [](const ::testing::TestParamInfo<StatusCase>& param) { return "Code" + std::to_string(param.param.code); });

// Errors of the later requests end the lookup as well, they do not read as an empty bay.
TEST_F(TargetLookup, AnErrorBehindTheSlotIsNamed) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, CimError(7, "no"));
  EXPECT_EQ(Find(2, 1), "");
  EXPECT_EQ(Find(2, 2), "");
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators("", kSystemPackage, "CIM_ComputerSystem", CimError(2, "no"));
  server.OnAssociators("", kRealizes, kPassThruClass, CimError(5, "no"));
  EXPECT_EQ(Find(2, 1), "");
  EXPECT_EQ(Find(2, 2), "");
  EXPECT_THAT(log.Texts(1), ElementsAre("CIM_ERR_NOT_SUPPORTED", "CIM_ERR_NOT_SUPPORTED", "CIM_ERR_ACCESS_DENIED",
                                        "CIM_ERR_INVALID_CLASS"));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(TargetLookup, AnErrorWithoutAStatusIsLoggedWithItsText) {
  server.OnAnything(HttpStatus(500, "Internal Server Error"), Close());
  EXPECT_EQ(Find(0, 0), "");
  EXPECT_EQ(Find(3, 4), "");
  EXPECT_THAT(log.Texts(1), ElementsAre("HTTP Error (500 Internal Server Error).", "Connection closed by CIM Server."));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(TargetLookup, TheOtherFormLetsErrorsPassAndClosesItsConnection) {
  server.OnEnumerate("CIM_Slot", CimError(2, "no"), Close());
  EXPECT_THROW(imp.GetTargetInstanceOrThrow(3, 1), Pegasus::CIMException);
  EXPECT_THROW(imp.GetTargetInstanceOrThrow(3, 1), Pegasus::CIMClientMalformedHTTPException);
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), ConnectLine())) << "no line of its own";
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(TargetLookup, SlotNumbersAreReadLeniently) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule-a", " 2x"), Slot("iomodule-b", "none")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators("", kSystemPackage, "CIM_ComputerSystem", Objects({System("s", {12})}));
  EXPECT_NE(Find(2, 1), "");
  EXPECT_EQ(server.Summaries()[1],
            "AssociatorNames CIM_Slot.Tag=\"iomodule-a\" [CIM_PackageInSlot, CIM_PhysicalPackage]");
  server.ForgetJournal();
  EXPECT_NE(Find(0, 1), "");
  EXPECT_EQ(server.Summaries()[1],
            "AssociatorNames CIM_Slot.Tag=\"iomodule-b\" [CIM_PackageInSlot, CIM_PhysicalPackage]");
}

}  // namespace
}  // namespace Orvane::testing
