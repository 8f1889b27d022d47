// A firmware package: a JSON document with a payload and its checksum (docs/firmware-package.schema.json).
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace Orvane::simulator {

/// Why a package cannot be installed; what() is the text that its job ends with.
class InstallError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Package {
  /// "cmm", "switch" or "passthru"
  std::string target;
  /// True for the boot code of a module instead of its main application.
  bool isBoot = false;
  std::string version;
  std::uint16_t major = 0;
  std::uint16_t minor = 0;
  std::uint16_t revision = 0;
  std::uint16_t build = 0;
};

/// Reads a package and checks it against its checksum.
/// @throws InstallError
Package ReadPackage(const std::string& document);

}  // namespace Orvane::simulator
