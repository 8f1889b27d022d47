// The operations behind CMMInventory. The collections they run stand in cmm_inventory_collections.cpp, the collectors
// of single parts in cmm_inventory_details.cpp, the target lookup in cmm_inventory_target.cpp.
#include "cmm/inventory_update/cmm_inventory_imp.h"

#include <algorithm>
#include <array>
#include <limits>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMObjectPath;
using Pegasus::CIMValue;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_inventory_imp";

// GetSwitchType().
constexpr int kKindIOModule = 1;
constexpr int kKindPassThru = 2;
constexpr int kKindNone = 3;

// The kinds of GetManagedEquipmentInfo() and the class that each enumerates.
struct EquipmentKind {
  int kind;
  const char* className;
};
constexpr std::array<EquipmentKind, 3> kEquipmentKinds = {{
    {0, cim::kVortaCmmComputerSystem},
    {1, cim::kVortaIOModuleComputerSystem},
    {4, cim::kVortaComputerSystem},
}};
constexpr int kEquipmentIOModules = 1;

// Stands for a module whose slot was not found, so that it counts for no bay.
constexpr std::int32_t kNoSlot = std::numeric_limits<std::int32_t>::min();

// The words that mark a name which ends in the two digits of a bay.
constexpr std::array<const char*, 3> kEquipmentWords = {"cmm", "node", kIOModuleWord};

const char* EquipmentClass(int kind) {
  for (const EquipmentKind& entry : kEquipmentKinds) {
    if (entry.kind == kind) return entry.className;
  }
  return nullptr;
}

// The bay at the end of a name: its last two characters, or only the last one when they read "09" or lower.
std::string BayText(const std::string& name) {
  const std::string digits = name.size() > 2 ? name.substr(name.size() - 2) : name;
  return digits <= "09" ? digits.substr(digits.empty() ? 0 : digits.size() - 1) : digits;
}

std::string Join(const std::vector<std::string>& parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace

CMMTarnInventoryImp::CMMTarnInventoryImp(const std::string& host, std::uint16_t port, const std::string& user,
                                         const std::string& password)
    : host_(host), user_(user), password_(password), port_(port), client_(std::make_unique<PegClientOpt>()) {}

CMMTarnInventoryImp::~CMMTarnInventoryImp() = default;

bool CMMTarnInventoryImp::Connect() { return client_->Connect(host_, port_, user_, password_) == 0; }

// A session that is still connected would refuse to connect, so this ends the connection first.
bool CMMTarnInventoryImp::Reconnect() {
  client_->Disconnect();
  if (Connect()) return true;
  ORVANE_LOG(kLogWarning) << kConnectionFailed;
  return false;
}

Array<CIMInstance> CMMTarnInventoryImp::ComputerSystemsDedicatedTo(Uint16 purpose) {
  return PegClientOpt::FilterInstancesByProperty(client_->EnumerateInstances(cim::kNamespace, cim::kComputerSystem),
                                                 cim::kDedicated, CIMValue(Array<Uint16>(1, purpose)));
}

Array<CIMInstance> CMMTarnInventoryImp::ComputerSystemsDedicatedToOrThrow(Uint16 purpose) {
  return PegClientOpt::FilterInstancesByPropertyOrThrow(
      client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kComputerSystem), cim::kDedicated,
      CIMValue(Array<Uint16>(1, purpose)));
}

CIMInstance CMMTarnInventoryImp::FindIOModuleSlot(int bayId) {
  const Array<CIMInstance> slots = client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kSlot);
  for (Uint32 i = 0; i < slots.size(); ++i) {
    if (Contains(PropertyTextOrThrow(slots[i], cim::kTag), kIOModuleWord) &&
        LenientInt(PropertyTextOrThrow(slots[i], cim::kNumber)) == bayId) {
      return slots[i];
    }
  }
  return {};
}

bool CMMTarnInventoryImp::IsCMM() {
  const SessionCloser closer(*client_);
  try {
    return Connect() && ComputerSystemsDedicatedTo(cim::kDedicatedCmm).size() > 0;
  } catch (...) {
    // The text of the CMM collection stands here as well: log readers know it.
    ORVANE_LOG(kLogError) << "Unknown Error during collectCMMData()";
    return false;
  }
}

int CMMTarnInventoryImp::GetCMMData(CMMDataList& list) {
  ORVANE_LOG(kLogDetail) << "CMMTarnInventoryImp::GetCMMData";
  CMMDataList all;
  const int result = collectCMMData(all);
  if (result != kOk) return result;
  for (const boost::shared_ptr<CMMData>& cmm : all.records_) {
    if (cmm->NotPrimary == 0) list.records_.push_back(cmm);
  }
  return kOk;
}

int CMMTarnInventoryImp::GetChassisInfo(ChassisInfo& info) {
  const SessionCloser closer(*client_);
  try {
    if (!Connect()) return kNoConnection;
    const Array<CIMInstance> chassis = client_->EnumerateInstancesOrThrow(cim::kNamespace, cim::kChassis);
    if (chassis.size() != 1) {
      // No chassis at all is reported with the same text.
      ORVANE_LOG(kLogError) << "Exception: GetChassisInfo size > 1. ";
      return kOk;
    }
    info.Name = PropertyTextOrThrow(chassis[0], cim::kName);
    info.Model = PropertyTextOrThrow(chassis[0], cim::kModel);
    info.SerialNumber = PropertyTextOrThrow(chassis[0], cim::kSerialNumber);
    info.PartNumber = PropertyTextOrThrow(chassis[0], cim::kPartNumber);
    info.ElementName = PropertyTextOrThrow(chassis[0], cim::kElementName);
    return kOk;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown Error during GetChassisInfo";
    return kUnexpectedError;
  }
}

int CMMTarnInventoryImp::GetIOModuleData(CIMIODataList& list) { return GetIOModuleDataByBayID(0, list); }

int CMMTarnInventoryImp::GetIOModuleDataByBayID(int bayId, CIMIODataList& list) {
  ORVANE_LOG(kLogDetail) << "GetIOModuleData. bayid:" << bayId;
  if (bayId < 0) {
    ORVANE_LOG(kLogError) << "The BayID for IOModule is not valid."
                          << "Please choose a valide slot id for inventory.";
    return kInvalidBay;
  }
  CIMIODataList all;
  const int result = collectIOModuleData(bayId == 0 ? list : all);
  if (result != kOk) {
    ORVANE_LOG(kLogError) << "func[collectIOModuleData] failed. return code: " << result;
  }
  if (result != kOk || bayId == 0) return result;
  for (const boost::shared_ptr<CIMIOData>& module : all.records_) {
    if (module->Physical.SlotNumber != bayId) continue;
    list.records_.push_back(module);
    ORVANE_LOG(kLogProgress) << "found iomodule data. bayid: " << bayId;
    return kOk;
  }
  ORVANE_LOG(kLogError) << "Not found the IOModule Data. bayid:" << bayId;
  return kNoModule;
}

int CMMTarnInventoryImp::GetPassThruData(int bayId, CIMIODataList& list) {
  ORVANE_LOG(kLogDetail) << "GetPassThruData. bayid:" << bayId;
  CIMIODataList all;
  const int result = collectPassThruModuleData(all);
  if (result != kOk) {
    ORVANE_LOG(kLogError) << "collect PassThru Module Data failed. RC: " << result;
    return result;
  }
  bool found = false;
  for (const boost::shared_ptr<CIMIOData>& module : all.records_) {
    if (module->Physical.SlotNumber != bayId) continue;
    list.records_.push_back(module);
    found = true;
  }
  return found ? kOk : kNoModule;
}

int CMMTarnInventoryImp::GetSwitchType(int bayId) {
  const SessionCloser closer(*client_);
  try {
    if (!Connect()) {
      ORVANE_LOG(kLogError) << "Connect CIMOM Failed";
      return kKindNone;
    }
    const CIMInstance slot = FindIOModuleSlot(bayId);
    if (slot.isUninitialized()) return kKindNone;
    Reconnect();  // Without a connection the next request fails, and that ends the lookup.
    const Array<CIMObjectPath> packages =
        client_->AssociatorNamesOrThrow(cim::kNamespace, slot.getPath(), cim::kPackageInSlot, cim::kPhysicalPackage);
    for (Uint32 i = 0; i < packages.size(); ++i) {
      if (client_->AssociatorsOrThrow(cim::kNamespace, packages[i], cim::kComputerSystemPackage, cim::kComputerSystem)
              .size() > 0) {
        ORVANE_LOG(kLogProgress) << "IOModule in BayID: " << bayId;
        return kKindIOModule;
      }
      if (client_->AssociatorsOrThrow(cim::kNamespace, packages[i], cim::kRealizes, cim::kPassThroughModule).size() >
          0) {
        ORVANE_LOG(kLogProgress) << "PassThruswitch in BayID: " << bayId;
        return kKindPassThru;
      }
    }
    ORVANE_LOG(kLogProgress) << "None switch in BayID: " << bayId;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << " Error:" << ErrorText(error);
  } catch (...) {
    ORVANE_LOG(kLogError) << "unexception  Error during getting swith type.";
  }
  return kKindNone;
}

int CMMTarnInventoryImp::CollectSameTypeModuleBayID(int bayId, std::vector<int>& bays) {
  int result = kOk;
  std::vector<Physicallnfo> modules;
  try {
    const SessionCloser closer(*client_);
    if (!Connect()) {
      ORVANE_LOG(kLogError) << kConnectionFailed;
      return kNoConnection;
    }
    const Array<CIMInstance> systems = ComputerSystemsDedicatedToOrThrow(cim::kDedicatedIOModule);
    for (Uint32 i = 0; i < systems.size(); ++i) {
      Physicallnfo physical;
      physical.SlotNumber = kNoSlot;
      result = collectPhysicalInfo(systems[i].getPath(), cim::kComputerSystemPackage, cim::kPhysicalPackage, physical);
      if (result != kOk) {
        ORVANE_LOG(kLogError) << "perform func[collectPhysicalInfo] failed. return code: " << result;
      }
      if (physical.SlotNumber != kNoSlot) modules.push_back(std::move(physical));
    }
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
    return kCimError;
  } catch (...) {
    // The text of the I/O-module collection stands here as well: log readers know it.
    ORVANE_LOG(kLogError) << "Unknown Error during collectIOModuleData()";
    return kUnexpectedError;
  }

  const auto model = std::find_if(modules.begin(), modules.end(),
                                  [bayId](const Physicallnfo& module) { return module.SlotNumber == bayId; });
  const std::string posId = model == modules.end() ? std::string() : model->PosId;
  const std::string vpdId = model == modules.end() ? std::string() : model->VpdId;
  std::vector<std::string> found;
  for (const Physicallnfo& module : modules) {
    if (module.SlotNumber == bayId || module.PosId != posId || module.VpdId != vpdId) continue;
    bays.push_back(module.SlotNumber);
    found.push_back(std::to_string(module.SlotNumber));
  }
  if (found.empty()) {
    ORVANE_LOG(kLogProgress) << "NO same type io module exists in chassis";
    return kNoModule;
  }
  ORVANE_LOG(kLogProgress) << "found same bayid module at slot :" << Join(found, " ");
  return result;
}

std::string CMMTarnInventoryImp::GetManagedEquipmentInfo(int kind) {
  const SessionCloser closer(*client_);
  try {
    if (!Connect()) {
      ORVANE_LOG(kLogError) << kConnectionFailed;
      return {};
    }
    std::vector<std::string> bays;
    if (const char* const className = EquipmentClass(kind); className != nullptr) {
      const Array<CIMInstance> systems = client_->EnumerateInstances(cim::kNamespace, className);
      ORVANE_LOG(kLogProgress) << kSystemCount << systems.size();
      for (Uint32 i = 0; i < systems.size(); ++i) {
        const std::string name = PropertyText(systems[i], cim::kName);
        const bool named = std::any_of(kEquipmentWords.begin(), kEquipmentWords.end(),
                                       [&name](const char* word) { return Contains(name, word); });
        if (named) bays.push_back(BayText(name));
      }
    }
    if (kind == kEquipmentIOModules) {
      const Array<CIMInstance> modules = client_->EnumerateInstances(cim::kNamespace, cim::kVortaPassThroughModule);
      ORVANE_LOG(kLogProgress) << "the size of la_insts_PassThru is " << modules.size();
      for (Uint32 i = 0; i < modules.size(); ++i) {
        const std::string deviceId = PropertyText(modules[i], cim::kDeviceId);
        if (!Contains(deviceId, kIOModuleWord)) continue;
        bays.push_back(BayText(deviceId));
        ORVANE_LOG(kLogProgress) << "SingleNodeInfo : " << bays.back();
      }
    }
    std::string text = Join(bays, ",");
    ORVANE_LOG(kLogProgress) << "NodeInfo : " << text;
    return text;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << ErrorText(error);
  } catch (const std::exception& error) {
    ORVANE_LOG(kLogError) << error.what();
  }
  return {};
}

}  // namespace Orvane
