// The home of what several operations share.
#include "cmm/inventory_update/cmm_util.h"

#include <algorithm>
#include <array>

namespace Orvane {
namespace {

struct NamedStatus {
  Pegasus::CIMStatusCode code;
  const char* name;
};
constexpr std::array<NamedStatus, 9> kStatusNames = {{
    {Pegasus::CIM_ERR_FAILED, "CIM_ERR_FAILED"},
    {Pegasus::CIM_ERR_ACCESS_DENIED, "CIM_ERR_ACCESS_DENIED"},
    {Pegasus::CIM_ERR_INVALID_NAMESPACE, "CIM_ERR_INVALID_NAMESPACE"},
    {Pegasus::CIM_ERR_INVALID_PARAMETER, "CIM_ERR_INVALID_PARAMETER"},
    {Pegasus::CIM_ERR_INVALID_CLASS, "CIM_ERR_INVALID_CLASS"},
    {Pegasus::CIM_ERR_NOT_FOUND, "CIM_ERR_NOT_FOUND"},
    {Pegasus::CIM_ERR_NOT_SUPPORTED, "CIM_ERR_NOT_SUPPORTED"},
    {Pegasus::CIM_ERR_METHOD_NOT_AVAILABLE, "CIM_ERR_METHOD_NOT_AVAILABLE"},
    {Pegasus::CIM_ERR_METHOD_NOT_FOUND, "CIM_ERR_METHOD_NOT_FOUND"},
}};

}  // namespace

std::string ToStdString(const Pegasus::String& text) {
  const Pegasus::CString bytes = text.getCString();
  const char* const begin = bytes;
  return begin == nullptr ? std::string() : std::string(begin);
}

std::string TwoDigits(int bayId) { return (bayId < 10 ? "0" : "") + std::to_string(bayId); }

std::string NodeName(int bayId) {
  const bool oneDigit = bayId >= 1 && bayId <= 9;
  return (oneDigit ? "node0" : "node") + std::to_string(bayId);
}

const char* StatusName(Pegasus::CIMStatusCode code) {
  const auto found =
      std::find_if(kStatusNames.begin(), kStatusNames.end(), [code](const NamedStatus& s) { return s.code == code; });
  return found == kStatusNames.end() ? "" : found->name;
}

std::string JobIdOf(const std::string& reference) {
  const std::size_t equals = reference.find('=');
  const std::size_t begin = equals == std::string::npos ? 1 : equals + 2;
  if (begin >= reference.size()) {
    return {};
  }
  return reference.substr(begin, reference.find('"', begin) - begin);
}

}  // namespace Orvane
