// Finds out from the library's log records why a call failed. The library reports several failures of HTTP and of
// authentication as empty lists or plain codes; the records tell them apart.
#pragma once

#include <orvane/log.h>

#include <string>
#include <string_view>
#include <vector>

namespace Orvane::cli {

enum class CauseKind {
  kNone,          ///< The records show no failure.
  kUnknownHost,   ///< The host's name has no address.
  kNoConnection,  ///< Nothing accepts connections there.
  kRefused,       ///< HTTP 401 or 403, or CIM "access denied".
  kNotReady,      ///< HTTP 503.
  kTimeout,       ///< The answer did not come in time.
  kClosed,        ///< The connection was closed before the answer.
  kNotCim,        ///< Something answers that speaks no CIM: another HTTP status, HTML, no HTTP at all.
  kOther          ///< Some other error: text holds the first line logged about it.
};

struct Cause {
  CauseKind kind = CauseKind::kNone;
  std::string text;  ///< The library's own words, made harmless; empty for kNone.
};

/// The decisive cause in @p records (of one call, in order): a connect that failed in the end, else the first failure
/// of HTTP or authentication, else the first error line. A failed HTTPS connect that plain HTTP made good is no cause.
Cause FindCause(const std::vector<Log::Record>& records);

/// The first refusal of user or password in @p records, whatever failed before it; kNone when there is none.
Cause FindRefusal(const std::vector<Log::Record>& records);

/// True for the lines of level 1 that only tell how something ended, not why.
bool TellsNoCause(std::string_view text);

/// True when @p kind says that talking to the host failed, so that nothing the call returned can be trusted.
bool IsHard(CauseKind kind);

}  // namespace Orvane::cli
