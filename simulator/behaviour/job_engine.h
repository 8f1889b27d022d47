// The jobs of firmware installations as clients see them: instances of CIM_ConcreteJob and its subclass that go from
// state to state. What a job does in its states is up to whoever creates it; faults can be put upon it from outside.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "behaviour/timers.h"
#include "cim/shared_store.h"

namespace Orvane::simulator {

/// Values of CIM_ConcreteJob.JobState that are used.
enum class JobState { kNew = 2, kRunning = 4, kCompleted = 7, kTerminated = 8, kException = 10 };

/// What goes wrong with a job.
struct JobOverride {
  enum class Kind {
    kStuck,     ///< it stays in its state for ever
    kVanished,  ///< its instance is gone
    kFailWith   ///< it ends in an exception with the text as ErrorDescription
  };
  Kind kind = Kind::kStuck;
  std::string text;
};

/// A state that a job is about to enter.
struct JobMoment {
  std::string id;
  JobState entering = JobState::kNew;
};

/// Members that take an ObjectStore are called with the shared store locked, and that store; the others without.
class JobEngine {
 public:
  /// Decides whether something goes wrong at this moment; none lets the job go on. A job that gets stuck when it would
  /// end stays as it is; one that gets stuck when it would begin or run enters that state and stays there.
  /// Called with the store locked, so it must not use the simulator.
  using Watcher = std::function<std::optional<JobOverride>(const JobMoment&)>;

  /// @param removal  time from the end of a job until its instance is removed
  JobEngine(SharedStore& store, Clock& clock, std::chrono::milliseconds removal)
      : store_(store), removal_(removal), timers_(clock) {}

  /// Not thread-safe; call it before the first request.
  void SetWatcher(Watcher watcher) { watcher_ = std::move(watcher); }

  /// Creates a job in state New.
  /// @param className  CIM_ConcreteJob or a subclass
  /// @param target     name of its target, "iomodule03" for instance
  /// @param text       its ErrorDescription
  /// @return the path of its instance, also when a fault made it vanish at once
  ObjectPath Create(ObjectStore& store, const std::string& className, const std::string& target,
                    const std::string& text);

  /// Lets a job enter a state with a text. Without effect on a job that has ended, is stuck or vanished.
  /// @return whether the job is in that state now
  bool Enter(ObjectStore& store, const ObjectPath& job, JobState state, const std::string& text);

  /// The two halves of Enter, for what must happen in between: Admit asks whether a fault keeps the job from entering
  /// the state, and lets it have its effect; Set writes the state.
  bool Admit(ObjectStore& store, const ObjectPath& job, JobState state);
  void Set(ObjectStore& store, const ObjectPath& job, JobState state, const std::string& text);

  /// Whether a job has not ended; a stuck one never does. Called with the store locked.
  bool IsActive(const ObjectPath& job) const;

  /// Puts a fault upon a job that has not ended; unknown and ended jobs stay as they are.
  void Stuck(const std::string& id) { Override(id, {JobOverride::Kind::kStuck, {}}); }
  void Vanished(const std::string& id) { Override(id, {JobOverride::Kind::kVanished, {}}); }
  void FailWith(const std::string& id, const std::string& text) { Override(id, {JobOverride::Kind::kFailWith, text}); }

 private:
  std::string FreeId(const ObjectStore& store);
  struct Job {
    ObjectPath path;
    JobMoment moment;
    bool isStuck = false;
  };

  void Override(const std::string& id, const JobOverride& fault);
  /// Carries out a fault other than kStuck, after which the job is no longer active.
  void Apply(ObjectStore& store, const Job& job, const JobOverride& fault);
  void Write(ObjectStore& store, const Job& job, JobState state, const std::string& text);
  void End(const std::string& id);

  SharedStore& store_;
  const std::chrono::milliseconds removal_;
  Watcher watcher_;
  unsigned last_ = 0;
  /// Jobs that have not ended; guarded by the lock of the store.
  std::map<std::string, Job> active_;
  Timers timers_;
};

}  // namespace Orvane::simulator
