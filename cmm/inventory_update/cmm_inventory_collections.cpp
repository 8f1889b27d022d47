// The collections of CMMs, I/O modules and pass-through modules. They differ on purpose: a CMM stays in the list
// whatever failed, an I/O module is left out when a part of it failed, a pass-through module that fails ends its
// collection.
#include <boost/make_shared.hpp>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_log.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMObjectPath;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_inventory_collections";

constexpr std::size_t kMaxFirmwareKey = 127;

std::string OrNull(const std::string& text) { return text.empty() ? "Null" : text; }

std::string FirmwareKey(const Physicallnfo& module, const FirmwareIdentity& image) {
  const std::string key =
      OrNull(module.VpdId) + "-" + OrNull(module.PosId) + "-" + OrNull(image.ClassificationDescriptions);
  return key.substr(0, kMaxFirmwareKey);
}

}  // namespace

int CMMTarnInventoryImp::collectCMMData(CMMDataList& list) {
  int result = kOk;
  const SessionCloser closer(*client_);
  try {
    ORVANE_LOG(kLogProgress) << "collect CMMData";
    if (!Connect()) {
      ORVANE_LOG(kLogError) << kConnectionFailed;
      return kNoConnection;
    }
    const Array<CIMInstance> cmms = ComputerSystemsDedicatedTo(cim::kDedicatedCmm);
    if (cmms.size() == 0) {
      ORVANE_LOG(kLogError) << "Not found a CMM Instance";
      return kNothingFound;
    }
    for (Uint32 i = 0; i < cmms.size(); ++i) CollectCmm(cmms[i], list, result);
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown Error during collectCMMData()";
  }
  return result;
}

// Sets `result` as soon as the firmware is read, so that an unexpected error later on leaves it at that code.
void CMMTarnInventoryImp::CollectCmm(const CIMInstance& instance, CMMDataList& list, int& result) {
  const auto cmm = boost::make_shared<CMMData>();
  const CIMObjectPath path = PegClientOpt::GetInstancePath(instance);
  if (collectPhysicalInfo(path, cim::kComputerSystemPackage, cim::kPhysicalPackage, cmm->Physical) != kOk) {
    ORVANE_LOG(kLogError) << "perform func [collectPhysicalInfo] failed. ";
  }
  // A spare in a redundancy set is not primary; a lone CMM has no such set and is.
  if (client_->Associators(cim::kNamespace, path, cim::kIsSpare, cim::kRedundancySet).size() > 0) {
    cmm->NotPrimary = 1;
    ORVANE_LOG(kLogProgress) << "Is NOT Primary CMM";
  } else {
    cmm->NotPrimary = 0;
    ORVANE_LOG(kLogProgress) << "Is Primary CMM";
  }
  try {
    std::string name = PropertyTextOrThrow(instance, cim::kName);
    ORVANE_LOG(kLogProgress) << "CMM Name:" << name;
    cmm->Name = std::move(name);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << " Error:" << ErrorText(error);
  }
  result = collectFirmwareInfo(path, cim::kInstalledSoftwareIdentity, cim::kSoftwareIdentity, cmm->Firmwares);
  if (result != kOk) {
    ORVANE_LOG(kLogError) << "Collect Firmware info";
  }
  collectIPInfo(path, cim::kHostedAccessPoint, cim::kIPProtocolEndpoint, cmm->IPs);
  list.records_.push_back(cmm);
}

int CMMTarnInventoryImp::collectIOModuleData(CIMIODataList& list) {
  const SessionCloser closer(*client_);
  try {
    ORVANE_LOG(kLogProgress) << "collect IOModuleData";
    if (!Connect()) {
      ORVANE_LOG(kLogError) << kConnectionFailed;
      return kNoConnection;
    }
    const Array<CIMInstance> modules = ComputerSystemsDedicatedToOrThrow(cim::kDedicatedIOModule);
    if (modules.size() == 0) {
      ORVANE_LOG(kLogError) << "Not found a IOModule Instance";
      return kNothingFound;
    }
    for (Uint32 i = 0; i < modules.size(); ++i) CollectIOModule(modules[i], list);
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown Error during collectIOModuleData()";
    return kUnexpectedError;
  }
}

void CMMTarnInventoryImp::CollectIOModule(const CIMInstance& instance, CIMIODataList& list) {
  const auto module = boost::make_shared<CIMIOData>();
  const CIMObjectPath& path = instance.getPath();
  const int physical = collectPhysicalInfo(path, cim::kComputerSystemPackage, cim::kPhysicalPackage, module->Physical);
  if (physical != kOk) {
    ORVANE_LOG(kLogError) << "perform func[collectPhysicalInfo] failed"
                          << "return code: " << physical;
  }
  const int firmware =
      collectFirmwareInfo(path, cim::kElementSoftwareIdentity, cim::kSoftwareIdentity, module->Firmwares);
  if (firmware != kOk) {
    ORVANE_LOG(kLogError) << "perform func[collectFirmwareInfo] failed"
                          << "return code: " << firmware;
  } else {
    for (FirmwareIdentity& image : module->Firmwares) image.ModuleFirmwareKey = FirmwareKey(module->Physical, image);
  }
  const int ip = collectIPInfo(path, cim::kHostedAccessPoint, cim::kIPProtocolEndpoint, module->IPs);
  if (ip != kOk) {
    ORVANE_LOG(kLogError) << "perform func[collectIPInfo] failed"
                          << "return code: " << ip;
  }
  if (physical == kOk && firmware == kOk && ip == kOk) list.records_.push_back(module);
}

int CMMTarnInventoryImp::collectPassThruModuleData(CIMIODataList& list) {
  const SessionCloser closer(*client_);
  try {
    ORVANE_LOG(kLogProgress) << "collect PassThruModuleData";
    if (!Connect()) {
      ORVANE_LOG(kLogError) << kConnectionFailed;
      return kNoConnection;
    }
    const Array<CIMInstance> modules = client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kPassThroughModule);
    for (Uint32 i = 0; i < modules.size(); ++i) {
      if (const int result = CollectPassThruModule(modules[i], list); result != kOk) return result;
    }
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kPassThruCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown Error during collectPassThruModuleData()";
    return kUnexpectedError;
  }
}

int CMMTarnInventoryImp::CollectPassThruModule(const CIMInstance& instance, CIMIODataList& list) {
  const auto module = boost::make_shared<CIMIOData>();
  module->IsPassThru = true;
  const CIMObjectPath& path = instance.getPath();
  int result = collectPhysicalInfo(path, cim::kRealizes, cim::kPhysicalPackage, module->Physical);
  if (result != kOk) {
    ORVANE_LOG(kLogError) << "Failed to perform func[collectPhysicalInfo]."
                          << "return code: " << result;
    return result;
  }
  result = collectFirmwareInfo(path, cim::kElementSoftwareIdentity, cim::kSoftwareIdentity, module->Firmwares);
  if (result != kOk) {
    ORVANE_LOG(kLogError) << "Failed to perform func[collectFirmwareInfo]."
                          << "return code: " << result;
    return result;
  }
  list.records_.push_back(module);
  return kOk;
}

}  // namespace Orvane
