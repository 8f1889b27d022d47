// A text that begins a step counts once, whether it comes as a progress text, as a log line or as both.
#include "cli/progress/progress.h"

#include <algorithm>
#include <utility>

#include "cli/masking.h"
#include "cli/text.h"

namespace Orvane::cli {

Progress::Progress(Reporter& reporter, std::string target, Now now, OnJob onJob)
    : reporter_(reporter), now_(std::move(now)), onJob_(std::move(onJob)), begin_(now_()), stepBegin_(begin_) {
  state_.target = std::move(target);
}

void Progress::OnMessage(const std::string& message) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Report(EventKind::kMessage, Neutralise(MaskCredentials(message)));
  Follow({}, message);
}

void Progress::OnRecord(const Log::Record& record) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Follow(record.file, record.text);
}

void Progress::OnPauseBegin(std::chrono::milliseconds pause) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Report(EventKind::kWait, {}, pause);
}

void Progress::OnTick() {
  const std::lock_guard<std::mutex> lock(mutex_);
  Report(EventKind::kTick);
}

void Progress::End() {
  const std::lock_guard<std::mutex> lock(mutex_);
  EndStep();
  state_.step.clear();
  reporter_.Clear();
}

void Progress::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  reporter_.Clear();
}

void Progress::Silence() {
  const std::lock_guard<std::mutex> lock(mutex_);
  reporter_.Clear();
  silent_ = true;
}

Progress::Snapshot Progress::Current() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {stage_, state_.jobs, now_() - begin_};
}

void Progress::Follow(std::string_view file, std::string_view line) {
  const Step* const step = FindStep(file, line);
  if (step == nullptr) return;
  if (step->stage != Stage::kUnchanged) stage_ = step->stage;
  const std::string job = Neutralise(JobInLine(line));
  if (!step->title.empty()) Enter(*step, job);
  if (!job.empty()) {
    Report(EventKind::kJob);
    if (onJob_) onJob_(job);
  }
}

void Progress::Enter(const Step& step, const std::string& job) {
  const bool isNew = state_.step != step.title || !job.empty();
  if (isNew) {
    EndStep();
    state_.step = step.title;
    stepBegin_ = now_();
  }
  if (!job.empty()) state_.jobs.push_back(job);
  std::string waitsFor(step.waitsFor);
  if (!job.empty()) waitsFor += " " + job;
  const bool waitsOtherwise = state_.waitsFor != waitsFor || state_.atMost != step.atMost;
  state_.waitsFor = std::move(waitsFor);
  state_.atMost = step.atMost;
  if (isNew || waitsOtherwise) Report(EventKind::kStep);
}

void Progress::Report(EventKind kind, const std::string& text, std::chrono::milliseconds pause) {
  if (silent_) return;
  if (state_.step.empty() && kind != EventKind::kMessage) return;
  const std::chrono::milliseconds now = now_();
  state_.elapsed = now - begin_;
  state_.stepElapsed = now - stepBegin_;
  reporter_.Report({kind, text, pause}, state_);
}

void Progress::EndStep() {
  if (!state_.step.empty()) Report(EventKind::kStepEnd);
}

}  // namespace Orvane::cli
