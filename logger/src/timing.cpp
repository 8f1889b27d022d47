// Timing marks of long steps: pairs "[B]" and "[E]" of one step on one thread.
#include <orvane/log.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace Orvane {
namespace {

using Clock = std::chrono::steady_clock;

// Open steps of this thread; a stack per step, since a step may contain one of its own number.
std::map<int, std::vector<Clock::time_point>>& OpenSteps() {
  thread_local std::map<int, std::vector<Clock::time_point>> steps;
  return steps;
}

}  // namespace

void AddDetailTimeDebugLog(int level, const char* file, int line, const std::string& mark, int step, int value,
                           std::string detail) {
  if (level < 1 || Log::GetMinLogLevel() < static_cast<unsigned>(level)) return;
  Log log(static_cast<unsigned>(level), file, line);
  log.Stream() << mark << " step=" << step << " value=" << value << " " << detail;
  if (mark == "[B]") {
    OpenSteps()[step].push_back(Clock::now());
  } else if (mark == "[E]") {
    auto& steps = OpenSteps();
    const auto open = steps.find(step);
    if (open == steps.end()) return;
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - open->second.back());
    log.Stream() << " elapsed=" << elapsed.count() << "ms";
    open->second.pop_back();
    if (open->second.empty()) steps.erase(open);
  }
}

}  // namespace Orvane
