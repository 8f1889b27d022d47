// Checks the host part of object paths.
#pragma once

#include <Pegasus/Common/String.h>

namespace Pegasus::objects {

/// True for a host name (labels of letters, digits, '-' and '_'), a dotted IPv4 address or an IPv6 address in brackets,
/// each with an optional ":port" whose number may be missing. The empty text is not a host.
bool IsValidHost(const String& host);

}  // namespace Pegasus::objects
