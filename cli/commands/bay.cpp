// orvane bay type, orvane bay same: what is in a bay, and where the same is.
#include "cli/commands/commands.h"
#include "cli/failure.h"

namespace Orvane::cli {
namespace {

std::string InBay(int bay) { return "bay " + std::to_string(bay); }

}  // namespace

Outcome RunBayType(Target& target, int bay) {
  const ModuleKind kind = ReadModuleKind(target, bay);
  if (kind == ModuleKind::kNone) {
    target.RequireManagementModule();
    throw Failure(ExitStatus::kNotFound, static_cast<int>(kind), "no module in " + InBay(bay));
  }
  const std::string name = kind == ModuleKind::kSwitch ? "switch" : "pass-through";
  Outcome outcome;
  outcome.data["bay"] = bay;
  outcome.data["type"] = name;
  outcome.text = name + "\n";
  return outcome;
}

Outcome RunBaySame(Target& target, int bay) {
  const std::vector<int> bays = ReadSameTypeBays(target, bay);
  // The library says the same of a bay that holds no switch.
  if (bays.empty() && ReadModuleKind(target, bay) != ModuleKind::kSwitch) {
    throw Failure(ExitStatus::kNotFound, kNoLibraryCode, "no switch in " + InBay(bay));
  }
  Outcome outcome;
  outcome.data["bay"] = bay;
  outcome.data["bays"] = bays;
  if (bays.empty()) outcome.message = "no other switch of the type in " + InBay(bay);
  for (const int same : bays) outcome.text += std::to_string(same) + "\n";
  if (bays.empty()) outcome.notes.push_back(outcome.message);
  return outcome;
}

}  // namespace Orvane::cli
