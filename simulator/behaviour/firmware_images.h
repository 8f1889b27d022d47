// The firmware images of modules: where a package goes to, which image runs after the next restart, and that restart's
// effect on them.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "behaviour/package.h"
#include "cim/object_store.h"

namespace Orvane::simulator {

/// All members are called with the shared store locked, and that store.
class FirmwareImages {
 public:
  /// Writes a package into a module. A CMM's goes into its second image and waits there for the restart. A switch's
  /// goes into its fallback image and waits there for its activation. A module without a second image gets one, which
  /// takes the place of the only one at the restart. Boot code is replaced at once.
  /// @param asNext  a switch's image needs no activation
  /// @throws InstallError  the module has no place for such a package
  void Install(ObjectStore& store, const ObjectPath& module, const Package& package, bool asNext);

  /// After a client wrote the status of an image: at most one image of a module is the next one.
  /// @param association  of the image with its module
  /// @return the path of the module when this image is the next one now
  std::optional<ObjectPath> Activated(ObjectStore& store, const ObjectPath& association);

  /// A module starts: the image that waits for it runs now.
  void Boot(ObjectStore& store, const ObjectPath& module);

 private:
  void InstallOnCmm(ObjectStore& store, const ObjectPath& cmm, const Package& package);
  void InstallOnModule(ObjectStore& store, const ObjectPath& module, const Package& package, bool asNext);
  void BootCmm(ObjectStore& store, const ObjectPath& cmm);
  void BootModule(ObjectStore& store, const ObjectPath& module);

  /// Images (by InstanceID) that wait in a CMM for its restart.
  std::set<std::string> pending_;
  /// Images (by InstanceID) that are there only until the restart of their module.
  std::set<std::string> staged_;
};

}  // namespace Orvane::simulator
