// Values and changes of CIM_EnabledLogicalElement that all restarts share.
#pragma once

#include <string>

#include "cim/object_store.h"

namespace Orvane::simulator {

/// Values of EnabledState.
constexpr const char* kEnabled = "2";
constexpr const char* kDisabled = "3";
constexpr const char* kStarting = "10";

/// Text of a scalar property; empty when it is NULL or the class does not have it.
std::string TextOf(const Instance& instance, const char* property);

/// Shows what a client asked of an element for as long as it goes on.
void BeginTransition(ObjectStore& store, const ObjectPath& element, const std::string& requestedState);
void EndTransition(ObjectStore& store, const ObjectPath& element);
bool IsInTransition(const Instance& element);

}  // namespace Orvane::simulator
