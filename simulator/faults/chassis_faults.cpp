// A fault upon a job that a request is about to start waits for the job, and then for the state that it is for; a fault
// upon jobs that go on comes at once.
#include "faults/chassis_faults.h"

#include <algorithm>
#include <utility>

#include "behaviour/states.h"
#include "behaviour/store_faults.h"

namespace Orvane::simulator {

namespace {

constexpr const char* kStartsJob = "InstallFromURI";
constexpr const char* kModuleClasses[] = {"VORTA_IOModuleComputerSystem", "VORTA_PassThroughModule",
                                          "VORTA_ComputerSystem"};
constexpr const char* kCmmClass = "VORTA_CMMComputerSystem";

struct Target {
  TargetKind kind;
  const char* className;
  const char* nameProperty;
  const char* namePrefix;
};

constexpr Target kTargets[] = {
    {TargetKind::kCmm, kCmmClass, "Name", "cmm"},
    {TargetKind::kSwitch, "VORTA_IOModuleComputerSystem", "Name", "iomodule"},
    {TargetKind::kPassThru, "VORTA_PassThroughModule", "DeviceID", "iomodule"},
    {TargetKind::kNode, "VORTA_ComputerSystem", "Name", "node"},
};

bool HasEnded(const Instance& job) {
  const std::string state = TextOf(job, "JobState");
  return state != std::to_string(static_cast<int>(JobState::kNew)) &&
         state != std::to_string(static_cast<int>(JobState::kRunning));
}

std::set<std::string> RunningJobs(const ObjectStore& store) {
  std::set<std::string> jobs;
  for (const Instance* job : store.Enumerate("CIM_ConcreteJob")) {
    if (!HasEnded(*job)) jobs.insert(TextOf(*job, "InstanceID"));
  }
  return jobs;
}

void AddRestarting(const ObjectStore& store, const char* className, std::set<std::string>& names) {
  for (const Instance* element : store.Enumerate(className)) {
    if (IsInTransition(*element)) names.insert(TextOf(*element, "Name") + TextOf(*element, "DeviceID"));
  }
}

void Remove(ObjectStore& store, const TargetGone& gone) {
  const auto& target = *std::find_if(std::begin(kTargets), std::end(kTargets),
                                     [&](const Target& each) { return each.kind == gone.kind; });
  constexpr unsigned kTwoDigits = 10;
  const std::string name = target.namePrefix + std::string(gone.bay < kTwoDigits ? "0" : "") + std::to_string(gone.bay);
  for (const Instance* element : store.Enumerate(target.className)) {
    if (TextOf(*element, target.nameProperty) == name) return RemoveTarget(store, element->Path());
  }
}

// What a fault makes of a job that enters a state; none when this is not its moment.
std::optional<JobOverride> OverrideAt(const ChassisEffect& fault, JobState entering) {
  if (std::holds_alternative<JobVanished>(fault)) return JobOverride{JobOverride::Kind::kVanished, {}};
  if (const auto* const stuck = std::get_if<JobStuck>(&fault)) {
    if (entering == JobState::kNew && !stuck->inNew) return std::nullopt;
    return JobOverride{JobOverride::Kind::kStuck, {}};
  }
  const auto* const fails = std::get_if<JobFails>(&fault);
  if (fails == nullptr || entering == JobState::kNew || entering == JobState::kRunning) return std::nullopt;
  return JobOverride{JobOverride::Kind::kFailWith, fails->text};
}

}  // namespace

ChassisFaults::ChassisFaults(SharedStore& store, Clock& clock, ChassisLife& life)
    : store_(store), clock_(clock), life_(life), start_(clock.Now()) {
  life_.Jobs().SetWatcher([this](const JobMoment& moment) { return Watch(moment); });
}

Moment ChassisFaults::Look() {
  Compare();
  return {clock_.Now() - start_, counts_};
}

void ChassisFaults::Compare() {
  std::array<Names, kChassisStates> now;
  const auto in = [&now](ChassisState state) -> Names& { return now.at(static_cast<std::size_t>(state)); };
  store_.With([&](const ObjectStore& store) {
    in(ChassisState::kJobRunning) = RunningJobs(store);
    AddRestarting(store, kCmmClass, in(ChassisState::kCmmRebooting));
    for (const char* className : kModuleClasses) {
      AddRestarting(store, className, in(ChassisState::kModuleRestarting));
    }
  });
  for (std::size_t state = 0; state < kChassisStates; ++state) {
    const Names& before = present_.at(state);
    const auto isNew = [&](const std::string& name) { return before.count(name) == 0; };
    const auto hasEnded = [&](const std::string& name) { return now.at(state).count(name) == 0; };
    counts_.at(state).begun +=
        static_cast<std::uint64_t>(std::count_if(now.at(state).begin(), now.at(state).end(), isNew));
    counts_.at(state).ended += static_cast<std::uint64_t>(std::count_if(before.begin(), before.end(), hasEnded));
  }
  present_ = std::move(now);
}

void ChassisFaults::Begin(const ChassisEffect& effect, const RequestFacts& request) {
  if (std::holds_alternative<CmmStaysDown>(effect)) {
    life_.Cmms().NeverComeBack();
  } else if (std::holds_alternative<TwoPrimaries>(effect)) {
    store_.With(MakeBothPrimary);
  } else if (const auto* const gone = std::get_if<TargetGone>(&effect)) {
    store_.With([&](ObjectStore& store) { Remove(store, *gone); });
  } else {
    BeginJobFault(effect, request);
  }
}

void ChassisFaults::BeginJobFault(const ChassisEffect& effect, const RequestFacts& request) {
  if (EqualNames(request.method, kStartsJob)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    wanted_.push_back(effect);
    return;
  }
  for (const std::string& job : present_.at(static_cast<std::size_t>(ChassisState::kJobRunning))) {
    if (std::holds_alternative<JobStuck>(effect)) life_.Jobs().Stuck(job);
    if (std::holds_alternative<JobVanished>(effect)) life_.Jobs().Vanished(job);
    if (const auto* const fails = std::get_if<JobFails>(&effect)) life_.Jobs().FailWith(job, fails->text);
  }
}

void ChassisFaults::End() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    wanted_.clear();
  }
  Compare();
}

std::optional<JobOverride> ChassisFaults::Watch(const JobMoment& moment) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (moment.entering == JobState::kNew && !wanted_.empty()) faultsOfJobs_[moment.id] = std::exchange(wanted_, {});
  const auto found = faultsOfJobs_.find(moment.id);
  if (found == faultsOfJobs_.end()) return std::nullopt;
  for (const ChassisEffect& fault : found->second) {
    if (auto change = OverrideAt(fault, moment.entering)) return change;
  }
  return std::nullopt;
}

}  // namespace Orvane::simulator
