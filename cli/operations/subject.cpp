// Only the primary CMM, and the first module of its kind in a bay, are what the library's operations work on.
#include "cli/operations/subject.h"

#include <algorithm>

#include "cli/chassis_reader.h"
#include "cli/failure.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

using Images = std::vector<std::string> FirmwareColumns::*;

struct ImageKind {
  const char* name;
  Images images;
};
constexpr ImageKind kImageKinds[] = {
    {"active", &FirmwareColumns::active}, {"fallback", &FirmwareColumns::fallback}, {"boot", &FirmwareColumns::boot}};

std::string InBay(const std::string& what, int bay) { return bay < 1 ? what : what + " in bay " + std::to_string(bay); }

std::string Listed(const std::vector<std::string>& images) {
  std::string text;
  for (const std::string& image : images) text += (text.empty() ? "" : ", ") + image;
  return text.empty() ? "none" : text;
}

Subject FindCmm(Target& target) {
  const std::vector<CMMData> cmms = ReadCmms(target);
  if (cmms.empty()) throw Failure(ExitStatus::kNotFound, kNoLibraryCode, "the chassis tells no primary CMM");
  const CMMData& cmm = cmms.front();
  const std::string product = Trim(cmm.Physical.ProductName);
  return {InBay("CMM", cmm.Physical.SlotNumber), product.empty() ? cmm.Name : product, SortFirmwares(cmm.Firmwares)};
}

Subject ModuleSubject(const std::string& kind, int bay, const std::vector<CIMIOData>& modules) {
  if (modules.empty()) {
    throw Failure(ExitStatus::kNotFound, kNoLibraryCode, "no " + kind + " in bay " + std::to_string(bay));
  }
  const CIMIOData& module = modules.front();
  return {InBay(kind, bay), Trim(module.Physical.ProductName), SortFirmwares(module.Firmwares)};
}

Subject FindNode(Target& target, int bay) {
  const Equipment nodes = ReadEquipment(target, EquipmentKind::kNode);
  if (std::find(nodes.bays.begin(), nodes.bays.end(), bay) == nodes.bays.end()) {
    throw Failure(ExitStatus::kNotFound, kNoLibraryCode, "no node in bay " + std::to_string(bay));
  }
  return {InBay("node", bay), {}, std::nullopt};
}

}  // namespace

Subject FindSubject(Target& target, const Operation& operation, const OperationOptions& options) {
  switch (operation.target) {
    case TargetKind::kCmm:
      return FindCmm(target);
    case TargetKind::kSwitch:
      return ModuleSubject("switch", options.bay, ReadSwitches(target, options.bay).items);
    case TargetKind::kPassThru:
      return ModuleSubject("pass-through module", options.bay, ReadPassThrusOfBay(target, options.bay));
    default:
      return FindNode(target, options.bay);
  }
}

std::vector<std::pair<std::string, std::string>> CompareVersions(const FirmwareColumns& before,
                                                                 const FirmwareColumns& after) {
  std::vector<std::pair<std::string, std::string>> lines;
  for (const ImageKind& kind : kImageKinds) {
    const std::vector<std::string>& from = before.*kind.images;
    const std::vector<std::string>& to = after.*kind.images;
    if (from.empty() && to.empty()) continue;
    lines.emplace_back(kind.name, from == to ? Listed(from) + ", unchanged" : Listed(from) + " -> " + Listed(to));
  }
  return lines;
}

std::vector<std::pair<std::string, std::string>> ListVersions(const FirmwareColumns& versions) {
  std::vector<std::pair<std::string, std::string>> lines;
  for (const ImageKind& kind : kImageKinds) {
    if (!(versions.*kind.images).empty()) lines.emplace_back(kind.name, Listed(versions.*kind.images));
  }
  return lines;
}

bool operator==(const FirmwareColumns& one, const FirmwareColumns& other) {
  return std::all_of(std::begin(kImageKinds), std::end(kImageKinds),
                     [&](const ImageKind& kind) { return one.*kind.images == other.*kind.images; });
}

}  // namespace Orvane::cli
