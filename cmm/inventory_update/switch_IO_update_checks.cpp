// The questions about a bay before and during a switch update: is its EHCM ready, are deferred updates supported, and
// which firmware and product data does the switch carry.
#include <platform/sleep.h>

#include <algorithm>
#include <array>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_IO_update.h"
#include "cmm/inventory_update/switch_IO_update_common.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::Uint32;

namespace Orvane {

using switchio::kLogSource;

namespace {

constexpr int kDeferredNoSwitch = 6;

// The EHCM states, and what the waiting makes of them.
constexpr int kReady = switchio::kOk;
constexpr int kBusy = 28;
constexpr int kUnreadable = 29;
constexpr int kNotReady = 30;
constexpr int kWaitFailed = 32;

constexpr int kBusyReadings = 30;  // after the first two
constexpr std::uint32_t kBusyPauseMs = 10000;

// The statuses that a failed reading names in the log; it is silent about every other one.
constexpr std::array<Pegasus::CIMStatusCode, 5> kNamedStatuses = {
    Pegasus::CIM_ERR_FAILED, Pegasus::CIM_ERR_ACCESS_DENIED, Pegasus::CIM_ERR_INVALID_PARAMETER,
    Pegasus::CIM_ERR_INVALID_CLASS, Pegasus::CIM_ERR_NOT_SUPPORTED};

bool HasAnyOf(const std::string& text, const char* characters) {
  return text.find_first_of(characters) != std::string::npos;
}

// The first address that is not empty.
std::string FirstAddress(const std::vector<IPInfo>& addresses, std::string IPInfo::*member) {
  const auto found = std::find_if(addresses.begin(), addresses.end(),
                                  [member](const IPInfo& address) { return !(address.*member).empty(); });
  return found == addresses.end() ? std::string() : (*found).*member;
}

void LogModule(const CIMIOData& module) {
  std::string activeBuild;
  std::string bootBuild;
  for (const FirmwareIdentity& image : module.Firmwares) {
    if (!image.IsNotBootRom) {
      bootBuild = image.BuildNumber;
    } else if (Contains(image.ElementSoftwareStatus, "2")) {
      activeBuild = image.BuildNumber;
      ORVANE_LOG(kLogProgress) << "Active Main Application BuildID is" << activeBuild;
    } else if (Contains(image.ElementSoftwareStatus, "4")) {
      ORVANE_LOG(kLogProgress) << "Inactive Main Application BuildID is " << image.BuildNumber;
    } else {
      ORVANE_LOG(kLogProgress) << "ElementSoftwareStatus of firmware isn't current or fallback.";
    }
  }
  const Physicallnfo& physical = module.Physical;
  ORVANE_LOG(kLogProgress) << "Switch manufacture ID: " << physical.Manufacturer;
  ORVANE_LOG(kLogProgress) << "Switch io type: " << physical.ProductName;
  ORVANE_LOG(kLogProgress) << "l_activeMainBldId: " << activeBuild;
  ORVANE_LOG(kLogProgress) << "bootBuildID: " << bootBuild;
  ORVANE_LOG(kLogProgress) << "Switch part Number: " << physical.PartNumber;
  ORVANE_LOG(kLogProgress) << "Switch fru Number: " << physical.SKU;
  ORVANE_LOG(kLogProgress) << "Switch VPDID: " << physical.VpdId;
  ORVANE_LOG(kLogProgress) << "Switch VPDID: " << physical.PosId;
  ORVANE_LOG(kLogProgress) << "Switch ipAddress: " << FirstAddress(module.IPs, &IPInfo::IPv4Address);
  if (const std::string address = FirstAddress(module.IPs, &IPInfo::IPv6Address); !address.empty()) {
    ORVANE_LOG(kLogProgress) << "Switch Ipv6: " << address;
  }
}

}  // namespace

// Reads the computer systems of the switches and lets `decide` make a code of the first one of the bay.
template <typename Decide>
int SwitchIOUpdateByCIM::ReadSystemOfBay(const char* operation, const char* countText, int bay, int notFound,
                                         Decide decide) {
  constexpr char kFailed[] = " when enumerate VORTA_IOModuleComputerSystem. ";
  try {
    ORVANE_LOG(kLogProgress) << "Enter SwitchIOUpdateByCIM::" << operation << "().";
    if (!client_.ConnectInThree(switchio::kConnectPauseMs)) {
      ORVANE_LOG(kLogError) << switchio::kConnectFailed;
      return switchio::kNoConnection;
    }
    const Array<CIMInstance> systems = client_.EnumerateInstances(cim::kNamespace, cim::kVortaIOModuleComputerSystem);
    ORVANE_LOG(kLogProgress) << "Successfully get the VORTA_IOModuleComputerSystem instance: ";
    ORVANE_LOG(kLogProgress) << countText << systems.size();
    const std::string label = "IO Module " + TwoDigits(bay);
    for (Uint32 i = 0; i < systems.size(); ++i) {
      const std::string name = PropertyTextOrThrow(systems[i], cim::kElementName);
      if (Contains(name, label.c_str())) return decide(name, systems[i]);
    }
    return notFound;
  } catch (const Pegasus::CIMException& error) {
    const bool named = std::find(kNamedStatuses.begin(), kNamedStatuses.end(), error.getCode()) != kNamedStatuses.end();
    if (named) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode()) << kFailed;
    }
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown error happened" << kFailed << CurrentExceptionText();
  }
  client_.Disconnect();
  return kUnreadable;
}

int SwitchIOUpdateByCIM::checkEHCMStatus(int bay) {
  return ReadSystemOfBay("checkEHCMStatus", "EHCMInstances.size() = ", bay, kUnreadable,
                         [](const std::string& name, const CIMInstance& system) {
                           const std::string state = PropertyTextOrThrow(system, cim::kEhcmState);
                           ORVANE_LOG(kLogProgress) << "ElementName_ = " << name;
                           ORVANE_LOG(kLogProgress) << "EHCMState_ = " << state;
                           ORVANE_LOG(kLogProgress) << "FirmwareUpdate_ = "
                                                    << PropertyTextOrThrow(system, cim::kEhcmFirmwareUpdateSupported);
                           if (HasAnyOf(state, "0")) return kNotReady;
                           if (HasAnyOf(state, "25")) return kBusy;
                           return HasAnyOf(state, "1") ? kReady : kUnreadable;
                         });
}

int SwitchIOUpdateByCIM::EHCMCheck(int bay) {
  return ExportedCall(kLogSource, "EHCMCheck", kUnreadable, [this, bay] {
    const ModuleClientCloser closer(client_);
    int state = checkEHCMStatus(bay);
    if (state != kReady && state != kBusy) {
      ORVANE_LOG(kLogError) << "checking EHCM state failed.";
      return state;
    }
    if (state == kBusy) {
      platform::Sleep(kBusyPauseMs);
      state = checkEHCMStatus(bay);
      // These readings pause behind them, the last one as well.
      for (int reading = 0; reading < kBusyReadings && state == kBusy; ++reading) {
        state = checkEHCMStatus(bay);
        platform::Sleep(kBusyPauseMs);
      }
      if (state != kReady) return kWaitFailed;
    }
    ORVANE_LOG(kLogProgress) << "checkEHCMStatus() ends successfully.";
    return switchio::kOk;
  });
}

int SwitchIOUpdateByCIM::checkDeferedupdatesupported(int bay) {
  return ExportedCall(kLogSource, "CheckDeferedUpdateSupported", kUnreadable, [this, bay] {
    const ModuleClientCloser closer(client_);
    return ReadSystemOfBay("checkDeferedupdatesupported", "Instances.size() = ", bay, kDeferredNoSwitch,
                           [](const std::string& name, const CIMInstance& system) {
                             const std::string value = PropertyTextOrThrow(system, cim::kDeferredUpdateSupported);
                             ORVANE_LOG(kLogProgress) << "ElementName_ = " << name;
                             ORVANE_LOG(kLogProgress) << "defered = " << value;
                             return value.empty() || HasAnyOf(value, "0") ? switchio::kDeferredNotSupported
                                                                          : switchio::kDeferredSupported;
                           });
  });
}

void SwitchIOUpdateByCIM::showBayInfo(int bay) noexcept {
  ExportedCall(kLogSource, "showBayInfo", switchio::kUnexpectedError, [this, bay] {
    ORVANE_LOG(kLogProgress) << "Enter SwitchIOUpdateByCIM::showBayInfo!";
    CIMIODataList modules;
    inventory_->GetIOModuleDataByBayID(bay, modules);
    for (std::uint64_t i = 0; i < modules.Size(); ++i) {
      if (modules.Get(i).Physical.SlotNumber != bay) continue;  // bay 0 stands for every bay in the inventory
      LogModule(modules.Get(i));
      return switchio::kOk;
    }
    ORVANE_LOG(kLogError) << "Failed to collect information of the switch!";
    return switchio::kOk;
  });
}

}  // namespace Orvane
