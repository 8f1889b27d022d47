// The texts looked for are those that the CIM client's exceptions and the library's log lines are fixed to have. They
// are matched at the place where they stand in a line, so that a server's own words can hardly pass for them.
#include "cli/cause.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string_view>

#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr std::string_view kSessionSource = "cmm/inventory_update/cmm_peg_client";
constexpr std::string_view kConnectLine = "Connect CIMOM . H:";
constexpr std::string_view kResultOfConnect = " RC: ";

// Prefixes that the session puts before an exception's message; other sources log the message bare or after " Error:".
constexpr std::string_view kPrefixes[] = {
    "Client HTTP Exception: ",
    "EnumerateInstances Exception: ",
    "Pegasus Exception: ",
    "Pegasus CIMException: ",
    " Error:",
    "unknown error happened when invokeMethod :",
    "unknown error happened when invokeMethod ",
    "Unknown error happened when invokeMethod ",
    "Unknown error happened when enumerate CIM_SoftwareInstallationService. ",
    "Unknown error happened when enumerate VORTA_IOModuleComputerSystem. ",
    "unknown error happened when enumerate VORTA_PassThroughModuleEnabledLogicalElementCapabilities Instance :",
    "unknown error happened when enumerate Reboot Instance :"};

constexpr std::string_view kUnknownHostPrefix = "Pegasus InvalidLocatorException: ";

// Every failed attempt to connect logs one of these; the module updates put other blanks into them. They count only
// when the connect as a whole failed.
constexpr std::string_view kConnectPrefixes[] = {"Pegasus AlreadyConnectedException: ",
                                                 "Pegasus AlreadyConnectedException :",
                                                 kUnknownHostPrefix,
                                                 "Pegasus InvalidLocatorException : ",
                                                 "Pegasus InvalidLocatorException :",
                                                 "Pegasus CannotCreateSocketException:",
                                                 "Pegasus CannotCreateSocketException :",
                                                 "Pegasus CannotConnectException:",
                                                 "Pegasus CannotConnectException :",
                                                 "Pegasus InvalidNameException: ",
                                                 "Pegasus InvalidNameException :",
                                                 "Unknown Exception: "};

// Lines of level 1 that say nothing about why something failed.
constexpr std::string_view kNoCause[] = {"the return code of installPackage_CMM is ",
                                         "update failed and the return code message is ",
                                         "reboot CMM failed and the return code message is ",
                                         "The blade is not ready to change state.",
                                         "Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved",
                                         "Invoke method 'RequestStateChange': return value Reserved"};

// A failed job's own words, which come after lines that only classify them.
constexpr std::string_view kJobsWords = "Update failed and the reason is:  ";

struct MessageCause {
  std::string_view start;
  CauseKind kind;
};

// How the CIM client's messages begin.
constexpr MessageCause kMessages[] = {
    {"HTTP Error (401", CauseKind::kRefused},
    {"HTTP Error (403", CauseKind::kRefused},
    {"HTTP Error (503", CauseKind::kNotReady},
    {"HTTP Error (", CauseKind::kNotCim},
    {"CIM_ERR_ACCESS_DENIED", CauseKind::kRefused},
    {"connection timed out", CauseKind::kTimeout},
    {"Connection closed by CIM Server.", CauseKind::kClosed},
    {"Malformed HTTP response message.", CauseKind::kNotCim},
    {"Missing CIMOperation HTTP header", CauseKind::kNotCim},
    {"Received CIMOperation HTTP header value", CauseKind::kNotCim},
    {"Bad Content-Type HTTP header", CauseKind::kNotCim},
    {"Validation error: on line 1: Expected <?xml", CauseKind::kNotCim},
    {"Cannot connect to ", CauseKind::kNoConnection},
    {"Invalid locator: ", CauseKind::kUnknownHost},
};

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

std::string_view WithoutPrefix(std::string_view text) {
  for (const std::string_view prefix : kPrefixes) {
    if (StartsWith(text, prefix)) return text.substr(prefix.size());
  }
  return text;
}

std::optional<std::string_view> ConnectFailure(std::string_view text) {
  for (const std::string_view prefix : kConnectPrefixes) {
    if (StartsWith(text, prefix)) return text.substr(prefix.size());
  }
  return std::nullopt;
}

// The result code of the connect that this record tells about; nothing for any other record.
std::optional<int> ConnectResult(const Log::Record& record) {
  if (record.file != kSessionSource || !StartsWith(record.text, kConnectLine)) return std::nullopt;
  const std::size_t at = record.text.rfind(kResultOfConnect);
  if (at == std::string::npos) return std::nullopt;
  return std::atoi(record.text.c_str() + at + kResultOfConnect.size());
}

Cause ClassifyMessage(std::string_view text) {
  const std::string_view message = WithoutPrefix(text);
  for (const MessageCause& known : kMessages) {
    if (StartsWith(message, known.start)) return {known.kind, Neutralise(message)};
  }
  return {CauseKind::kOther, Neutralise(text)};
}

// Why connecting failed, when it did: the attempts' lines stand before the line with the result.
Cause FindConnectCause(const std::vector<Log::Record>& records) {
  Cause attempt;
  for (const Log::Record& record : records) {
    if (const auto message = ConnectFailure(record.text)) {
      const bool unknown = StartsWith(record.text, kUnknownHostPrefix);
      attempt = {unknown ? CauseKind::kUnknownHost : CauseKind::kNoConnection, Neutralise(*message)};
    } else if (const auto result = ConnectResult(record)) {
      if (*result != 0) return attempt.kind == CauseKind::kNone ? Cause{CauseKind::kNoConnection, {}} : attempt;
      attempt = {};
    }
  }
  return {};
}

}  // namespace

Cause FindCause(const std::vector<Log::Record>& records) {
  Cause soft;
  for (const Log::Record& record : records) {
    if (record.level != 1 || ConnectFailure(record.text) || TellsNoCause(record.text)) continue;
    Cause cause = ClassifyMessage(record.text);
    if (IsHard(cause.kind)) return cause;
    if (soft.kind == CauseKind::kNone || StartsWith(record.text, kJobsWords)) soft = std::move(cause);
  }
  // A connection refused on the way, after answers came, is looked for last: the error before it is the reason.
  if (Cause connect = FindConnectCause(records); connect.kind != CauseKind::kNone) return connect;
  return soft;
}

Cause FindRefusal(const std::vector<Log::Record>& records) {
  for (const Log::Record& record : records) {
    if (record.level != 1) continue;
    if (Cause cause = ClassifyMessage(record.text); cause.kind == CauseKind::kRefused) return cause;
  }
  return {};
}

bool TellsNoCause(std::string_view text) {
  return std::any_of(std::begin(kNoCause), std::end(kNoCause),
                     [text](std::string_view start) { return StartsWith(text, start); });
}

bool IsHard(CauseKind kind) { return kind != CauseKind::kNone && kind != CauseKind::kOther; }

}  // namespace Orvane::cli
