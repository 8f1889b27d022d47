// RequestedState keeps what was asked for last; TransitioningToState is "not applicable" between transitions.
#include "behaviour/states.h"

namespace Orvane::simulator {

namespace {

constexpr const char* kNotApplicable = "12";

}  // namespace

std::string TextOf(const Instance& instance, const char* property) {
  const Value* const value = instance.Find(property);
  return value == nullptr || value->isNull || value->texts.empty() ? std::string() : value->texts.front();
}

void BeginTransition(ObjectStore& store, const ObjectPath& element, const std::string& requestedState) {
  store.Modify(element, {{"RequestedState", Value::Text(requestedState)},
                         {"TransitioningToState", Value::Text(requestedState)}});
}

void EndTransition(ObjectStore& store, const ObjectPath& element) {
  store.Modify(element, {{"TransitioningToState", Value::Text(kNotApplicable)}});
}

bool IsInTransition(const Instance& element) {
  const std::string state = TextOf(element, "TransitioningToState");
  return !state.empty() && state != kNotApplicable;
}

}  // namespace Orvane::simulator
