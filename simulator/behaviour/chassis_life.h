// Everything that a chassis does by itself or on behalf of its methods, put together.
#pragma once

#include "behaviour/cmm_power.h"
#include "behaviour/installation.h"
#include "behaviour/job_engine.h"
#include "behaviour/power.h"
#include "behaviour/settings.h"

namespace Orvane::simulator {

class ChassisLife {
 public:
  /// The references must stay valid as long as it lives.
  ChassisLife(SharedStore& store, Clock& clock, Network& network, const ChassisSettings& settings,
              const FetchLimits& limits);

  /// Makes its methods known; called once, before the first request.
  void Register(Operations& operations);

  /// For faults.
  JobEngine& Jobs() { return jobs_; }
  CmmPower& Cmms() { return cmms_; }

 private:
  FirmwareImages images_;
  JobEngine jobs_;
  CmmPower cmms_;
  Installation installation_;
  Power power_;
};

}  // namespace Orvane::simulator
