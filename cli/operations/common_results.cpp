// The answers to RequestStateChange are told apart by the library's lines. The two module kinds write the lines of 4096
// to 4099 with and without a blank behind the colon.
#include "cli/operations/common_results.h"

namespace Orvane::cli {
namespace {

constexpr const char* kUpdateModule = "report it to the maker of the management module; its CIM server may be too old";

}  // namespace

ResultTable Join(std::initializer_list<ResultTable> lists) {
  ResultTable all;
  for (const ResultTable& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

const ResultTable& CimReadRows() {
  static const ResultTable kRows = {
      {19, nullptr, kRefused, "the management module denied access", "the user may not do this (CIM_ERR_ACCESS_DENIED)",
       kCheckUser},
      {20, nullptr, kFailed, "the management module does not support the operation", "CIM_ERR_NOT_SUPPORTED",
       kUpdateModule},
      {22, nullptr, kFailed, "the management module does not know the class", "CIM_ERR_INVALID_CLASS", kUpdateModule},
      {23, nullptr, kFailed, "the management module did not accept a parameter", "CIM_ERR_INVALID_PARAMETER",
       "check the package URI, if there is one; the management module has to support its scheme"},
      {27, nullptr, kFailed, "the management module reported a failure", "CIM_ERR_FAILED", kSeeLog},
  };
  return kRows;
}

const ResultTable& CimMethodRows() {
  static const ResultTable kRows = {
      {21, nullptr, kFailed, "the management module does not know the namespace", "CIM_ERR_INVALID_NAMESPACE",
       kUpdateModule},
      {25, nullptr, kFailed, "the management module does not know the method", "CIM_ERR_METHOD_NOT_FOUND",
       kUpdateModule},
      {26, nullptr, kFailed, "the method is not available at present", "CIM_ERR_METHOD_NOT_AVAILABLE", kWaitAndRepeat},
  };
  return kRows;
}

const ResultTable& NoModuleRows() {
  static const ResultTable kRows = {
      {24, nullptr, kNotFound, "the module was not found",
       "no module of this kind is in the bay, or it vanished from the chassis while the operation ran",
       "look at the bay with: orvane bay type BAY"},
  };
  return kRows;
}

const ResultTable& SessionRows() {
  static const ResultTable kRows = {
      {-1, nullptr, kNoConnection, "no connection to the management module", "the session was connected already",
       kSeeLog},
      {-2, nullptr, kNoConnection, "no connection to the management module", "its name has no address",
       "check the name, and that the name service knows it"},
      {-3, nullptr, kNoConnection, "no connection to the management module", "no socket could be made",
       "check the limits of this machine"},
      {-4, nullptr, kNoConnection, "no connection to the management module", "nothing answers at its port",
       kCheckConnection},
      {-5, nullptr, kNoConnection, "no connection to the management module", "a name is no legal CIM name", kSeeLog},
      {-6, nullptr, kNoConnection, "no connection to the management module", "an unexpected error while connecting",
       kSeeLog},
  };
  return kRows;
}

const ResultTable& OtherRows() {
  static const ResultTable kRows = {
      {kEveryOtherCode, nullptr, kFailed, "it failed for an unknown reason", "", kSeeLog},
  };
  return kRows;
}

ResultTable StateAnswerRows(int code) {
  const bool isSwitch = code != 0;
  const char* const started = isSwitch ? "Invoke method 'RequestStateChange': Method Parameters Checked - Job Started"
                                       : "Invoke method 'RequestStateChange':Method Parameters Checked - Job Started";
  const char* const transition = isSwitch ? "Invoke method 'RequestStateChange': Invalid State Transitiond"
                                          : "Invoke method 'RequestStateChange':Invalid State Transitiond";
  const char* const timeout = isSwitch ? "Invoke method 'RequestStateChange': Use of Timeout Parameter Not Supported"
                                       : "Invoke method 'RequestStateChange':Use of Timeout Parameter Not Supported";
  const char* const busy =
      isSwitch ? "Invoke method 'RequestStateChange': Busy" : "Invoke method 'RequestStateChange':Busy";
  const char* const reserved = isSwitch ? "Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved"
                                        : "Invoke method 'RequestStateChange': return value Reserved";
  constexpr const char* kNothingDone = "the module refused; nothing was done";
  return {
      {code, "Invoke method 'RequestStateChange': Not Supported", kFailed, kNothingDone,
       "it answered 1: it does not support the change", kSeeLog},
      {code, "Invoke method 'RequestStateChange': Unknown or Unspecified Error", kFailed, kNothingDone,
       "it answered 2: unknown error", kWaitAndRepeat},
      {code, "Invoke method 'RequestStateChange': Cannot complete within Timeout Period", kFailed, kNothingDone,
       "it answered 3: it cannot do so in time", kWaitAndRepeat},
      {code, "Invoke method 'RequestStateChange': Failed (4)", kFailed, kNothingDone, "it answered 4: failed",
       kWaitAndRepeat},
      {code, "Invoke method 'RequestStateChange': Invalid Parameter", kFailed, kNothingDone,
       "it answered 5: invalid parameter", kSeeLog},
      {code, "Invoke method 'RequestStateChange': In Use", kNotFound, kNothingDone, "it answered 6: it is in use",
       kWaitAndRepeat},
      {code, started, kFailed, "the module started a job of its own, which is not followed",
       "it answered 4096 instead of doing so at once", "look whether it restarts with the verify command"},
      {code, transition, kFailed, kNothingDone, "it answered 4097: not possible in its present state", kWaitAndRepeat},
      {code, timeout, kFailed, kNothingDone, "it answered 4098: no time-out supported", kSeeLog},
      {code, busy, kNotFound, kNothingDone, "it answered 4099: it is busy", kWaitAndRepeat},
      {code, reserved, kFailed, "the module gave no usable answer; it may restart all the same",
       "it answered a number that has no meaning, or nothing", "look whether it restarts with the verify command"},
  };
}

}  // namespace Orvane::cli
