// The results of reseating a compute node. Its codes are a numbering of their own.
#include "cli/operations/common_results.h"

namespace Orvane::cli {
namespace {

constexpr const char* kNotReady = "The blade is not ready to change state.";
constexpr const char* kCimError = "the management module reported an error; nothing was done";

}  // namespace

const ResultTable& BladeReseatResults() {
  static const ResultTable kRows = Join(
      {{
           {0, kNotReady, kNotFound, "nothing was done", "the node does not offer a reseat at present", kWaitAndRepeat},
           {0, nullptr, kDone, "the node is power-cycled", "", ""},
           {-1, kNotReady, kNotFound, "nothing was done", "the power management knows no such node",
            "look at the bays with: orvane equipment --kind node"},
           {1, nullptr, kNoConnection, "no connection to the management module; nothing was done", "",
            kCheckConnection},
           {3, "Invoke method 'RequestPowerStateChange' with err: ", kFailed, "the node was not reseated",
            "the management module answered with an error", kWaitAndRepeat},
           {3, nullptr, kFailed, "whether the node is reseated is not known", "the request failed unexpectedly",
            kSeeLog},
           {5, nullptr, kRefused, "the management module denied access; nothing was done",
            "the user may not do this (CIM_ERR_ACCESS_DENIED)", kCheckUser},
           {6, nullptr, kFailed, kCimError, "CIM_ERR_NOT_SUPPORTED", kSeeLog},
           {7, nullptr, kFailed, kCimError, "CIM_ERR_INVALID_NAMESPACE", kSeeLog},
           {8, nullptr, kFailed, kCimError, "CIM_ERR_INVALID_PARAMETER", kSeeLog},
           {9, "Don't find targetinstance for blade.", kNotFound, "nothing was done",
            "the power management of the node was not found", "look at the bays with: orvane equipment --kind node"},
           {9, nullptr, kFailed, kCimError, "CIM_ERR_NOT_FOUND", kSeeLog},
           {10, nullptr, kFailed, kCimError, "CIM_ERR_METHOD_NOT_FOUND", kSeeLog},
           {11, nullptr, kFailed, kCimError, "CIM_ERR_METHOD_NOT_AVAILABLE", kWaitAndRepeat},
           {12, nullptr, kFailed, kCimError, "CIM_ERR_FAILED", kSeeLog},
       },
       SessionRows(),
       OtherRows()});
  return kRows;
}

}  // namespace Orvane::cli
