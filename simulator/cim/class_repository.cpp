// The class table and its flattening: every class carries the properties and methods of its superclasses.
#include "cim/class_repository.h"

#include <algorithm>
#include <unordered_map>

namespace Orvane::simulator {

namespace {

struct PropertyRow {
  std::string_view name;
  CimType type = CimType::kString;
  bool isArray = false;
  bool isKey = false;
  std::string_view referenceClass = {};
  std::string_view defaultText = {};
};

struct ClassRow {
  std::string_view name;
  std::string_view superclass;
  bool isAssociation = false;
  std::vector<PropertyRow> properties = {};
  std::vector<MethodDeclaration> methods = {};
};

constexpr CimType kBool = CimType::kBoolean;
constexpr CimType kU16 = CimType::kUint16;
constexpr CimType kU32 = CimType::kUint32;
constexpr CimType kText = CimType::kString;
constexpr CimType kTime = CimType::kDateTime;

PropertyRow Plain(std::string_view name, CimType type = kText) { return {name, type}; }
PropertyRow Array(std::string_view name, CimType type = kText) { return {name, type, true}; }
PropertyRow Key(std::string_view name) { return {name, kText, false, true}; }
PropertyRow Default(std::string_view name, CimType type, std::string_view text) {
  return {name, type, false, false, {}, text};
}
// A reference that is a key of its association, as all ends of associations here are.
PropertyRow End(std::string_view name, std::string_view target) {
  return {name, CimType::kReference, false, true, target};
}

// Parameters of methods. The schema wants none of them; the required ones are those without which a method has nothing
// to do.
ParameterDeclaration In(std::string_view name, CimType type) { return {name, type}; }
ParameterDeclaration InArray(std::string_view name, CimType type) { return {name, type, true}; }
ParameterDeclaration Required(std::string_view name, CimType type, std::string_view target = {}) {
  return {name, type, false, true, false, target};
}
ParameterDeclaration JobOut() { return {"Job", CimType::kReference, false, false, true, "CIM_ConcreteJob"}; }

// Names, types, defaults and inheritance as in the DMTF schema 2.41. Superclasses stand before their subclasses.
std::vector<ClassRow> ClassTable() {
  return {
      {"CIM_ManagedElement",
       "",
       false,
       {Plain("InstanceID"), Plain("Caption"), Plain("Description"), Plain("ElementName")}},
      {"CIM_ManagedSystemElement",
       "CIM_ManagedElement",
       false,
       {Plain("InstallDate", kTime), Plain("Name"), Array("OperationalStatus", kU16), Array("StatusDescriptions"),
        Plain("Status"), Plain("HealthState", kU16), Plain("CommunicationStatus", kU16), Plain("DetailedStatus", kU16),
        Plain("OperatingStatus", kU16), Plain("PrimaryStatus", kU16)}},
      {"CIM_LogicalElement", "CIM_ManagedSystemElement"},
      {"CIM_EnabledLogicalElement",
       "CIM_LogicalElement",
       false,
       {Plain("EnabledState", kU16), Plain("OtherEnabledState"), Default("RequestedState", kU16, "12"),
        Default("EnabledDefault", kU16, "2"), Plain("TimeOfLastStateChange", kTime),
        Array("AvailableRequestedStates", kU16), Default("TransitioningToState", kU16, "12")},
       {{"RequestStateChange", {Required("RequestedState", kU16), JobOut(), In("TimeoutPeriod", kTime)}}}},
      {"CIM_System",
       "CIM_EnabledLogicalElement",
       false,
       {Key("CreationClassName"), Key("Name"), Plain("NameFormat"), Plain("PrimaryOwnerName"),
        Plain("PrimaryOwnerContact"), Array("Roles"), Array("OtherIdentifyingInfo"), Array("IdentifyingDescriptions")}},
      {"CIM_ComputerSystem",
       "CIM_System",
       false,
       {Array("OtherDedicatedDescriptions"), Array("Dedicated", kU16), Plain("ResetCapability", kU16),
        Array("PowerManagementCapabilities", kU16)}},
      {"VORTA_ComputerSystem", "CIM_ComputerSystem"},
      {"VORTA_CMMComputerSystem", "CIM_ComputerSystem"},
      {"VORTA_IOModuleComputerSystem",
       "CIM_ComputerSystem",
       false,
       {Plain("EHCMState", kU16), Plain("EHCMFirmwareUpdateSupported", kU16), Plain("DeferredUpdateSupported", kU16),
        Plain("PostStatus", kU32), Plain("PostStatusDescription")}},
      {"CIM_LogicalDevice",
       "CIM_EnabledLogicalElement",
       false,
       {Key("SystemCreationClassName"), Key("SystemName"), Key("CreationClassName"), Key("DeviceID"),
        Array("OtherIdentifyingInfo"), Array("IdentifyingDescriptions")}},
      {"CIM_LogicalModule",
       "CIM_LogicalDevice",
       false,
       {Plain("ModuleNumber", kU16), Default("LogicalModuleType", kU16, "0")}},
      {"CIM_PassThroughModule", "CIM_LogicalModule"},
      {"VORTA_PassThroughModule",
       "CIM_PassThroughModule",
       false,
       {Plain("PostStatus", kU32), Plain("PostStatusDescription")}},
      {"CIM_Service",
       "CIM_EnabledLogicalElement",
       false,
       {Key("SystemCreationClassName"), Key("SystemName"), Key("CreationClassName"), Key("Name"),
        Plain("PrimaryOwnerName"), Plain("PrimaryOwnerContact"), Plain("StartMode"), Plain("Started", kBool)},
       {{"StartService", {}}, {"StopService", {}}}},
      {"CIM_PowerManagementService",
       "CIM_Service",
       false,
       {},
       {{"RequestPowerStateChange",
         {Required("PowerState", kU16), Required("ManagedElement", CimType::kReference, "CIM_ManagedElement"),
          In("Time", kTime), JobOut(), In("TimeoutPeriod", kTime)}}}},
      {"VORTA_PowerManagementService", "CIM_PowerManagementService"},
      {"CIM_SoftwareInstallationService",
       "CIM_Service",
       false,
       {},
       {{"InstallFromURI",
         {JobOut(), Required("URI", kText), Required("Target", CimType::kReference, "CIM_ManagedElement"),
          InArray("InstallOptions", kU16), InArray("InstallOptionsValues", kText)}}}},
      {"VORTA_SoftwareInstallationService", "CIM_SoftwareInstallationService"},
      {"CIM_Job",
       "CIM_LogicalElement",
       false,
       {Plain("JobStatus"), Plain("TimeSubmitted", kTime), Plain("ElapsedTime", kTime), Plain("PercentComplete", kU16),
        Plain("ErrorCode", kU16), Plain("ErrorDescription"), Plain("DeleteOnCompletion", kBool)}},
      {"CIM_ConcreteJob",
       "CIM_Job",
       false,
       {Key("InstanceID"), Plain("JobState", kU16), Plain("TimeOfLastStateChange", kTime),
        Plain("TimeBeforeRemoval", kTime)}},
      {"VORTA_FirmwareInstallationJob", "CIM_ConcreteJob"},
      {"CIM_ServiceAccessPoint",
       "CIM_EnabledLogicalElement",
       false,
       {Key("SystemCreationClassName"), Key("SystemName"), Key("CreationClassName"), Key("Name")}},
      {"CIM_ProtocolEndpoint",
       "CIM_ServiceAccessPoint",
       false,
       {Plain("NameFormat"), Plain("ProtocolIFType", kU16), Plain("OtherTypeDescription")}},
      {"CIM_IPProtocolEndpoint",
       "CIM_ProtocolEndpoint",
       false,
       {Plain("IPv4Address"), Plain("SubnetMask"), Plain("AddressOrigin", kU16), Plain("IPv6Address"),
        Plain("IPv6SubnetPrefixLength", kU16)}},
      {"VORTA_IPProtocolEndpoint", "CIM_IPProtocolEndpoint"},
      {"CIM_SoftwareIdentity",
       "CIM_LogicalElement",
       false,
       {Key("InstanceID"), Plain("MajorVersion", kU16), Plain("MinorVersion", kU16), Plain("RevisionNumber", kU16),
        Plain("BuildNumber", kU16), Plain("VersionString"), Plain("Manufacturer"), Array("Languages"),
        Array("Classifications", kU16), Array("ClassificationDescriptions"), Plain("SerialNumber"),
        Array("TargetTypes"), Default("IsEntity", kBool, "FALSE")}},
      {"VORTA_SoftwareIdentity", "CIM_SoftwareIdentity", false, {Plain("Classifcations", kU16)}},
      {"VORTA_IOMSoftwareIdentity", "VORTA_SoftwareIdentity"},
      {"VORTA_PassThruSoftwareIdentity", "VORTA_SoftwareIdentity"},
      {"CIM_PhysicalElement",
       "CIM_ManagedSystemElement",
       false,
       {Key("Tag"), Key("CreationClassName"), Plain("Manufacturer"), Plain("Model"), Plain("SKU"),
        Plain("SerialNumber"), Plain("Version"), Plain("PartNumber"), Plain("PoweredOn", kBool)}},
      {"CIM_PhysicalPackage",
       "CIM_PhysicalElement",
       false,
       {Default("RemovalConditions", kU16, "2"), Plain("HotSwappable", kBool), Plain("PackageType", kU16)}},
      {"VORTA_PhysicalPackage",
       "CIM_PhysicalPackage",
       false,
       {Plain("UUID"), Plain("VpdId"), Plain("PosId"), Plain("SubSystemManufacturer"), Plain("ProductName")}},
      {"CIM_PhysicalFrame", "CIM_PhysicalPackage", false, {Plain("LockPresent", kBool), Plain("IsLocked", kBool)}},
      {"CIM_Chassis",
       "CIM_PhysicalFrame",
       false,
       {Plain("NumberOfPowerCords", kU16), Plain("ChassisPackageType", kU16), Plain("RackMountable", kU16)}},
      {"VORTA_Chassis", "CIM_Chassis"},
      {"CIM_PhysicalConnector", "CIM_PhysicalElement", false, {Array("ConnectorType", kU16)}},
      {"CIM_Slot",
       "CIM_PhysicalConnector",
       false,
       {Plain("Number", kU16), Plain("SupportsHotPlug", kBool), Plain("Powered", kBool)}},
      {"VORTA_Slot", "CIM_Slot"},
      {"CIM_Collection", "CIM_ManagedElement"},
      {"CIM_SystemSpecificCollection", "CIM_Collection", false, {Key("InstanceID")}},
      {"CIM_RedundancySet",
       "CIM_SystemSpecificCollection",
       false,
       {Plain("RedundancyStatus", kU16), Array("TypeOfSet", kU16), Plain("MinNumberNeeded", kU32),
        Plain("MaxNumberSupported", kU32), Default("LoadBalanceAlgorithm", kU16, "2")}},
      {"CIM_Capabilities", "CIM_ManagedElement", false, {Key("InstanceID")}},
      {"CIM_EnabledLogicalElementCapabilities",
       "CIM_Capabilities",
       false,
       {Plain("ElementNameEditSupported", kBool), Array("RequestedStatesSupported", kU16)}},
      {"VORTA_CMMEnabledLogicalElementCapabilities", "CIM_EnabledLogicalElementCapabilities"},
      {"VORTA_IOModuleEnabledLogicalElementCapabilities", "CIM_EnabledLogicalElementCapabilities"},
      {"VORTA_PassThroughModuleEnabledLogicalElementCapabilities", "CIM_EnabledLogicalElementCapabilities"},

      {"CIM_Dependency", "", true, {End("Antecedent", "CIM_ManagedElement"), End("Dependent", "CIM_ManagedElement")}},
      {"CIM_Realizes", "CIM_Dependency", true},
      {"VORTA_Realizes", "CIM_Realizes", true},
      {"CIM_ElementInConnector", "CIM_Dependency", true},
      {"CIM_PackageInConnector", "CIM_ElementInConnector", true},
      {"CIM_PackageInSlot", "CIM_PackageInConnector", true},
      {"VORTA_PackageInSlot", "CIM_PackageInSlot", true},
      {"CIM_SystemPackaging", "CIM_Dependency", true},
      {"CIM_ComputerSystemPackage", "CIM_SystemPackaging", true, {Plain("PlatformGUID")}},
      {"VORTA_ComputerSystemPackage", "CIM_ComputerSystemPackage", true},
      {"CIM_HostedDependency", "CIM_Dependency", true},
      {"CIM_HostedAccessPoint", "CIM_HostedDependency", true},
      {"VORTA_HostedAccessPoint", "CIM_HostedAccessPoint", true},
      {"CIM_IsSpare", "CIM_Dependency", true, {Plain("SpareStatus", kU16), Plain("FailoverSupported", kU16)}},
      {"VORTA_IsSpare", "CIM_IsSpare", true},
      {"CIM_ElementSoftwareIdentity",
       "CIM_Dependency",
       true,
       {Array("ElementSoftwareStatus", kU16), Plain("UpgradeCondition", kU16), Plain("OtherUpgradeCondition")}},
      {"VORTA_IOMElementFirmwareIdentity", "CIM_ElementSoftwareIdentity", true},
      {"VORTA_PassThruElementFirmwareIdentity", "CIM_ElementSoftwareIdentity", true},
      {"CIM_InstalledSoftwareIdentity",
       "",
       true,
       {End("System", "CIM_System"), End("InstalledSoftware", "CIM_SoftwareIdentity")}},
      {"VORTA_CMMInstalledSoftwareIdentity", "CIM_InstalledSoftwareIdentity", true},
      {"CIM_ElementCapabilities",
       "",
       true,
       {End("ManagedElement", "CIM_ManagedElement"), End("Capabilities", "CIM_Capabilities")}},
      {"VORTA_ElementCapabilities", "CIM_ElementCapabilities", true},
      {"CIM_ServiceAvailableToElement",
       "",
       true,
       {End("ServiceProvided", "CIM_Service"), End("UserOfService", "CIM_ManagedElement")}},
      {"CIM_AssociatedPowerManagementService",
       "CIM_ServiceAvailableToElement",
       true,
       {Plain("PowerState", kU16), Plain("OtherPowerState"), Default("RequestedPowerState", kU16, "12"),
        Plain("PowerOnTime", kTime), Array("AvailableRequestedPowerStates", kU16)}},
      {"VORTA_AssociatedPowerManagementService", "CIM_AssociatedPowerManagementService", true},
  };
}

struct Repository {
  std::vector<ClassDeclaration> classes;
  std::unordered_map<std::string, std::size_t> byLowerName;

  Repository() {
    for (const ClassRow& row : ClassTable()) Add(row);
  }

  void Add(const ClassRow& row) {
    ClassDeclaration declaration{row.name, row.superclass, row.isAssociation, {}, {}};
    if (!row.superclass.empty()) {
      const ClassDeclaration& superclass = classes[byLowerName.at(LowerCase(row.superclass))];
      declaration.properties = superclass.properties;
      declaration.methods = superclass.methods;
    }
    for (const PropertyRow& property : row.properties) {
      const PropertyDeclaration own{property.name,           property.type,        property.isArray, property.isKey,
                                    property.referenceClass, property.defaultText, row.name};
      // A property declared again (InstanceID as a key) overrides the inherited one in its place.
      const auto inherited =
          std::find_if(declaration.properties.begin(), declaration.properties.end(),
                       [&](const PropertyDeclaration& other) { return EqualNames(other.name, own.name); });
      if (inherited == declaration.properties.end()) {
        declaration.properties.push_back(own);
      } else {
        *inherited = own;
      }
    }
    for (const MethodDeclaration& method : row.methods) {
      declaration.methods.push_back({method.name, method.parameters, row.name});
    }
    byLowerName.emplace(LowerCase(row.name), classes.size());
    classes.push_back(std::move(declaration));
  }
};

const Repository& TheRepository() {
  static const Repository repository;
  return repository;
}

}  // namespace

const PropertyDeclaration* ClassDeclaration::FindProperty(std::string_view wanted) const {
  const auto found = std::find_if(properties.begin(), properties.end(),
                                  [&](const PropertyDeclaration& own) { return EqualNames(own.name, wanted); });
  return found == properties.end() ? nullptr : &*found;
}

const MethodDeclaration* ClassDeclaration::FindMethod(std::string_view wanted) const {
  const auto found = std::find_if(methods.begin(), methods.end(),
                                  [&](const MethodDeclaration& own) { return EqualNames(own.name, wanted); });
  return found == methods.end() ? nullptr : &*found;
}

const ClassDeclaration* FindClass(std::string_view name) {
  const Repository& repository = TheRepository();
  const auto found = repository.byLowerName.find(LowerCase(name));
  return found == repository.byLowerName.end() ? nullptr : &repository.classes[found->second];
}

const std::vector<ClassDeclaration>& AllClasses() { return TheRepository().classes; }

bool IsOrDerivesFrom(const ClassDeclaration& declaration, std::string_view ancestor) {
  const ClassDeclaration* current = &declaration;
  while (current != nullptr && !EqualNames(current->name, ancestor)) {
    current = current->superclass.empty() ? nullptr : FindClass(current->superclass);
  }
  return current != nullptr;
}

}  // namespace Orvane::simulator
