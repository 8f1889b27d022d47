// A package's URI, taken apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Orvane::simulator {

struct PackageUri {
  enum class Scheme { kHttp, kHttps, kFile };
  Scheme scheme = Scheme::kFile;
  /// Name or address, an IPv6 address without its brackets; empty for files.
  std::string host;
  std::uint16_t port = 0;
  /// "user:password"; empty for none. Not to be shown to anybody.
  std::string credentials;
  /// Path and query as they go into a request; of a file the decoded path.
  std::string target;
};

/// Whether a text begins with the scheme of a URI ("ftp:"), whatever follows.
bool HasScheme(const std::string& text);

/// None when it is no URI, or of a scheme that is not supported.
std::optional<PackageUri> ParsePackageUri(const std::string& text);

}  // namespace Orvane::simulator
