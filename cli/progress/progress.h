// Follows an operation by the library's progress texts, its log records and its pauses, and keeps where it stands.
#pragma once

#include <orvane/cmm.h>
#include <orvane/log.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "cli/progress/event.h"
#include "cli/progress/reporter.h"
#include "cli/progress/steps.h"

namespace Orvane::cli {

/// The library's calls come on the thread that runs the operation; Snapshot() and Clear() may come from others.
class Progress : public LogMessageCallBack {
 public:
  using Now = std::function<std::chrono::milliseconds()>;
  using OnJob = std::function<void(const std::string& job)>;

  /// @param target  for the lines; @p now the time that elapsed times are told in.
  /// @param onJob   called once for each job that the management module starts, before its first pause.
  Progress(Reporter& reporter, std::string target, Now now, OnJob onJob);

  /// The library's progress text.
  void OnMessage(const std::string& message) override;

  /// A log record of the library.
  void OnRecord(const Log::Record& record);

  void OnPauseBegin(std::chrono::milliseconds pause);

  /// Some of a pause went by.
  void OnTick();

  /// The last step ends.
  void End();

  /// Takes the live line away, before somebody else writes to standard error.
  void Clear();

  /// Shows nothing any more: somebody else has the last word on standard error.
  void Silence();

  struct Snapshot {
    Stage stage;
    std::vector<std::string> jobs;
    std::chrono::milliseconds elapsed;
  };
  Snapshot Current() const;

 private:
  void Follow(std::string_view file, std::string_view line);
  void Enter(const Step& step, const std::string& job);
  void Report(EventKind kind, const std::string& text = {}, std::chrono::milliseconds pause = {});
  void EndStep();

  Reporter& reporter_;
  Now now_;
  OnJob onJob_;
  std::chrono::milliseconds begin_;
  mutable std::mutex mutex_;
  std::chrono::milliseconds stepBegin_{0};
  ProgressState state_;
  Stage stage_ = Stage::kPreparing;
  bool silent_ = false;
};

}  // namespace Orvane::cli
