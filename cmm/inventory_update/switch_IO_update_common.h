// What the sources of the switch update share: the name under which they log, and codes and texts that more than one of
// them uses.
#pragma once

#include <Pegasus/Common/CIMStatusCode.h>

#include <cstdint>
#include <optional>

namespace Orvane::switchio {

constexpr char kLogSource[] = "cmm/inventory_update/switch_IO_update";

constexpr int kOk = 0;
constexpr int kNoConnection = 1;
constexpr int kUnexpectedError = 2;  // also of whatever a program's callback throws
constexpr int kNoTarget = 24;
constexpr int kDeferredSupported = 33;
constexpr int kDeferredNotSupported = 34;

constexpr std::uint32_t kConnectPauseMs = 1000;

constexpr char kConnectFailed[] = "Failed to connect to the CMM.";
constexpr char kNoTargetFound[] = "Don't find targetinstance for switch.";
constexpr char kTargetIs[] = "Targetinstance is ";

/// The code of a CIM error while the CMM's instances are read; nothing for a status that has none.
std::optional<int> ReadErrorCode(Pegasus::CIMStatusCode status);

}  // namespace Orvane::switchio
