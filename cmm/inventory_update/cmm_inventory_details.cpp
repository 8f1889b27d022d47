// The collectors of a module's parts: product data and slot, firmware images, IP endpoints. Each serves several kinds
// of modules through the association and result classes that it is given.
#include <algorithm>
#include <boost/lexical_cast.hpp>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_log.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMName;
using Pegasus::CIMObjectPath;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_inventory_details";

constexpr char kCmmFirmware[] = "Firmware:CMM";
constexpr std::size_t kMinCmmTargetTypes = 12;
constexpr std::size_t kMaxFullVersion = 255;

struct TextProperty {
  const char* name;
  std::string Physicallnfo::*field;
};

// In the order in which the package's properties are read.
constexpr TextProperty kPackageProperties[] = {
    {cim::kUuid, &Physicallnfo::UUID},
    {cim::kVpdId, &Physicallnfo::VpdId},
    {cim::kPosId, &Physicallnfo::PosId},
    {cim::kManufacturer, &Physicallnfo::Manufacturer},
    {cim::kSubSystemManufacturer, &Physicallnfo::SubSystemManufacturer},
    {cim::kProductName, &Physicallnfo::ProductName},
    {cim::kSku, &Physicallnfo::SKU},
    {cim::kPartNumber, &Physicallnfo::PartNumber},
    {cim::kSerialNumber, &Physicallnfo::SerialNumber},
};

bool IsCmmFirmware(const std::string& targetTypes) {
  return targetTypes.size() >= kMinCmmTargetTypes && Contains(targetTypes, kCmmFirmware);
}

std::string FullVersion(const FirmwareIdentity& image) {
  if (!IsCmmFirmware(image.TargetTypes) || image.VersionString.empty()) return {};
  const std::string version =
      image.VersionString + "-" + image.MajorVersion + "." + image.MinorVersion + "." + image.RevisionNumber;
  return version.substr(0, kMaxFullVersion);
}

void ReadFirmware(const CIMInstance& identity, FirmwareIdentity& image) {
  image.ClassificationDescriptions = PropertyText(identity, cim::kClassificationDescriptions);
  image.IsNotBootRom = !Contains(image.ClassificationDescriptions, "Boot ROM");
  image.Classifications = CIMValueToInt(PegClientOpt::GetPropertyValue(identity, cim::kClassifcations));
  image.VersionString = PropertyText(identity, cim::kVersionString);
  image.ElementName = PropertyText(identity, cim::kElementName);
  image.TargetTypes = PropertyText(identity, cim::kTargetTypes);
  image.MajorVersion = PropertyText(identity, cim::kMajorVersion);
  image.MinorVersion = PropertyText(identity, cim::kMinorVersion);
  image.RevisionNumber = PropertyText(identity, cim::kRevisionNumber);
  image.BuildNumber = PropertyText(identity, cim::kBuildNumber);
  const std::string formatted = FullVersion(image);
  image.FullVersionString = formatted;
  ORVANE_LOG(kLogDetail) << "firmware_indentity.FullVersionString" << image.FullVersionString << " raw: " << formatted;
}

// The status stands on the association between module and image, whose Antecedent is the image's path.
std::string ElementSoftwareStatus(const CIMInstance& identity, const Array<CIMInstance>& associations) {
  const std::string instanceId = PropertyText(identity, cim::kInstanceId);
  for (Uint32 i = 0; i < associations.size(); ++i) {
    if (Contains(PropertyText(associations[i], cim::kAntecedent), instanceId.c_str())) {
      return PropertyText(associations[i], cim::kElementSoftwareStatus);
    }
  }
  return {};
}

// Leaves `number` alone when the property's text is no number.
void ReadNumber(const CIMInstance& instance, const char* name, std::int32_t& number) {
  try {
    number = boost::lexical_cast<std::int32_t>(PropertyText(instance, name));
  } catch (const boost::bad_lexical_cast& error) {
    ORVANE_LOG(kLogError) << error.what();
  }
}

bool SharesAddress(const IPInfo& a, const IPInfo& b) {
  return (!a.IPv4Address.empty() && a.IPv4Address == b.IPv4Address) ||
         (!a.IPv6Address.empty() && a.IPv6Address == b.IPv6Address);
}

}  // namespace

int CMMTarnInventoryImp::collectPhysicalInfo(const CIMObjectPath& path, const CIMName& assocClass,
                                             const CIMName& resultClass, Physicallnfo& out) {
  try {
    ORVANE_LOG(kLogProgress) << "collect physical info";
    Array<CIMInstance> packages =
        PegClientOpt::ObjectsToInstances(client_->Associators(cim::kNamespace, path, assocClass, resultClass));
    Array<CIMObjectPath> paths;
    if (packages.size() > 0) {
      for (Uint32 i = 0; i < packages.size(); ++i) paths.append(PegClientOpt::GetInstancePath(packages[i]));
    } else {
      paths = client_->AssociatorNames(cim::kNamespace, path, assocClass, resultClass);
      if (paths.size() == 0) return kNothingFound;
      packages = client_->GetInstances(cim::kNamespace, paths);
    }
    for (Uint32 i = 0; i < packages.size(); ++i) {
      for (const TextProperty& property : kPackageProperties) {
        out.*property.field = PropertyText(packages[i], property.name);
      }
      const Array<CIMInstance> slots = PegClientOpt::ObjectsToInstances(
          client_->Associators(cim::kNamespace, paths[i], cim::kPackageInSlot, cim::kSlot));
      for (Uint32 s = 0; s < slots.size(); ++s) {
        out.SlotNumber = boost::lexical_cast<std::int32_t>(PropertyText(slots[s], cim::kNumber));
      }
    }
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown exception occurred";
    return kUnexpectedError;
  }
}

int CMMTarnInventoryImp::collectFirmwareInfo(const CIMObjectPath& path, const CIMName& assocClass,
                                             const CIMName& resultClass, std::vector<FirmwareIdentity>& out) {
  try {
    ORVANE_LOG(kLogDetail) << "collect firmware infomation.";
    const Array<CIMInstance> identities =
        PegClientOpt::ObjectsToInstances(client_->Associators(cim::kNamespace, path, assocClass, resultClass));
    const Array<CIMInstance> associations = client_->EnumerateInstances(cim::kNamespace, assocClass);
    if (identities.size() == 0) return kNothingFound;
    const bool ofModule = assocClass.equal(CIMName(cim::kElementSoftwareIdentity));
    for (Uint32 i = 0; i < identities.size(); ++i) {
      const std::string targetTypes = PropertyText(identities[i], cim::kTargetTypes);
      if (!ofModule && !IsCmmFirmware(targetTypes)) {
        ORVANE_LOG(kLogDetail) << "TargetTypes: [" << targetTypes << "] is skipped";
        continue;
      }
      FirmwareIdentity image;
      ReadFirmware(identities[i], image);
      if (ofModule) image.ElementSoftwareStatus = ElementSoftwareStatus(identities[i], associations);
      out.push_back(std::move(image));
    }
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown exception occurred";
    return kUnexpectedError;
  }
}

int CMMTarnInventoryImp::collectIPInfo(const CIMObjectPath& path, const CIMName& assocClass, const CIMName& resultClass,
                                       std::vector<IPInfo>& out) {
  try {
    ORVANE_LOG(kLogDetail) << "collect IP address information";
    const Array<CIMInstance> endpoints =
        PegClientOpt::ObjectsToInstances(client_->Associators(cim::kNamespace, path, assocClass, resultClass));
    if (endpoints.size() == 0) return kNothingFound;
    for (Uint32 i = 0; i < endpoints.size(); ++i) {
      IPInfo ip;
      ip.IPv4Address = PropertyText(endpoints[i], cim::kIPv4Address);
      ip.SubnetMask = PropertyText(endpoints[i], cim::kSubnetMask);
      ip.IPv6Address = PropertyText(endpoints[i], cim::kIPv6Address);
      ip.IPv6SubnetPrefixLength = PropertyText(endpoints[i], cim::kIPv6SubnetPrefixLength);
      ip.Name = PropertyText(endpoints[i], cim::kName);
      ReadNumber(endpoints[i], cim::kProtocolIFType, ip.ProtocolIFType);
      ReadNumber(endpoints[i], cim::kAddressOrigin, ip.AddressOrigin);
      const bool known =
          std::any_of(out.begin(), out.end(), [&ip](const IPInfo& other) { return SharesAddress(ip, other); });
      if (!known) out.push_back(std::move(ip));
    }
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown exception occurred when collecting IP Info";
    return kUnexpectedError;
  }
}

}  // namespace Orvane
