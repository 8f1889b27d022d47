// Every operation of CMMInventory once, and those that take a bay for a bay of each kind: switch, pass-through module,
// empty.
#include "tests/whole_inventory.h"

#include <orvane/cmm.h>

#include <string>
#include <vector>

#include "cli/records_json.h"

namespace Orvane::tests {

namespace {

constexpr int kBays[] = {1, 4, 8};
constexpr int kEquipmentKinds[] = {0, 1, 4};

template <typename List>
cli::Json RecordsOf(List& list) {
  cli::Json records = cli::Json::array();
  for (std::size_t i = 0; i < list.Size(); ++i) records.push_back(cli::ToJson(list.Get(i)));
  return records;
}

}  // namespace

WholeInventory ReadWholeInventory(std::uint16_t port) {
  CMMInventory inventory("127.0.0.1", port, ChassisUser::kName, ChassisUser::kPassword);
  WholeInventory whole;
  const auto add = [&whole](const std::string& name, const cli::Json& code, const cli::Json& records) {
    whole.records[name] = {{"returned", code}, {"records", records}};
    ++whole.connections;
  };

  add("is cmm", inventory.IsCMM(), {});
  ChassisInfo chassis;
  const int chassisCode = inventory.GetChassisInfo(chassis);
  add("chassis", chassisCode, cli::ToJson(chassis));
  CMMDataList cmms;
  const int cmmCode = inventory.GetCMMData(cmms);
  add("cmms", cmmCode, RecordsOf(cmms));
  CIMIODataList switches;
  const int switchCode = inventory.GetIOModuleData(switches);
  add("switches", switchCode, RecordsOf(switches));
  for (const int bay : kBays) {
    const std::string ofBay = " of bay " + std::to_string(bay);
    CIMIODataList modules;
    const int moduleCode = inventory.GetIOModuleDataByBayID(bay, modules);
    add("switch" + ofBay, moduleCode, RecordsOf(modules));
    CIMIODataList passThrus;
    const int passThruCode = inventory.GetPassThruData(bay, passThrus);
    add("pass-through modules" + ofBay, passThruCode, RecordsOf(passThrus));
    add("kind" + ofBay, inventory.GetSwitchType(bay), {});
    ++whole.connections;  // it connects anew once it has found the slot
    std::vector<int> bays;
    const int bayCode = inventory.CollectSameTypeModuleBayID(bay, bays);
    add("bays with the type" + ofBay, bayCode, bays);
  }
  for (const int kind : kEquipmentKinds) {
    add("equipment of kind " + std::to_string(kind), inventory.GetManagedEquipmentInfo(kind), {});
  }
  return whole;
}

}  // namespace Orvane::tests
