// The log call of this library's sources. A source that logs defines `kLogSource`, its path without extension, which
// every line of it carries together with the line number.
#pragma once

#include <orvane/log.h>

/// Streams one line of @p level; the level is tested before any text is built.
#define ORVANE_LOG(level)                        \
  if (::Orvane::Log::GetMinLogLevel() < (level)) \
    ;                                            \
  else                                           \
    ::Orvane::Log((level), kLogSource, __LINE__).Stream()

namespace Orvane {

// Levels of the log as this library uses them.
constexpr unsigned kLogError = 1;
constexpr unsigned kLogWarning = 2;
constexpr unsigned kLogProgress = 3;
constexpr unsigned kLogDetail = 4;

}  // namespace Orvane
