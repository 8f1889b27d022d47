// The exported operations of CMMInventory: codes, log lines, requests and connections of each.
#include <algorithm>

#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Facade : public InventoryTest {
 protected:
  Facade() : nobody("127.0.0.1", 1, "USERID", "s3cret") {}

  static CimObjectSpec Named(const std::string& className, const std::string& name) {
    return CimObjectSpec(className).Key("Name", name);
  }
  void IOModules(std::initializer_list<std::pair<std::string, std::string>> namesAndSlots) {
    std::vector<CimObjectSpec> systems;
    for (const auto& [name, slot] : namesAndSlots) {
      systems.push_back(System(name, {12}));
      ScriptIOModule(name, slot);
    }
    server.OnEnumerate("CIM_ComputerSystem", Objects(systems));
  }
  void PassThrus(std::initializer_list<std::pair<std::string, std::string>> idsAndSlots) {
    std::vector<CimObjectSpec> modules;
    for (const auto& [id, slot] : idsAndSlots) {
      modules.push_back(PassThru(id));
      ScriptPassThru(id, slot);
    }
    server.OnEnumerate("CIM_PassThroughModule", Objects(modules));
  }

  CMMInventory nobody;  ///< nothing listens on its port
  CIMIODataList list;
};

TEST_F(Facade, ConstructionConnectsToNothing) { EXPECT_THAT(server.Events(), IsEmpty()); }

TEST_F(Facade, IsCmmNeedsASystemDedicatedTo29Alone) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("a", {29, 1})}),
                     Objects({System("a", {1}), System("b", {29})}), NoObjects(), CimError(1, "failed"));
  EXPECT_FALSE(inventory.IsCMM());
  EXPECT_TRUE(inventory.IsCMM());
  EXPECT_FALSE(inventory.IsCMM());
  EXPECT_FALSE(inventory.IsCMM());
  EXPECT_THAT(log.Texts(1), ElementsAre("EnumerateInstances Exception: failed"));
  EXPECT_FALSE(nobody.IsCMM());
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect", "connect",
                                          "EnumerateInstances CIM_ComputerSystem", "disconnect", "connect",
                                          "EnumerateInstances CIM_ComputerSystem", "disconnect", "connect",
                                          "EnumerateInstances CIM_ComputerSystem", "disconnect"));
}

CimObjectSpec Chassis(const std::string& name) {
  return CimObjectSpec("CIM_Chassis")
      .Key("Tag", name)
      .With("Name", name)
      .With("Model", "model")
      .With("SerialNumber", "serial")
      .With("PartNumber", "part")
      .With("ElementName", "element");
}

TEST_F(Facade, ChassisInfoOfTheOneChassis) {
  server.OnEnumerate("CIM_Chassis", Objects({Chassis("chassis")}));
  ChassisInfo info;
  EXPECT_EQ(inventory.GetChassisInfo(info), 0);
  EXPECT_EQ(info.Name, "chassis");
  EXPECT_EQ(info.Model, "model");
  EXPECT_EQ(info.SerialNumber, "serial");
  EXPECT_EQ(info.PartNumber, "part");
  EXPECT_EQ(info.ElementName, "element");
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_Chassis", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine()));
}

TEST_F(Facade, NoChassisOrSeveralLeaveTheRecordAndReturnZero) {
  server.OnEnumerate("CIM_Chassis", NoObjects(), Objects({Chassis("a"), Chassis("b")}));
  ChassisInfo info;
  info.Name = "before";
  EXPECT_EQ(inventory.GetChassisInfo(info), 0);
  EXPECT_EQ(inventory.GetChassisInfo(info), 0);
  EXPECT_EQ(info.Name, "before");
  EXPECT_EQ(info.Model, "");
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Exception: GetChassisInfo size > 1. ", "Exception: GetChassisInfo size > 1. "));
}

TEST_F(Facade, ChassisInfoFailures) {
  server.OnEnumerate("CIM_Chassis", CimError(2, "denied"), HttpStatus(500, "Internal Server Error"));
  ChassisInfo info;
  EXPECT_EQ(inventory.GetChassisInfo(info), 3);
  EXPECT_EQ(inventory.GetChassisInfo(info), 3);
  EXPECT_THAT(log.Texts(1), ElementsAre("denied", "HTTP Error (500 Internal Server Error)."));
  EXPECT_EQ(nobody.GetChassisInfo(info), 1);
  EXPECT_THAT(log.Texts(1), ::testing::SizeIs(4))
      << "the failed connect adds the session's two lines and none of its own";
}

TEST_F(Facade, IOModulesOfBayZeroAreAll) {
  IOModules({{"iomodule03", "3"}, {"iomodule01", "1"}});
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(0, list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(3, 1));
  EXPECT_EQ(inventory.GetIOModuleData(list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(3, 1, 3, 1));
  EXPECT_THAT(log.Texts(4), Contains("GetIOModuleData. bayid:0").Times(2));
}

TEST_F(Facade, IOModuleBayBelowZeroIsRefusedWithoutTraffic) {
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(-1, list), 3);
  EXPECT_THAT(server.Events(), IsEmpty());
  EXPECT_THAT(Lines(),
              ElementsAre("4 GetIOModuleData. bayid:-1",
                          "1 The BayID for IOModule is not valid.Please choose a valide slot id for inventory."));
}

TEST_F(Facade, IOModuleBayTakesTheFirstMatchOnly) {
  IOModules({{"a", "3"}, {"b", "4"}, {"c", "4"}});
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(4, list), 0);
  ASSERT_EQ(list.Size(), 1U);
  EXPECT_EQ(list.Get(0).Physical.UUID, "b uuid");
  EXPECT_TRUE(log.Has(3, "found iomodule data. bayid: 4"));
}

TEST_F(Facade, IOModuleBayWithoutAModuleGivesFive) {
  IOModules({{"a", "3"}});
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(5, list), 5);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_THAT(log.Texts(1), ElementsAre("Not found the IOModule Data. bayid:5"));
}

TEST_F(Facade, IOModuleFailuresAreLoggedWithTheirCode) {
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(0, list), 3);
  EXPECT_EQ(inventory.GetIOModuleDataByBayID(2, list), 3);
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Not found a IOModule Instance", "func[collectIOModuleData] failed. return code: 3",
                          "Not found a IOModule Instance", "func[collectIOModuleData] failed. return code: 3"));
  EXPECT_EQ(nobody.GetIOModuleDataByBayID(2, list), 1);
  EXPECT_TRUE(log.Has(1, "func[collectIOModuleData] failed. return code: 1"));
}

TEST_F(Facade, PassThruTakesEveryMatch) {
  PassThrus({{"a", "2"}, {"b", "4"}, {"c", "2"}});
  EXPECT_EQ(inventory.GetPassThruData(2, list), 0);
  ASSERT_EQ(list.Size(), 2U);
  EXPECT_EQ(list.Get(0).Physical.UUID, "a uuid");
  EXPECT_EQ(list.Get(1).Physical.UUID, "c uuid");
  EXPECT_TRUE(log.Has(4, "GetPassThruData. bayid:2"));
}

TEST_F(Facade, PassThruHasNoValueForAllBaysAndRefusesNone) {
  PassThrus({{"a", "2"}, {"b", "0"}, {"c", "-1"}});
  EXPECT_EQ(inventory.GetPassThruData(0, list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(0));
  EXPECT_EQ(inventory.GetPassThruData(-1, list), 0);
  EXPECT_THAT(Bays(list), ElementsAre(0, -1));
  EXPECT_EQ(inventory.GetPassThruData(7, list), 5);
  EXPECT_EQ(inventory.GetPassThruData(-2, list), 5);
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(Facade, PassThruFailureKeepsWhatWasReadToItself) {
  PassThrus({{"a", "2"}, {"b", "4"}});
  server.OnAssociators(PassThruPath("b"), kElementIdentity, kIdentity, NoObjects());
  EXPECT_EQ(inventory.GetPassThruData(2, list), 3);
  EXPECT_EQ(list.Size(), 0U);
  EXPECT_TRUE(log.Has(1, "collect PassThru Module Data failed. RC: 3"));
  server.OnEnumerate("CIM_PassThroughModule", CimError(1, "no"));
  EXPECT_EQ(inventory.GetPassThruData(2, list), 2);
  EXPECT_TRUE(log.Has(1, "collect PassThru Module Data failed. RC: 2"));
  EXPECT_EQ(nobody.GetPassThruData(2, list), 1);
  EXPECT_TRUE(log.Has(1, "collect PassThru Module Data failed. RC: 1"));
}

TEST_F(Facade, SwitchTypeOfAnIOModule) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("chassis/node03", "3"), Slot("chassis/iomodule02", "2"),
                                          Slot("chassis/iomodule03", "3"), Slot("late/iomodule03", "3")}));
  server.OnAssociatorNames(SlotPath("chassis/iomodule03"), kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  EXPECT_EQ(inventory.GetSwitchType(3), 1);
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect", "connect",
                  "AssociatorNames CIM_Slot.Tag=\"chassis/iomodule03\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_ComputerSystemPackage, CIM_ComputerSystem]",
                  "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), ConnectLine(), "3 IOModule in BayID: 3"));
}

TEST_F(Facade, SwitchTypeOfAPassThru) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("empty"), Package("p")}));
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, Objects({PassThru("iomodule02")}));
  EXPECT_EQ(inventory.GetSwitchType(2), 2);
  EXPECT_THAT(
      server.Summaries(),
      ElementsAre("EnumerateInstances CIM_Slot",
                  "AssociatorNames CIM_Slot.Tag=\"iomodule02\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"empty\" [CIM_ComputerSystemPackage, CIM_ComputerSystem]",
                  "Associators CIM_PhysicalPackage.Tag=\"empty\" [CIM_Realizes, CIM_PassThroughModule]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_ComputerSystemPackage, CIM_ComputerSystem]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_Realizes, CIM_PassThroughModule]"));
  EXPECT_TRUE(log.Has(3, "PassThruswitch in BayID: 2"));
}

TEST_F(Facade, SwitchTypeOfAnEmptyBay) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_TRUE(log.Has(3, "None switch in BayID: 2"));
}

TEST_F(Facade, SwitchTypeNeedsASlotOfTheBayThatIsTaggedIomodule) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("node02", "2"), Slot("IOModule02", "2"), Slot("iomodule04", "4")}));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine()));
}

TEST_F(Facade, SlotNumbersAreReadLeniently) {
  server.OnEnumerate("CIM_Slot",
                     Objects({Slot("iomodule-a", " 12abc"), Slot("iomodule-b", "x3"), Slot("iomodule-c", "-4")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("s", {12})}));
  EXPECT_EQ(inventory.GetSwitchType(12), 1);
  EXPECT_EQ(inventory.GetSwitchType(0), 1) << "a text without digits reads 0";
  EXPECT_EQ(inventory.GetSwitchType(-4), 1);
  EXPECT_EQ(inventory.GetSwitchType(3), 3);
}

TEST_F(Facade, SwitchTypeFailures) {
  EXPECT_EQ(nobody.GetSwitchType(2), 3);
  EXPECT_EQ(log.Texts(1).back(), "Connect CIMOM Failed");
  server.OnEnumerate("CIM_Slot", CimError(1, "slots are gone"));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_EQ(log.Texts(1).back(), " Error:slots are gone");
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, CimError(6, "slot vanished"));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_EQ(log.Texts(1).back(), " Error:slot vanished");
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(Facade, SwitchTypeEndsAtTheFirstErrorOfAPackage) {
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
  server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p"), Package("q")}));
  server.OnAssociators(PackagePath("q"), kSystemPackage, "CIM_ComputerSystem", Objects({System("s", {12})}));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", CimError(1, "systems are gone"));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_THAT(log.Texts(1), ElementsAre(" Error:systems are gone"));
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", NoObjects());
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, HttpStatus(503, "Service Unavailable"));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_EQ(log.Texts(1).back(), " Error:HTTP Error (503 Service Unavailable).");
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(Facade, SwitchTypeThatCannotConnectAgainWarns) {
  server.OnEnumerate("CIM_Slot", ThenRefuse(Objects({Slot("iomodule02", "2")})));
  EXPECT_EQ(inventory.GetSwitchType(2), 3);
  EXPECT_THAT(log.Texts(2), ElementsAre("Connection is fail, please check your network"));
  EXPECT_EQ(log.Texts(1).back(), " Error:not connected");
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect"));
}

class SameType : public Facade {
 protected:
  void Module(const std::string& name, const std::string& vpdId, const std::string& posId, const std::string& slot) {
    systems.push_back(System(name, {12}));
    ScriptPhysical(SystemPath(name), kSystemPackage, TypedPackage(name, vpdId, posId), slot);
    server.OnEnumerate("CIM_ComputerSystem", Objects(systems));
  }
  std::vector<CimObjectSpec> systems{System("cmm01", {29})};
  std::vector<int> bays{99};
};

TEST_F(SameType, OtherBaysOfTheSameVpdAndPosId) {
  Module("a", "V", "P", "4");
  Module("b", "V", "P", "3");
  Module("c", "V", "other", "5");
  Module("d", "other", "P", "6");
  Module("e", "V", "P", "1");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 0);
  EXPECT_THAT(bays, ElementsAre(99, 4, 1));
  EXPECT_TRUE(log.Has(3, "found same bayid module at slot :4 1"));
  const std::vector<std::string> conversation = Conversation();
  EXPECT_EQ(conversation.size(), 3 + 5 * 2U);
  EXPECT_EQ(conversation.front(), "connect");
  EXPECT_EQ(conversation[1], "EnumerateInstances CIM_ComputerSystem");
  EXPECT_EQ(conversation.back(), "disconnect");
}

TEST_F(SameType, NoneGivesFive) {
  Module("a", "V", "P", "4");
  Module("b", "V2", "P", "3");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 5);
  EXPECT_THAT(bays, ElementsAre(99));
  EXPECT_TRUE(log.Has(3, "NO same type io module exists in chassis"));
}

TEST_F(SameType, NoSystemAtAllGivesFive) {
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 5);
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(SameType, ABayWithoutAModuleMatchesModulesWithoutIds) {
  Module("a", "", "", "4");
  Module("b", "V", "P", "3");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(7, bays), 0);
  EXPECT_THAT(bays, ElementsAre(99, 4));
}

TEST_F(SameType, ResultIsThatOfTheLastModule) {
  Module("a", "V", "P", "4");
  Module("b", "V", "P", "3");
  Module("c", "V", "P", "5");
  server.OnAssociators(SystemPath("c"), kSystemPackage, kPhysicalPackage, NoObjects());
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 3);
  EXPECT_THAT(bays, ElementsAre(99, 4));
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectPhysicalInfo] failed. return code: 3"));
}

TEST_F(SameType, AFailureBeforeTheLastModuleIsForgotten) {
  Module("c", "V", "P", "5");
  Module("a", "V", "P", "4");
  Module("b", "V", "P", "3");
  server.OnAssociators(SystemPath("c"), kSystemPackage, kPhysicalPackage, NoObjects());
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 0);
  EXPECT_THAT(bays, ElementsAre(99, 4));
  EXPECT_THAT(log.Texts(1), ElementsAre("perform func[collectPhysicalInfo] failed. return code: 3"));
}

TEST_F(SameType, NothingFoundGivesFiveWhateverTheLastModuleGave) {
  Module("b", "V", "P", "3");
  Module("c", "V", "P", "five");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 5);
  EXPECT_THAT(bays, ElementsAre(99)) << "a module without a slot number is in no bay";
  EXPECT_THAT(log.Texts(1),
              ElementsAre("Unknown exception occurred", "perform func[collectPhysicalInfo] failed. return code: 4"));
}

TEST_F(SameType, ModulesWithoutASlotAreInNoBay) {
  Module("a", "", "", "4");
  server.OnAssociators(PackagePath("a"), kPackageInSlot, "CIM_Slot", NoObjects());
  Module("b", "", "", "3");
  for (const int bay : {-1, 7}) {
    bays.clear();
    EXPECT_EQ(inventory.CollectSameTypeModuleBayID(bay, bays), 0);
    EXPECT_THAT(bays, ElementsAre(3));
  }
}

TEST_F(SameType, ASlotNumberBelowZeroIsABayLikeOthers) {
  Module("a", "V", "P", "-1");
  Module("b", "V", "P", "3");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 0);
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(-1, bays), 0);
  EXPECT_THAT(bays, ElementsAre(99, -1, 3));
}

TEST_F(SameType, OfTwoModulesInTheBayTheFirstIsTheModel) {
  Module("a", "V1", "P", "3");
  Module("b", "V2", "P", "3");
  Module("c", "V2", "P", "5");
  Module("d", "V1", "P", "6");
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 0);
  EXPECT_THAT(bays, ElementsAre(99, 6));
}

TEST_F(SameType, Failures) {
  EXPECT_EQ(nobody.CollectSameTypeModuleBayID(3, bays), 1);
  EXPECT_EQ(log.Texts(1).back(), "Connection is fail, please check your network");
  server.OnEnumerate("CIM_ComputerSystem", CimError(1, "systems are gone"));
  EXPECT_EQ(inventory.CollectSameTypeModuleBayID(3, bays), 3);
  EXPECT_EQ(log.Texts(1).back(), "systems are gone");
  EXPECT_THAT(bays, ElementsAre(99));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

class Equipment : public Facade {};

TEST_F(Equipment, CmmsByTheLastDigitsOfTheirNames) {
  server.OnEnumerate("VORTA_CMMComputerSystem",
                     Objects({Named("VORTA_CMMComputerSystem", "cmm01"), Named("VORTA_CMMComputerSystem", "standby"),
                              Named("VORTA_CMMComputerSystem", "cmm02"), Named("VORTA_CMMComputerSystem", "cmm14")}));
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(0), "1,2,14");
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_CMMComputerSystem", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre(ConnectLine(), "3 the size of insts_CmptSys is 4", "3 NodeInfo : 1,2,14"));
}

TEST_F(Equipment, IOModulesAndPassThrus) {
  server.OnEnumerate("VORTA_IOModuleComputerSystem", Objects({Named("VORTA_IOModuleComputerSystem", "iomodule03"),
                                                              Named("VORTA_IOModuleComputerSystem", "iomodule10")}));
  const auto module = [](const std::string& id) {
    return CimObjectSpec("VORTA_PassThroughModule").Key("DeviceID", id);
  };
  server.OnEnumerate("VORTA_PassThroughModule",
                     Objects({module("iomodule02"), module("node05"), module("iomodule12")}));
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(1), "3,10,2,12");
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_IOModuleComputerSystem",
                                          "EnumerateInstances VORTA_PassThroughModule", "disconnect"));
  EXPECT_THAT(Lines(),
              ElementsAre(ConnectLine(), "3 the size of insts_CmptSys is 2", "3 the size of la_insts_PassThru is 3",
                          "3 SingleNodeInfo : 2", "3 SingleNodeInfo : 12", "3 NodeInfo : 3,10,2,12"));
}

TEST_F(Equipment, NodesWithoutPassThrus) {
  server.OnEnumerate("VORTA_ComputerSystem",
                     Objects({Named("VORTA_ComputerSystem", "node09"), Named("VORTA_ComputerSystem", "node10"),
                              Named("VORTA_ComputerSystem", "node00"), Named("VORTA_ComputerSystem", "nodeXY"),
                              Named("VORTA_ComputerSystem", "cmm")}));
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(4), "9,10,0,XY,mm");
  EXPECT_THAT(server.Summaries(), ElementsAre("EnumerateInstances VORTA_ComputerSystem"));
}

TEST_F(Equipment, OtherKindsConnectAndAskNothing) {
  for (const int kind : {-1, 2, 3, 5, 100}) {
    server.ForgetJournal();
    EXPECT_EQ(inventory.GetManagedEquipmentInfo(kind), "") << kind;
    EXPECT_THAT(Conversation(), ElementsAre("connect", "disconnect")) << kind;
  }
}

TEST_F(Equipment, NothingConnectedGivesAnEmptyText) {
  EXPECT_EQ(nobody.GetManagedEquipmentInfo(0), "");
  EXPECT_EQ(log.Texts(1).back(), "Connection is fail, please check your network");
}

TEST_F(Equipment, TheWordMayStandAnywhereAndOnlyInLowerCase) {
  server.OnEnumerate("VORTA_IOModuleComputerSystem",
                     Objects({Named("VORTA_IOModuleComputerSystem", "a node in bay 09"),
                              Named("VORTA_IOModuleComputerSystem", "Iomodule04"),
                              Named("VORTA_IOModuleComputerSystem", "chassis/iomodule/bay0a")}));
  EXPECT_EQ(inventory.GetManagedEquipmentInfo(1), "9,0a");
}

TEST_F(Facade, LinesNameTheirSourceAndPlace) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  ScriptCmm("cmm01", "1");
  CMMDataList cmms;
  EXPECT_EQ(inventory.GetCMMData(cmms), 0);
  imp.GetTargetInstance(0, 0);
  const std::string folder = "cmm/inventory_update/";
  const std::pair<std::string, std::string> sources[] = {
      {"CMMTarnInventoryImp::GetCMMData", folder + "cmm_inventory_imp"},
      {ConnectLine().substr(2), folder + "cmm_peg_client"},
      {"collect CMMData", folder + "cmm_inventory_collections"},
      {"collect physical info", folder + "cmm_inventory_details"},
      {"the size of insts_CmptSys is 1", folder + "cmm_inventory_target"},
  };
  const std::vector<Log::Record> records = log.Records();
  for (const auto& [text, file] : sources) {
    const auto record = std::find_if(records.begin(), records.end(), [&wanted = text](const Log::Record& candidate) {
      return candidate.text == wanted;
    });
    ASSERT_NE(record, records.end()) << text;
    EXPECT_EQ(record->file, file) << text;
    EXPECT_GT(record->line, 0) << text;
  }
}

TEST_F(Facade, ASecondCallStartsClean) {
  IOModules({{"iomodule03", "3"}});
  server.OnEnumerate("CIM_Slot", CimError(1, "no"), Objects({Slot("iomodule03", "3")}));
  EXPECT_EQ(inventory.GetSwitchType(3), 3);
  EXPECT_EQ(inventory.GetIOModuleData(list), 0);
  EXPECT_EQ(inventory.GetSwitchType(3), 3);
  EXPECT_TRUE(server.WaitUntilAllClosed());
  EXPECT_THAT(log.Texts(1), ElementsAre(" Error:no")) << "no call met a connection left by another";
}

// Plain servers: the first attempt is always TLS, on the same port.
class PlainFacade : public InventoryTest {
 protected:
  PlainFacade() : InventoryTest(CimServer::Options{}) {}
};

TEST_F(PlainFacade, PlainServerIsReachedByTheSecondAttempt) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  EXPECT_TRUE(inventory.IsCMM());
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_ComputerSystem", "disconnect"));
  EXPECT_THAT(Lines(), ElementsAre("1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:" +
                                       std::to_string(server.Port()) + ". Connection failed.",
                                   ConnectLine()));
}

class GuardedFacade : public InventoryTest {
 protected:
  static CimServer::Options Guarded() {
    CimServer::Options options = HttpsServer();
    options.user = "USERID";
    options.password = "s3cret";
    return options;
  }
  GuardedFacade() : InventoryTest(Guarded()) {}
};

TEST_F(GuardedFacade, CredentialsAnswerTheChallenge) {
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
  EXPECT_TRUE(inventory.IsCMM());
  const std::vector<CimRequest> requests = server.Requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_FALSE(requests[0].authorized);
  EXPECT_TRUE(requests[1].authorized);
  EXPECT_EQ(requests[0].messageId, requests[1].messageId);
}

TEST_F(GuardedFacade, WrongPasswordIsTold) {
  CMMInventory stranger("127.0.0.1", server.Port(), "USERID", "wr0ng");
  EXPECT_FALSE(stranger.IsCMM());
  EXPECT_THAT(log.Texts(1), ElementsAre("Client HTTP Exception: HTTP Error (401 Unauthorized).RESP: [401]"));
  ChassisInfo info;
  EXPECT_EQ(stranger.GetChassisInfo(info), 3);
  EXPECT_THAT(Lines(), ::testing::Each(::testing::Not(::testing::HasSubstr("wr0ng"))));
}

}  // namespace
}  // namespace Orvane::testing
