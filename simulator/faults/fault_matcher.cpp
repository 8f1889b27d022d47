// A request counts for a fault when operation, class, method and circumstances fit, whatever other faults it meets.
#include "faults/fault_matcher.h"

#include <utility>

namespace Orvane::simulator {

namespace {

bool NameFits(const std::string& wanted, const std::string& name) { return wanted.empty() || EqualNames(wanted, name); }

bool RequestFits(const RequestRule& rule, const RequestFacts& request) {
  return NameFits(rule.operation, request.operation) && NameFits(rule.className, request.className) &&
         NameFits(rule.method, request.method);
}

bool CircumstancesFit(const Circumstances& when, const Moment& moment) {
  const auto count = [&](ChassisState state) { return moment.states.at(static_cast<std::size_t>(state)); };
  if (moment.now < when.after) return false;
  if (when.during && count(*when.during).begun <= count(*when.during).ended) return false;
  return !when.afterState || count(*when.afterState).ended > 0;
}

// Every operation has at most one parameter that names a class.
std::string ClassOf(const Parameter& parameter) {
  if (parameter.path) return parameter.path->className;
  if (parameter.instance) return parameter.instance->path.className;
  return parameter.className.value_or("");
}

}  // namespace

RequestFacts FactsOf(const Request& request) {
  if (!request.isIntrinsic) return {"InvokeMethod", request.target.className, request.name};
  RequestFacts facts{request.name, {}, {}};
  for (const char* const name : {"ClassName", "InstanceName", "ObjectName", "ModifiedInstance"}) {
    const auto found = request.parameters.find(name);
    if (found != request.parameters.end()) facts.className = ClassOf(found->second);
  }
  return facts;
}

FaultMatcher::FaultMatcher(FaultPlan plan) : plan_(std::move(plan)), counts_(plan_.Faults().size()) {}

std::vector<const Fault*> FaultMatcher::Meet(const RequestFacts& request, const Moment& moment) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<const Fault*> met;
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    const Fault& fault = plan_.Faults()[i];
    if (!RequestFits(fault.request, request) || !CircumstancesFit(fault.when, moment)) continue;
    const std::uint64_t occurrence = ++counts_[i];
    if (occurrence >= fault.request.from && occurrence <= fault.request.to) met.push_back(&fault);
  }
  return met;
}

}  // namespace Orvane::simulator
