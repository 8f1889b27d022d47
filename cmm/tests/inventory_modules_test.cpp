// The collections of I/O modules and pass-through modules, which differ on purpose: one drops what it cannot read, the
// other stops.
#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IOModuleCollection : public InventoryTest {
 protected:
  void Modules(std::initializer_list<std::pair<std::string, std::string>> namesAndSlots) {
    std::vector<CimObjectSpec> systems;
    for (const auto& [name, slot] : namesAndSlots) {
      systems.push_back(System(name, {12}));
      ScriptIOModule(name, slot);
    }
    server.OnEnumerate("CIM_ComputerSystem", Objects(systems));
  }
  CIMIODataList list;
};

TEST_F(IOModuleCollection, AsksInOrderAndLogsEveryStep) {
  server.OnEnumerate("CIM_ComputerSystem",
                     Objects({System("cmm01", {29}), System("both", {12, 29}), System("iomodule03", {12})}));
  ScriptIOModule("iomodule03", "3");
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  const std::string system = "Associators CIM_ComputerSystem.Name=\"iomodule03\" ";
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem",
                          system + "[CIM_ComputerSystemPackage, CIM_PhysicalPackage]",
                          "Associators CIM_PhysicalPackage.Tag=\"iomodule03\" [CIM_PackageInSlot, CIM_Slot]",
                          system + "[CIM_ElementSoftwareIdentity, CIM_SoftwareIdentity]",
                          "EnumerateInstances CIM_ElementSoftwareIdentity",
                          system + "[CIM_HostedAccessPoint, CIM_IPProtocolEndpoint]", "disconnect"));
  EXPECT_THAT(
      Lines(),
      ElementsAre("3 collect IOModuleData", ConnectLine(), "3 collect physical info", "4 collect firmware infomation.",
                  "4 firmware_indentity.FullVersionString1-2.3.4 raw: 1-2.3.4", "4 collect IP address information"));
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_FALSE(list.Get(0).IsPassThru);
  EXPECT_EQ(list.Get(0).Label, "");
  EXPECT_EQ(list.Get(0).Physical.SlotNumber, 3);
  EXPECT_EQ(list.Get(0).IPs.size(), 1U);
  ASSERT_EQ(list.Get(0).Firmwares.size(), 1U);
  EXPECT_EQ(list.Get(0).Firmwares[0].ModuleFirmwareKey, "iomodule03 vpd-iomodule03 pos-iomodule03 image class ");
}

TEST_F(IOModuleCollection, EmptyPartsOfTheFirmwareKeyReadNull) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  ScriptIOModule("iomodule03", "3");
  server.OnAssociators(SystemPath("iomodule03"), kSystemPackage, kPhysicalPackage,
                       Objects({TypedPackage("iomodule03", "", "")}));
  server.OnAssociators(SystemPath("iomodule03"), kElementIdentity, kIdentity,
                       Objects({CimObjectSpec("CIM_SoftwareIdentity").Key("InstanceID", "a")}));
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Firmwares.at(0).ModuleFirmwareKey, "Null-Null-Null");
}

TEST_F(IOModuleCollection, FirmwareKeyIsCutAt127Characters) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  ScriptIOModule("iomodule03", "3");
  server.OnAssociators(SystemPath("iomodule03"), kSystemPackage, kPhysicalPackage,
                       Objects({TypedPackage("iomodule03", std::string(100, 'v'), std::string(100, 'p'))}));
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Firmwares.at(0).ModuleFirmwareKey, std::string(100, 'v') + "-" + std::string(26, 'p'));
}

TEST_F(IOModuleCollection, ModuleWithoutPhysicalInformationIsDropped) {
  Modules({{"iomodule01", "1"}, {"iomodule02", "2"}});
  server.OnAssociators(SystemPath("iomodule01"), kSystemPackage, kPhysicalPackage, NoObjects());
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(2));
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectPhysicalInfo] failedreturn code: 3"));
}

TEST_F(IOModuleCollection, ModuleWithoutFirmwareIsDropped) {
  Modules({{"iomodule01", "1"}, {"iomodule02", "2"}});
  server.OnAssociators(SystemPath("iomodule01"), kElementIdentity, kIdentity, NoObjects());
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(2));
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectFirmwareInfo] failedreturn code: 3"));
}

TEST_F(IOModuleCollection, ModuleWithoutEndpointsIsDropped) {
  Modules({{"iomodule01", "1"}, {"iomodule02", "2"}});
  server.OnAssociators(SystemPath("iomodule02"), kAccessPoint, kEndpoint, NoObjects());
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(1));
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectIPInfo] failedreturn code: 3"));
}

TEST_F(IOModuleCollection, EveryPartIsAskedForEvenWhenTheFirstFailed) {
  Modules({{"iomodule01", "1"}});
  server.OnAssociators("", kSystemPackage, kPhysicalPackage, NoObjects());
  server.OnAssociators("", kElementIdentity, kIdentity, NoObjects());
  server.OnAssociators("", kAccessPoint, kEndpoint, NoObjects());
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectPhysicalInfo] failedreturn code: 3",
                                        "perform func[collectFirmwareInfo] failedreturn code: 3",
                                        "perform func[collectIPInfo] failedreturn code: 3"));
}

TEST_F(IOModuleCollection, SlotNumberThatIsNoNumberDropsTheModuleWithFour) {
  Modules({{"iomodule01", "one"}, {"iomodule02", "2"}});
  EXPECT_EQ(imp.collectIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(2));
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Unknown exception occurred", "perform func[collectPhysicalInfo] failedreturn code: 4"));
}

TEST_F(IOModuleCollection, NoIOModuleGivesThree) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  EXPECT_EQ(imp.collectIOModuleData(list), 3);
  EXPECT_THAT(Lines(), ElementsAre("3 collect IOModuleData", ConnectLine(), "1 Not found a IOModule Instance"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
}

TEST_F(IOModuleCollection, ACimErrorGivesThreeAndItsText) {
  server.OnEnumerate("CIM_ComputerSystem", CimError(1, "repository is down"));
  EXPECT_EQ(imp.collectIOModuleData(list), 3);
  EXPECT_THAT(log.Texts(1), ElementsAre("repository is down"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
}

TEST_F(IOModuleCollection, NothingConnectedGivesOne) {
  CMMTarnInventoryImp nobody("127.0.0.1", 1, "USERID", "s3cret");
  EXPECT_EQ(nobody.collectIOModuleData(list), 1);
  EXPECT_EQ(log.Texts(1).back(), "Connection is fail, please check your network");
  EXPECT_EQ(nobody.collectPassThruModuleData(list), 1);
  EXPECT_EQ(log.Texts(1).back(), "Connection is fail, please check your network");
}

class PassThruCollection : public InventoryTest {
 protected:
  void Modules(std::initializer_list<std::pair<std::string, std::string>> idsAndSlots) {
    std::vector<CimObjectSpec> modules;
    for (const auto& [id, slot] : idsAndSlots) {
      modules.push_back(PassThru(id));
      ScriptPassThru(id, slot);
    }
    server.OnEnumerate("CIM_PassThroughModule", Objects(modules));
  }
  CIMIODataList list;
};

TEST_F(PassThruCollection, AsksInOrderAndLogsEveryStep) {
  Modules({{"iomodule02", "2"}});
  EXPECT_EQ(imp.collectPassThruModuleData(list), 0);
  const std::string module = "Associators CIM_PassThroughModule.DeviceID=\"iomodule02\" ";
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_PassThroughModule", module + "[CIM_Realizes, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"iomodule02\" [CIM_PackageInSlot, CIM_Slot]",
                  module + "[CIM_ElementSoftwareIdentity, CIM_SoftwareIdentity]",
                  "EnumerateInstances CIM_ElementSoftwareIdentity", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre("3 collect PassThruModuleData", ConnectLine(), "3 collect physical info",
                                   "4 collect firmware infomation.",
                                   "4 firmware_indentity.FullVersionString1-2.3.4 raw: 1-2.3.4"));
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_TRUE(list.Get(0).IsPassThru);
  EXPECT_THAT(list.Get(0).IPs, IsEmpty());
  EXPECT_EQ(list.Get(0).Firmwares.at(0).ModuleFirmwareKey, "");
}

TEST_F(PassThruCollection, DedicatedPlaysNoPart) {
  Modules({{"a", "1"}});
  server.OnEnumerate("CIM_PassThroughModule", Objects({PassThru("a").With("Dedicated", CimUint16Array({29}))}));
  EXPECT_EQ(imp.collectPassThruModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(1));
}

TEST_F(PassThruCollection, EmptyChassisGivesZero) {
  EXPECT_EQ(imp.collectPassThruModuleData(list), 0);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_THAT(log.Texts(1), IsEmpty());
  EXPECT_EQ(inventory.GetPassThruData(2, list), 5);
}

TEST_F(PassThruCollection, FirmwareFailureStopsAndEarlierModulesStay) {
  Modules({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  server.OnAssociators(PassThruPath("b"), kElementIdentity, kIdentity, NoObjects());
  EXPECT_EQ(imp.collectPassThruModuleData(list), 3);
  EXPECT_THAT(Bays(list), ElementsAre(1));
  EXPECT_THAT(log.Texts(1), ElementsAre("Failed to perform func[collectFirmwareInfo].return code: 3"));
  const std::vector<std::string> conversation = Conversation();
  EXPECT_EQ(conversation.back(), "disconnect");
  EXPECT_EQ(conversation[conversation.size() - 2], "EnumerateInstances CIM_ElementSoftwareIdentity");
}

TEST_F(PassThruCollection, PhysicalFailureStopsBeforeTheFirmware) {
  Modules({{"a", "1"}, {"b", "2"}});
  server.OnAssociators(PassThruPath("a"), kRealizes, kPhysicalPackage, NoObjects());
  EXPECT_EQ(imp.collectPassThruModuleData(list), 3);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_THAT(log.Texts(1), ElementsAre("Failed to perform func[collectPhysicalInfo].return code: 3"));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_PassThroughModule",
                          "Associators CIM_PassThroughModule.DeviceID=\"a\" [CIM_Realizes, CIM_PhysicalPackage]",
                          "AssociatorNames CIM_PassThroughModule.DeviceID=\"a\" [CIM_Realizes, CIM_PhysicalPackage]",
                          "disconnect"));
}

TEST_F(PassThruCollection, SlotNumberThatIsNoNumberStopsWithFour) {
  Modules({{"a", "1"}, {"b", "x"}});
  EXPECT_EQ(imp.collectPassThruModuleData(list), 4);
  EXPECT_THAT(Bays(list), ElementsAre(1));
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Unknown exception occurred", "Failed to perform func[collectPhysicalInfo].return code: 4"));
}

TEST_F(PassThruCollection, ACimErrorGivesTwo) {
  server.OnEnumerate("CIM_PassThroughModule", CimError(7, "not here"));
  EXPECT_EQ(imp.collectPassThruModuleData(list), 2);
  EXPECT_THAT(log.Texts(1), ElementsAre("not here"));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

}  // namespace
}  // namespace Orvane::testing
