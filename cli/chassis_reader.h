// Reads the parts of a chassis through the library's public interface, with as few requests as it allows, and sees to
// it that nothing is silently missing: a part that cannot be read is a Failure, one that is incomplete says so.
#pragma once

#include <orvane/cmm.h>

#include <string>
#include <vector>

#include "cli/target.h"

namespace Orvane::cli {

/// Kinds of equipment as the library numbers them.
enum class EquipmentKind { kCmm = 0, kSwitch = 1, kNode = 4 };

/// The bays where the chassis has equipment of a kind.
struct Equipment {
  std::string text;       ///< As the library gives it.
  std::vector<int> bays;  ///< The entries of text that are numbers, in its order; a bay may stand there twice.
};

/// Modules, and the bays that were left out because their details could not be read.
struct Modules {
  std::vector<CIMIOData> items;
  std::vector<int> unread;
  bool someLeftOut = false;  ///< The library left out at least one, whose bay may be unknown.
};

/// The chassis. @throws Failure kNotFound when the module reports none or several.
ChassisInfo ReadChassis(Target& target);

/// The primary CMMs with their details; the library tells no more of a standby one than its bay.
std::vector<CMMData> ReadCmms(Target& target);

/// @param bay  0 reads every switch, none is an empty list; a bay without one is a Failure kNotFound.
Modules ReadSwitches(Target& target, int bay);

/// The pass-through modules of one bay. @throws Failure kNotFound when there is none.
std::vector<CIMIOData> ReadPassThrusOfBay(Target& target, int bay);

/// The pass-through modules of all bays. The library reads them bay by bay, so the bays with modules are asked for
/// first, and those that hold only a switch are passed over.
Modules ReadPassThrus(Target& target);

/// As ReadPassThrus(), with what an inventory knows already: the switches and all I/O bays. The bays with neither a
/// switch nor a pass-through module among those read are put into the result's unread.
Modules ReadPassThrus(Target& target, const std::vector<CIMIOData>& switches, const Equipment& ioBays);

Equipment ReadEquipment(Target& target, EquipmentKind kind);

enum class ModuleKind { kSwitch = 1, kPassThru = 2, kNone = 3 };

/// The kind of module in a bay.
ModuleKind ReadModuleKind(Target& target, int bay);

/// The other bays with a switch of the same type as the one in @p bay; none is an empty list.
std::vector<int> ReadSameTypeBays(Target& target, int bay);

}  // namespace Orvane::cli
