// What the progress of an operation consists of, for those who show it.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Orvane::cli {

/// Where an operation stands, as far as the library's lines tell.
struct ProgressState {
  std::string target;                        ///< "switch in bay 3"
  std::string step;                          ///< What is being done; empty before the first step.
  std::string waitsFor;                      ///< What its waits are for; empty when it has none.
  std::chrono::seconds atMost{0};            ///< How long it waits at most; 0: without end.
  std::chrono::milliseconds elapsed{0};      ///< Since the operation began.
  std::chrono::milliseconds stepElapsed{0};  ///< Since the step began.
  std::vector<std::string> jobs;             ///< Identifiers of the jobs so far, the running one last.
};

enum class EventKind {
  kStep,     ///< A step begins; the state is that of the new step.
  kStepEnd,  ///< The step ends; the state is still that step's.
  kMessage,  ///< The library's own progress text, in text.
  kJob,      ///< The management module started a job; it stands last in the state.
  kWait,     ///< A pause begins, of length pause.
  kTick,     ///< Time went by in a pause.
};

struct Event {
  EventKind kind;
  std::string text;
  std::chrono::milliseconds pause{0};
};

}  // namespace Orvane::cli
