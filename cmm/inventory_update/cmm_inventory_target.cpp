// The lookup of the CIM instance that an update, a reboot or a reseat acts on. It tells a CMM's primacy from its
// enabled state, unlike the CMM collection; both tests are meant as they are.
#include <algorithm>
#include <array>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_log.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMObject;
using Pegasus::CIMObjectPath;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_inventory_target";

// The statuses that the lookup names in the log; it is silent about every other one.
constexpr std::array<Pegasus::CIMStatusCode, 5> kNamedStatuses = {
    Pegasus::CIM_ERR_FAILED, Pegasus::CIM_ERR_ACCESS_DENIED, Pegasus::CIM_ERR_INVALID_PARAMETER,
    Pegasus::CIM_ERR_INVALID_CLASS, Pegasus::CIM_ERR_NOT_SUPPORTED};

}  // namespace

CIMInstance CMMTarnInventoryImp::GetTargetInstanceOrThrow(int bayId, int mode) {
  const SessionCloser closer(*client_);
  if (!Connect()) {
    ORVANE_LOG(kLogError) << kConnectionFailed;
    return {};
  }
  switch (mode) {
    case kTargetPrimaryCmm:
      return FindPrimaryCmm();
    case kTargetIOModule:
    case kTargetPassThru:
      return FindModuleInBay(bayId, mode);
    case kTargetBladePower:
      return FindBladePowerService(bayId);
    default:
      return {};
  }
}

CIMInstance CMMTarnInventoryImp::GetTargetInstance(int bayId, int mode) {
  try {
    return GetTargetInstanceOrThrow(bayId, mode);
  } catch (const Pegasus::CIMException& error) {
    const bool named = std::find(kNamedStatuses.begin(), kNamedStatuses.end(), error.getCode()) != kNamedStatuses.end();
    if (named) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode());
    }
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
  } catch (const std::exception& error) {
    ORVANE_LOG(kLogError) << error.what();
  }
  return {};
}

CIMInstance CMMTarnInventoryImp::FindPrimaryCmm() {
  const Array<CIMInstance> systems = client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kComputerSystem);
  ORVANE_LOG(kLogProgress) << kSystemCount << systems.size();
  for (Uint32 i = 0; i < systems.size(); ++i) {
    if (Contains(PropertyTextOrThrow(systems[i], cim::kDedicated), "29") &&
        Contains(PropertyTextOrThrow(systems[i], cim::kEnabledState), "2")) {
      ORVANE_LOG(kLogDetail) << "Primary CMM found!";
      return systems[i];
    }
  }
  return {};
}

CIMInstance CMMTarnInventoryImp::FindModuleInBay(int bayId, int mode) {
  const CIMInstance slot = FindIOModuleSlot(bayId);
  if (slot.isUninitialized()) return {};
  Reconnect();  // Without a connection the next request fails, and that ends the lookup.
  const bool passThru = mode == kTargetPassThru;
  const char* const assocClass = passThru ? cim::kRealizes : cim::kComputerSystemPackage;
  const char* const resultClass = passThru ? cim::kPassThroughModule : cim::kComputerSystem;
  const Array<CIMObjectPath> packages =
      client_->AssociatorNamesOrThrow(cim::kNamespace, slot.getPath(), cim::kPackageInSlot, cim::kPhysicalPackage);
  for (Uint32 i = 0; i < packages.size(); ++i) {
    const Array<CIMObject> modules = client_->AssociatorsOrThrow(cim::kNamespace, packages[i], assocClass, resultClass);
    if (modules.size() > 0) return CIMInstance(modules[0]);
  }
  ORVANE_LOG(kLogError) << "not find intereting instance";
  return {};
}

CIMInstance CMMTarnInventoryImp::FindBladePowerService(int bayId) {
  const Array<CIMInstance> services = client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kPowerManagementService);
  ORVANE_LOG(kLogProgress) << "the size of la_insts_CmpmServ is " << services.size();
  if (services.size() == 0) {
    ORVANE_LOG(kLogProgress) << "Cannot get instance CIM_PowerManagementService";
    return {};
  }
  const std::string node = NodeName(bayId);
  ORVANE_LOG(kLogDetail) << "node bay: " << node;
  for (Uint32 i = 0; i < services.size(); ++i) {
    if (Contains(ToStdString(services[i].getPath().toString()), node.c_str())) {
      ORVANE_LOG(kLogDetail) << "Target blade's CIM_PowerManagementService instance found!";
      return services[i];
    }
  }
  return {};
}

}  // namespace Orvane
