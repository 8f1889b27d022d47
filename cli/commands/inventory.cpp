// orvane inventory: the whole chassis on one screen.
#include "cli/commands/commands.h"
#include "cli/failure.h"
#include "cli/module_table.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

// Carries out one part. A failure of this part alone becomes a warning; any other concerns the host and ends it all.
template <typename Read>
auto ReadPart(Outcome& outcome, Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const Failure& failure) {
    if (failure.Status() != ExitStatus::kFailed) throw;
    if (outcome.status == ExitStatus::kDone) {
      outcome.status = failure.Status();
      outcome.code = failure.Code();
      outcome.message = failure.what();
    }
    outcome.warnings.emplace_back(failure.what());
    return std::nullopt;
  }
}

// A chassis that the module does not describe is no reason to keep the rest back.
std::optional<ChassisInfo> ReadChassisIfAny(Target& target, Outcome& outcome) {
  try {
    return ReadPart(outcome, [&] { return ReadChassis(target); });
  } catch (const Failure& failure) {
    if (failure.Status() != ExitStatus::kNotFound) throw;
    target.RequireManagementModule();
    outcome.warnings.emplace_back(failure.what());
    return std::nullopt;
  }
}

std::string ChassisLine(const std::optional<ChassisInfo>& chassis) {
  if (!chassis) return "Chassis  -\n";
  std::string line = "Chassis";
  const auto add = [&line](const std::string& title, const std::string& value) {
    if (const std::string text = Neutralise(Trim(value)); !text.empty()) line += "  " + title + text;
  };
  add("", chassis->Name);
  add("", chassis->ElementName);
  add("model ", chassis->Model);
  add("part ", chassis->PartNumber);
  add("serial ", chassis->SerialNumber);
  return line + "\n";
}

}  // namespace

Outcome RunInventory(Target& target) {
  Outcome outcome;
  const auto equipment = [&](EquipmentKind kind) {
    return ReadPart(outcome, [&] { return ReadEquipment(target, kind); }).value_or(Equipment{});
  };
  const auto chassis = ReadChassisIfAny(target, outcome);
  const auto cmms = ReadPart(outcome, [&] { return ReadCmms(target); }).value_or(std::vector<CMMData>{});
  const Equipment cmmBays = equipment(EquipmentKind::kCmm);
  const auto switches = ReadPart(outcome, [&] { return ReadSwitches(target, 0); }).value_or(Modules{});
  const Equipment ioBays = equipment(EquipmentKind::kSwitch);
  const auto passThrus =
      ReadPart(outcome, [&] { return ReadPassThrus(target, switches.items, ioBays); }).value_or(Modules{});
  const Equipment nodeBays = equipment(EquipmentKind::kNode);

  ModuleTable table;
  table.AddCmms(cmms, cmmBays);
  table.AddModules(switches.items);
  table.AddModules(passThrus.items);
  for (const int bay : passThrus.unread) {
    table.AddUnread(bay);
    outcome.warnings.push_back("the module in bay " + std::to_string(bay) +
                               " is there, but its details could not be read (--log-level 1 shows why)");
  }
  if (switches.someLeftOut && passThrus.unread.empty()) {
    outcome.warnings.emplace_back("a switch is left out: its details could not be read (--log-level 1 shows why)");
  }

  outcome.text = ChassisLine(chassis) + "\n" + table.Text();
  outcome.text += "\nNodes in bays: " + (nodeBays.text.empty() ? "none" : Neutralise(nodeBays.text)) + "\n";
  outcome.data["chassis"] = chassis ? ToJson(*chassis) : Json(nullptr);
  outcome.data["cmms"] = ToJson(cmms);
  outcome.data["switches"] = ToJson(switches.items);
  outcome.data["pass_thrus"] = ToJson(passThrus.items);
  outcome.data["equipment"] = {{"cmm", cmmBays.bays}, {"switch", ioBays.bays}, {"node", nodeBays.bays}};
  return outcome;
}

}  // namespace Orvane::cli
