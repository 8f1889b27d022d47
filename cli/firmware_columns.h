// Which of a module's firmware images runs, which one stands by and which one boots it, as far as the chassis tells.
#pragma once

#include <orvane/cmm.h>

#include <string>
#include <vector>

namespace Orvane::cli {

struct FirmwareColumns {
  std::vector<std::string> active;
  std::vector<std::string> fallback;
  std::vector<std::string> boot;
};

/// The version a person knows an image by: the full version string, else version, else the numbers, and the build
/// number in parentheses when there is one. Empty when nothing is known.
std::string VersionText(const FirmwareIdentity& firmware);

/// Sorts the images of one module. Boot ROMs are known as such. Of the others the chassis tells the status for modules
/// (2 current, 3 next, 4 fallback, other numbers are shown as they are), but not for CMMs: there the element name
/// ("active", "backup") decides, and an image whose part is not known stands in the active column with a "?".
FirmwareColumns SortFirmwares(const std::vector<FirmwareIdentity>& firmwares);

}  // namespace Orvane::cli
