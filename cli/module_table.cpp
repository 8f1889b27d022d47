// Numbers and images of a module stand below each other, as its addresses do, so that a full chassis fits on a screen
// of 120 columns; the JSON output holds every field.
#include "cli/module_table.h"

#include <algorithm>

#include "cli/firmware_columns.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr std::size_t kNameWidth = 27;
constexpr std::size_t kNumberWidth = 16;
constexpr std::size_t kFirmwareWidth = 32;

std::string BayText(int slot) { return slot < 0 ? std::string() : std::to_string(slot); }

Cell Addresses(const std::vector<IPInfo>& ips) {
  Cell lines;
  for (const IPInfo& ip : ips) {
    for (const std::string* address : {&ip.IPv4Address, &ip.IPv6Address}) {
      if (!Trim(*address).empty()) lines.push_back(*address);
    }
  }
  return lines;
}

// Part and serial number, each in its line even when the other one is not known.
Cell Numbers(const Physicallnfo& physical) {
  const std::string part = Trim(physical.PartNumber);
  const std::string serial = Trim(physical.SerialNumber);
  if (part.empty() && serial.empty()) return {};
  return {part.empty() ? "-" : part, serial.empty() ? "-" : serial};
}

Cell Images(const std::vector<FirmwareIdentity>& firmwares) {
  const FirmwareColumns images = SortFirmwares(firmwares);
  Cell lines;
  const auto add = [&lines](const char* part, const std::vector<std::string>& versions) {
    for (const std::string& version : versions) lines.push_back(part + version);
  };
  add("active   ", images.active);
  add("fallback ", images.fallback);
  add("boot     ", images.boot);
  return lines;
}

}  // namespace

ModuleTable::ModuleTable()
    : table_({{"BAY", 0},
              {"KIND", 0},
              {"NAME", kNameWidth},
              {"PART, SERIAL", kNumberWidth},
              {"FIRMWARE", kFirmwareWidth},
              {"ADDRESSES", 0}}) {}

void ModuleTable::Add(const std::string& kind, const Physicallnfo& physical, const std::string& name,
                      const std::vector<FirmwareIdentity>& firmwares, const std::vector<IPInfo>& ips) {
  table_.AddRow({{BayText(physical.SlotNumber)}, {kind}, {name}, Numbers(physical), Images(firmwares), Addresses(ips)});
  ++rows_;
}

void ModuleTable::AddCmms(const std::vector<CMMData>& primary, const Equipment& all) {
  std::vector<int> standby = all.bays;
  for (const CMMData& cmm : primary) {
    const std::string& product = cmm.Physical.ProductName;
    Add("CMM primary", cmm.Physical, Trim(product).empty() ? cmm.Name : product, cmm.Firmwares, cmm.IPs);
    const auto bay = std::find(standby.begin(), standby.end(), cmm.Physical.SlotNumber);
    if (bay != standby.end()) standby.erase(bay);
  }
  // Without any primary one the rest is not known to stand by: then the details could not be read.
  const std::string kind = primary.empty() ? "CMM" : "CMM standby";
  for (const int bay : standby) {
    table_.AddRow({{std::to_string(bay)}, {kind}});
    ++rows_;
  }
}

void ModuleTable::AddModules(const std::vector<CIMIOData>& modules) {
  for (const CIMIOData& module : modules) {
    Add(module.IsPassThru ? "pass-through" : "switch", module.Physical, module.Physical.ProductName, module.Firmwares,
        module.IPs);
  }
}

void ModuleTable::AddUnread(int bay) {
  table_.AddRow({{std::to_string(bay)}, {"I/O module"}});
  ++rows_;
}

}  // namespace Orvane::cli
