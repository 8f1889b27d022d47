// What the tests of the inventory share: a scripted CIM server over HTTPS, the two inventory classes that speak to it,
// the log, and short names for the objects of a chassis.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "testing/cim_server.h"
#include "testing/scoped_log.h"

namespace Orvane::testing {

inline CimServer::Options HttpsServer() {
  CimServer::Options options;
  options.tls = true;
  return options;
}

inline CimObjectSpec System(const std::string& name, std::initializer_list<unsigned> dedicated) {
  return CimObjectSpec("CIM_ComputerSystem").Key("Name", name).With("Dedicated", CimUint16Array(dedicated));
}
inline std::string SystemPath(const std::string& name) { return "CIM_ComputerSystem.Name=\"" + name + "\""; }

inline CimObjectSpec Package(const std::string& tag) {
  return CimObjectSpec("CIM_PhysicalPackage")
      .Key("Tag", tag)
      .With("UUID", tag + " uuid")
      .With("VpdId", tag + " vpd")
      .With("PosId", tag + " pos")
      .With("Manufacturer", tag + " maker")
      .With("SubSystemManufacturer", tag + " submaker")
      .With("ProductName", tag + " product")
      .With("SKU", tag + " sku")
      .With("PartNumber", tag + " part")
      .With("SerialNumber", tag + " serial");
}
inline CimObjectSpec TypedPackage(const std::string& tag, const std::string& vpdId, const std::string& posId) {
  return CimObjectSpec("CIM_PhysicalPackage").Key("Tag", tag).With("VpdId", vpdId).With("PosId", posId);
}
inline std::string PackagePath(const std::string& tag) { return "CIM_PhysicalPackage.Tag=\"" + tag + "\""; }

inline CimObjectSpec Slot(const std::string& tag, const std::string& number) {
  return CimObjectSpec("CIM_Slot").Key("Tag", tag).With("Number", number);
}
inline std::string SlotPath(const std::string& tag) { return "CIM_Slot.Tag=\"" + tag + "\""; }

/// An image for CMMs, with the version "1-2.3.4" and the build 5.
inline CimObjectSpec Image(const std::string& id) {
  return CimObjectSpec("CIM_SoftwareIdentity")
      .Key("InstanceID", id)
      .With("TargetTypes", CimStringArray({"Firmware:CMM"}))
      .With("ClassificationDescriptions", CimStringArray({id + " class"}))
      .With("VersionString", "1")
      .With("ElementName", id + " name")
      .With("MajorVersion", CimUint16(2))
      .With("MinorVersion", CimUint16(3))
      .With("RevisionNumber", CimUint16(4))
      .With("BuildNumber", CimUint16(5));
}

inline CimObjectSpec Endpoint(const std::string& name, const std::string& ipv4, const std::string& ipv6) {
  return CimObjectSpec("CIM_IPProtocolEndpoint")
      .Key("Name", name)
      .With("IPv4Address", ipv4)
      .With("SubnetMask", "255.255.255.0")
      .With("IPv6Address", ipv6)
      .With("IPv6SubnetPrefixLength", CimTyped("uint8", "64"))
      .With("ProtocolIFType", CimUint16(4096))
      .With("AddressOrigin", CimUint16(3));
}

inline CimObjectSpec PassThru(const std::string& id) {
  return CimObjectSpec("CIM_PassThroughModule").Key("DeviceID", id);
}
inline std::string PassThruPath(const std::string& id) { return "CIM_PassThroughModule.DeviceID=\"" + id + "\""; }

constexpr char kSystemPackage[] = "CIM_ComputerSystemPackage";
constexpr char kPhysicalPackage[] = "CIM_PhysicalPackage";
constexpr char kPackageInSlot[] = "CIM_PackageInSlot";
constexpr char kIsSpare[] = "CIM_IsSpare";
constexpr char kRedundancySet[] = "CIM_RedundancySet";
constexpr char kInstalledIdentity[] = "CIM_InstalledSoftwareIdentity";
constexpr char kElementIdentity[] = "CIM_ElementSoftwareIdentity";
constexpr char kIdentity[] = "CIM_SoftwareIdentity";
constexpr char kAccessPoint[] = "CIM_HostedAccessPoint";
constexpr char kEndpoint[] = "CIM_IPProtocolEndpoint";
constexpr char kRealizes[] = "CIM_Realizes";
constexpr char kPassThruClass[] = "CIM_PassThroughModule";

class InventoryTest : public ::testing::Test {
 protected:
  InventoryTest() : InventoryTest(HttpsServer()) {}
  explicit InventoryTest(CimServer::Options options)
      : server(std::move(options)),
        inventory("127.0.0.1", server.Port(), "USERID", "s3cret"),
        imp("127.0.0.1", server.Port(), "USERID", "s3cret") {}

  /// Package and slot of one module.
  void ScriptPhysical(const std::string& ownerPath, const std::string& assocClass, const CimObjectSpec& package,
                      const std::string& slotNumber) {
    const std::string tag = package.keys.front().text;
    server.OnAssociators(ownerPath, assocClass, kPhysicalPackage, Objects({package}));
    server.OnAssociators(PackagePath(tag), kPackageInSlot, "CIM_Slot", Objects({Slot("slot " + tag, slotNumber)}));
  }
  /// A CMM of which everything can be read; its system must be enumerated by the test.
  void ScriptCmm(const std::string& name, const std::string& slotNumber) {
    ScriptPhysical(SystemPath(name), kSystemPackage, Package(name), slotNumber);
    server.OnAssociators(SystemPath(name), kInstalledIdentity, kIdentity, Objects({Image(name + " image")}));
    server.OnAssociators(SystemPath(name), kAccessPoint, kEndpoint,
                         Objects({Endpoint(name + " eth", name + " v4", "")}));
  }
  void ScriptIOModule(const std::string& name, const std::string& slotNumber) {
    ScriptPhysical(SystemPath(name), kSystemPackage, Package(name), slotNumber);
    server.OnAssociators(SystemPath(name), kElementIdentity, kIdentity, Objects({Image(name + " image")}));
    server.OnAssociators(SystemPath(name), kAccessPoint, kEndpoint,
                         Objects({Endpoint(name + " eth", name + " v4", "")}));
  }
  void ScriptPassThru(const std::string& id, const std::string& slotNumber) {
    ScriptPhysical(PassThruPath(id), kRealizes, Package(id), slotNumber);
    server.OnAssociators(PassThruPath(id), kElementIdentity, kIdentity, Objects({Image(id + " image")}));
  }

  /// Everything logged so far, as "level text".
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const Log::Record& record : log.Records()) lines.push_back(std::to_string(record.level) + " " + record.text);
    return lines;
  }
  std::string ConnectLine(int result = 0) const {
    return "3 Connect CIMOM . H:127.0.0.1 P:" + std::to_string(server.Port()) +
           " U:USERID RC: " + std::to_string(result);
  }
  /// The journal once every connection is closed.
  std::vector<std::string> Conversation() const {
    EXPECT_TRUE(server.WaitUntilAllClosed());
    return server.Conversation();
  }

  CimServer server;
  CMMInventory inventory;
  CMMTarnInventoryImp imp;
  ScopedLog log;
};

/// The bays of a module list.
inline std::vector<int> Bays(CIMIODataList& list) {
  std::vector<int> bays;
  for (std::size_t i = 0; i < list.Size(); ++i) bays.push_back(list.Get(i).Physical.SlotNumber);
  return bays;
}

}  // namespace Orvane::testing
