// Reboot and reseat of a pass-through module, and the wait for its power-on self test.
#include "cmm/inventory_update/switch_PassThru_update_state.h"

#include <algorithm>
#include <array>
#include <optional>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_PassThru_update.h"
#include "cmm/inventory_update/switch_PassThru_update_common.h"
#include "platform/sleep.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {

using passthru::kLogSource;

namespace {

constexpr Uint16 kStateReboot = 11;
constexpr Uint16 kStateReseat = 32769;

constexpr int kStateChangeFailed = 4;
constexpr int kSelfTestTimeout = 16;

constexpr int kSelfTestAttempts = 36;
constexpr std::uint32_t kSelfTestPauseMs = 10000;
constexpr char kSelfTestCompleted[] = "Module completed POST successfully.";

// The statuses of the invocation that are failures and named in the log.
constexpr std::array<Pegasus::CIMStatusCode, 8> kInvocationErrors = {
    Pegasus::CIM_ERR_ACCESS_DENIED,        Pegasus::CIM_ERR_NOT_SUPPORTED, Pegasus::CIM_ERR_INVALID_NAMESPACE,
    Pegasus::CIM_ERR_INVALID_PARAMETER,    Pegasus::CIM_ERR_NOT_FOUND,     Pegasus::CIM_ERR_METHOD_NOT_FOUND,
    Pegasus::CIM_ERR_METHOD_NOT_AVAILABLE, Pegasus::CIM_ERR_FAILED};

// What the module says to a request. The missing blanks and "Transitiond" are known to log readers.
struct StateChangeAnswer {
  Uint32 value;
  const char* line;
};
constexpr std::array<StateChangeAnswer, 11> kStateChangeAnswers = {{
    {0, "Invoke method 'RequestStateChange': Completed with No Error"},
    {1, "Invoke method 'RequestStateChange': Not Supported"},
    {2, "Invoke method 'RequestStateChange': Unknown or Unspecified Error"},
    {3, "Invoke method 'RequestStateChange': Cannot complete within Timeout Period"},
    {4, "Invoke method 'RequestStateChange': Failed (4)"},
    {5, "Invoke method 'RequestStateChange': Invalid Parameter"},
    {6, "Invoke method 'RequestStateChange': In Use"},
    {4096, "Invoke method 'RequestStateChange':Method Parameters Checked - Job Started"},
    {4097, "Invoke method 'RequestStateChange':Invalid State Transitiond"},
    {4098, "Invoke method 'RequestStateChange':Use of Timeout Parameter Not Supported"},
    {4099, "Invoke method 'RequestStateChange':Busy"},
}};

void LogStateChangeAnswer(Uint32 value) {
  const auto known = std::find_if(kStateChangeAnswers.begin(), kStateChangeAnswers.end(),
                                  [value](const StateChangeAnswer& answer) { return answer.value == value; });
  ORVANE_LOG(value == 0 ? kLogProgress : kLogError)
      << (known == kStateChangeAnswers.end() ? "Invoke method 'RequestStateChange': return value Reserved"
                                             : known->line);
}

// Whether the modules offer a state: the text of the offered ones contains the state's digits. An exception ends in a
// line and a failure.
bool OffersState(PegClientOpt& session, Uint16 state) {
  try {
    ORVANE_LOG(kLogProgress) << "enumerateInstances for " << cim::kVortaPassThroughModuleCapabilities;
    Array<CIMInstance> capabilities;
    try {
      capabilities = session.EnumerateInstancesOrThrow(cim::kNamespace, cim::kVortaPassThroughModuleCapabilities);
    } catch (const Pegasus::CIMException& error) {
      if (passthru::EnumerationErrorCode(error.getCode())) {
        ORVANE_LOG(kLogError) << StatusName(error.getCode());
        return false;
      }
      // Any other status leaves the list empty, and reading its first element fails below.
    }
    const std::string path = PathText(capabilities[0]);
    ORVANE_LOG(kLogProgress) << cim::kVortaPassThroughModuleCapabilities << " is " << path;
    ORVANE_LOG(kLogProgress) << "successfully get the instances for " << cim::kVortaPassThroughModuleCapabilities
                             << ".";
    const std::string offered = PropertyText(capabilities[0], cim::kRequestedStatesSupported);
    if (!Contains(offered, std::to_string(state).c_str())) {
      ORVANE_LOG(kLogError) << "The switch is not ready to change state.";
      return false;
    }
    ORVANE_LOG(kLogProgress) << "The Pass-Thru is ready to change state.";
    return true;
  } catch (...) {
    ORVANE_LOG(kLogError) << "unknown error happened when enumerate " << cim::kVortaPassThroughModuleCapabilities
                          << " Instance :" << CurrentExceptionText();
    return false;
  }
}

// Looks the module of @p bay up once: the code of the check, or nothing while the self test is not completed.
std::optional<int> OutcomeOfSelfTest(CMMTarnInventoryImp& inventory, int bay) {
  try {
    const CIMInstance module = inventory.GetTargetInstanceOrThrow(bay, kTargetPassThru);
    if (module.isUninitialized()) {
      ORVANE_LOG(kLogProgress) << passthru::kNoTargetFound;
      return passthru::kNoTarget;
    }
    ORVANE_LOG(kLogProgress) << passthru::kTargetIs << PathText(module);
    ORVANE_LOG(kLogProgress) << "elementName:" << PropertyText(module, cim::kElementName);
    ORVANE_LOG(kLogProgress) << "strPostStatus:" << PropertyText(module, cim::kPostStatus);
    const std::string description = PropertyText(module, cim::kPostStatusDescription);
    ORVANE_LOG(kLogProgress) << "strPostStatusDescription:" << description;
    if (description != kSelfTestCompleted) return std::nullopt;
    ORVANE_LOG(kLogProgress) << "Reboot switch success.";
    return passthru::kOk;
  } catch (const Pegasus::CIMException& error) {
    const std::optional<int> result = passthru::EnumerationErrorCode(error.getCode());
    if (result) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode());
    }
    return result;
  } catch (const Pegasus::Exception& error) {
    // Not an answer of the CIM server: the module counts as gone, as it does for every other lookup of a target.
    ORVANE_LOG(kLogError) << ErrorText(error);
    ORVANE_LOG(kLogProgress) << passthru::kNoTargetFound;
    return passthru::kNoTarget;
  }
}

}  // namespace

int passthru::OutcomeOfStateChange(const std::function<CIMValue()>& request) {
  try {
    const CIMValue answer = request();
    Uint32 value = 0;
    answer.get(value);
    ORVANE_LOG(kLogProgress) << "Invoke method 'RequestStateChange', return CIMValue string = " << value;
    LogStateChangeAnswer(value);
    return kOk;
  } catch (const Pegasus::CIMException& error) {
    const Pegasus::CIMStatusCode status = error.getCode();
    if (std::find(kInvocationErrors.begin(), kInvocationErrors.end(), status) == kInvocationErrors.end()) return kOk;
    ORVANE_LOG(kLogError) << StatusName(status);
    return kStateChangeFailed;
  } catch (...) {
    const std::string message = CurrentExceptionText();
    ORVANE_LOG(kLogError) << "unknown error happened when invokeMethod :" << message;
    // A module that restarts at once does not answer any more.
    return message == "connection timed out" ? kOk : kStateChangeFailed;
  }
}

int TarnPassThruUpdate::RebootPassThru(int bay, int operationType) {
  ORVANE_LOG(kLogProgress) << "Enter TarnPassThruUpdate::RebootPassThru()";
  Notify("start reboot pass-through switch");
  return changePassThruState(bay, operationType, kStateReboot);
}

int TarnPassThruUpdate::ReseatPassThru(int bay) {
  ORVANE_LOG(kLogProgress) << "Enter TarnPassThruUpdate::ReseatPassThru()";
  Notify("Start reseat pass-through switch");
  return changePassThruState(bay, kTargetPassThru, kStateReseat);
}

int TarnPassThruUpdate::changePassThruState(int bay, int operationType, Uint16 state) {
  const CIMInstance target = inventory_->GetTargetInstance(bay, operationType);
  if (target.isUninitialized()) {
    ORVANE_LOG(kLogProgress) << passthru::kNoTargetFound;
    return passthru::kNoTarget;
  }
  ORVANE_LOG(kLogProgress) << passthru::kTargetIs << PathText(target);
  PegClientOpt session;
  const SessionCloser closer(session);
  if (const int code = session.Connect(host_, port_, user_, password_); code != passthru::kOk) {
    ORVANE_LOG(kLogError) << "Connect CIMMOM Failed. RC: " << code;
    return passthru::kNoConnection;
  }
  if (!OffersState(session, state)) return kStateChangeFailed;
  return passthru::OutcomeOfStateChange([&session, &target, state] {
    const Array<CIMParamValue> in(1, CIMParamValue(cim::kRequestedState, CIMValue(state)));
    Array<CIMParamValue> out;
    return session.InvokeMethodOrThrow(cim::kNamespace, target.getPath(), cim::kRequestStateChange, in, out);
  });
}

int TarnPassThruUpdate::CheckIfRebootSuccess(int bay) {
  for (int attempt = 0; attempt < kSelfTestAttempts; ++attempt) {
    ORVANE_LOG(kLogProgress) << "Try to check if reboot success. Attempt( " << attempt << " )";
    platform::Sleep(kSelfTestPauseMs);
    if (const std::optional<int> outcome = OutcomeOfSelfTest(*inventory_, bay)) return *outcome;
  }
  ORVANE_LOG(kLogProgress) << "Reboot switch timeout.";
  return kSelfTestTimeout;
}

}  // namespace Orvane
