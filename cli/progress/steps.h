// The steps of every operation, known by the lines with which the library begins them.
#pragma once

#include <chrono>
#include <string_view>

namespace Orvane::cli {

/// How far an operation has come with what cannot be taken back.
enum class Stage {
  kPreparing,       ///< Nothing has been asked for.
  kAsking,          ///< The request that changes something is on its way.
  kJobRunning,      ///< An installation job runs at the management module.
  kJobEnded,        ///< The job has ended.
  kStateRequested,  ///< A restart, reseat or power state was asked for.
  kUnchanged        ///< As before: the step says nothing about it.
};

struct Step {
  std::string_view source;  ///< The library's source that writes the line, without folder; empty: any.
  std::string_view line;    ///< How the library's log line or progress text begins.
  std::string_view title;   ///< Empty: the line only moves the stage on.
  std::string_view waitsFor;
  std::chrono::seconds atMost{0};  ///< Of all the step's waits; 0: without end, or no waits.
  Stage stage;
};

/// The step that @p line begins, or null.
/// @param file  the record's source; empty for a progress text.
const Step* FindStep(std::string_view file, std::string_view line);

/// The job's identifier when @p line tells one, else empty: what stands between the quotes of the first key.
std::string_view JobInLine(std::string_view line);

}  // namespace Orvane::cli
