// What it means for an operation that the talk with the management module broke off before anything was asked for. The
// library's code then tells what it missed, a target or a service, and not why.
#pragma once

#include <vector>

#include "cli/cause.h"
#include "cli/exit_status.h"

namespace Orvane::cli {

struct LostContact {
  CauseKind kind;
  ExitStatus status;
  const char* cause;
  const char* advice;
};

/// One row for each kind of cause that concerns the talk itself, apart from a refused user. docs/return-codes.md shows
/// them.
const std::vector<LostContact>& LostContacts();

/// The row of @p kind, or null.
const LostContact* FindLostContact(CauseKind kind);

}  // namespace Orvane::cli
