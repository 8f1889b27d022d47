// Level and destination of the log: one small state for the process, and the emission of a finished line.
#include <orvane/log.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "append_file_sink.h"

namespace Orvane {
namespace {

constexpr unsigned kDefaultLevel = 1;
constexpr unsigned kMaxLevel = 4;

// spdlog adds its own prefix unless told that the message is the whole line.
void WriteLine(spdlog::sinks::sink& sink, const std::string& line) {
  sink.log(spdlog::details::log_msg("", spdlog::level::info, line));
  sink.flush();
}

std::shared_ptr<spdlog::sinks::sink> WholeLines(std::shared_ptr<spdlog::sinks::sink> sink) {
  sink->set_formatter(std::make_unique<spdlog::pattern_formatter>("%v"));
  return sink;
}

void Complain(const std::string& text) {
  WriteLine(*WholeLines(std::make_shared<spdlog::sinks::stderr_sink_mt>()), "orvane: " + text);
}

unsigned LevelFromEnvironment() {
  const char* const text = std::getenv("ORVANE_LOG_LEVEL");
  if (text == nullptr) return kDefaultLevel;
  const std::string value(text);
  if (value.size() == 1 && value[0] >= '0' && value[0] <= '4') return static_cast<unsigned>(value[0] - '0');
  Complain("ORVANE_LOG_LEVEL is '" + value + "', which is not 0 to 4; using 1");
  return kDefaultLevel;
}

std::shared_ptr<spdlog::sinks::sink> OpenDestination(const std::string& path) {
  if (!path.empty()) {
    try {
      return WholeLines(std::make_shared<logging::AppendFileSink>(path));
    } catch (const std::exception& error) {
      Complain(std::string(error.what()) + "; logging to standard error");
    }
  }
  return WholeLines(std::make_shared<spdlog::sinks::stderr_sink_mt>());
}

class LogState {
 public:
  static LogState& Instance() {
    // Never destroyed: other static objects may still log while the process ends.
    static auto* const state = new LogState;
    return *state;
  }

  unsigned Level() const { return level_.load(std::memory_order_relaxed); }
  void SetLevel(unsigned level) { level_.store(level > kMaxLevel ? kMaxLevel : level, std::memory_order_relaxed); }

  void SetSink(Log::Sink sink) {
    const std::lock_guard lock(mutex_);
    sink_ = std::move(sink);
  }

  void SetFile(const std::string& path) {
    auto destination = OpenDestination(path);
    const std::lock_guard lock(mutex_);
    destination_ = std::move(destination);
  }

  void Emit(const Log::Record& record) {
    const std::lock_guard lock(mutex_);
    if (sink_) {
      sink_(record);
      return;
    }
    if (!destination_) {
      const char* const path = std::getenv("ORVANE_LOG_FILE");
      destination_ = OpenDestination(path == nullptr ? "" : path);
    }
    WriteLine(*destination_, FormatRecord(record));
  }

 private:
  LogState() : level_(LevelFromEnvironment()) {}

  std::atomic<unsigned> level_;
  std::mutex mutex_;
  Log::Sink sink_;
  std::shared_ptr<spdlog::sinks::sink> destination_;
};

void DropLineEnd(std::string& text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  if (!text.empty() && text.back() == '\r') text.pop_back();
}

}  // namespace

Log::Log(unsigned level, const char* file, int line) : level_(level), file_(file), line_(line) {}

Log::~Log() {
  try {
    Record record{std::chrono::system_clock::now(), level_, file_, line_, stream_.str()};
    DropLineEnd(record.text);
    LogState::Instance().Emit(record);
  } catch (...) {
    // A log line that cannot be written must not end the operation that wrote it.
    return;
  }
}

unsigned Log::GetMinLogLevel() { return LogState::Instance().Level(); }

void Log::SetMinLogLevel(unsigned level) { LogState::Instance().SetLevel(level); }

void Log::SetSink(Sink sink) { LogState::Instance().SetSink(std::move(sink)); }

void Log::SetFile(const std::string& path) { LogState::Instance().SetFile(path); }

}  // namespace Orvane
