// Instants and durations as people and programs read them.
#pragma once

#include <chrono>
#include <string>

namespace Orvane::cli {

/// The present time in UTC with milliseconds: "2026-11-21T09:14:02.123Z".
std::string UtcNow();

/// A running time as clocks show it: "0:07", "12:34", "1:02:03".
std::string ElapsedText(std::chrono::milliseconds elapsed);

/// A bound in words, with its two largest units: "2 min", "1 h 7 min", "6 h 23 min", "10 s".
std::string DurationText(std::chrono::seconds duration);

}  // namespace Orvane::cli
