// Seconds are cut, never rounded up: a clock that shows 0:10 has run for ten seconds.
#include "cli/time_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace Orvane::cli {
namespace {

constexpr long kMinute = 60;
constexpr long kHour = 3600;
constexpr long kThousand = 1000;

}  // namespace

std::string UtcNow() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const long milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % kThousand;
  std::tm utc = {};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text.data() + length, text.size() - length, ".%03ldZ", milliseconds);
  return text.data();
}

std::string ElapsedText(std::chrono::milliseconds elapsed) {
  const long seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
  std::array<char, 64> text{};
  if (seconds < kHour) {
    std::snprintf(text.data(), text.size(), "%ld:%02ld", seconds / kMinute, seconds % kMinute);
  } else {
    std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", seconds / kHour, seconds % kHour / kMinute,
                  seconds % kMinute);
  }
  return text.data();
}

std::string DurationText(std::chrono::seconds duration) {
  const long seconds = duration.count();
  const auto two = [](long first, const char* firstUnit, long second, const char* secondUnit) {
    std::string text = std::to_string(first) + firstUnit;
    if (second != 0) text += " " + std::to_string(second) + secondUnit;
    return text;
  };
  if (seconds >= kHour) return two(seconds / kHour, " h", seconds % kHour / kMinute, " min");
  if (seconds >= kMinute) return two(seconds / kMinute, " min", seconds % kMinute, " s");
  return std::to_string(seconds) + " s";
}

}  // namespace Orvane::cli
