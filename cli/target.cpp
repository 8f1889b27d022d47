// One sentence per cause: what happened, where, and what to do about it. The password is in none of them.
#include "cli/target.h"

#include <utility>

#include "cli/failure.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

int CodeOrNone(int code) { return code == 0 ? kNoLibraryCode : code; }

std::string InParentheses(const std::string& text) { return text.empty() ? text : " (" + text + ")"; }

}  // namespace

Target::Target(Connection connection, LogCapture& log)
    : connection_(std::move(connection)),
      log_(log),
      inventory_(connection_.host, connection_.port, connection_.user, connection_.password) {}

Cause Target::LastCause() const { return FindCause(log_.Records()); }

bool Target::Logged(std::string_view start) const { return log_.Holds(start); }

std::string Target::Where() const {
  const bool isIpv6 = connection_.host.find(':') != std::string::npos;
  const std::string host = Neutralise(isIpv6 ? "[" + connection_.host + "]" : connection_.host);
  if (connection_.port == 0) return host + ":5989 (HTTPS) or " + host + ":5988 (HTTP)";
  return host + ":" + std::to_string(connection_.port);
}

void Target::FailHard(const Cause& cause, int code) const {
  const std::string host = Neutralise(connection_.host);
  switch (cause.kind) {
    case CauseKind::kUnknownHost:
      throw Failure(
          ExitStatus::kNoConnection, CodeOrNone(code),
          "the host name \"" + host + "\" has no address; is it spelt right, and does the name service know it?");
    case CauseKind::kRefused:
      throw Failure(ExitStatus::kRefused, CodeOrNone(code),
                    "the management module at " + Where() + " refused the user \"" + Neutralise(connection_.user) +
                        "\" or the password" + InParentheses(cause.text));
    case CauseKind::kNotReady:
      throw Failure(
          ExitStatus::kNotFound, CodeOrNone(code),
          "the CIM server at " + Where() + " is not ready; try again in a few minutes" + InParentheses(cause.text));
    case CauseKind::kTimeout:
      throw Failure(ExitStatus::kNoConnection, CodeOrNone(code),
                    "the CIM server at " + Where() + " did not answer in time; is the management module restarting?");
    case CauseKind::kClosed:
      throw Failure(ExitStatus::kNoConnection, CodeOrNone(code),
                    Where() +
                        " closed the connection without an answer; is the port right, or is the management module "
                        "restarting?");
    case CauseKind::kNotCim:
      throw Failure(ExitStatus::kNotFound, CodeOrNone(code),
                    Where() + " answers, but not as a CIM server, so it is no management module; is the port right?" +
                        InParentheses(cause.text));
    default:
      throw Failure(ExitStatus::kNoConnection, CodeOrNone(code),
                    "no connection to " + Where() + "; is the management module up, and is the port right?" +
                        InParentheses(cause.text));
  }
}

void Target::RequireAnswers(int code) const {
  if (const Cause cause = LastCause(); IsHard(cause.kind)) FailHard(cause, code);
}

void Target::RequireManagementModule() {
  if (Run([](CMMInventory& inventory) { return inventory.IsCMM(); })) return;
  RequireAnswers(0);
  throw Failure(ExitStatus::kNotFound, kNoLibraryCode,
                Where() + " is a CIM server, but it manages no chassis: it has no chassis management module" +
                    InParentheses(LastCause().text));
}

void Target::Fail(const std::string& what, int code) {
  constexpr int kNoConnectionCode = 1;
  const Cause cause = LastCause();
  if (IsHard(cause.kind)) FailHard(cause, code);
  if (code == kNoConnectionCode) FailHard({CauseKind::kNoConnection, cause.text}, code);
  RequireManagementModule();
  throw Failure(ExitStatus::kFailed, CodeOrNone(code),
                what + " failed with code " + std::to_string(code) + InParentheses(cause.text));
}

}  // namespace Orvane::cli
