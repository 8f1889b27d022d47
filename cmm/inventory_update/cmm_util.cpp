// Conversions between the CIM client's types and those of this library.
#include "cmm/inventory_update/cmm_util.h"

namespace Orvane {

std::string ToStdString(const Pegasus::String& text) {
  const Pegasus::CString bytes = text.getCString();
  const char* const begin = bytes;
  return begin == nullptr ? std::string() : std::string(begin);
}

}  // namespace Orvane
