// The home of what several operations share, and the texts and codes of update results.
#include "cmm/inventory_update/cmm_util.h"

#include <orvane/cmm.h>

#include <algorithm>
#include <array>
#include <locale>
#include <map>
#include <vector>

#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_update_messages.h"

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_util";

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

struct ResultMessage {
  unsigned int code;
  const char* text;
};
constexpr std::array<ResultMessage, 8> kResultMessages = {{
    {0, "success"},
    {1, "Connect CIMOM failed."},
    {2, "Internal function perform failed."},
    {3, "CIMOM operation failed."},
    {4, "Unkown exception."},
    {5, "not found specific information"},
    {7, "Not found specific instance."},
    {9, "Failed to reboot CMM."},
}};
constexpr char kUnknownResult[] = "Unkown exception.";

struct StatusPattern {
  const char* text;
  int code;
};

/// What stands in the status of a failed job, from the general to the special: the last one that is found counts.
std::vector<StatusPattern> StatusPatterns() {
  return {
      {"CURLE(127) - THIS IS AN UNKNOWN CURL ERROR", 7},
      {"DCSC_RC_TIMEOUT", 8},
      {"DCSS_RC_RECV_FAIL", 9},
      {"FINGERPRINT MISMATCH", 10},
      {"FIRMWARE DOWNLOAD OPERATION FAILED", 11},
      {"DCSS_RC_CDT_FAIL", 12},
      {"HOST KEY AUTHENTICATION FAILED", 13},
      {"FAILED TO CONTACT HOST", 14},
      {"FLASHING ENDED WITH FAILURE", 15},
      {"TIMEOUT", 16},
      {"FILE DOES NOT EXIST", 35},
  };
}

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

int CheckUpdateErrorCode(const std::string& status) {
  ORVANE_LOG(kLogDetail) << "Enter CheckUpdateErrorCode";
  std::string upperCase = status;
  const std::locale locale;
  std::transform(upperCase.begin(), upperCase.end(), upperCase.begin(),
                 [&locale](char c) { return std::toupper(c, locale); });
  ORVANE_LOG(kLogDetail) << "CheckUpdateErrorCode CMMJobStatusStrFlagLocal=" << upperCase;
  int result = 0;
  for (const StatusPattern& pattern : StatusPatterns()) {
    if (upperCase.find(pattern.text) == std::string::npos) continue;
    ORVANE_LOG(kLogError) << pattern.text;
    result = pattern.code;
  }
  ORVANE_LOG(kLogDetail) << "Enter CheckUpdateErrorCode ErrorCodeResult: " << result;
  return result;
}

std::string GetUpdateResultMessage(unsigned int code) {
  const auto found = std::find_if(kResultMessages.begin(), kResultMessages.end(),
                                  [code](const ResultMessage& message) { return message.code == code; });
  return found == kResultMessages.end() ? kUnknownResult : found->text;
}

std::string GetUpdateErrorMessage(int code) {
  std::map<std::int32_t, std::string> messages;
  for (const UpdateErrorCode& entry : UpdateErrorCodeTable) messages.emplace(entry.code, entry.message);
  const auto found = messages.find(code);
  return found == messages.end() ? kMessageUnknownError : found->second;
}

}  // namespace Orvane
