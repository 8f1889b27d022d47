// Only what the chassis says is shown: an image is never called active because it happens to be the first or only one.
#include "cli/firmware_columns.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

#include "cli/text.h"

namespace Orvane::cli {
namespace {

// ElementSoftwareStatus of CIM_ElementSoftwareIdentity, as these chassis use it.
constexpr std::string_view kStatusCurrent = "2";
constexpr std::string_view kStatusNext = "3";
constexpr std::string_view kStatusFallback = "4";
constexpr std::string_view kStatusInstalled = "6";

// Words in an element name that tell the part of an image. "inactive" has to stand before "active".
enum class Part { kActive, kFallback, kUnknown };
struct PartWord {
  std::string_view word;
  Part part;
};
constexpr PartWord kPartWords[] = {{"inactive", Part::kFallback}, {"backup", Part::kFallback},
                                   {"fallback", Part::kFallback}, {"standby", Part::kFallback},
                                   {"active", Part::kActive},     {"current", Part::kActive}};

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

Part PartFromName(const std::string& name) {
  const std::string lower = Lower(name);
  for (const PartWord& known : kPartWords) {
    if (lower.find(known.word) != std::string::npos) return known.part;
  }
  return Part::kUnknown;
}

std::string Or(const std::string& text, const std::string& other) { return text.empty() ? other : text; }

}  // namespace

std::string VersionText(const FirmwareIdentity& firmware) {
  std::string version = Trim(firmware.FullVersionString);
  if (version.empty()) version = Trim(firmware.VersionString);
  if (version.empty() && !firmware.MajorVersion.empty()) {
    version = Trim(firmware.MajorVersion);
    for (const std::string* part : {&firmware.MinorVersion, &firmware.RevisionNumber}) {
      if (!part->empty()) version += "." + Trim(*part);
    }
  }
  const std::string build = Trim(firmware.BuildNumber);
  if (build.empty()) return version;
  return version.empty() ? "build " + build : version + " (" + build + ")";
}

FirmwareColumns SortFirmwares(const std::vector<FirmwareIdentity>& firmwares) {
  FirmwareColumns columns;
  for (const FirmwareIdentity& firmware : firmwares) {
    const std::string version = Or(VersionText(firmware), "?");
    if (!firmware.IsNotBootRom) {
      columns.boot.push_back(version);
      continue;
    }
    const std::vector<std::string> status = SplitBlanks(firmware.ElementSoftwareStatus);
    const auto has = [&](std::string_view value) {
      return std::find(status.begin(), status.end(), value) != status.end();
    };
    if (has(kStatusCurrent)) {
      columns.active.push_back(version);
    } else if (has(kStatusFallback)) {
      columns.fallback.push_back(version + (has(kStatusNext) ? " next" : ""));
    } else if (has(kStatusNext)) {
      columns.fallback.push_back(version + " next");
    } else if (has(kStatusInstalled)) {
      columns.fallback.push_back(version + " installed");
    } else if (!status.empty()) {
      columns.fallback.push_back(version + " status " + Trim(firmware.ElementSoftwareStatus));
    } else {
      const Part part = PartFromName(firmware.ElementName);
      if (part == Part::kFallback) {
        columns.fallback.push_back(version);
      } else {
        columns.active.push_back(part == Part::kActive ? version : version + " ?");
      }
    }
  }
  return columns;
}

}  // namespace Orvane::cli
