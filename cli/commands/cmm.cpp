// orvane cmm list: the management modules.
#include "cli/commands/commands.h"
#include "cli/module_table.h"

namespace Orvane::cli {

Outcome RunCmmList(Target& target) {
  const std::vector<CMMData> cmms = ReadCmms(target);
  const Equipment all = ReadEquipment(target, EquipmentKind::kCmm);
  Outcome outcome;
  outcome.data["cmms"] = ToJson(cmms);
  outcome.data["bays"] = all.bays;
  ModuleTable table;
  table.AddCmms(cmms, all);
  outcome.text = table.Text();
  return outcome;
}

}  // namespace Orvane::cli
