// The built-in chassis offers whatever an inventory asks for: from each kind of module the associations lead to its
// package, slot, images and endpoints, and the properties that are shown there have values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cim/object_store.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;

class InventoryPaths : public testing::Test {
 protected:
  static const ObjectStore& Store() {
    static const Model model = BuiltInModel();
    return *model.Contents();
  }

  static std::vector<const Instance*> Follow(const Instance& from, std::string_view association,
                                             std::string_view result) {
    return Store().Associators(from.Path(), {association, result, {}, {}});
  }

  static std::string TextOf(const Instance& instance, const char* property) {
    const Value* const value = instance.Find(property);
    return value == nullptr || value->isNull ? std::string() : value->texts.at(0);
  }

  static void ExpectValues(const Instance& instance, const std::vector<const char*>& properties) {
    for (const char* property : properties) {
      EXPECT_NE(TextOf(instance, property), "") << property << " of a " << instance.declaration->name;
    }
  }

  // The package is complete and stands in the slot whose number ends the module's name.
  static void ExpectPackage(const Instance& module, std::string_view association, const std::string& name) {
    const auto packages = Follow(module, association, "CIM_PhysicalPackage");
    ASSERT_EQ(packages.size(), 1U) << name;
    ExpectValues(*packages[0], {"UUID", "VpdId", "PosId", "Manufacturer", "SubSystemManufacturer", "ProductName", "SKU",
                                "PartNumber", "SerialNumber"});
    const auto slots = Follow(*packages[0], "CIM_PackageInSlot", "CIM_Slot");
    ASSERT_EQ(slots.size(), 1U) << name;
    EXPECT_EQ(std::stoi(TextOf(*slots[0], "Number")), std::stoi(name.substr(name.size() - 2)));
    EXPECT_THAT(TextOf(*slots[0], "Tag"), HasSubstr(name));
    // And back again, as a bay is looked up.
    const auto inSlot = Follow(*slots[0], "CIM_PackageInSlot", "CIM_PhysicalPackage");
    ASSERT_EQ(inSlot.size(), 1U) << name;
    EXPECT_EQ(inSlot[0], packages[0]);
    const auto modules = Follow(*packages[0], association, module.declaration->superclass);
    ASSERT_EQ(modules.size(), 1U) << name;
    EXPECT_EQ(modules[0], &module);
  }

  static void ExpectImages(const Instance& module, std::string_view association, std::size_t count) {
    const auto images = Follow(module, association, "CIM_SoftwareIdentity");
    EXPECT_EQ(images.size(), count);
    for (const Instance* image : images) {
      ExpectValues(*image, {"InstanceID", "TargetTypes", "ClassificationDescriptions", "VersionString", "ElementName",
                            "MajorVersion", "MinorVersion", "RevisionNumber", "BuildNumber"});
    }
  }

  static void ExpectEndpoints(const Instance& module, std::size_t atLeast) {
    const auto endpoints = Follow(module, "CIM_HostedAccessPoint", "CIM_IPProtocolEndpoint");
    EXPECT_GE(endpoints.size(), atLeast);
    for (const Instance* endpoint : endpoints) {
      ExpectValues(*endpoint, {"Name", "ProtocolIFType", "AddressOrigin"});
      EXPECT_NE(TextOf(*endpoint, "IPv4Address") + TextOf(*endpoint, "IPv6Address"), "");
    }
  }
};

TEST_F(InventoryPaths, LeadFromEachCmm) {
  std::size_t primaries = 0;
  for (const Instance* cmm : Store().Enumerate("VORTA_CMMComputerSystem")) {
    EXPECT_EQ(cmm->Find("Dedicated")->texts, std::vector<std::string>{"29"});
    ExpectValues(*cmm, {"Name", "EnabledState"});
    ExpectPackage(*cmm, "CIM_ComputerSystemPackage", TextOf(*cmm, "Name"));
    ExpectImages(*cmm, "CIM_InstalledSoftwareIdentity", 4);
    ExpectEndpoints(*cmm, 2);
    const bool isSpare = !Follow(*cmm, "CIM_IsSpare", "CIM_RedundancySet").empty();
    if (!isSpare) ++primaries;
    EXPECT_EQ(TextOf(*cmm, "EnabledState") == "2", !isSpare);
  }
  EXPECT_EQ(primaries, 1U);
}

TEST_F(InventoryPaths, LeadFromEachSwitch) {
  for (const Instance* module : Store().Enumerate("VORTA_IOModuleComputerSystem")) {
    EXPECT_EQ(module->Find("Dedicated")->texts, std::vector<std::string>{"12"});
    ExpectPackage(*module, "CIM_ComputerSystemPackage", TextOf(*module, "Name"));
    // The switch in bay 5 has no fallback image.
    ExpectImages(*module, "CIM_ElementSoftwareIdentity", TextOf(*module, "Name") == "iomodule05" ? 2 : 3);
    ExpectEndpoints(*module, 1);
  }
}

TEST_F(InventoryPaths, LeadFromEachPassThroughModule) {
  for (const Instance* module : Store().Enumerate("CIM_PassThroughModule")) {
    ExpectPackage(*module, "CIM_Realizes", TextOf(*module, "DeviceID"));
    ExpectImages(*module, "CIM_ElementSoftwareIdentity", 1);
  }
}

TEST_F(InventoryPaths, LeadFromEachNodeToItsPowerService) {
  std::map<std::string, std::size_t> servicesOf;
  for (const Instance* service : Store().Enumerate("CIM_PowerManagementService")) {
    ++servicesOf[service->Path().keys.at("SystemName").text];
  }
  const auto nodes = Store().Enumerate("VORTA_ComputerSystem");
  EXPECT_EQ(servicesOf.size(), nodes.size());
  for (const Instance* node : nodes) EXPECT_EQ(servicesOf[TextOf(*node, "Name")], 1U);
}

TEST_F(InventoryPaths, TellTheStatusOfEachImageOfAModule) {
  std::size_t count = 0;
  for (const Instance* association : Store().Enumerate("CIM_ElementSoftwareIdentity")) {
    EXPECT_FALSE(association->Find("ElementSoftwareStatus")->isNull);
    EXPECT_EQ(association->Find("Antecedent")->references.at(0).keys.count("InstanceID"), 1U);
    ++count;
  }
  EXPECT_EQ(count, 13U);
}

TEST_F(InventoryPaths, HoldOneCompleteChassis) {
  const auto chassis = Store().Enumerate("CIM_Chassis");
  ASSERT_EQ(chassis.size(), 1U);
  ExpectValues(*chassis[0], {"Name", "Model", "SerialNumber", "PartNumber", "ElementName"});
}

TEST_F(InventoryPaths, HoldOneAddressTwice) {
  std::size_t twins = 0;
  for (const Instance* cmm : Store().Enumerate("VORTA_CMMComputerSystem")) {
    std::map<std::string, std::size_t> seen;
    for (const Instance* endpoint : Follow(*cmm, "CIM_HostedAccessPoint", "CIM_IPProtocolEndpoint")) {
      const std::string address = TextOf(*endpoint, "IPv4Address");
      if (!address.empty() && ++seen[address] == 2) ++twins;
    }
  }
  EXPECT_GE(twins, 1U);
}

}  // namespace
}  // namespace Orvane::simulator
