// The codes are those documented at the library's methods. After each call the log records are asked whether talking to
// the host failed, since a refused user, for one, may come back as success with an empty list.
#include "cli/chassis_reader.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>

#include "cli/failure.h"

namespace Orvane::cli {
namespace {

constexpr int kNothingFound = 3;
constexpr int kEmptyBay = 5;

// What the library logs when the chassis has no switch at all: it gives the same code as for a CIM error.
constexpr const char* kNoSwitchLine = "Not found a IOModule Instance";
constexpr const char* kLeftOutLine = "perform func[collect";

std::vector<CIMIOData> CopyOf(CIMIODataList& list) {
  std::vector<CIMIOData> items;
  for (std::size_t i = 0; i < list.Size(); ++i) items.push_back(list.Get(i));
  return items;
}

[[noreturn]] void FailNotFound(const std::string& sentence, int code) {
  throw Failure(ExitStatus::kNotFound, code, sentence);
}

std::map<int, int> CountBays(const std::vector<int>& bays) {
  std::map<int, int> counts;
  for (const int bay : bays) ++counts[bay];
  return counts;
}

void Append(Modules& to, std::vector<CIMIOData> from) {
  std::move(from.begin(), from.end(), std::back_inserter(to.items));
}

// The pass-through modules of a bay, or none.
std::vector<CIMIOData> PassThrusIn(Target& target, int bay) {
  CIMIODataList list;
  const int code = target.Run([&](CMMInventory& inventory) { return inventory.GetPassThruData(bay, list); });
  target.RequireAnswers(code);
  if (code != 0 && code != kEmptyBay) target.Fail("reading the pass-through modules", code);
  return CopyOf(list);
}

}  // namespace

ChassisInfo ReadChassis(Target& target) {
  ChassisInfo info;
  const int code = target.Run([&](CMMInventory& inventory) { return inventory.GetChassisInfo(info); });
  target.RequireAnswers(code);
  if (code != 0) target.Fail("reading the chassis", code);
  const bool untouched = info.Name.empty() && info.ElementName.empty() && info.Model.empty() &&
                         info.PartNumber.empty() && info.SerialNumber.empty();
  if (untouched) {
    target.RequireManagementModule();
    FailNotFound("the management module at " + target.Where() + " does not report exactly one chassis", kNoLibraryCode);
  }
  return info;
}

std::vector<CMMData> ReadCmms(Target& target) {
  CMMDataList list;
  const int code = target.Run([&](CMMInventory& inventory) { return inventory.GetCMMData(list); });
  target.RequireAnswers(code);
  if (code != 0) target.Fail("reading the CMMs", code);
  if (list.Size() == 0) target.RequireManagementModule();
  std::vector<CMMData> cmms;
  for (std::size_t i = 0; i < list.Size(); ++i) cmms.push_back(list.Get(i));
  return cmms;
}

Modules ReadSwitches(Target& target, int bay) {
  CIMIODataList list;
  const int code = target.Run([&](CMMInventory& inventory) { return inventory.GetIOModuleDataByBayID(bay, list); });
  target.RequireAnswers(code);
  const bool leftOut = target.Logged(kLeftOutLine);
  if (code == kEmptyBay) {
    if (!leftOut) target.RequireManagementModule();
    const std::string hint = leftOut ? "; the details of a switch could not be read (--log-level 1 shows why)" : "";
    FailNotFound("no switch in bay " + std::to_string(bay) + hint, code);
  }
  if (code == kNothingFound && target.Logged(kNoSwitchLine)) {
    target.RequireManagementModule();
    if (bay != 0) FailNotFound("no switch in bay " + std::to_string(bay), code);
    return {};
  }
  if (code != 0) target.Fail("reading the switches", code);
  Modules modules;
  modules.items = CopyOf(list);
  modules.someLeftOut = leftOut;
  return modules;
}

std::vector<CIMIOData> ReadPassThrusOfBay(Target& target, int bay) {
  std::vector<CIMIOData> items = PassThrusIn(target, bay);
  if (items.empty()) {
    target.RequireManagementModule();
    FailNotFound("no pass-through module in bay " + std::to_string(bay), kEmptyBay);
  }
  return items;
}

Modules ReadPassThrus(Target& target) {
  Modules modules;
  const Equipment ioBays = ReadEquipment(target, EquipmentKind::kSwitch);
  for (const auto& [bay, count] : CountBays(ioBays.bays)) {
    // One bay may be listed for a switch and for a pass-through module; the lookup of its kind names the switch only.
    if (count == 1 && ReadModuleKind(target, bay) == ModuleKind::kSwitch) continue;
    Append(modules, PassThrusIn(target, bay));
  }
  return modules;
}

Modules ReadPassThrus(Target& target, const std::vector<CIMIOData>& switches, const Equipment& ioBays) {
  std::map<int, int> switchCounts;
  for (const CIMIOData& module : switches) ++switchCounts[module.Physical.SlotNumber];
  Modules modules;
  for (const auto& [bay, count] : CountBays(ioBays.bays)) {
    const int others = count - switchCounts[bay];
    if (others <= 0) continue;
    std::vector<CIMIOData> found = PassThrusIn(target, bay);
    if (static_cast<int>(found.size()) < others) modules.unread.push_back(bay);
    Append(modules, std::move(found));
  }
  return modules;
}

Equipment ReadEquipment(Target& target, EquipmentKind kind) {
  Equipment equipment;
  equipment.text =
      target.Run([&](CMMInventory& inventory) { return inventory.GetManagedEquipmentInfo(static_cast<int>(kind)); });
  target.RequireAnswers(0);
  if (equipment.text.empty()) {
    const Cause cause = target.LastCause();
    target.RequireManagementModule();
    if (cause.kind != CauseKind::kNone) {
      throw Failure(ExitStatus::kFailed, kNoLibraryCode, "reading the equipment failed (" + cause.text + ")");
    }
  }
  std::istringstream entries(equipment.text);
  for (std::string entry; std::getline(entries, entry, ',');) {
    int bay = 0;
    const char* const end = entry.data() + entry.size();
    const auto [stop, error] = std::from_chars(entry.data(), end, bay);
    if (error == std::errc() && stop == end) equipment.bays.push_back(bay);
  }
  return equipment;
}

ModuleKind ReadModuleKind(Target& target, int bay) {
  const int kind = target.Run([&](CMMInventory& inventory) { return inventory.GetSwitchType(bay); });
  target.RequireAnswers(0);
  switch (kind) {
    case static_cast<int>(ModuleKind::kSwitch):
      return ModuleKind::kSwitch;
    case static_cast<int>(ModuleKind::kPassThru):
      return ModuleKind::kPassThru;
    default:
      break;
  }
  // The library says "neither" for any failure too.
  if (target.LastCause().kind != CauseKind::kNone) target.Fail("finding the kind of module in the bay", kind);
  return ModuleKind::kNone;
}

std::vector<int> ReadSameTypeBays(Target& target, int bay) {
  std::vector<int> bays;
  const int code = target.Run([&](CMMInventory& inventory) { return inventory.CollectSameTypeModuleBayID(bay, bays); });
  target.RequireAnswers(code);
  if (code == kEmptyBay) {
    target.RequireManagementModule();
    return {};
  }
  // With bays found, another code only tells that the data of the last module examined could not be read.
  if (code != 0 && bays.empty()) target.Fail("looking for modules of the same type", code);
  return bays;
}

}  // namespace Orvane::cli
