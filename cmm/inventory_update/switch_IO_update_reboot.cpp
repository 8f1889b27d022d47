// Reboot and reseat of a switch, and the wait until it has completed its power-on self test. The method is invoked
// through a session, not through the client that the other operations of the switch update share.
#include <platform/sleep.h>

#include <algorithm>
#include <array>
#include <optional>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_IO_update.h"
#include "cmm/inventory_update/switch_IO_update_common.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::Uint16;

namespace Orvane {

using switchio::kLogSource;

namespace {

constexpr int kStateChangeFailed = 4;
constexpr int kSelfTestUnreadable = 6;
constexpr int kSelfTestTimeout = 16;

// CIM_EnabledLogicalElement.RequestedState: Reset, and a value of the vendor's range.
constexpr Uint16 kStateReset = 11;
constexpr Uint16 kStateReseat = 32769;

constexpr int kSelfTestReadings = 36;
constexpr std::uint32_t kSelfTestPauseMs = 10000;
constexpr char kSelfTestPassed[] = "511";
constexpr char kSelfTestPassedDescription[] = "Module completed POST successfully.";

// What the deferred-update check gave, in words.
struct CheckLine {
  int code;
  unsigned level;
  const char* text;
};
constexpr std::array<CheckLine, 4> kCheckLines = {{
    {switchio::kDeferredSupported, kLogProgress, "switch deferedupdatesupported is 1"},
    {switchio::kDeferredNotSupported, kLogProgress, "switch deferedupdatesupported is null or 0"},
    {switchio::kNoConnection, kLogWarning, "cmm connection error while getting deferedupdatesupported property"},
    {32, kLogWarning, "cmm connection timeout while getting deferedupdatesupported property"},
}};
constexpr CheckLine kOtherCheckLine = {0, kLogWarning, "cmm check deferedupdatesupported property not supported"};

// Return values of RequestStateChange in words; only "0" is a success.
struct StateChangeLine {
  const char* returnValue;
  const char* text;
};
constexpr char kStateChangeDone[] = "0";
constexpr std::array<StateChangeLine, 11> kStateChangeLines = {{
    {kStateChangeDone, "Completed with No Error"},
    {"1", "Not Supported"},
    {"2", "Unknown or Unspecified Error"},
    {"3", "Cannot complete within Timeout Period"},
    {"4", "Failed (4)"},
    {"5", "Invalid Parameter"},
    {"6", "In Use"},
    {"4096", "Method Parameters Checked - Job Started"},
    {"4097", "Invalid State Transitiond"},
    {"4098", "Use of Timeout Parameter Not Supported"},
    {"4099", "Busy"},
}};
constexpr char kStateChangeReserved[] = "ERROR happened with returnvalue Reserved";

int StateChangeResult(const std::string& returnValue) {
  const auto row =
      std::find_if(kStateChangeLines.begin(), kStateChangeLines.end(),
                   [&returnValue](const StateChangeLine& line) { return line.returnValue == returnValue; });
  const bool done = returnValue == kStateChangeDone;
  ORVANE_LOG(done ? kLogProgress : kLogError)
      << "Invoke method 'RequestStateChange': " << (row == kStateChangeLines.end() ? kStateChangeReserved : row->text);
  return done ? switchio::kOk : kStateChangeFailed;
}

void LogDeferredCheck(int code) {
  const auto row =
      std::find_if(kCheckLines.begin(), kCheckLines.end(), [code](const CheckLine& line) { return line.code == code; });
  const CheckLine& line = row == kCheckLines.end() ? kOtherCheckLine : *row;
  ORVANE_LOG(line.level) << line.text;
}

bool HasPassedSelfTest(const CIMInstance& module) {
  const std::string name = PropertyTextOrThrow(module, cim::kElementName);
  const std::string status = PropertyTextOrThrow(module, cim::kPostStatus);
  const std::string description = PropertyTextOrThrow(module, cim::kPostStatusDescription);
  ORVANE_LOG(kLogProgress) << "ElementName:" << name;
  ORVANE_LOG(kLogProgress) << "PostStatus:" << status;
  ORVANE_LOG(kLogProgress) << "PostStatusDescription:" << description;
  return status == kSelfTestPassed && description == kSelfTestPassedDescription;
}

}  // namespace

int SwitchIOUpdateByCIM::Reboot(int bay) {
  return ExportedCall(kLogSource, "Reboot", switchio::kUnexpectedError, [this, bay] {
    const int deferred = checkDeferedupdatesupported(bay);
    LogDeferredCheck(deferred);
    const bool needed =
        deferred == switchio::kDeferredSupported || (deferred == switchio::kDeferredNotSupported && missingFallback_);
    if (!needed) {
      // Said of a failed check as well: what is not known to need a reboot is left alone.
      ORVANE_LOG(kLogProgress)
          << "deferedupdatesupported==null or 0 and have fallback section, in this case, the switch will reboot "
             "automatically or activate dynamically, so ignore reboot operation in krant and return successfully";
      return switchio::kOk;
    }
    Notify("start reboot I/O Module switch");
    ORVANE_LOG(kLogProgress) << "RequestedStates: " << kStateReset;
    return requestStateChange(bay, kStateReset);
  });
}

int SwitchIOUpdateByCIM::Reseat(int bay) {
  return ExportedCall(kLogSource, "Reseat", switchio::kUnexpectedError, [this, bay] {
    Notify("start reseat I/O Module switch");
    ORVANE_LOG(kLogProgress) << "RequestedStates: " << kStateReseat;
    return requestStateChange(bay, kStateReseat);
  });
}

int SwitchIOUpdateByCIM::requestStateChange(int bay, Uint16 requestedState) {
  CMMTarnInventoryImp inventory(host_, port_, user_, password_);
  const CIMInstance target = inventory.GetTargetInstance(bay, kTargetIOModule);
  if (target.isUninitialized()) {
    ORVANE_LOG(kLogProgress) << switchio::kNoTargetFound;
    return switchio::kNoTarget;
  }
  ORVANE_LOG(kLogProgress) << switchio::kTargetIs << ToStdString(target.getPath().toString());

  PegClientOpt session;
  const SessionCloser closer(session);
  if (const int result = session.Connect(host_, port_, user_, password_); result != 0) {
    ORVANE_LOG(kLogError) << "Connect CIMMOM Failed. RC: " << result;
    return result;
  }
  Array<CIMParamValue> inParameters;
  inParameters.append(CIMParamValue(cim::kRequestedState, CIMValue(requestedState)));
  Array<CIMParamValue> outParameters;
  const CIMValue answer =
      session.InvokeMethod(cim::kNamespace, target.getPath(), cim::kRequestStateChange, inParameters, outParameters);
  const std::string returnValue = ToStdString(answer.toString());
  ORVANE_LOG(kLogProgress) << "Invoke method 'RequestStateChange',"
                           << "return CIMValue string = " << returnValue;
  return StateChangeResult(returnValue);
}

int SwitchIOUpdateByCIM::CheckIfRebootSuccess(int bay) {
  return ExportedCall(kLogSource, "CheckIfRebootSuccess", kSelfTestUnreadable, [this, bay] {
    try {
      for (int reading = 0; reading < kSelfTestReadings; ++reading) {
        ORVANE_LOG(kLogProgress) << "Try to check if reboot success. Attempt( " << reading << " )";
        platform::Sleep(kSelfTestPauseMs);
        const CIMInstance target = inventory_->GetTargetInstanceOrThrow(bay, kTargetIOModule);
        if (target.isUninitialized()) {
          ORVANE_LOG(kLogProgress) << switchio::kNoTargetFound;
          return switchio::kNoTarget;
        }
        ORVANE_LOG(kLogProgress) << switchio::kTargetIs << ToStdString(target.getPath().toString());
        if (HasPassedSelfTest(target)) {
          ORVANE_LOG(kLogProgress) << "Reboot switch success.";
          return switchio::kOk;
        }
      }
      ORVANE_LOG(kLogProgress) << "Reboot switch timeout.";
      return kSelfTestTimeout;
    } catch (const Pegasus::CIMException& error) {
      const std::optional<int> result = switchio::ReadErrorCode(error.getCode());
      if (result) {
        ORVANE_LOG(kLogError) << StatusName(error.getCode());
      }
      return result.value_or(kSelfTestUnreadable);
    } catch (...) {
      ORVANE_LOG(kLogError) << "Pegasus Exception: " << CurrentExceptionText();
      return kSelfTestUnreadable;
    }
  });
}

}  // namespace Orvane
