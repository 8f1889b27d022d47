// Lets requests run into their faults: what happens to the chassis before they are carried out, and what becomes of
// their answers.
#pragma once

#include <mutex>

#include "faults/fault.h"
#include "faults/fault_matcher.h"
#include "server/http_message.h"
#include "server/operations.h"

namespace Orvane::simulator {

/// The chassis as faults see it. Thread-safe.
class FaultyChassis {
 public:
  virtual ~FaultyChassis() = default;
  FaultyChassis(const FaultyChassis&) = delete;
  FaultyChassis& operator=(const FaultyChassis&) = delete;

  /// Called before every request.
  virtual Moment Look() = 0;

  /// Brings an effect about. The request that met the fault is carried out right afterwards; no other comes in between.
  virtual void Begin(const ChassisEffect& effect, const RequestFacts& request) = 0;

  /// Called after every request. What an effect wanted of it is over, also when the request did not do it.
  virtual void End() = 0;

 protected:
  FaultyChassis() = default;
};

/// Thread-safe.
class FaultInjector {
 public:
  /// @param chassis     borrowed
  /// @param operations  borrowed
  FaultInjector(FaultPlan plan, FaultyChassis& chassis, Operations& operations);

  /// Carries out one request and answers it as the faults that it meets want it. Of several faults all change the
  /// chassis, delays add up, and the first one in the document decides about the rest of the answer.
  HttpReply Answer(const Request& request);

 private:
  FaultMatcher matcher_;
  FaultyChassis& chassis_;
  Operations& operations_;
  std::mutex turn_;
};

}  // namespace Orvane::simulator
