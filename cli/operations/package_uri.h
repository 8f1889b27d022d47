// What the command itself can tell of a package's URI, before a management module is asked to fetch it.
#pragma once

#include <string>

namespace Orvane::cli {

/// @throws Failure kUsage when @p uri is none: empty, without a scheme, too long, or with blanks or control characters.
/// Which schemes are supported only the management module knows.
void RequirePackageUri(const std::string& uri);

}  // namespace Orvane::cli
