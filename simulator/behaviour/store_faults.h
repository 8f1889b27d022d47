// States of a chassis that its own behaviour never leads to, for tests of what clients make of them.
#pragma once

#include "cim/object_store.h"

namespace Orvane::simulator {

/// Every CMM calls itself enabled, and none is a spare.
void MakeBothPrimary(ObjectStore& store);

/// A module is pulled out of its bay: its instance and its associations are gone. Without effect when there is none.
/// @throws CimError kInvalidClass, kInvalidParameter when the path cannot name an instance
void RemoveTarget(ObjectStore& store, const ObjectPath& path);

}  // namespace Orvane::simulator
