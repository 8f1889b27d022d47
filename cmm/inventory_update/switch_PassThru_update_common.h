// What the sources of the pass-through update share: the name under which they log, and the CIM statuses of an
// enumeration that have a code of their own.
#pragma once

#include <Pegasus/Common/CIMStatusCode.h>

#include <optional>

namespace Orvane::passthru {

constexpr char kLogSource[] = "cmm/inventory_update/switch_PassThru_update";

constexpr int kOk = 0;
constexpr int kNoConnection = 1;
constexpr int kNoTarget = 24;

// Texts that more than one operation logs.
constexpr char kNoTargetFound[] = "Don't find targetinstance for switch.";
constexpr char kTargetIs[] = "Targetinstance is ";

/// The code of a CIM error of an enumeration; nothing for a status that has none.
std::optional<int> EnumerationErrorCode(Pegasus::CIMStatusCode status);

}  // namespace Orvane::passthru
