// The exported records, lists and callbacks: defaults, member-wise copy and move, field order, and what the types
// refuse.
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvane {
namespace {

// Longer than any small-string buffer, so that a move has something to move.
std::string Long(const std::string& text) { return text + std::string(100, '.'); }

FirmwareIdentity MakeFirmware(const std::string& mark) {
  FirmwareIdentity image;
  image.VersionString = Long("version" + mark);
  image.MajorVersion = "1";
  image.MinorVersion = "2";
  image.RevisionNumber = "3";
  image.BuildNumber = "B4";
  image.IsNotBootRom = false;
  image.ElementSoftwareStatus = "2 6 ";
  image.ElementName = "element";
  image.TargetTypes = "Firmware:CMM";
  image.FullVersionString = "full";
  image.Classifications = 10;
  image.ClassificationDescriptions = "Boot ROM";
  image.ModuleFirmwareKey = "key";
  return image;
}

void ExpectFirmware(const FirmwareIdentity& image, const std::string& mark) {
  EXPECT_EQ(image.VersionString, Long("version" + mark));
  EXPECT_EQ(image.MajorVersion, "1");
  EXPECT_EQ(image.MinorVersion, "2");
  EXPECT_EQ(image.RevisionNumber, "3");
  EXPECT_EQ(image.BuildNumber, "B4");
  EXPECT_FALSE(image.IsNotBootRom);
  EXPECT_EQ(image.ElementSoftwareStatus, "2 6 ");
  EXPECT_EQ(image.ElementName, "element");
  EXPECT_EQ(image.TargetTypes, "Firmware:CMM");
  EXPECT_EQ(image.FullVersionString, "full");
  EXPECT_EQ(image.Classifications, 10);
  EXPECT_EQ(image.ClassificationDescriptions, "Boot ROM");
  EXPECT_EQ(image.ModuleFirmwareKey, "key");
}

IPInfo MakeIp() {
  IPInfo ip;
  ip.ProtocolIFType = 4096;
  ip.AddressOrigin = 3;
  ip.Name = Long("eth0");
  ip.IPv4Address = "10.0.0.1";
  ip.SubnetMask = "255.0.0.0";
  ip.IPv6Address = "fe80::1";
  ip.IPv6SubnetPrefixLength = "64";
  return ip;
}

void ExpectIp(const IPInfo& ip) {
  EXPECT_EQ(ip.ProtocolIFType, 4096);
  EXPECT_EQ(ip.AddressOrigin, 3);
  EXPECT_EQ(ip.Name, Long("eth0"));
  EXPECT_EQ(ip.IPv4Address, "10.0.0.1");
  EXPECT_EQ(ip.SubnetMask, "255.0.0.0");
  EXPECT_EQ(ip.IPv6Address, "fe80::1");
  EXPECT_EQ(ip.IPv6SubnetPrefixLength, "64");
}

Physicallnfo MakePhysical() {
  Physicallnfo physical;
  physical.SlotNumber = 7;
  physical.UUID = Long("uuid");
  physical.PosId = "pos";
  physical.VpdId = "vpd";
  physical.Manufacturer = "maker";
  physical.SubSystemManufacturer = "submaker";
  physical.ProductName = "product";
  physical.PartNumber = "part";
  physical.SKU = "sku";
  physical.SerialNumber = "serial";
  return physical;
}

void ExpectPhysical(const Physicallnfo& physical) {
  EXPECT_EQ(physical.SlotNumber, 7);
  EXPECT_EQ(physical.UUID, Long("uuid"));
  EXPECT_EQ(physical.PosId, "pos");
  EXPECT_EQ(physical.VpdId, "vpd");
  EXPECT_EQ(physical.Manufacturer, "maker");
  EXPECT_EQ(physical.SubSystemManufacturer, "submaker");
  EXPECT_EQ(physical.ProductName, "product");
  EXPECT_EQ(physical.PartNumber, "part");
  EXPECT_EQ(physical.SKU, "sku");
  EXPECT_EQ(physical.SerialNumber, "serial");
}

CMMData MakeCmm() {
  CMMData cmm;
  cmm.Physical = MakePhysical();
  cmm.Firmwares = {MakeFirmware("a"), MakeFirmware("b")};
  cmm.IPs = {MakeIp()};
  cmm.NotPrimary = 1;
  cmm.Name = Long("cmm01");
  return cmm;
}

void ExpectCmm(const CMMData& cmm) {
  ExpectPhysical(cmm.Physical);
  ASSERT_EQ(cmm.Firmwares.size(), 2u);
  ExpectFirmware(cmm.Firmwares[0], "a");
  ExpectFirmware(cmm.Firmwares[1], "b");
  ASSERT_EQ(cmm.IPs.size(), 1u);
  ExpectIp(cmm.IPs[0]);
  EXPECT_EQ(cmm.NotPrimary, 1);
  EXPECT_EQ(cmm.Name, Long("cmm01"));
}

CIMIOData MakeModule() {
  CIMIOData module;
  module.IsPassThru = true;
  module.Label = Long("label");
  module.Physical = MakePhysical();
  module.IPs = {MakeIp(), MakeIp()};
  module.Firmwares = {MakeFirmware("c")};
  return module;
}

void ExpectModule(const CIMIOData& module) {
  EXPECT_TRUE(module.IsPassThru);
  EXPECT_EQ(module.Label, Long("label"));
  ExpectPhysical(module.Physical);
  ASSERT_EQ(module.IPs.size(), 2u);
  ExpectIp(module.IPs[0]);
  ExpectIp(module.IPs[1]);
  ASSERT_EQ(module.Firmwares.size(), 1u);
  ExpectFirmware(module.Firmwares[0], "c");
}

TEST(Records, PhysicalStartsWithEmptyTexts) {
  const Physicallnfo physical;

  EXPECT_EQ(physical.UUID + physical.PosId + physical.VpdId + physical.Manufacturer + physical.SubSystemManufacturer +
                physical.ProductName + physical.PartNumber + physical.SKU + physical.SerialNumber,
            "");
}

TEST(Records, FirmwareStartsWithEmptyTexts) {
  const FirmwareIdentity image;

  EXPECT_EQ(image.VersionString + image.MajorVersion + image.MinorVersion + image.RevisionNumber + image.BuildNumber +
                image.ElementSoftwareStatus + image.ElementName + image.TargetTypes + image.FullVersionString +
                image.ClassificationDescriptions + image.ModuleFirmwareKey,
            "");
}

TEST(Records, IpStartsWithEmptyTexts) {
  const IPInfo ip;

  EXPECT_EQ(ip.Name + ip.IPv4Address + ip.SubnetMask + ip.IPv6Address + ip.IPv6SubnetPrefixLength, "");
}

TEST(Records, ChassisStartsWithEmptyTexts) {
  const ChassisInfo chassis;

  EXPECT_EQ(chassis.Name + chassis.ElementName + chassis.Model + chassis.PartNumber + chassis.SerialNumber, "");
}

TEST(Records, CmmStartsPrimaryAndEmpty) {
  const CMMData cmm;

  EXPECT_EQ(cmm.Name, "");
  EXPECT_TRUE(cmm.Firmwares.empty());
  EXPECT_TRUE(cmm.IPs.empty());
  EXPECT_EQ(cmm.NotPrimary, 0);
}

TEST(Records, ModuleStartsAsNoPassThruAndEmpty) {
  const CIMIOData module;

  EXPECT_FALSE(module.IsPassThru);
  EXPECT_EQ(module.Label, "");
  EXPECT_TRUE(module.IPs.empty());
  EXPECT_TRUE(module.Firmwares.empty());
}

TEST(Records, CopyOfCmmHasEveryMember) {
  const CMMData source = MakeCmm();

  const CMMData copy(source);  // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
  CMMData assigned;
  assigned = source;

  ExpectCmm(copy);
  ExpectCmm(assigned);
  ExpectCmm(source);
}

TEST(Records, MoveOfCmmLeavesTextsAndSequencesEmpty) {
  CMMData source = MakeCmm();

  const CMMData moved(std::move(source));

  ExpectCmm(moved);
  EXPECT_EQ(source.Name, "");  // NOLINT(bugprone-use-after-move): the emptiness is the promise
  EXPECT_EQ(source.Physical.UUID, "");
  EXPECT_TRUE(source.Firmwares.empty());
  EXPECT_TRUE(source.IPs.empty());
}

TEST(Records, MoveAssignmentOfCmmLeavesTextsAndSequencesEmpty) {
  CMMData source = MakeCmm();
  CMMData target;

  target = std::move(source);

  ExpectCmm(target);
  EXPECT_EQ(source.Name, "");  // NOLINT(bugprone-use-after-move): the emptiness is the promise
  EXPECT_TRUE(source.Firmwares.empty());
  EXPECT_TRUE(source.IPs.empty());
}

TEST(Records, CopyOfModuleHasEveryMember) {
  const CIMIOData source = MakeModule();

  const CIMIOData copy(source);  // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
  CIMIOData assigned;
  assigned = source;

  ExpectModule(copy);
  ExpectModule(assigned);
  ExpectModule(source);
}

TEST(Records, MoveOfModuleLeavesTextsAndSequencesEmpty) {
  CIMIOData source = MakeModule();
  CIMIOData target;

  target = std::move(source);

  ExpectModule(target);
  EXPECT_EQ(source.Label, "");  // NOLINT(bugprone-use-after-move): the emptiness is the promise
  EXPECT_TRUE(source.IPs.empty());
  EXPECT_TRUE(source.Firmwares.empty());
}

TEST(Records, CopyAndMoveOfChassisAreMemberWise) {
  ChassisInfo source;
  source.Name = Long("name");
  source.ElementName = "element";
  source.Model = "model";
  source.PartNumber = "part";
  source.SerialNumber = "serial";

  const ChassisInfo copy(source);
  const ChassisInfo moved(std::move(source));

  for (const ChassisInfo* chassis : {&copy, &moved}) {
    EXPECT_EQ(chassis->Name, Long("name"));
    EXPECT_EQ(chassis->ElementName, "element");
    EXPECT_EQ(chassis->Model, "model");
    EXPECT_EQ(chassis->PartNumber, "part");
    EXPECT_EQ(chassis->SerialNumber, "serial");
  }
  EXPECT_EQ(source.Name, "");  // NOLINT(bugprone-use-after-move): the emptiness is the promise
}

// The names of the fields in declaration order, in a form that fails to compile when one is missing.
#define EXPECT_BEFORE(record, first, second) EXPECT_LT(offsetof(record, first), offsetof(record, second))

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
TEST(Records, FieldsStandInTheirOrder) {
  EXPECT_BEFORE(Physicallnfo, SlotNumber, UUID);
  EXPECT_BEFORE(Physicallnfo, UUID, PosId);
  EXPECT_BEFORE(Physicallnfo, PosId, VpdId);
  EXPECT_BEFORE(Physicallnfo, VpdId, Manufacturer);
  EXPECT_BEFORE(Physicallnfo, Manufacturer, SubSystemManufacturer);
  EXPECT_BEFORE(Physicallnfo, SubSystemManufacturer, ProductName);
  EXPECT_BEFORE(Physicallnfo, ProductName, PartNumber);
  EXPECT_BEFORE(Physicallnfo, PartNumber, SKU);
  EXPECT_BEFORE(Physicallnfo, SKU, SerialNumber);

  EXPECT_BEFORE(IPInfo, ProtocolIFType, AddressOrigin);
  EXPECT_BEFORE(IPInfo, AddressOrigin, Name);
  EXPECT_BEFORE(IPInfo, Name, IPv4Address);
  EXPECT_BEFORE(IPInfo, IPv4Address, SubnetMask);
  EXPECT_BEFORE(IPInfo, SubnetMask, IPv6Address);
  EXPECT_BEFORE(IPInfo, IPv6Address, IPv6SubnetPrefixLength);

  EXPECT_BEFORE(FirmwareIdentity, VersionString, MajorVersion);
  EXPECT_BEFORE(FirmwareIdentity, MajorVersion, MinorVersion);
  EXPECT_BEFORE(FirmwareIdentity, MinorVersion, RevisionNumber);
  EXPECT_BEFORE(FirmwareIdentity, RevisionNumber, BuildNumber);
  EXPECT_BEFORE(FirmwareIdentity, BuildNumber, IsNotBootRom);
  EXPECT_BEFORE(FirmwareIdentity, IsNotBootRom, ElementSoftwareStatus);
  EXPECT_BEFORE(FirmwareIdentity, ElementSoftwareStatus, ElementName);
  EXPECT_BEFORE(FirmwareIdentity, ElementName, TargetTypes);
  EXPECT_BEFORE(FirmwareIdentity, TargetTypes, FullVersionString);
  EXPECT_BEFORE(FirmwareIdentity, FullVersionString, Classifications);
  EXPECT_BEFORE(FirmwareIdentity, Classifications, ClassificationDescriptions);
  EXPECT_BEFORE(FirmwareIdentity, ClassificationDescriptions, ModuleFirmwareKey);

  EXPECT_BEFORE(ChassisInfo, Name, ElementName);
  EXPECT_BEFORE(ChassisInfo, ElementName, Model);
  EXPECT_BEFORE(ChassisInfo, Model, PartNumber);
  EXPECT_BEFORE(ChassisInfo, PartNumber, SerialNumber);
}

TEST(Records, ModuleRecordsDeclareTheirSequencesInOppositeOrders) {
  EXPECT_BEFORE(CMMData, Physical, Firmwares);
  EXPECT_BEFORE(CMMData, Firmwares, IPs);
  EXPECT_BEFORE(CMMData, IPs, NotPrimary);
  EXPECT_BEFORE(CMMData, NotPrimary, Name);

  EXPECT_BEFORE(CIMIOData, IsPassThru, Label);
  EXPECT_BEFORE(CIMIOData, Label, Physical);
  EXPECT_BEFORE(CIMIOData, Physical, IPs);
  EXPECT_BEFORE(CIMIOData, IPs, Firmwares);
}
#pragma GCC diagnostic pop
#undef EXPECT_BEFORE

TEST(Records, NumbersHaveThirtyTwoBits) {
  static_assert(std::is_same_v<decltype(Physicallnfo::SlotNumber), std::int32_t>);
  static_assert(std::is_same_v<decltype(IPInfo::ProtocolIFType), std::int32_t>);
  static_assert(std::is_same_v<decltype(IPInfo::AddressOrigin), std::int32_t>);
  static_assert(std::is_same_v<decltype(FirmwareIdentity::Classifications), std::int32_t>);
  static_assert(std::is_same_v<decltype(CMMData::NotPrimary), std::int32_t>);
  static_assert(std::is_same_v<decltype(FirmwareIdentity::IsNotBootRom), bool>);
  static_assert(std::is_same_v<decltype(CIMIOData::IsPassThru), bool>);
  SUCCEED();
}

template <typename Record>
void ExpectPlainRecord() {
  EXPECT_TRUE(std::is_default_constructible_v<Record>);
  EXPECT_TRUE(std::is_copy_constructible_v<Record>);
  EXPECT_TRUE(std::is_copy_assignable_v<Record>);
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<Record>);
  EXPECT_TRUE(std::is_nothrow_move_assignable_v<Record>);
  EXPECT_FALSE(std::is_polymorphic_v<Record>);
}

TEST(Records, AreCopyableMovableAndNotPolymorphic) {
  ExpectPlainRecord<Physicallnfo>();
  ExpectPlainRecord<FirmwareIdentity>();
  ExpectPlainRecord<IPInfo>();
  ExpectPlainRecord<ChassisInfo>();
  ExpectPlainRecord<CMMData>();
  ExpectPlainRecord<CIMIOData>();
}

TEST(RecordLists, StartEmpty) {
  EXPECT_EQ(CMMDataList().Size(), 0u);
  EXPECT_EQ(CIMIODataList().Size(), 0u);
}

TEST(RecordLists, CannotBeCopiedOrAssigned) {
  EXPECT_FALSE(std::is_copy_constructible_v<CMMDataList>);
  EXPECT_FALSE(std::is_copy_assignable_v<CMMDataList>);
  EXPECT_FALSE(std::is_copy_constructible_v<CIMIODataList>);
  EXPECT_FALSE(std::is_copy_assignable_v<CIMIODataList>);
}

TEST(RecordLists, SizeIsAnUnsignedSixtyFourBitCount) {
  EXPECT_TRUE((std::is_same_v<decltype(CMMDataList().Size()), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(CIMIODataList().Size()), std::uint64_t>));
}

TEST(RecordLists, GetReturnsAModifiableReference) {
  EXPECT_TRUE((std::is_same_v<decltype(std::declval<CMMDataList&>().Get(0)), CMMData&>));
  EXPECT_TRUE((std::is_same_v<decltype(std::declval<CIMIODataList&>().Get(0)), CIMIOData&>));
}

TEST(Inventory, CannotBeCopiedOrAssigned) {
  EXPECT_FALSE(std::is_copy_constructible_v<CMMInventory>);
  EXPECT_FALSE(std::is_copy_assignable_v<CMMInventory>);
}

class CollectingCallBack : public LogMessageCallBack {
 public:
  explicit CollectingCallBack(bool& destroyed) : destroyed_(destroyed) {}
  ~CollectingCallBack() override { destroyed_ = true; }
  void OnMessage(const std::string& message) override { messages.push_back(message); }

  std::vector<std::string> messages;

 private:
  bool& destroyed_;
};

TEST(CallBack, IsAbstractWithAVirtualDestructor) {
  EXPECT_TRUE(std::is_abstract_v<LogMessageCallBack>);
  EXPECT_TRUE(std::has_virtual_destructor_v<LogMessageCallBack>);
  EXPECT_TRUE(
      (std::is_same_v<decltype(&LogMessageCallBack::OnMessage), void (LogMessageCallBack::*)(const std::string&)>));
}

TEST(CallBack, ReceivesTheTextThroughItsBase) {
  bool destroyed = false;
  auto collecting = std::make_unique<CollectingCallBack>(destroyed);
  LogMessageCallBack& base = *collecting;

  base.OnMessage("start");

  ASSERT_EQ(collecting->messages.size(), 1u);
  EXPECT_EQ(collecting->messages[0], "start");
}

TEST(CallBack, IsDestroyedThroughItsBase) {
  bool destroyed = false;
  std::unique_ptr<LogMessageCallBack> base = std::make_unique<CollectingCallBack>(destroyed);

  base.reset();

  EXPECT_TRUE(destroyed);
}

TEST(CallBack, TheEmptyOneIgnoresEveryText) {
  EmptyLogMessageCallBack empty;
  LogMessageCallBack& base = empty;

  EXPECT_NO_THROW(base.OnMessage("start"));
  EXPECT_NO_THROW(base.OnMessage(""));
}

}  // namespace
}  // namespace Orvane
