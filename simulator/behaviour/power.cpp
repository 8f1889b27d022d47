// Return values are those of RequestStateChange and RequestPowerStateChange in the DMTF schema. Every change that is
// accepted is carried out without a job: the call returns 0, and the states of the element show how far it is.
#include "behaviour/power.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "behaviour/method_parameters.h"
#include "behaviour/states.h"
#include "cim/cim_error.h"

namespace Orvane::simulator {

namespace {

constexpr std::uint32_t kCompleted = 0;
constexpr std::uint32_t kNotSupported = 1;
constexpr std::uint32_t kInvalidParameter = 5;
constexpr std::uint32_t kInUse = 6;
constexpr std::uint32_t kInvalidStateTransition = 4097;
constexpr std::uint32_t kTimeoutNotSupported = 4098;
constexpr std::uint32_t kBusy = 4099;

// The chassis's own value of RequestedState and PowerState: the slot loses power for a moment.
constexpr const char* kReseat = "32769";
constexpr const char* kReset = "11";

constexpr const char* kPowerOn = "2";
constexpr const char* kPowerOff = "8";

// Values of PostStatus and their words.
struct Post {
  const char* status;
  const char* description;
};
constexpr Post kNoPower = {"0", "Module is not powered."};
constexpr Post kPostRuns = {"128", "Module is running POST."};
constexpr Post kPostPassed = {"511", "Module completed POST successfully."};

constexpr unsigned kFirstVendorState = 32768;

unsigned ToNumber(const std::string& text) {
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

bool IsLegalRequest(const std::string& state) {
  constexpr unsigned kLegal[] = {2, 3, 4, 6, 7, 8, 9, 10, 11};
  const unsigned number = ToNumber(state);
  return number >= kFirstVendorState ||
         std::any_of(std::begin(kLegal), std::end(kLegal), [number](unsigned known) { return number == known; });
}

bool Contains(const Value* states, const std::string& state) {
  return states != nullptr && std::find(states->texts.begin(), states->texts.end(), state) != states->texts.end();
}

bool Offers(const ObjectStore& store, const ObjectPath& element, const std::string& state) {
  for (const Instance* capabilities :
       store.Associators(element, {"CIM_ElementCapabilities", "CIM_EnabledLogicalElementCapabilities", {}, {}})) {
    if (Contains(capabilities->Find("RequestedStatesSupported"), state)) return true;
  }
  return false;
}

bool IsInterval(const std::string& dateTime) {
  constexpr std::size_t kSign = 21;
  return dateTime.at(kSign) == ':';
}

void SetPost(ObjectStore& store, const ObjectPath& module, const Post& post, const char* enabledState) {
  store.Modify(module, {{"PostStatus", Value::Text(post.status)},
                        {"PostStatusDescription", Value::Text(post.description)},
                        {"EnabledState", Value::Text(enabledState)}});
}

void SetNodePower(ObjectStore& store, const ObjectPath& node, const ObjectPath& association, bool isOn) {
  store.Modify(association, {{"PowerState", Value::Text(isOn ? kPowerOn : kPowerOff)}});
  store.Modify(node, {{"EnabledState", Value::Text(isOn ? kEnabled : kDisabled)}});
}

}  // namespace

MethodResult Power::RequestStateChange(ObjectStore& store, const ObjectPath& target,
                                       const std::vector<MethodParameter>& sent) {
  const MethodParameters parameters(sent, "CIM_EnabledLogicalElement", "RequestStateChange");
  const auto sentState = parameters.Text("RequestedState");
  const auto timeout = parameters.Text("TimeoutPeriod");
  if (!sentState) return {kInvalidParameter, {}};
  const std::string state = CanonicalText(CimType::kUint16, *sentState);
  if (!IsLegalRequest(state)) return {kInvalidParameter, {}};
  if (timeout) return {IsInterval(*timeout) ? kTimeoutNotSupported : kInvalidParameter, {}};
  if (!Offers(store, target, state)) return {kInvalidStateTransition, {}};
  // A model may offer more than there is.
  if (state != kReset && state != kReseat) return {kNotSupported, {}};
  const Instance& element = store.Get(target);
  if (IsInTransition(element)) return {kBusy, {}};
  if (installation_.IsBusy(target)) return {kInUse, {}};
  if (EqualNames(target.className, "VORTA_CMMComputerSystem")) {
    cmms_.Restart(store, element.Path(), state);
  } else {
    RestartModule(store, element.Path(), state);
  }
  return {kCompleted, {}};
}

void Power::RestartModule(ObjectStore& store, const ObjectPath& module, const std::string& requestedState) {
  const Instance& before = store.Get(module);
  const std::string enabledState = TextOf(before, "EnabledState");
  const ObjectStore::NamedValues post = {{"PostStatus", *before.Find("PostStatus")},
                                         {"PostStatusDescription", *before.Find("PostStatusDescription")}};
  BeginTransition(store, module, requestedState);
  const bool losesPower = requestedState == kReseat;
  SetPost(store, module, losesPower ? kNoPower : kPostRuns, losesPower ? kDisabled : kStarting);

  if (losesPower) {
    After(std::chrono::milliseconds(timing_.moduleRestart) / 3,
          [module](ObjectStore& later) { SetPost(later, module, kPostRuns, kStarting); });
  }
  After(timing_.moduleRestart, [this, module, post, enabledState](ObjectStore& later) {
    images_.Boot(later, module);
    SetPost(later, module, kPostPassed, kEnabled);
    // A module that had something wrong at its last self test has it still.
    if (!post.front().second.isNull) later.Modify(module, post);
    if (!enabledState.empty()) later.Modify(module, {{"EnabledState", Value::Text(enabledState)}});
    EndTransition(later, module);
  });
}

void Power::After(std::chrono::milliseconds delay, std::function<void(ObjectStore&)> action) {
  timers_.RunAfter(delay, [this, run = std::move(action)] {
    try {
      store_.With(run);
    } catch (const CimError&) {  // the module was pulled out meanwhile
      return;
    }
  });
}

void Power::ImageModified(ObjectStore& store, const ObjectPath& association) {
  const std::optional<ObjectPath> module = images_.Activated(store, association);
  if (!module) return;
  const Instance& element = store.Get(*module);
  const Value* const deferred = element.Find("DeferredUpdateSupported");
  const bool isDeferred = deferred == nullptr || (!deferred->isNull && deferred->texts.front() != "0");
  if (isDeferred || IsInTransition(element) || installation_.IsBusy(*module)) return;
  RestartModule(store, *module, kReset);
}

MethodResult Power::RequestPowerStateChange(ObjectStore& store, const ObjectPath& service,
                                            const std::vector<MethodParameter>& sent) {
  const MethodParameters parameters(sent, "CIM_PowerManagementService", "RequestPowerStateChange");
  const auto sentState = parameters.Text("PowerState");
  const auto element = parameters.Reference("ManagedElement");
  const auto timeout = parameters.Text("TimeoutPeriod");
  // The change is at once, so that any timeout will do and a point in time for it makes no sense.
  if (!sentState || !element || parameters.Text("Time") || (timeout && !IsInterval(*timeout))) {
    return {kInvalidParameter, {}};
  }
  try {
    store.Get(*element);
  } catch (const CimError& error) {
    throw CimError(CimStatus::kInvalidParameter, error.what());
  }
  const std::string state = CanonicalText(CimType::kUint16, *sentState);
  for (const Instance* association : store.Enumerate("CIM_AssociatedPowerManagementService")) {
    const ObjectPath& node = association->Find("UserOfService")->references.front();
    if (!ObjectStore::IsSame(association->Find("ServiceProvided")->references.front(), service) ||
        !ObjectStore::IsSame(node, *element)) {
      continue;
    }
    if (!Contains(association->Find("AvailableRequestedPowerStates"), state)) return {kInvalidStateTransition, {}};
    if (state != kPowerOn && state != kPowerOff && state != kReseat) return {kNotSupported, {}};
    if (IsInTransition(store.Get(node))) return {kBusy, {}};
    const ObjectPath path = association->Path();
    const bool wasOn = TextOf(*association, "PowerState") == kPowerOn;
    if (state != kReseat) {
      SetNodePower(store, node, path, state == kPowerOn);
      return {kCompleted, {}};
    }
    BeginTransition(store, node, kReseat);
    SetNodePower(store, node, path, false);
    After(timing_.nodeRestart, [node, path, wasOn](ObjectStore& later) {
      SetNodePower(later, node, path, wasOn);
      EndTransition(later, node);
    });
    return {kCompleted, {}};
  }
  return {kInvalidParameter, {}};
}

}  // namespace Orvane::simulator
