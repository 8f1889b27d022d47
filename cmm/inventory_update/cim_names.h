// Names of the CIM namespace, classes, properties and methods that the library asks for, spelt as the chassis manager's
// CIM server knows them.
#pragma once

namespace Orvane::cim {

constexpr char kNamespace[] = "root/cimv2";
// The same namespace as the polls of jobs write it; the slash does not reach the server.
constexpr char kJobNamespace[] = "/root/cimv2";

// Classes of managed elements.
constexpr char kChassis[] = "CIM_Chassis";
constexpr char kComputerSystem[] = "CIM_ComputerSystem";
constexpr char kConcreteJob[] = "CIM_ConcreteJob";
constexpr char kIPProtocolEndpoint[] = "CIM_IPProtocolEndpoint";
constexpr char kPassThroughModule[] = "CIM_PassThroughModule";
constexpr char kPhysicalPackage[] = "CIM_PhysicalPackage";
constexpr char kPowerManagementService[] = "CIM_PowerManagementService";
constexpr char kRedundancySet[] = "CIM_RedundancySet";
constexpr char kSlot[] = "CIM_Slot";
constexpr char kSoftwareIdentity[] = "CIM_SoftwareIdentity";
constexpr char kSoftwareInstallationService[] = "CIM_SoftwareInstallationService";
constexpr char kVortaCmmCapabilities[] = "VORTA_CMMEnabledLogicalElementCapabilities";
constexpr char kVortaCmmComputerSystem[] = "VORTA_CMMComputerSystem";
constexpr char kVortaComputerSystem[] = "VORTA_ComputerSystem";
constexpr char kVortaFirmwareInstallationJob[] = "VORTA_FirmwareInstallationJob";
constexpr char kVortaIOModuleComputerSystem[] = "VORTA_IOModuleComputerSystem";
constexpr char kVortaPassThroughModule[] = "VORTA_PassThroughModule";
constexpr char kVortaPassThroughModuleCapabilities[] = "VORTA_PassThroughModuleEnabledLogicalElementCapabilities";

// Association classes.
constexpr char kAssociatedPowerManagementService[] = "CIM_AssociatedPowerManagementService";
constexpr char kComputerSystemPackage[] = "CIM_ComputerSystemPackage";
constexpr char kElementSoftwareIdentity[] = "CIM_ElementSoftwareIdentity";
constexpr char kHostedAccessPoint[] = "CIM_HostedAccessPoint";
constexpr char kInstalledSoftwareIdentity[] = "CIM_InstalledSoftwareIdentity";
constexpr char kIsSpare[] = "CIM_IsSpare";
constexpr char kPackageInSlot[] = "CIM_PackageInSlot";
constexpr char kRealizes[] = "CIM_Realizes";
constexpr char kVortaIOMElementFirmwareIdentity[] = "VORTA_IOMElementFirmwareIdentity";

// Properties.
constexpr char kAddressOrigin[] = "AddressOrigin";
constexpr char kAntecedent[] = "Antecedent";
constexpr char kAvailableRequestedPowerStates[] = "AvailableRequestedPowerStates";
constexpr char kBuildNumber[] = "BuildNumber";
constexpr char kClassificationDescriptions[] = "ClassificationDescriptions";
// Misspelt in the interface of the chassis manager: the correctly spelt property is another one and must not be read.
constexpr char kClassifcations[] = "Classifcations";
constexpr char kDedicated[] = "Dedicated";
constexpr char kDeferredUpdateSupported[] = "DeferredUpdateSupported";
constexpr char kDeviceId[] = "DeviceID";
constexpr char kEhcmFirmwareUpdateSupported[] = "EHCMFirmwareUpdateSupported";
constexpr char kEhcmState[] = "EHCMState";
constexpr char kElementName[] = "ElementName";
constexpr char kElementSoftwareStatus[] = "ElementSoftwareStatus";
constexpr char kEnabledState[] = "EnabledState";
constexpr char kErrorDescription[] = "ErrorDescription";
constexpr char kIPv4Address[] = "IPv4Address";
constexpr char kIPv6Address[] = "IPv6Address";
constexpr char kIPv6SubnetPrefixLength[] = "IPv6SubnetPrefixLength";
constexpr char kInstanceId[] = "InstanceID";
constexpr char kJobState[] = "JobState";
constexpr char kMajorVersion[] = "MajorVersion";
constexpr char kManufacturer[] = "Manufacturer";
constexpr char kMinorVersion[] = "MinorVersion";
constexpr char kModel[] = "Model";
constexpr char kName[] = "Name";
constexpr char kNumber[] = "Number";
constexpr char kPartNumber[] = "PartNumber";
constexpr char kPosId[] = "PosId";
constexpr char kPostStatus[] = "PostStatus";
constexpr char kPostStatusDescription[] = "PostStatusDescription";
constexpr char kProductName[] = "ProductName";
constexpr char kProtocolIFType[] = "ProtocolIFType";
constexpr char kRequestedStatesSupported[] = "RequestedStatesSupported";
constexpr char kRevisionNumber[] = "RevisionNumber";
constexpr char kSerialNumber[] = "SerialNumber";
constexpr char kSku[] = "SKU";
constexpr char kSubSystemManufacturer[] = "SubSystemManufacturer";
constexpr char kSubnetMask[] = "SubnetMask";
constexpr char kTag[] = "Tag";
constexpr char kTargetTypes[] = "TargetTypes";
constexpr char kUuid[] = "UUID";
constexpr char kVersionString[] = "VersionString";
constexpr char kVpdId[] = "VpdId";

// Methods.
constexpr char kInstallFromUri[] = "InstallFromURI";
constexpr char kRequestPowerStateChange[] = "RequestPowerStateChange";
constexpr char kRequestStateChange[] = "RequestStateChange";

// Parameters of methods.
constexpr char kInstallOptions[] = "InstallOptions";
constexpr char kInstallOptionsValues[] = "InstallOptionsValues";
constexpr char kJob[] = "Job";
constexpr char kManagedElement[] = "ManagedElement";
constexpr char kPowerState[] = "PowerState";
constexpr char kRequestedState[] = "RequestedState";
constexpr char kTarget[] = "Target";
constexpr char kTimeoutPeriod[] = "TimeoutPeriod";
constexpr char kUri[] = "URI";

// Values of CIM_ComputerSystem.Dedicated.
constexpr unsigned short kDedicatedIOModule = 12;
constexpr unsigned short kDedicatedCmm = 29;

}  // namespace Orvane::cim
