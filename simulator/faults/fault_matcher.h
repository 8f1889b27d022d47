// Finds the faults that a request meets, and counts so that the nth one can be told from the others.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "faults/fault.h"
#include "orvane/simulator/fault_plan.h"
#include "wire/request.h"

namespace Orvane::simulator {

/// What a fault can know a request by.
struct RequestFacts {
  /// "InvokeMethod" for extrinsic methods.
  std::string operation;
  /// The class that the request names, itself or in a path; empty when it names none.
  std::string className;
  /// Empty for intrinsic operations.
  std::string method;
};

RequestFacts FactsOf(const Request& request);

/// How often a state of the chassis has begun and ended since the start.
struct StateCount {
  std::uint64_t begun = 0;
  std::uint64_t ended = 0;
};

/// The chassis as a request finds it.
struct Moment {
  std::chrono::milliseconds now{0};
  /// By ChassisState.
  std::array<StateCount, kChassisStates> states{};
};

/// Thread-safe. Requests are counted in the order in which they are shown to it.
class FaultMatcher {
 public:
  explicit FaultMatcher(FaultPlan plan);

  bool IsEmpty() const { return plan_.Faults().empty(); }

  /// The faults that this request meets, in the order of the document; they live as long as the matcher.
  std::vector<const Fault*> Meet(const RequestFacts& request, const Moment& moment);

 private:
  FaultPlan plan_;
  std::mutex mutex_;
  std::vector<std::uint64_t> counts_;
};

}  // namespace Orvane::simulator
