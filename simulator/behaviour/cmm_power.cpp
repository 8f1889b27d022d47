// A restart: some seconds to shut down, the time without network, and the images that wait for it become active.
#include "behaviour/cmm_power.h"

#include "behaviour/states.h"
#include "cim/cim_error.h"

namespace Orvane::simulator {

template <typename Action>
bool CmmPower::Change(const ObjectPath& cmm, Action&& action) {
  return store_.With([&](ObjectStore& store) {
    try {
      store.Get(cmm);
    } catch (const CimError&) {  // it was pulled out meanwhile
      return false;
    }
    action(store);
    return true;
  });
}

void CmmPower::Restart(ObjectStore& store, const ObjectPath& cmm, const std::string& requestedState) {
  BeginTransition(store, cmm, requestedState);
  timers_.RunAfter(timing_.cmmShutdown, [this, cmm] { GoDown(cmm); });
}

void CmmPower::GoDown(const ObjectPath& cmm) {
  std::string before;
  const bool isThere = Change(cmm, [&](ObjectStore& store) {
    before = TextOf(store.Get(cmm), "EnabledState");
    store.Modify(cmm, {{"EnabledState", Value::Text(kStarting)}});
  });
  if (!isThere) return;
  // Only the enabled CMM serves clients.
  if (before == kEnabled) network_.GoDown();
  timers_.RunAfter(timing_.cmmRestart, [this, cmm, before] { ComeUp(cmm, before); });
}

void CmmPower::ComeUp(const ObjectPath& cmm, const std::string& enabledState) {
  const bool comesBack = !neverComesBack_;
  Change(cmm, [&](ObjectStore& store) {
    if (!comesBack) return store.Modify(cmm, {{"EnabledState", Value::Text(kDisabled)}});
    images_.Boot(store, cmm);
    store.Modify(cmm, {{"EnabledState", Value::Text(enabledState)}});
    EndTransition(store, cmm);
  });
  if (enabledState == kEnabled && comesBack) network_.ComeUp();
}

}  // namespace Orvane::simulator
