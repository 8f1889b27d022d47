// Faults in a living chassis: its jobs, its CMMs, its modules, and which of the states that faults wait for it is in.
#pragma once

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "behaviour/chassis_life.h"
#include "cim/shared_store.h"
#include "faults/fault_injector.h"
#include "orvane/simulator/clock.h"

namespace Orvane::simulator {

class ChassisFaults : public FaultyChassis {
 public:
  /// Watches the jobs from now on; to be made before the first request. The references must stay valid as long as it
  /// lives, and it as long as jobs go on.
  ChassisFaults(SharedStore& store, Clock& clock, ChassisLife& life);

  Moment Look() override;
  void Begin(const ChassisEffect& effect, const RequestFacts& request) override;
  void End() override;

 private:
  using Names = std::set<std::string>;

  /// Compares the chassis with what it was when last looked at. Every state begins with a request, and every request is
  /// followed by a look, so none is missed.
  void Compare();
  void BeginJobFault(const ChassisEffect& effect, const RequestFacts& request);
  /// Called with the store locked, by whatever thread lets a job go on.
  std::optional<JobOverride> Watch(const JobMoment& moment);

  SharedStore& store_;
  Clock& clock_;
  ChassisLife& life_;
  const std::chrono::milliseconds start_;

  /// By ChassisState: what is in it. Used between Look and End only, which do not overlap.
  std::array<Names, kChassisStates> present_;
  std::array<StateCount, kChassisStates> counts_{};

  std::mutex mutex_;
  /// Guarded by the mutex: what is wanted of the next job, and of the jobs that there are.
  std::vector<ChassisEffect> wanted_;
  std::map<std::string, std::vector<ChassisEffect>> faultsOfJobs_;
};

}  // namespace Orvane::simulator
