// The collectors of physical information, firmware and IP endpoints, each on a connection that a test opened through a
// collection.
#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

// The collectors need an open connection, which the collections make; so the physical and endpoint collectors are
// reached through the CMM collection and module mode through the I/O-module collection.
class DetailCollectors : public InventoryTest {
 protected:
  DetailCollectors() {
    server.OnEnumerate("CIM_ComputerSystem", Objects({System("cmm01", {29})}));
    ScriptCmm("cmm01", "1");
  }
  CMMData& Cmm() {
    result = imp.collectCMMData(cmms);
    EXPECT_EQ(cmms.Size(), 1U);
    return cmms.Get(0);
  }
  void Images(std::vector<CimObjectSpec> images) {
    server.OnAssociators(SystemPath("cmm01"), kInstalledIdentity, kIdentity, Objects(std::move(images)));
  }
  void Endpoints(std::vector<CimObjectSpec> endpoints) {
    server.OnAssociators(SystemPath("cmm01"), kAccessPoint, kEndpoint, Objects(std::move(endpoints)));
  }
  CIMIOData* Module(std::vector<CimObjectSpec> images) {
    server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
    ScriptIOModule("iomodule03", "3");
    server.OnAssociators(SystemPath("iomodule03"), kElementIdentity, kIdentity, Objects(std::move(images)));
    result = imp.collectIOModuleData(modules);
    return modules.Size() == 1 ? &modules.Get(0) : nullptr;
  }

  CMMDataList cmms;
  CIMIODataList modules;
  int result = -1;
};

TEST_F(DetailCollectors, PhysicalFieldsComeFromThePropertiesOfTheSameNames) {
  const Physicallnfo& physical = Cmm().Physical;
  EXPECT_EQ(physical.SlotNumber, 1);
  EXPECT_EQ(physical.UUID, "cmm01 uuid");
  EXPECT_EQ(physical.PosId, "cmm01 pos");
  EXPECT_EQ(physical.VpdId, "cmm01 vpd");
  EXPECT_EQ(physical.Manufacturer, "cmm01 maker");
  EXPECT_EQ(physical.SubSystemManufacturer, "cmm01 submaker");
  EXPECT_EQ(physical.ProductName, "cmm01 product");
  EXPECT_EQ(physical.PartNumber, "cmm01 part");
  EXPECT_EQ(physical.SKU, "cmm01 sku");
  EXPECT_EQ(physical.SerialNumber, "cmm01 serial");
}

TEST_F(DetailCollectors, PackageReachedThroughNamesIsReadByGetInstance) {
  server.OnAssociators(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage, NoObjects());
  server.OnAssociatorNames(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage, Objects({Package("cmm01")}));
  server.OnGetInstance(PackagePath("cmm01"), Objects({Package("cmm01")}));
  EXPECT_EQ(Cmm().Physical.UUID, "cmm01 uuid");
  EXPECT_EQ(cmms.Get(0).Physical.SlotNumber, 1);
  EXPECT_THAT(server.Summaries(),
              ::testing::IsSupersetOf({"GetInstance CIM_PhysicalPackage.Tag=\"cmm01\"",
                                       "Associators CIM_PhysicalPackage.Tag=\"cmm01\" [CIM_PackageInSlot, CIM_Slot]"}));
  const std::vector<std::string> asked = server.Summaries();
  ASSERT_GE(asked.size(), 5U);
  EXPECT_EQ(asked[1], "Associators CIM_ComputerSystem.Name=\"cmm01\" [CIM_ComputerSystemPackage, CIM_PhysicalPackage]");
  EXPECT_EQ(asked[2],
            "AssociatorNames CIM_ComputerSystem.Name=\"cmm01\" [CIM_ComputerSystemPackage, CIM_PhysicalPackage]");
  EXPECT_EQ(asked[3], "GetInstance CIM_PhysicalPackage.Tag=\"cmm01\"");
  EXPECT_EQ(asked[4], "Associators CIM_PhysicalPackage.Tag=\"cmm01\" [CIM_PackageInSlot, CIM_Slot]");
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(DetailCollectors, NamesThatCannotBeReadEndWithTheErrorsText) {
  server.OnAssociators(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage, NoObjects());
  server.OnAssociatorNames(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage, Objects({Package("cmm01")}));
  server.OnGetInstance("", CimError(6, "gone"));
  Cmm();
  EXPECT_THAT(log.Texts(1), ElementsAre("gone", "perform func [collectPhysicalInfo] failed. "));
}

TEST_F(DetailCollectors, OfSeveralPackagesTheLastWins) {
  server.OnAssociators(SystemPath("cmm01"), kSystemPackage, kPhysicalPackage,
                       Objects({Package("first"), Package("last")}));
  server.OnAssociators(PackagePath("first"), kPackageInSlot, "CIM_Slot", Objects({Slot("s1", "7")}));
  server.OnAssociators(PackagePath("last"), kPackageInSlot, "CIM_Slot", Objects({Slot("s2", "8"), Slot("s3", "9")}));
  EXPECT_EQ(Cmm().Physical.UUID, "last uuid");
  EXPECT_EQ(cmms.Get(0).Physical.SlotNumber, 9) << "of several slots the last wins as well";
}

TEST_F(DetailCollectors, PackageWithoutASlotIsComplete) {
  server.OnAssociators("", kPackageInSlot, "CIM_Slot", NoObjects());
  EXPECT_EQ(Cmm().Physical.UUID, "cmm01 uuid");
  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST_F(DetailCollectors, AbsentAndNullTextsReadAsEmpty) {
  server.OnAssociators(
      SystemPath("cmm01"), kSystemPackage, kPhysicalPackage,
      Objects({CimObjectSpec("CIM_PhysicalPackage").Key("Tag", "cmm01").With("UUID", CimNull("string"))}));
  EXPECT_EQ(Cmm().Physical.UUID, "");
  EXPECT_EQ(cmms.Get(0).Physical.SKU, "");
  EXPECT_EQ(cmms.Get(0).Physical.SlotNumber, 1);
}

TEST_F(DetailCollectors, FirmwareFieldsComeFromThePropertiesOfTheSameNames) {
  Images({Image("a").With("Classifcations", CimUint16(10))});
  const CMMData& cmm = Cmm();
  ASSERT_EQ(cmm.Firmwares.size(), 1U);
  const FirmwareIdentity& image = cmm.Firmwares[0];
  EXPECT_EQ(image.VersionString, "1");
  EXPECT_EQ(image.MajorVersion, "2");
  EXPECT_EQ(image.MinorVersion, "3");
  EXPECT_EQ(image.RevisionNumber, "4");
  EXPECT_EQ(image.BuildNumber, "5");
  EXPECT_TRUE(image.IsNotBootRom);
  EXPECT_EQ(image.ElementSoftwareStatus, "");
  EXPECT_EQ(image.ElementName, "a name");
  EXPECT_EQ(image.TargetTypes, "Firmware:CMM ");
  EXPECT_EQ(image.FullVersionString, "1-2.3.4");
  EXPECT_EQ(image.Classifications, 10);
  EXPECT_EQ(image.ClassificationDescriptions, "a class ");
  EXPECT_EQ(image.ModuleFirmwareKey, "");
}

TEST_F(DetailCollectors, OnlyTheMisspeltClassificationsPropertyIsRead) {
  Images({Image("a").With("Classifications", CimUint16(10)), Image("b").With("CLASSIFCATIONS", CimUint16(7))});
  const CMMData& cmm = Cmm();
  ASSERT_EQ(cmm.Firmwares.size(), 2U);
  EXPECT_EQ(cmm.Firmwares[0].Classifications, -1);
  EXPECT_EQ(cmm.Firmwares[1].Classifications, 7);
  EXPECT_THAT(log.Texts(2), IsEmpty());
}

TEST_F(DetailCollectors, CmmModeKeepsOnlyImagesForTheCmm) {
  const auto target = [](const std::string& id, const CimValue& types) {
    return CimObjectSpec("CIM_SoftwareIdentity")
        .Key("InstanceID", id)
        .With("ElementName", id)
        .With("TargetTypes", types);
  };
  Images({target("exact", CimString("Firmware:CMM")), target("within", CimString("xx Firmware:CMM yy")),
          target("short", CimString("Firmware:CM")), target("other", CimString("Firmware:Switch")),
          target("case", CimString("firmware:cmm")), target("null", CimNull("string")),
          target("array", CimStringArray({"a", "Firmware:CMM"}))});
  const CMMData& cmm = Cmm();
  EXPECT_THAT(cmm.Firmwares, ElementsAre(Field(&FirmwareIdentity::ElementName, "exact"),
                                         Field(&FirmwareIdentity::ElementName, "within"),
                                         Field(&FirmwareIdentity::ElementName, "array")));
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(log.Has(4, "TargetTypes: [Firmware:CM] is skipped"));
  EXPECT_TRUE(log.Has(4, "TargetTypes: [Firmware:Switch] is skipped"));
  EXPECT_TRUE(log.Has(4, "TargetTypes: [firmware:cmm] is skipped"));
  EXPECT_TRUE(log.Has(4, "TargetTypes: [] is skipped"));
}

TEST_F(DetailCollectors, OnlySkippedImagesAreStillASuccess) {
  Images({CimObjectSpec("CIM_SoftwareIdentity").Key("InstanceID", "x")});
  EXPECT_THAT(Cmm().Firmwares, IsEmpty());
  EXPECT_EQ(result, 0);
}

TEST_F(DetailCollectors, BootRomIsToldFromTheDescriptions) {
  const auto described = [](const std::string& id, const std::string& text) {
    return CimObjectSpec("CIM_SoftwareIdentity")
        .Key("InstanceID", id)
        .With("TargetTypes", "Firmware:CMM")
        .With("ClassificationDescriptions", CimStringArray({"x", text}));
  };
  Images({described("a", "Boot ROM"), described("b", "the Boot ROM image"), described("c", "boot rom"),
          described("d", "BootROM")});
  const CMMData& cmm = Cmm();
  EXPECT_THAT(cmm.Firmwares,
              ElementsAre(Field(&FirmwareIdentity::IsNotBootRom, false), Field(&FirmwareIdentity::IsNotBootRom, false),
                          Field(&FirmwareIdentity::IsNotBootRom, true), Field(&FirmwareIdentity::IsNotBootRom, true)));
}

TEST_F(DetailCollectors, FullVersionNeedsAVersionString) {
  Images({CimObjectSpec("CIM_SoftwareIdentity")
              .Key("InstanceID", "x")
              .With("TargetTypes", "Firmware:CMM")
              .With("MajorVersion", "2")
              .With("MinorVersion", "3")
              .With("RevisionNumber", "4")});
  const CMMData& cmm = Cmm();
  ASSERT_EQ(cmm.Firmwares.size(), 1U);
  EXPECT_EQ(cmm.Firmwares[0].FullVersionString, "");
  EXPECT_TRUE(log.Has(4, "firmware_indentity.FullVersionString raw: "));
}

TEST_F(DetailCollectors, FullVersionIsCutAt255Characters) {
  Images({CimObjectSpec("CIM_SoftwareIdentity")
              .Key("InstanceID", "x")
              .With("TargetTypes", "Firmware:CMM")
              .With("VersionString", std::string(300, 'v'))});
  const CMMData& cmm = Cmm();
  ASSERT_EQ(cmm.Firmwares.size(), 1U);
  EXPECT_EQ(cmm.Firmwares[0].FullVersionString, std::string(255, 'v'));
}

TEST_F(DetailCollectors, EmptyVersionPartsLeaveTheirSeparators) {
  Images({CimObjectSpec("CIM_SoftwareIdentity")
              .Key("InstanceID", "x")
              .With("TargetTypes", "Firmware:CMM")
              .With("VersionString", "V")});
  EXPECT_EQ(Cmm().Firmwares.at(0).FullVersionString, "V-..");
}

TEST_F(DetailCollectors, CmmModeReadsNoStatus) {
  Images({Image("a")});
  server.OnEnumerate(kInstalledIdentity, Objects({CimObjectSpec(kInstalledIdentity)
                                                      .With("Antecedent", "CIM_SoftwareIdentity.InstanceID=\"a\"")
                                                      .With("ElementSoftwareStatus", CimUint16Array({2}))}));
  EXPECT_EQ(Cmm().Firmwares.at(0).ElementSoftwareStatus, "");
}

CimObjectSpec StatusLink(const std::string& id, std::initializer_list<unsigned> status) {
  CimPath image = CimObjectSpec("CIM_SoftwareIdentity").Key("InstanceID", id).Path();
  image.nameSpace = "root/cimv2";
  CimObjectSpec link(kElementIdentity);
  link.keys.push_back({"Antecedent", "", "", std::make_shared<const CimPath>(image)});
  return link.With("Antecedent", CimReference(image)).With("ElementSoftwareStatus", CimUint16Array(status));
}

TEST_F(DetailCollectors, ModuleModeTakesTheStatusOfTheFirstLinkToTheImage) {
  server.OnEnumerate(kElementIdentity,
                     Objects({StatusLink("other", {9}), StatusLink("img-1", {2, 6}), StatusLink("img-1", {3})}));
  CIMIOData* module = Module({Image("img-1"), Image("img-2")});
  ASSERT_NE(module, nullptr);
  ASSERT_EQ(module->Firmwares.size(), 2U);
  EXPECT_EQ(module->Firmwares[0].ElementSoftwareStatus, "2 6 ");
  EXPECT_EQ(module->Firmwares[1].ElementSoftwareStatus, "") << "no link names this image";
}

TEST_F(DetailCollectors, TheLinkIsFoundBySubstring) {
  server.OnEnumerate(kElementIdentity, Objects({StatusLink("img-10", {5}), StatusLink("img-1", {2})}));
  CIMIOData* module = Module({Image("img-1")});
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->Firmwares.at(0).ElementSoftwareStatus, "5 ") << "img-10 contains img-1 and comes first";
}

TEST_F(DetailCollectors, ModuleModeSkipsNoImage) {
  CIMIOData* module =
      Module({CimObjectSpec("CIM_SoftwareIdentity").Key("InstanceID", "a"), CimObjectSpec("CIM_SoftwareIdentity")
                                                                                .Key("InstanceID", "b")
                                                                                .With("TargetTypes", "Firmware:CMM")
                                                                                .With("VersionString", "9")});
  ASSERT_NE(module, nullptr);
  ASSERT_EQ(module->Firmwares.size(), 2U);
  EXPECT_EQ(module->Firmwares[0].FullVersionString, "");
  EXPECT_EQ(module->Firmwares[1].FullVersionString, "9-..");
}

TEST_F(DetailCollectors, FirmwareAsksForTheLinksEvenWithoutImages) {
  Images({});
  Cmm();
  EXPECT_EQ(result, 3);
  EXPECT_THAT(server.Summaries(), Contains("EnumerateInstances CIM_InstalledSoftwareIdentity"));
}

TEST_F(DetailCollectors, EndpointFieldsComeFromThePropertiesOfTheSameNames) {
  Endpoints({Endpoint("eth0", "10.0.0.1", "fe80::1")});
  EXPECT_THAT(Cmm().IPs,
              ElementsAre(AllOf(Field(&IPInfo::Name, "eth0"), Field(&IPInfo::IPv4Address, "10.0.0.1"),
                                Field(&IPInfo::SubnetMask, "255.255.255.0"), Field(&IPInfo::IPv6Address, "fe80::1"),
                                Field(&IPInfo::IPv6SubnetPrefixLength, "64"), Field(&IPInfo::ProtocolIFType, 4096),
                                Field(&IPInfo::AddressOrigin, 3))));
}

TEST_F(DetailCollectors, EndpointsThatShareAnAddressAreOne) {
  Endpoints({Endpoint("a", "10.0.0.1", "fe80::1"), Endpoint("b", "10.0.0.2", "fe80::1"),
             Endpoint("c", "10.0.0.1", "fe80::2"), Endpoint("d", "10.0.0.3", "fe80::3")});
  EXPECT_THAT(Cmm().IPs, ElementsAre(Field(&IPInfo::Name, "a"), Field(&IPInfo::Name, "d")));
}

TEST_F(DetailCollectors, EndpointsWithoutAddressesAreAllKept) {
  Endpoints(
      {Endpoint("a", "", ""), Endpoint("b", "", ""), Endpoint("c", "10.0.0.1", ""), Endpoint("d", "", "fe80::1")});
  EXPECT_EQ(Cmm().IPs.size(), 4U);
}

TEST_F(DetailCollectors, ANumberThatIsNoneIsLoggedAndTheOtherIsStillRead) {
  const auto numbers = [](const std::string& name, const CimValue& type, const CimValue& origin) {
    return CimObjectSpec("CIM_IPProtocolEndpoint")
        .Key("Name", name)
        .With("ProtocolIFType", type)
        .With("AddressOrigin", origin);
  };
  Endpoints({numbers("a", CimString("IPv4"), CimString("3")), numbers("b", CimString("4096"), CimString("")),
             numbers("c", CimString("4096 "), CimNull("uint16")),
             numbers("d", CimString("99999999999"), CimString("4"))});
  const CMMData& cmm = Cmm();
  ASSERT_EQ(cmm.IPs.size(), 4U);
  EXPECT_EQ(cmm.IPs[0].AddressOrigin, 3);
  EXPECT_EQ(cmm.IPs[1].ProtocolIFType, 4096);
  EXPECT_EQ(cmm.IPs[3].AddressOrigin, 4);
  const std::vector<std::string> errors = log.Texts(1);
  EXPECT_EQ(errors.size(), 5U);
  for (const std::string& error : errors)
    EXPECT_EQ(error, "bad lexical cast: source type value could not be interpreted as target");
}

TEST_F(DetailCollectors, ACimErrorInsideIsLoggedByTheSessionAndReadsAsNothingThere) {
  server.OnAssociators("", kInstalledIdentity, kIdentity, CimError(1, "firmware provider"));
  server.OnAssociators("", kAccessPoint, kEndpoint, CimError(1, "endpoint provider"));
  Cmm();
  EXPECT_EQ(result, 3);
  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: firmware provider", "Collect Firmware info",
                                        "Pegasus Exception: endpoint provider"));
}

TEST_F(DetailCollectors, LinksThatCannotBeReadLeaveTheStatusEmpty) {
  server.OnEnumerate(kElementIdentity, CimError(1, "links are gone"));
  CIMIOData* module = Module({Image("img-1")});
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->Firmwares.at(0).ElementSoftwareStatus, "");
  EXPECT_THAT(log.Texts(1), ElementsAre("EnumerateInstances Exception: links are gone"));
}

TEST_F(DetailCollectors, TheFirstLinkIsTakenAlsoWhenItHasNoStatus) {
  CimObjectSpec bare(kElementIdentity);
  bare.Key("Id", "1").With("Antecedent", "CIM_SoftwareIdentity.InstanceID=\"img-1\"");
  server.OnEnumerate(kElementIdentity, Objects({bare, StatusLink("img-1", {2})}));
  CIMIOData* module = Module({Image("img-1")});
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->Firmwares.at(0).ElementSoftwareStatus, "");
}

// A class where an instance belongs cannot become one, which is a CIM error of the collector itself.
TEST_F(DetailCollectors, AClassAmongTheAnswersEndsACollectorWithThree) {
  const CimAnswer aClass = Body(
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
      "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"Associators\">\n"
      "<IRETURNVALUE>\n<VALUE.OBJECTWITHPATH>\n<CLASSPATH>\n<NAMESPACEPATH>\n<HOST>cmm01</HOST>\n"
      "<LOCALNAMESPACEPATH>\n<NAMESPACE NAME=\"root\"/>\n<NAMESPACE NAME=\"cimv2\"/>\n</LOCALNAMESPACEPATH>\n"
      "</NAMESPACEPATH>\n<CLASSNAME NAME=\"CIM_X\"/>\n</CLASSPATH>\n<CLASS NAME=\"CIM_X\">\n</CLASS>\n"
      "</VALUE.OBJECTWITHPATH>\n</IRETURNVALUE>\n</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n");
  server.OnEnumerate("CIM_ComputerSystem", Objects({System("iomodule03", {12})}));
  server.OnAssociators("", kSystemPackage, kPhysicalPackage, aClass);
  server.OnAssociators("", kElementIdentity, kIdentity, aClass);
  server.OnAssociators("", kAccessPoint, kEndpoint, aClass);
  EXPECT_EQ(imp.collectIOModuleData(modules), 0);
  EXPECT_EQ(modules.Size(), 0U);
  EXPECT_THAT(log.Texts(1), ElementsAre("dynamic cast failed", "perform func[collectPhysicalInfo] failedreturn code: 3",
                                        "dynamic cast failed", "perform func[collectFirmwareInfo] failedreturn code: 3",
                                        "dynamic cast failed", "perform func[collectIPInfo] failedreturn code: 3"));
}

TEST_F(DetailCollectors, WithoutAConnectionEveryCollectorReturnsThree) {
  const Pegasus::CIMObjectPath path("CIM_ComputerSystem.Name=\"cmm01\"");
  Physicallnfo physical;
  std::vector<FirmwareIdentity> images;
  std::vector<IPInfo> ips;
  EXPECT_EQ(imp.collectPhysicalInfo(path, kSystemPackage, kPhysicalPackage, physical), 3);
  EXPECT_EQ(imp.collectFirmwareInfo(path, kElementIdentity, kIdentity, images), 3);
  EXPECT_EQ(imp.collectIPInfo(path, kAccessPoint, kEndpoint, ips), 3);
  EXPECT_THAT(server.Summaries(), IsEmpty()) << "the collectors never open a connection";
  EXPECT_THAT(Lines(),
              ElementsAre("3 collect physical info", "1 Pegasus Exception: not connected",
                          "1 Pegasus Exception: not connected", "4 collect firmware infomation.",
                          "1 Pegasus Exception: not connected", "1 EnumerateInstances Exception: not connected",
                          "4 collect IP address information", "1 Pegasus Exception: not connected"));
}

}  // namespace
}  // namespace Orvane::testing
