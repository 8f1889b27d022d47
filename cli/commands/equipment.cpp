// orvane equipment: the bays that hold something, kind by kind.
#include <iterator>

#include "cli/commands/commands.h"
#include "cli/table.h"

namespace Orvane::cli {
namespace {

struct KindName {
  EquipmentKind kind;
  const char* key;
  const char* title;
};

constexpr KindName kKinds[] = {{EquipmentKind::kCmm, "cmm", "CMMs"},
                               {EquipmentKind::kSwitch, "switch", "I/O modules"},
                               {EquipmentKind::kNode, "node", "Nodes"}};

}  // namespace

Outcome RunEquipment(Target& target, std::optional<EquipmentKind> kind) {
  Outcome outcome;
  std::vector<std::pair<std::string, std::string>> lines;
  for (const KindName& known : kKinds) {
    if (kind && *kind != known.kind) continue;
    const Equipment equipment = ReadEquipment(target, known.kind);
    outcome.data["equipment"][known.key] = equipment.bays;
    lines.emplace_back(known.title, equipment.text);
  }
  outcome.text = FieldList(lines);
  return outcome;
}

}  // namespace Orvane::cli
