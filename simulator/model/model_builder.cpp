// A module of the document (CMM, switch, pass-through module, node) becomes a system or device, its package in the slot
// of its bay, its software identities and its endpoints, with the associations between them. The document is checked
// while it is read; docs/chassis-model.schema.json states the same rules for editors.
#include "model/model_builder.h"

#include <arpa/inet.h>

#include <array>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "behaviour/settings.h"
#include "cim/cim_error.h"
#include "cim/object_store.h"
#include "model/json_node.h"

namespace Orvane::simulator {

namespace {

using NamedValues = ObjectStore::NamedValues;

constexpr std::uint64_t kHighestBay = 99;  // names end in two digits
constexpr std::uint64_t kUint16Max = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint64_t kUint32Max = std::numeric_limits<std::uint32_t>::max();
constexpr const char* kChassisTag = "chassis1";

// What the four kinds of modules have in common and where they differ.
struct ModuleKind {
  const char* listName;
  const char* namePrefix;
  const char* labelPrefix;
  const char* systemClass;
  const char* softwareClass;
  const char* softwareAssociation;
  /// Begins the part of an image's InstanceID that names the module.
  const char* softwareIdPrefix;
  const char* packageAssociation;
  const char* packageTag;
  /// Value of Dedicated in the DMTF schema; null for devices, which have none.
  const char* dedicated;
  /// True when the association of software names the module first ("System", "InstalledSoftware").
  bool isInstalledSoftware;
  bool hasEndpoints;
  /// Class of what tells the states a client may ask for; null when there are none.
  const char* capabilitiesClass;
};

constexpr ModuleKind kCmm = {"cmms",
                             "cmm",
                             "CMM",
                             "VORTA_CMMComputerSystem",
                             "VORTA_SoftwareIdentity",
                             "VORTA_CMMInstalledSoftwareIdentity",
                             "cmm",
                             "VORTA_ComputerSystemPackage",
                             "pkg/cmm/",
                             "29",
                             true,
                             true,
                             "VORTA_CMMEnabledLogicalElementCapabilities"};
constexpr ModuleKind kNode = {"nodes",
                              "node",
                              "Node",
                              "VORTA_ComputerSystem",
                              "VORTA_SoftwareIdentity",
                              "VORTA_CMMInstalledSoftwareIdentity",
                              "node",
                              "VORTA_ComputerSystemPackage",
                              "pkg/node/",
                              "0",
                              true,
                              true,
                              nullptr};
constexpr ModuleKind kSwitch = {"switches",
                                "iomodule",
                                "IO Module",
                                "VORTA_IOModuleComputerSystem",
                                "VORTA_IOMSoftwareIdentity",
                                "VORTA_IOMElementFirmwareIdentity",
                                "iom",
                                "VORTA_ComputerSystemPackage",
                                "pkg/io/",
                                "12",
                                false,
                                true,
                                "VORTA_IOModuleEnabledLogicalElementCapabilities"};
constexpr ModuleKind kPassThru = {"passThrus",
                                  "iomodule",
                                  "Pass-thru",
                                  "VORTA_PassThroughModule",
                                  "VORTA_PassThruSoftwareIdentity",
                                  "VORTA_PassThruElementFirmwareIdentity",
                                  "iomodule",
                                  "VORTA_Realizes",
                                  "pkg/io/",
                                  nullptr,
                                  false,
                                  false,
                                  "VORTA_PassThroughModuleEnabledLogicalElementCapabilities"};

struct TextMember {
  const char* member;
  const char* property;
};

constexpr TextMember kPackageTexts[] = {{"uuid", "UUID"},
                                        {"vpdId", "VpdId"},
                                        {"posId", "PosId"},
                                        {"manufacturer", "Manufacturer"},
                                        {"subSystemManufacturer", "SubSystemManufacturer"},
                                        {"productName", "ProductName"},
                                        {"partNumber", "PartNumber"},
                                        {"sku", "SKU"},
                                        {"serialNumber", "SerialNumber"}};
constexpr TextMember kChassisTexts[] = {
    {"name", "Name"},   {"elementName", "ElementName"}, {"manufacturer", "Manufacturer"},
    {"model", "Model"}, {"partNumber", "PartNumber"},   {"serialNumber", "SerialNumber"}};
constexpr TextMember kFirmwareTexts[] = {
    {"elementName", "ElementName"}, {"manufacturer", "Manufacturer"}, {"versionString", "VersionString"}};
constexpr TextMember kFirmwareNumbers[] = {{"majorVersion", "MajorVersion"},
                                           {"minorVersion", "MinorVersion"},
                                           {"revisionNumber", "RevisionNumber"},
                                           {"buildNumber", "BuildNumber"},
                                           {"classifcations", "Classifcations"}};
constexpr TextMember kEndpointNumbers[] = {{"ipv6SubnetPrefixLength", "IPv6SubnetPrefixLength"},
                                           {"protocolIFType", "ProtocolIFType"},
                                           {"addressOrigin", "AddressOrigin"}};

// Durations in seconds of simulated time.
struct DurationMember {
  const char* member;
  std::chrono::seconds Timing::*duration;
};
constexpr DurationMember kDurations[] = {
    {"cmmJobStart", &Timing::cmmJobStart},     {"moduleJobStart", &Timing::moduleJobStart},
    {"cmmInstall", &Timing::cmmInstall},       {"moduleInstall", &Timing::moduleInstall},
    {"cmmShutdown", &Timing::cmmShutdown},     {"cmmRestart", &Timing::cmmRestart},
    {"moduleRestart", &Timing::moduleRestart}, {"nodeRestart", &Timing::nodeRestart},
    {"jobRemoval", &Timing::jobRemoval}};
constexpr std::uint64_t kLongestDuration = 86400;

// Reset, and the chassis's own state for a virtual reseat.
constexpr const char* kDefaultRequestedStates[] = {"11", "32769"};
// On, Off - Soft, and the chassis's own state for a virtual reseat.
constexpr const char* kDefaultPowerStates[] = {"2", "8", "32769"};

std::string TwoDigits(std::uint64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); }

void Add(NamedValues& values, const char* property, std::string text) {
  values.emplace_back(property, Value::Text(std::move(text)));
}

template <std::size_t N>
void AddTexts(NamedValues& values, const JsonNode& node, const TextMember (&members)[N]) {
  for (const TextMember& row : members) {
    if (const auto member = node.Find(row.member)) Add(values, row.property, member->Text());
  }
}

void AddNumber(NamedValues& values, const JsonNode& node, const TextMember& row, std::uint64_t highest = kUint16Max) {
  if (const auto member = node.Find(row.member)) Add(values, row.property, std::to_string(member->Number(0, highest)));
}

void AddTextArray(NamedValues& values, const JsonNode& node, const TextMember& row) {
  const auto member = node.Find(row.member);
  if (!member) return;
  std::vector<std::string> texts;
  for (const JsonNode& element : member->Elements()) texts.push_back(element.Text());
  values.emplace_back(row.property, Value::Texts(std::move(texts)));
}

std::vector<std::string> Numbers(const JsonNode& node) {
  std::vector<std::string> texts;
  for (const JsonNode& element : node.Elements()) texts.push_back(std::to_string(element.Number(0, kUint16Max)));
  return texts;
}

void AddNumberArray(NamedValues& values, const JsonNode& node, const TextMember& row) {
  if (const auto member = node.Find(row.member)) values.emplace_back(row.property, Value::Texts(Numbers(*member)));
}

template <std::size_t N>
std::vector<std::string> NumbersOr(const JsonNode& node, const char* name, const char* const (&whenMissing)[N]) {
  const auto member = node.Find(name);
  return member ? Numbers(*member) : std::vector<std::string>(std::begin(whenMissing), std::end(whenMissing));
}

// An empty address is allowed: it is what an endpoint without that protocol may show.
void AddAddress(NamedValues& values, const JsonNode& node, const TextMember& row, int family) {
  const auto member = node.Find(row.member);
  if (!member) return;
  const std::string text = member->Text();
  std::array<unsigned char, sizeof(in6_addr)> binary{};
  if (!text.empty() && ::inet_pton(family, text.c_str(), binary.data()) != 1) {
    member->Fail(std::string("is no IPv") + (family == AF_INET ? "4" : "6") + " address");
  }
  Add(values, row.property, text);
}

// Distinct non-empty names within one module: they become keys.
std::string UniqueName(const JsonNode& node, const char* member, std::set<std::string>& taken) {
  const JsonNode name = node.Require(member);
  std::string text = name.Text();
  if (text.empty()) name.Fail("must not be empty");
  if (!taken.insert(text).second) name.Fail("\"" + text + "\" stands here for the second time");
  return text;
}

// A JSON value as the CIM value of a property, for instances that are written out in the document.
Value ToValue(const JsonNode& node, const PropertyDeclaration& property) {
  const auto text = [&property](const JsonNode& scalar) {
    const nlohmann::json& json = scalar.Json();
    std::string written;
    // What holds other values is not written out: it may be nested deeper than any stack.
    if (json.is_primitive()) written = json.is_string() ? json.get<std::string>() : json.dump();
    if (!json.is_primitive() || json.is_null() || !IsLegalText(property.type, written)) {
      scalar.Fail("is no " + std::string(TypeName(property.type)));
    }
    return written;
  };
  if (property.type == CimType::kReference) node.Fail("references cannot be written in a model");
  if (node.Json().is_null()) return {};
  if (!property.isArray) return Value::Text(text(node));
  std::vector<std::string> texts;
  for (const JsonNode& element : node.Elements()) texts.push_back(text(element));
  return Value::Texts(std::move(texts));
}

class Builder {
 public:
  Model Build(const JsonNode& root) {
    root.RequireObject({"$schema", "formatVersion", "chassis", "bays", "timing", "cmms", "switches", "passThrus",
                        "nodes", "extraInstances"});
    if (const auto schema = root.Find("$schema")) schema->Text();
    root.Require("formatVersion").Number(1, 1);
    AddChassis(root.Require("chassis"));
    AddSlots(root.Find("bays"));
    if (const auto timing = root.Find("timing")) ReadTiming(*timing);
    AddInstallationService();
    AddRedundancySet();
    for (const ModuleKind* kind : {&kCmm, &kNode, &kSwitch, &kPassThru}) {
      if (const auto list = root.Find(kind->listName)) {
        for (const JsonNode& module : list->Elements()) AddModule(*kind, module);
      }
    }
    if (const auto extra = root.Find("extraInstances")) {
      for (const JsonNode& instance : extra->Elements()) AddExtraInstance(instance);
    }
    return Model(store_, settings_);
  }

 private:
  void ReadTiming(const JsonNode& node) {
    node.RequireObject({"cmmJobStart", "moduleJobStart", "cmmInstall", "moduleInstall", "cmmShutdown", "cmmRestart",
                        "moduleRestart", "nodeRestart", "jobRemoval"});
    for (const DurationMember& row : kDurations) {
      if (const auto member = node.Find(row.member)) {
        settings_->timing.*row.duration = std::chrono::seconds(member->Number(0, kLongestDuration));
      }
    }
  }

  void AddInstallationService() {
    NamedValues values;
    Add(values, "SystemCreationClassName", "CIM_System");
    Add(values, "SystemName", kChassisTag);
    Add(values, "Name", "FirmwareUpdate");
    Add(values, "ElementName", "Firmware update of the chassis");
    Add(values, "EnabledState", "2");
    Add(values, "Started", "TRUE");
    store_->Add("VORTA_SoftwareInstallationService", values);
  }

  void AddChassis(const JsonNode& node) {
    node.RequireObject({"name", "elementName", "manufacturer", "model", "partNumber", "serialNumber"});
    NamedValues values;
    Add(values, "Tag", kChassisTag);
    AddTexts(values, node, kChassisTexts);
    Add(values, "PackageType", "3");
    Add(values, "ChassisPackageType", "22");
    store_->Add("VORTA_Chassis", values);
  }

  // A slot for each bay, filled or not; pass-through modules share the bays of the switches.
  void AddSlots(const std::optional<JsonNode>& node) {
    if (node) node->RequireObject({"cmm", "iomodule", "node"});
    for (auto& [name, count] : bayCounts_) {
      if (const auto member = node ? node->Find(name) : std::nullopt) count = member->Number(0, kHighestBay);
      for (std::uint64_t bay = 1; bay <= count; ++bay) {
        NamedValues values;
        Add(values, "Tag", std::string(kChassisTag) + "/" + name + TwoDigits(bay));
        Add(values, "ElementName", name + " slot " + std::to_string(bay));
        Add(values, "Number", std::to_string(bay));
        Add(values, "SupportsHotPlug", "TRUE");
        values.emplace_back("ConnectorType", Value::Texts({"2"}));
        slots_.emplace(name + TwoDigits(bay), store_->Add("VORTA_Slot", values));
      }
    }
  }

  void AddRedundancySet() {
    NamedValues values;
    Add(values, "InstanceID", "VORTA:RedundancySet:cmm");
    Add(values, "ElementName", "CMM redundancy");
    Add(values, "RedundancyStatus", "2");
    values.emplace_back("TypeOfSet", Value::Texts({"4"}));
    Add(values, "MinNumberNeeded", "1");
    redundancySet_ = store_->Add("CIM_RedundancySet", values);
  }

  static void RequireKnownMembers(const ModuleKind& kind, const JsonNode& node) {
    if (&kind == &kCmm) {
      node.RequireObject(
          {"bay", "elementName", "enabledState", "package", "firmware", "endpoints", "spare", "requestedStates"});
    } else if (&kind == &kSwitch) {
      node.RequireObject({"bay", "elementName", "enabledState", "package", "firmware", "endpoints", "ehcmState",
                          "ehcmFirmwareUpdateSupported", "deferredUpdateSupported", "postStatus",
                          "postStatusDescription", "requestedStates", "installAs"});
    } else if (&kind == &kPassThru) {
      node.RequireObject({"bay", "elementName", "enabledState", "package", "firmware", "postStatus",
                          "postStatusDescription", "requestedStates"});
    } else {
      node.RequireObject({"bay", "elementName", "package", "firmware", "endpoints", "powerState", "powerStates"});
    }
  }

  // The name of the module, which is also that of its bay.
  std::string TakeBay(const ModuleKind& kind, const JsonNode& node) {
    const JsonNode bay = node.Require("bay");
    const std::uint64_t number = bay.Number(1, bayCounts_.at(kind.namePrefix));
    std::string name = kind.namePrefix + TwoDigits(number);
    if (!takenBays_.insert(name).second) bay.Fail("the bay " + name + " is taken already");
    return name;
  }

  ObjectPath AddSystem(const ModuleKind& kind, const JsonNode& node, const std::string& name) {
    NamedValues values;
    const bool isDevice = kind.dedicated == nullptr;
    if (isDevice) {
      Add(values, "SystemCreationClassName", "CIM_System");
      Add(values, "SystemName", kChassisTag);
    }
    Add(values, isDevice ? "DeviceID" : "Name", name);
    const auto elementName = node.Find("elementName");
    Add(values, "ElementName",
        elementName ? elementName->Text() : std::string(kind.labelPrefix) + " " + name.substr(name.size() - 2));
    if (!isDevice) values.emplace_back("Dedicated", Value::Texts({kind.dedicated}));
    Add(values, "HealthState", "5");
    values.emplace_back("OperationalStatus", Value::Texts({"2"}));
    if (&kind == &kNode) {
      Add(values, "EnabledState", IsOn(node) ? "2" : "3");
    } else {
      const auto state = node.Find("enabledState");
      // A spare CMM is "enabled but offline" (6), everything else "enabled" (2) in the schema's value map.
      Add(values, "EnabledState", state ? std::to_string(state->Number(0, kUint16Max)) : (IsSpare(node) ? "6" : "2"));
    }
    if (&kind == &kSwitch) {
      AddNumber(values, node, {"ehcmState", "EHCMState"});
      AddNumber(values, node, {"ehcmFirmwareUpdateSupported", "EHCMFirmwareUpdateSupported"});
      AddNumber(values, node, {"deferredUpdateSupported", "DeferredUpdateSupported"});
    }
    if (&kind == &kSwitch || &kind == &kPassThru) {
      AddNumber(values, node, {"postStatus", "PostStatus"}, kUint32Max);
      if (const auto text = node.Find("postStatusDescription")) Add(values, "PostStatusDescription", text->Text());
    }
    return store_->Add(kind.systemClass, values);
  }

  static bool IsSpare(const JsonNode& node) {
    const auto spare = node.Find("spare");
    return spare && spare->Boolean();
  }

  static bool IsOn(const JsonNode& node) {
    const auto state = node.Find("powerState");
    if (!state) return true;
    const std::string text = state->Text();
    if (text != "on" && text != "off") state->Fail("must be \"on\" or \"off\"");
    return text == "on";
  }

  void AddModule(const ModuleKind& kind, const JsonNode& node) {
    RequireKnownMembers(kind, node);
    const std::string name = TakeBay(kind, node);
    const ObjectPath system = AddSystem(kind, node, name);
    if (const auto package = node.Find("package")) AddPackage(kind, *package, name, system);
    if (const auto firmware = node.Find("firmware")) AddFirmware(kind, *firmware, name, system);
    if (const auto endpoints = node.Find("endpoints")) AddEndpoints(*endpoints, name, system);
    if (&kind == &kCmm && IsSpare(node)) Associate("VORTA_IsSpare", "Antecedent", system, "Dependent", redundancySet_);
    if (&kind == &kNode) AddPowerService(node, name, system);
    if (kind.capabilitiesClass != nullptr) AddCapabilities(kind, node, name, system);
    if (&kind == &kSwitch && InstallsAsNext(node)) settings_->installsAsNext.insert(name);
  }

  static bool InstallsAsNext(const JsonNode& node) {
    const auto place = node.Find("installAs");
    if (!place) return false;
    const std::string text = place->Text();
    if (text != "fallback" && text != "next") place->Fail("must be \"fallback\" or \"next\"");
    return text == "next";
  }

  void AddCapabilities(const ModuleKind& kind, const JsonNode& node, const std::string& name,
                       const ObjectPath& system) {
    NamedValues values;
    Add(values, "InstanceID", "VORTA:" + name + ":capabilities");
    Add(values, "ElementName", "Capabilities of " + name);
    Add(values, "ElementNameEditSupported", "FALSE");
    values.emplace_back("RequestedStatesSupported",
                        Value::Texts(NumbersOr(node, "requestedStates", kDefaultRequestedStates)));
    const ObjectPath capabilities = store_->Add(kind.capabilitiesClass, values);
    Associate("VORTA_ElementCapabilities", "ManagedElement", system, "Capabilities", capabilities);
  }

  void AddPackage(const ModuleKind& kind, const JsonNode& node, const std::string& name, const ObjectPath& system) {
    node.RequireObject({"uuid", "vpdId", "posId", "manufacturer", "subSystemManufacturer", "productName", "partNumber",
                        "sku", "serialNumber"});
    NamedValues values;
    Add(values, "Tag", kind.packageTag + name.substr(name.size() - 2));
    Add(values, "ElementName", name);
    Add(values, "PackageType", "3");
    AddTexts(values, node, kPackageTexts);
    const ObjectPath package = store_->Add("VORTA_PhysicalPackage", values);
    Associate(kind.packageAssociation, "Antecedent", package, "Dependent", system);
    Associate("VORTA_PackageInSlot", "Antecedent", slots_.at(name), "Dependent", package);
  }

  void AddFirmware(const ModuleKind& kind, const JsonNode& list, const std::string& name, const ObjectPath& system) {
    const std::string idStart = std::string("VORTA:") + kind.softwareIdPrefix + name.substr(name.size() - 2) + ":";
    std::set<std::string> taken;
    for (const JsonNode& node : list.Elements()) {
      node.RequireObject({"id", "elementName", "manufacturer", "versionString", "majorVersion", "minorVersion",
                          "revisionNumber", "buildNumber", "targetTypes", "classifications", "classifcations",
                          "classificationDescriptions", "status"});
      NamedValues values;
      Add(values, "InstanceID", idStart + UniqueName(node, "id", taken));
      AddTexts(values, node, kFirmwareTexts);
      for (const TextMember& row : kFirmwareNumbers) AddNumber(values, node, row);
      AddTextArray(values, node, {"targetTypes", "TargetTypes"});
      AddTextArray(values, node, {"classificationDescriptions", "ClassificationDescriptions"});
      AddNumberArray(values, node, {"classifications", "Classifications"});
      const ObjectPath image = store_->Add(kind.softwareClass, values);
      if (kind.isInstalledSoftware) {
        if (const auto status = node.Find("status")) {
          status->Fail("only switches and pass-through modules tell the status of an image");
        }
        Associate(kind.softwareAssociation, "System", system, "InstalledSoftware", image);
      } else {
        NamedValues status;
        AddNumberArray(status, node, {"status", "ElementSoftwareStatus"});
        Associate(kind.softwareAssociation, "Antecedent", image, "Dependent", system, std::move(status));
      }
    }
  }

  void AddEndpoints(const JsonNode& list, const std::string& name, const ObjectPath& system) {
    std::set<std::string> taken;
    for (const JsonNode& node : list.Elements()) {
      node.RequireObject({"name", "ipv4Address", "subnetMask", "ipv6Address", "ipv6SubnetPrefixLength",
                          "protocolIFType", "addressOrigin"});
      NamedValues values;
      Add(values, "SystemCreationClassName", system.className);
      Add(values, "SystemName", name);
      Add(values, "Name", UniqueName(node, "name", taken));
      AddAddress(values, node, {"ipv4Address", "IPv4Address"}, AF_INET);
      AddAddress(values, node, {"subnetMask", "SubnetMask"}, AF_INET);
      AddAddress(values, node, {"ipv6Address", "IPv6Address"}, AF_INET6);
      for (const TextMember& row : kEndpointNumbers) AddNumber(values, node, row);
      const ObjectPath endpoint = store_->Add("VORTA_IPProtocolEndpoint", values);
      Associate("VORTA_HostedAccessPoint", "Antecedent", system, "Dependent", endpoint);
    }
  }

  void AddPowerService(const JsonNode& node, const std::string& name, const ObjectPath& system) {
    NamedValues values;
    Add(values, "SystemCreationClassName", system.className);
    Add(values, "SystemName", name);
    Add(values, "Name", "PowerManagement");
    Add(values, "ElementName", "Power of " + name);
    const ObjectPath service = store_->Add("VORTA_PowerManagementService", values);
    NamedValues state;
    Add(state, "PowerState", IsOn(node) ? "2" : "8");  // On, Off - Soft
    state.emplace_back("AvailableRequestedPowerStates",
                       Value::Texts(NumbersOr(node, "powerStates", kDefaultPowerStates)));
    Associate("VORTA_AssociatedPowerManagementService", "ServiceProvided", service, "UserOfService", system,
              std::move(state));
  }

  void AddExtraInstance(const JsonNode& node) {
    node.RequireObject({"class", "properties"});
    const JsonNode className = node.Require("class");
    const ClassDeclaration* const declaration = FindClass(className.Text());
    if (declaration == nullptr) className.Fail("there is no such class");
    NamedValues values;
    std::set<const PropertyDeclaration*> taken;
    for (const auto& [name, member] : node.Require("properties").Members()) {
      const PropertyDeclaration* const property = declaration->FindProperty(name);
      if (property == nullptr) member.Fail("the class " + std::string(declaration->name) + " has no such property");
      if (!taken.insert(property).second) member.Fail("the property stands here for the second time");
      values.emplace_back(name, ToValue(member, *property));
    }
    try {
      store_->Add(declaration->name, values);
    } catch (const CimError& error) {
      node.Fail(error.what());
    }
  }

  void Associate(const char* className, const char* firstRole, const ObjectPath& first, const char* secondRole,
                 const ObjectPath& second, NamedValues values = {}) {
    values.emplace_back(firstRole, Value::Reference(first));
    values.emplace_back(secondRole, Value::Reference(second));
    store_->Add(className, values);
  }

  std::shared_ptr<ObjectStore> store_ = std::make_shared<ObjectStore>();
  std::shared_ptr<ChassisSettings> settings_ = std::make_shared<ChassisSettings>();
  std::map<std::string, std::uint64_t> bayCounts_ = {{"cmm", 2}, {"iomodule", 8}, {"node", 16}};
  std::map<std::string, ObjectPath> slots_;
  std::set<std::string> takenBays_;
  ObjectPath redundancySet_;
};

}  // namespace

Model BuildModel(const std::string& file, const std::string& text) {
  const nlohmann::json document = ParseDocument(file, text);
  return Builder().Build(JsonNode(document, file));
}

}  // namespace Orvane::simulator
