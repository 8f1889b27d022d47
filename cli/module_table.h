// The table of modules: one row per CMM, switch and pass-through module, as the inventory and the lists show it.
#pragma once

#include <orvane/cmm.h>

#include <string>
#include <vector>

#include "cli/chassis_reader.h"
#include "cli/table.h"

namespace Orvane::cli {

class ModuleTable {
 public:
  ModuleTable();

  /// @param primary  the CMMs with details; @p all the bays of every CMM: those without details are standby ones.
  void AddCmms(const std::vector<CMMData>& primary, const Equipment& all);
  void AddModules(const std::vector<CIMIOData>& modules);
  /// A bay whose module is known to be there and no more.
  void AddUnread(int bay);

  bool Empty() const { return rows_ == 0; }
  std::string Text() const { return table_.Text(); }

 private:
  void Add(const std::string& kind, const Physicallnfo& physical, const std::string& name,
           const std::vector<FirmwareIdentity>& firmwares, const std::vector<IPInfo>& ips);

  Table table_;
  int rows_ = 0;
};

}  // namespace Orvane::cli
