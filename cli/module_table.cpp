// Columns are chosen so that a full chassis fits on one screen of 120 columns; the JSON output holds every field.
#include "cli/module_table.h"

#include <algorithm>

#include "cli/firmware_columns.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr std::size_t kNameWidth = 27;
constexpr std::size_t kNumberWidth = 16;
constexpr std::size_t kVersionWidth = 22;

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

}  // namespace

ModuleTable::ModuleTable()
    : table_({{"BAY", 0},
              {"KIND", 0},
              {"NAME", kNameWidth},
              {"SERIAL", kNumberWidth},
              {"ACTIVE", kVersionWidth},
              {"FALLBACK", kVersionWidth},
              {"ADDRESSES", 0}}) {}

void ModuleTable::Add(const std::string& kind, const Physicallnfo& physical, const std::string& name,
                      const std::vector<FirmwareIdentity>& firmwares, const std::vector<IPInfo>& ips) {
  const FirmwareColumns firmware = SortFirmwares(firmwares);
  table_.AddRow({{BayText(physical.SlotNumber)},
                 {kind},
                 {name},
                 {physical.SerialNumber},
                 firmware.active,
                 firmware.fallback,
                 Addresses(ips)});
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
