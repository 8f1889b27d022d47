// The commands, one function each. All of them read only; a Failure ends them.
#pragma once

#include <optional>

#include "cli/chassis_reader.h"
#include "cli/outcome.h"
#include "cli/target.h"

namespace Orvane::cli {

/// Everything: chassis, CMMs, modules, nodes. A part that fails on its own is left out with a warning and status
/// kFailed; a failure that concerns all parts ends the command.
Outcome RunInventory(Target& target);

Outcome RunChassis(Target& target);

Outcome RunCmmList(Target& target);

/// @param bay  nothing means all bays.
Outcome RunSwitchList(Target& target, std::optional<int> bay);

/// @param bay  nothing means all bays.
Outcome RunPassThruList(Target& target, std::optional<int> bay);

Outcome RunBayType(Target& target, int bay);

Outcome RunBaySame(Target& target, int bay);

/// @param kind  nothing means every kind.
Outcome RunEquipment(Target& target, std::optional<EquipmentKind> kind);

}  // namespace Orvane::cli
