// The version in a package that this machine can read too.
#pragma once

#include <optional>
#include <string>

namespace Orvane::cli {

/// "7.3 (1100) for a switch", from a package of the simulator's format behind a file: URI; nothing for any other, since
/// only the management module, which fetches it, knows what is in it.
std::optional<std::string> OfferedVersion(const std::string& uri);

}  // namespace Orvane::cli
