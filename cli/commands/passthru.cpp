// orvane passthru list: the pass-through modules.
#include "cli/commands/commands.h"
#include "cli/module_table.h"

namespace Orvane::cli {

Outcome RunPassThruList(Target& target, std::optional<int> bay) {
  const std::vector<CIMIOData> modules = bay ? ReadPassThrusOfBay(target, *bay) : ReadPassThrus(target).items;
  Outcome outcome;
  outcome.data["pass_thrus"] = ToJson(modules);
  ModuleTable table;
  table.AddModules(modules);
  if (table.Empty()) {
    outcome.message = "no pass-through module in the chassis";
    outcome.text = outcome.message + "\n";
  } else {
    outcome.text = table.Text();
  }
  return outcome;
}

}  // namespace Orvane::cli
