// State changes that clients ask for: restart and reseat of CMMs, switches and pass-through modules, power and reseat
// of nodes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "behaviour/cmm_power.h"
#include "behaviour/installation.h"
#include "behaviour/settings.h"
#include "behaviour/timers.h"
#include "server/operations.h"

namespace Orvane::simulator {

/// All public members are called with the shared store locked, and that store.
class Power {
 public:
  /// The references must stay valid as long as it lives.
  Power(SharedStore& store, Clock& clock, CmmPower& cmms, FirmwareImages& images, const Installation& installation,
        const Timing& timing)
      : store_(store), cmms_(cmms), images_(images), installation_(installation), timing_(timing), timers_(clock) {}

  /// The method RequestStateChange of a CMM, a switch or a pass-through module.
  MethodResult RequestStateChange(ObjectStore& store, const ObjectPath& target,
                                  const std::vector<MethodParameter>& parameters);

  /// The method RequestPowerStateChange of a node's power management service.
  MethodResult RequestPowerStateChange(ObjectStore& store, const ObjectPath& service,
                                       const std::vector<MethodParameter>& parameters);

  /// A client has written the status of an image: a switch that cannot wait with its update restarts by itself.
  void ImageModified(ObjectStore& store, const ObjectPath& association);

 private:
  void RestartModule(ObjectStore& store, const ObjectPath& module, const std::string& requestedState);
  /// Changes the store later; nothing happens when the module is gone by then.
  void After(std::chrono::milliseconds delay, std::function<void(ObjectStore&)> action);

  SharedStore& store_;
  CmmPower& cmms_;
  FirmwareImages& images_;
  const Installation& installation_;
  const Timing timing_;
  Timers timers_;
};

}  // namespace Orvane::simulator
