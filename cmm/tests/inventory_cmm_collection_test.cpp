// The collection of chassis management modules: order of requests, what makes a CMM primary, what survives which
// failure.
#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class CmmCollection : public InventoryTest {
 protected:
  int Collect() { return imp.collectCMMData(list); }
  CMMDataList list;
};

TEST_F(CmmCollection, AsksInOrderAndLogsEveryStep) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("node01", {3}), System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  EXPECT_EQ(Collect(), 0);
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem",
                  "Associators CIM_ComputerSystem.Name=\"cmm01\" [CIM_ComputerSystemPackage, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"cmm01\" [CIM_PackageInSlot, CIM_Slot]",
                  "Associators CIM_ComputerSystem.Name=\"cmm01\" [CIM_IsSpare, CIM_RedundancySet]",
                  "Associators CIM_ComputerSystem.Name=\"cmm01\" [CIM_InstalledSoftwareIdentity, CIM_SoftwareIdentity]",
                  "EnumerateInstances CIM_InstalledSoftwareIdentity",
                  "Associators CIM_ComputerSystem.Name=\"cmm01\" [CIM_HostedAccessPoint, CIM_IPProtocolEndpoint]",
                  "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre("3 collect CMMData", ConnectLine(), "3 collect physical info", "3 Is Primary CMM",
                                   "3 CMM Name:cmm01", "4 collect firmware infomation.",
                                   "4 firmware_indentity.FullVersionString1-2.3.4 raw: 1-2.3.4",
                                   "4 collect IP address information"));
  for (const CimRequest& request : server.Requests()) EXPECT_EQ(request.nameSpace, "root/cimv2");
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Name, "cmm01");
  EXPECT_EQ(list.Get(0).NotPrimary, 0);
  EXPECT_EQ(list.Get(0).Physical.SlotNumber, 1);
  EXPECT_EQ(list.Get(0).Physical.SerialNumber, "cmm01 serial");
  ASSERT_EQ(list.Get(0).Firmwares.size(), 1U);
  EXPECT_EQ(list.Get(0).Firmwares[0].ElementName, "cmm01 image name");
  EXPECT_EQ(list.Get(0).Firmwares[0].ModuleFirmwareKey, "");
  ASSERT_EQ(list.Get(0).IPs.size(), 1U);
  EXPECT_EQ(list.Get(0).IPs[0].IPv4Address, "cmm01 v4");
}

TEST_F(CmmCollection, StandbyCmmOfARedundancySetIsNotPrimary) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm02", {29}), System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  ScriptCmm("cmm02", "2");
  server.OnAssociators(SystemPath("cmm02"), kIsSpare, kRedundancySet,
                       Objects({CimObjectSpec("CIM_RedundancySet").Key("InstanceID", "set")}));
  EXPECT_EQ(Collect(), 0);
  ASSERT_EQ(list.Size(), 2U);
  EXPECT_EQ(list.Get(0).Name, "cmm02");
  EXPECT_EQ(list.Get(0).NotPrimary, 1);
  EXPECT_EQ(list.Get(1).Name, "cmm01");
  EXPECT_EQ(list.Get(1).NotPrimary, 0);
  EXPECT_TRUE(log.Has(3, "Is NOT Primary CMM"));
  EXPECT_TRUE(log.Has(3, "Is Primary CMM"));

  CMMDataList primary;
  EXPECT_EQ(inventory.GetCMMData(primary), 0);
  ASSERT_EQ(primary.Size(), 1U);
  EXPECT_EQ(primary.Get(0).Name, "cmm01");
}

TEST_F(CmmCollection, EnabledStatePlaysNoPartInPrimacyHere) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}).With("EnabledState", CimUint16(3)),
                                                    System("cmm02", {29}).With("EnabledState", CimUint16(2))}));
  ScriptCmm("cmm01", "1");
  ScriptCmm("cmm02", "2");
  server.OnAssociators(SystemPath("cmm02"), kIsSpare, kRedundancySet,
                       Objects({CimObjectSpec("CIM_RedundancySet").Key("InstanceID", "set")}));
  EXPECT_EQ(Collect(), 0);
  ASSERT_EQ(list.Size(), 2U);
  EXPECT_EQ(list.Get(0).NotPrimary, 0);
  EXPECT_EQ(list.Get(1).NotPrimary, 1);
  // The target lookup looks at the enabled state alone and so finds the other one.
  const Pegasus::CIMInstance target = imp.GetTargetInstance(0, 0);
  ASSERT_FALSE(target.isUninitialized());
  EXPECT_EQ(target.getPath().toString(), Pegasus::String("CIM_ComputerSystem.Name=\"cmm02\""));
}

TEST_F(CmmCollection, TwoPrimariesAreBothHandedOut) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}), System("cmm02", {29})}));
  ScriptCmm("cmm01", "1");
  ScriptCmm("cmm02", "2");
  CMMDataList primary;
  EXPECT_EQ(inventory.GetCMMData(primary), 0);
  ASSERT_EQ(primary.Size(), 2U);
  EXPECT_EQ(primary.Get(0).Name, "cmm01");
  EXPECT_EQ(primary.Get(1).Name, "cmm02");
}

TEST_F(CmmCollection, NoPrimaryGivesAnEmptyListAndSuccess) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators("", kIsSpare, kRedundancySet,
                       Objects({CimObjectSpec("CIM_RedundancySet").Key("InstanceID", "set")}));
  CMMDataList primary;
  EXPECT_EQ(inventory.GetCMMData(primary), 0);
  EXPECT_EQ(primary.Size(), 0U);
}

TEST_F(CmmCollection, AnotherDedicatedValueBesideTheCmmsDoesNotMatch) {
  server.OnEnumerate("CIM_ComputerSystem",
                     Objects({System("a", {29, 3}), System("b", {3, 29}), System("c", {290}), System("d", {}),
                              CimObjectSpec("CIM_ComputerSystem").Key("Name", "e")}));
  EXPECT_EQ(Collect(), 3);
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre("3 collect CMMData", ConnectLine(), "1 Not found a CMM Instance"));
  EXPECT_EQ(list.Size(), 0U);
}

TEST_F(CmmCollection, DedicatedIsComparedAsText) {
  server.OnEnumerate(
      "CIM_ComputerSystem",
      Objects({CimObjectSpec("CIM_ComputerSystem").Key("Name", "cmm01").With("DEDICATED", CimStringArray({"29"}))}));
  ScriptCmm("cmm01", "1");
  EXPECT_EQ(Collect(), 0);
  EXPECT_EQ(list.Size(), 1U);
}

TEST_F(CmmCollection, NothingConnectedGivesOne) {
  CMMTarnInventoryImp nobody("127.0.0.1", 1, "USERID", "s3cret");
  EXPECT_EQ(nobody.collectCMMData(list), 1);
  EXPECT_THAT(Lines(), ElementsAre("3 collect CMMData",
                                   "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:1. Connection failed.",
                                   "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:1. Connection failed.",
                                   "3 Connect CIMOM . H:127.0.0.1 P:1 U:USERID RC: -4",
                                   "1 Connection is fail, please check your network"));
}

TEST_F(CmmCollection, ACimErrorOfTheEnumerationReadsAsNoCmm) {
  server.OnEnumerate("CIM_ComputerSystem", CimError(5, "no such class"));
  EXPECT_EQ(Collect(), 3);
  EXPECT_THAT(Lines(), ElementsAre("3 collect CMMData", ConnectLine(), "1 EnumerateInstances Exception: no such class",
                                   "1 Not found a CMM Instance"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
}

TEST_F(CmmCollection, MissingPhysicalInformationKeepsTheCmm) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage, NoObjects());
  EXPECT_EQ(Collect(), 0);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Physical.UUID, "");
  EXPECT_EQ(list.Get(0).Firmwares.size(), 1U);
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func [collectPhysicalInfo] failed. "));
}

TEST_F(CmmCollection, FirmwareFailureOfTheLastCmmIsReturnedAndTheCmmStays) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}), System("cmm02", {29})}));
  ScriptCmm("cmm01", "1");
  ScriptCmm("cmm02", "2");
  server.OnAssociators(SystemPath("cmm02"), kInstalledIdentity, kIdentity, NoObjects());
  EXPECT_EQ(Collect(), 3);
  ASSERT_EQ(list.Size(), 2U);
  EXPECT_EQ(list.Get(1).Name, "cmm02");
  EXPECT_THAT(list.Get(1).Firmwares, IsEmpty());
  EXPECT_EQ(list.Get(1).IPs.size(), 1U) << "the endpoints are read after the firmware failed";
  EXPECT_THAT(log.Texts(1), ElementsAre("Collect Firmware info"));

  CMMDataList primary;
  EXPECT_EQ(inventory.GetCMMData(primary), 3);
  EXPECT_EQ(primary.Size(), 0U);
}

TEST_F(CmmCollection, FirmwareFailureIsForgottenWhenALaterCmmSucceeds) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29}), System("cmm02", {29})}));
  ScriptCmm("cmm01", "1");
  ScriptCmm("cmm02", "2");
  server.OnAssociators(SystemPath("cmm01"), kInstalledIdentity, kIdentity, NoObjects());
  EXPECT_EQ(Collect(), 0);
  EXPECT_EQ(list.Size(), 2U);
  EXPECT_THAT(log.Texts(1), ElementsAre("Collect Firmware info"));
}

TEST_F(CmmCollection, EndpointFailureIsIgnored) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators(SystemPath("cmm01"), kAccessPoint, kEndpoint, NoObjects());
  EXPECT_EQ(Collect(), 0);
  EXPECT_EQ(list.Size(), 1U);
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(CmmCollection, ACimErrorOfTheSpareQuestionMeansPrimary) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  server.OnAssociators("", kIsSpare, kRedundancySet, CimError(1, "provider died"));
  EXPECT_EQ(Collect(), 0);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).NotPrimary, 0);
  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: provider died"));
}

TEST_F(CmmCollection, AppendsToTheList) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  EXPECT_EQ(inventory.GetCMMData(list), 0);
  EXPECT_EQ(inventory.GetCMMData(list), 0);
  ASSERT_EQ(list.Size(), 2U);
  EXPECT_NE(&list.Get(0), &list.Get(1));
  EXPECT_THAT(Lines(), Contains("4 CMMTarnInventoryImp::GetCMMData"));
}

TEST_F(CmmCollection, ThePasswordIsNeverLogged) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  EXPECT_EQ(Collect(), 0);
  EXPECT_THAT(Lines(), Not(Contains(::testing::HasSubstr("s3cret"))));
}

}  // namespace
}  // namespace Orvane::testing
