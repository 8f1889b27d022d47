// The exported inventory: forwards every operation to the implementation and stops exceptions at the library's border.
#include <orvane/cmm.h>

#include "cmm/inventory_update/cmm_inventory_imp.h"

namespace Orvane {
namespace {

constexpr int kUnexpectedError = 4;
constexpr int kNoModuleKind = 3;

// The implementation turns failures into codes itself. What is left is running out of memory, possibly while a log line
// is built, so there is nothing better to do than to report the code.
template <typename Result, typename Operation>
Result NoThrow(Result fallback, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return fallback;
  }
}

}  // namespace

CMMInventory::CMMInventory(const std::string& host, unsigned short port, const std::string& user,
                           const std::string& password)
    : imp_(std::make_unique<CMMTarnInventoryImp>(host, port, user, password)) {}

CMMInventory::~CMMInventory() = default;

bool CMMInventory::IsCMM() {
  return NoThrow(false, [&] { return imp_->IsCMM(); });
}

int CMMInventory::GetCMMData(CMMDataList& list) {
  return NoThrow(kUnexpectedError, [&] { return imp_->GetCMMData(list); });
}

int CMMInventory::GetChassisInfo(ChassisInfo& info) {
  return NoThrow(kUnexpectedError, [&] { return imp_->GetChassisInfo(info); });
}

int CMMInventory::GetIOModuleData(CIMIODataList& list) {
  return NoThrow(kUnexpectedError, [&] { return imp_->GetIOModuleData(list); });
}

int CMMInventory::GetIOModuleDataByBayID(int bayId, CIMIODataList& list) {
  return NoThrow(kUnexpectedError, [&] { return imp_->GetIOModuleDataByBayID(bayId, list); });
}

int CMMInventory::GetPassThruData(int bayId, CIMIODataList& list) {
  return NoThrow(kUnexpectedError, [&] { return imp_->GetPassThruData(bayId, list); });
}

int CMMInventory::GetSwitchType(int bayId) {
  return NoThrow(kNoModuleKind, [&] { return imp_->GetSwitchType(bayId); });
}

int CMMInventory::CollectSameTypeModuleBayID(int bayId, std::vector<int>& bays) {
  return NoThrow(kUnexpectedError, [&] { return imp_->CollectSameTypeModuleBayID(bayId, bays); });
}

std::string CMMInventory::GetManagedEquipmentInfo(int kind) {
  return NoThrow(std::string(), [&] { return imp_->GetManagedEquipmentInfo(kind); });
}

}  // namespace Orvane
