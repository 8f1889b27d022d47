// Plain lines are few: one for each step and for every five minutes of waiting. JSON lines hold every event but ticks.
#include "cli/progress/reporter.h"

#include <sys/ioctl.h>

#include <utility>

#include "cli/records_json.h"
#include "cli/text.h"
#include "cli/time_text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kReminder{300};

double InSeconds(milliseconds duration) { return std::chrono::duration<double>(duration).count(); }

std::string Head(const ProgressState& state, bool withTarget = true) {
  return ElapsedText(state.elapsed) + "  " + (withTarget ? state.target + ": " : "") + state.step;
}

// The bound comes first: what a narrow terminal cuts off is the rest.
std::string Waiting(const ProgressState& state) {
  if (state.waitsFor.empty()) return {};
  return "; waiting " + (state.atMost.count() == 0 ? "without limit" : "at most " + DurationText(state.atMost)) +
         " for " + state.waitsFor;
}

class PlainReporter : public Reporter {
 public:
  explicit PlainReporter(int fd) : fd_(fd) {}

  void Report(const Event& event, const ProgressState& state) override {
    switch (event.kind) {
      case EventKind::kStep:
        lastLine_ = state.elapsed;
        WriteAll(fd_, StatusLine(state) + "\n");
        break;
      case EventKind::kTick:
        if (state.elapsed - lastLine_ >= kReminder) {
          lastLine_ = state.elapsed;
          WriteAll(fd_, StatusLine(state) + "\n");
        }
        break;
      default:
        break;
    }
  }

 private:
  int fd_;
  milliseconds lastLine_{0};
};

class LiveReporter : public Reporter {
 public:
  explicit LiveReporter(int fd) : fd_(fd) {}
  ~LiveReporter() override { LiveReporter::Clear(); }

  void Report(const Event& event, const ProgressState& state) override {
    if (event.kind == EventKind::kStepEnd) {
      // The step stays on the screen above the live line, with the time it took.
      const auto took = std::chrono::duration_cast<seconds>(state.stepElapsed);
      WriteAll(fd_, "\r\x1B[K" + Head(state) + " (" + DurationText(took) + ")\n");
      drawn_ = false;
    } else if (event.kind != EventKind::kMessage) {
      Draw(state);
    }
  }

  void Clear() override {
    if (drawn_) WriteAll(fd_, "\r\x1B[K");
    drawn_ = false;
  }

 private:
  // Of a line that is too long the target goes first: it is the same in every line.
  void Draw(const ProgressState& state) {
    constexpr std::size_t kUsualWidth = 80;
    winsize size = {};
    const bool known = ioctl(fd_, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    // One column stays free: a cursor behind the last one would begin a new line.
    const std::size_t width = (known ? size.ws_col : kUsualWidth) - 1;
    std::string text = StatusLine(state);
    if (DisplayWidth(text) > width) text = Truncate(Head(state, /*withTarget=*/false) + Waiting(state), width);
    WriteAll(fd_, "\r\x1B[K" + text);
    drawn_ = true;
  }

  int fd_;
  bool drawn_ = false;
};

class JsonLinesReporter : public Reporter {
 public:
  explicit JsonLinesReporter(int fd) : fd_(fd) {}

  void Report(const Event& event, const ProgressState& state) override {
    Json line = {
        {"event", NameOf(event.kind)}, {"elapsed_seconds", InSeconds(state.elapsed)}, {"target", state.target}};
    switch (event.kind) {
      case EventKind::kStep:
        line["step"] = state.step;
        AddWaiting(line, state);
        break;
      case EventKind::kMessage:
        line["text"] = event.text;
        break;
      case EventKind::kJob:
        line["job"] = state.jobs.back();
        break;
      case EventKind::kWait:
        line["step"] = state.step;
        line["seconds"] = InSeconds(event.pause);
        AddWaiting(line, state);
        break;
      default:
        return;
    }
    WriteAll(fd_, line.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n");
  }

 private:
  static const char* NameOf(EventKind kind) {
    switch (kind) {
      case EventKind::kStep:
        return "step";
      case EventKind::kMessage:
        return "message";
      case EventKind::kJob:
        return "job";
      default:
        return "wait";
    }
  }

  static void AddWaiting(Json& line, const ProgressState& state) {
    line["waits_for"] = state.waitsFor.empty() ? Json(nullptr) : Json(state.waitsFor);
    line["at_most_seconds"] = state.atMost.count() == 0 ? Json(nullptr) : Json(state.atMost.count());
  }

  int fd_;
};

}  // namespace

std::string StatusLine(const ProgressState& state) { return Head(state) + Waiting(state); }

std::unique_ptr<Reporter> MakeReporter(ProgressMode mode, int fd) {
  switch (mode) {
    case ProgressMode::kLive:
      return std::make_unique<LiveReporter>(fd);
    case ProgressMode::kJsonLines:
      return std::make_unique<JsonLinesReporter>(fd);
    default:
      return std::make_unique<PlainReporter>(fd);
  }
}

}  // namespace Orvane::cli
