// orvane switch list: the I/O modules.
#include "cli/commands/commands.h"
#include "cli/module_table.h"

namespace Orvane::cli {

Outcome RunSwitchList(Target& target, std::optional<int> bay) {
  const Modules switches = ReadSwitches(target, bay.value_or(0));
  Outcome outcome;
  outcome.data["switches"] = ToJson(switches.items);
  ModuleTable table;
  table.AddModules(switches.items);
  if (table.Empty()) {
    outcome.message = "no switch in the chassis";
    outcome.text = outcome.message + "\n";
  } else {
    outcome.text = table.Text();
  }
  if (switches.someLeftOut) {
    outcome.warnings.emplace_back("a switch is left out: its details could not be read (--log-level 1 shows why)");
  }
  return outcome;
}

}  // namespace Orvane::cli
