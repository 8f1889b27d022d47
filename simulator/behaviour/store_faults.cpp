// Changes of instances only; whoever reads the store next sees them.
#include "behaviour/store_faults.h"

namespace Orvane::simulator {

namespace {

std::vector<ObjectPath> PathsOf(const ObjectStore& store, const char* className) {
  std::vector<ObjectPath> paths;
  for (const Instance* instance : store.Enumerate(className)) paths.push_back(instance->Path());
  return paths;
}

}  // namespace

void MakeBothPrimary(ObjectStore& store) {
  constexpr const char* kEnabled = "2";
  for (const ObjectPath& cmm : PathsOf(store, "VORTA_CMMComputerSystem")) {
    store.Modify(cmm, {{"EnabledState", Value::Text(kEnabled)}});
  }
  for (const ObjectPath& spare : PathsOf(store, "CIM_IsSpare")) store.Remove(spare);
}

void RemoveTarget(ObjectStore& store, const ObjectPath& path) { store.Remove(path); }

}  // namespace Orvane::simulator
