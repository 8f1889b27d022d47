// The inventory behind CMMInventory: the collections of CMMs, I/O modules and pass-through modules, the collectors of
// their parts, and the lookup of the CIM instance that an update or reboot acts on.
#pragma once

#include <orvane/cmm.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cmm/inventory_update/cmm_peg_client.h"

namespace Orvane {

/// What GetTargetInstance() looks up.
enum TargetMode { kTargetPrimaryCmm = 0, kTargetIOModule = 1, kTargetPassThru = 2, kTargetBladePower = 4 };

/// Implementation of CMMInventory; the operations of the same names are documented there.
///
/// Every public operation opens its own connection and closes it before it returns; no exception leaves one. One thread
/// at a time.
class CMMTarnInventoryImp {
 public:
  /// Keeps the values; connects to nothing.
  CMMTarnInventoryImp(const std::string& host, std::uint16_t port, const std::string& user,
                      const std::string& password);
  virtual ~CMMTarnInventoryImp();
  CMMTarnInventoryImp(const CMMTarnInventoryImp&) = delete;
  CMMTarnInventoryImp& operator=(const CMMTarnInventoryImp&) = delete;

  bool IsCMM();
  int GetCMMData(CMMDataList& list);
  int GetChassisInfo(ChassisInfo& info);
  int GetIOModuleData(CIMIODataList& list);
  int GetIOModuleDataByBayID(int bayId, CIMIODataList& list);
  int GetPassThruData(int bayId, CIMIODataList& list);
  int GetSwitchType(int bayId);
  int CollectSameTypeModuleBayID(int bayId, std::vector<int>& bays);
  std::string GetManagedEquipmentInfo(int kind);

  /// Appends one record per CMM, spares included, in the server's order.
  /// @return  0  read, or stopped by an unexpected error
  ///          1  no connection
  ///          3  no CMM
  ///          or what collectFirmwareInfo() gave for the last CMM
  int collectCMMData(CMMDataList& list);

  /// Appends one record per I/O module of which everything could be read.
  /// @return  0 read, 1 no connection, 3 no I/O module or a CIM error, 4 unexpected error
  int collectIOModuleData(CIMIODataList& list);

  /// Appends one record per pass-through module, up to the first that cannot be read.
  /// @return  0 read, 1 no connection, 2 CIM error, 3 or 4 what a collector gave for the module that ended it, 4 also
  ///          for an unexpected error
  int collectPassThruModuleData(CIMIODataList& list);

  /// Finds the CIM instance of a target; @p bayId counts in all modes but kTargetPrimaryCmm.
  /// @param mode  a TargetMode; any other value finds nothing.
  /// @return an uninitialised instance when nothing was found, and on any failure.
  Pegasus::CIMInstance GetTargetInstance(int bayId, int mode);

  /// As GetTargetInstance(), but lets the exceptions of the requests pass and logs nothing for them.
  Pegasus::CIMInstance GetTargetInstanceOrThrow(int bayId, int mode);

  // The collectors below work on an open connection. They return 0 on success, 3 when nothing is associated or on a CIM
  // error, 4 on any other error; what was filled before an error stays.

  /// Product data and slot of the packages of @p path; with several, the last one wins.
  int collectPhysicalInfo(const Pegasus::CIMObjectPath& path, const Pegasus::CIMName& assocClass,
                          const Pegasus::CIMName& resultClass, Physicallnfo& out);

  /// Appends the firmware images of @p path. CIM_ElementSoftwareIdentity as @p assocClass takes all images with their
  /// status; any other takes CMM images only.
  int collectFirmwareInfo(const Pegasus::CIMObjectPath& path, const Pegasus::CIMName& assocClass,
                          const Pegasus::CIMName& resultClass, std::vector<FirmwareIdentity>& out);

  /// Appends the endpoints of @p path whose addresses are not in @p out yet.
  int collectIPInfo(const Pegasus::CIMObjectPath& path, const Pegasus::CIMName& assocClass,
                    const Pegasus::CIMName& resultClass, std::vector<IPInfo>& out);

 private:
  bool Connect();
  bool Reconnect();
  Pegasus::Array<Pegasus::CIMInstance> ComputerSystemsDedicatedTo(Pegasus::Uint16 purpose);
  Pegasus::Array<Pegasus::CIMInstance> ComputerSystemsDedicatedToOrThrow(Pegasus::Uint16 purpose);
  Pegasus::CIMInstance FindIOModuleSlot(int bayId);
  void CollectCmm(const Pegasus::CIMInstance& instance, CMMDataList& list, int& result);
  void CollectIOModule(const Pegasus::CIMInstance& instance, CIMIODataList& list);
  int CollectPassThruModule(const Pegasus::CIMInstance& instance, CIMIODataList& list);
  Pegasus::CIMInstance FindPrimaryCmm();
  Pegasus::CIMInstance FindModuleInBay(int bayId, int mode);
  Pegasus::CIMInstance FindBladePowerService(int bayId);

  std::string host_;
  std::string user_;
  std::string password_;
  std::uint16_t port_;
  std::unique_ptr<PegClientOpt> client_;
};

}  // namespace Orvane
