// A job is active from its creation until it ends or vanishes; its instance stays readable for a while after its end.
#include "behaviour/job_engine.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Orvane::simulator {

namespace {

constexpr const char* kJobClasses[] = {"CIM_ConcreteJob", "VORTA_FirmwareInstallationJob"};

bool IsEnd(JobState state) { return state != JobState::kNew && state != JobState::kRunning; }

std::string IdOf(const ObjectPath& job) { return job.keys.at("InstanceID").text; }

}  // namespace

ObjectPath JobEngine::Create(ObjectStore& store, const std::string& className, const std::string& target,
                             const std::string& text) {
  Job job;
  job.moment = {FreeId(store), JobState::kNew};
  job.path = store.Add(className, {{"InstanceID", Value::Text(job.moment.id)},
                                   {"Name", Value::Text(job.moment.id)},
                                   {"ElementName", Value::Text("Firmware update of " + target)},
                                   {"DeleteOnCompletion", Value::Text("TRUE")}});
  ObjectPath path = job.path;
  active_.emplace(job.moment.id, std::move(job));
  Enter(store, path, JobState::kNew, text);
  return path;
}

// A model may hold jobs of its own.
std::string JobEngine::FreeId(const ObjectStore& store) {
  while (true) {
    std::string id = "JOB_" + std::to_string(++last_);
    const auto isTaken = [&](const char* className) {
      return store.Contains({className, {{"InstanceID", {id, nullptr}}}});
    };
    if (std::none_of(std::begin(kJobClasses), std::end(kJobClasses), isTaken)) return id;
  }
}

bool JobEngine::Enter(ObjectStore& store, const ObjectPath& job, JobState state, const std::string& text) {
  if (!Admit(store, job, state)) return false;
  Set(store, job, state, text);
  return true;
}

bool JobEngine::Admit(ObjectStore& store, const ObjectPath& job, JobState state) {
  const auto found = active_.find(IdOf(job));
  if (found == active_.end() || found->second.isStuck) return false;
  Job& active = found->second;
  active.moment.entering = state;
  const std::optional<JobOverride> fault = watcher_ ? watcher_(active.moment) : std::nullopt;
  if (!fault) return true;
  if (fault->kind == JobOverride::Kind::kStuck) {
    active.isStuck = true;
    return !IsEnd(state);
  }
  Apply(store, active, *fault);
  return false;
}

void JobEngine::Set(ObjectStore& store, const ObjectPath& job, JobState state, const std::string& text) {
  const auto found = active_.find(IdOf(job));
  if (found == active_.end()) return;
  Write(store, found->second, state, text);
  if (IsEnd(state)) End(found->first);
}

bool JobEngine::IsActive(const ObjectPath& job) const { return active_.count(IdOf(job)) != 0; }

void JobEngine::Override(const std::string& id, const JobOverride& fault) {
  store_.With([&](ObjectStore& store) {
    const auto found = active_.find(id);
    if (found == active_.end()) return;
    if (fault.kind == JobOverride::Kind::kStuck) {
      found->second.isStuck = true;
    } else {
      Apply(store, found->second, fault);
    }
  });
}

void JobEngine::Apply(ObjectStore& store, const Job& job, const JobOverride& fault) {
  const std::string id = job.moment.id;
  if (fault.kind == JobOverride::Kind::kVanished) {
    store.Remove(job.path);
    active_.erase(id);
    return;
  }
  Write(store, job, JobState::kException, fault.text);
  End(id);
}

void JobEngine::Write(ObjectStore& store, const Job& job, JobState state, const std::string& text) {
  store.Modify(job.path, {{"JobState", Value::Text(std::to_string(static_cast<int>(state)))},
                          {"ErrorDescription", Value::Text(text)},
                          {"JobStatus", Value::Text(text)},
                          {"PercentComplete", Value::Text(state == JobState::kCompleted ? "100" : "0")}});
}

void JobEngine::End(const std::string& id) {
  const auto found = active_.find(id);
  timers_.RunAfter(removal_,
                   [this, path = found->second.path] { store_.With([&](ObjectStore& store) { store.Remove(path); }); });
  active_.erase(found);
}

}  // namespace Orvane::simulator
