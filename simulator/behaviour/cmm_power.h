// Restarts of the CMMs. The one that serves the clients goes off the network with all connections and comes back on the
// same ports; the standby restarts unnoticed by them.
#pragma once

#include <atomic>

#include "behaviour/firmware_images.h"
#include "behaviour/network.h"
#include "behaviour/settings.h"
#include "behaviour/timers.h"
#include "cim/shared_store.h"

namespace Orvane::simulator {

class CmmPower {
 public:
  /// The references must stay valid as long as it lives.
  CmmPower(SharedStore& store, Clock& clock, Network& network, FirmwareImages& images, const Timing& timing)
      : store_(store), network_(network), images_(images), timing_(timing), timers_(clock) {}

  /// Begins the restart of a CMM; called with the store locked.
  /// @param requestedState  what the client asked for, shown while it goes on
  void Restart(ObjectStore& store, const ObjectPath& cmm, const std::string& requestedState);

  /// Every restart from now on, one that goes on included, ends with the CMM switched off. Thread-safe.
  void NeverComeBack() { neverComesBack_ = true; }

 private:
  /// Carries out a change of the store unless the CMM is gone; tells whether it is there.
  template <typename Action>
  bool Change(const ObjectPath& cmm, Action&& action);
  void GoDown(const ObjectPath& cmm);
  void ComeUp(const ObjectPath& cmm, const std::string& enabledState);

  SharedStore& store_;
  Network& network_;
  FirmwareImages& images_;
  const Timing timing_;
  std::atomic<bool> neverComesBack_{false};
  Timers timers_;
};

}  // namespace Orvane::simulator
