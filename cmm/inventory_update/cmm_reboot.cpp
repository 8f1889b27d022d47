// The reboot of the primary chassis manager: asks for it, watches it go down and waits until it is back.
#include "cmm/inventory_update/cmm_reboot.h"

#include <orvane/cmm.h>
#include <platform/sleep.h>

#include <iostream>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_log.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMObjectPath;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_reboot";

constexpr int kSuccess = 0;
constexpr int kNotConnected = 1;
constexpr int kFailed = 2;
constexpr int kNoAnswer = 3;
constexpr int kNoPrimaryCmm = 7;
constexpr int kNotReady = 9;

constexpr Uint16 kStateReset = 11;
constexpr char kStateResetText[] = "11";

constexpr int kDownRounds = 61;
constexpr std::uint32_t kDownPauseMs = 2000;
constexpr int kUpRounds = 80;
constexpr std::uint32_t kUpPauseMs = 50000;

constexpr char kGoingDown[] = "CMM is doing reboot operation!";

/// Sends the request; what the method returns is for the log only.
void RequestReset(PegClientOpt& session, const CIMObjectPath& cmm) {
  Array<CIMParamValue> in;
  Array<CIMParamValue> out;
  in.append(CIMParamValue(cim::kRequestedState, CIMValue(kStateReset), /*isTyped=*/true));
  const CIMValue returned = session.InvokeMethod(cim::kNamespace, cmm, cim::kRequestStateChange, in, out);
  Uint32 number = 0;
  returned.get(number);  // Throws when the call has failed, whatever the verbosity.
  ORVANE_LOG(kLogProgress) << "Invoke method 'RequestStateChange',"
                           << "return CIMValue string = " << number;
}

/// Watches until the CMM refuses a connection. @return false when it never did.
bool WaitUntilDown(const std::string& host, std::uint16_t port, const std::string& user, const std::string& password) {
  PegClientOpt session;
  for (int round = 0; round < kDownRounds; ++round) {
    platform::Sleep(kDownPauseMs);
    if (session.Connect(host, port, user, password) != 0) return true;
    session.Disconnect();
  }
  return false;
}

}  // namespace

int WaitForCIMServer(const std::string& host, std::uint16_t port, const std::string& user, const std::string& password,
                     int rounds, std::uint32_t pauseMs) {
  PegClientOpt session;
  bool connected = false;
  for (int round = 0; round < rounds && !connected; ++round) {
    platform::Sleep(pauseMs);
    connected = session.Connect(host, port, user, password) == 0;
  }
  session.Disconnect();
  return connected ? kSuccess : kNoAnswer;
}

int CMMReboot(const std::string& host, unsigned short port, const std::string& user, const std::string& password,
              CMMRebootFlag flag) {
  CMMTarnInventoryImp inventory(host, port, user, password);
  const CIMInstance cmm = inventory.GetTargetInstance(0, kTargetPrimaryCmm);
  if (cmm.isUninitialized()) {
    ORVANE_LOG(kLogError) << "collect CMM info failed. [CMM instance is uninitialized].";
    return kNoPrimaryCmm;
  }
  ORVANE_LOG(kLogProgress) << "Targetinstance is " << ToStdString(cmm.getPath().toString());

  PegClientOpt session;
  const int connected = session.Connect(host, port, user, password);
  if (connected != 0) {
    ORVANE_LOG(kLogError) << "Connect CIMMOM Failed. RC: " << connected;
    return kNotConnected;
  }
  const SessionCloser closer(session);
  ORVANE_LOG(kLogProgress) << "enumerateInstances for " << cim::kVortaCmmCapabilities;
  Array<CIMInstance> capabilities;
  if (session.EnumerateInstancesStatus(cim::kNamespace, cim::kVortaCmmCapabilities, capabilities) != 0) {
    ORVANE_LOG(kLogError) << "perform func[EnumerateInstances] failed";
    return kFailed;
  }
  const CIMInstance& first = capabilities[0];
  ORVANE_LOG(kLogProgress) << "Reboot Instances is :" << ToStdString(first.getPath().toString())
                           << "successfully get the instances for " << cim::kVortaCmmCapabilities << ".";
  const std::string states = PropertyText(first, cim::kRequestedStatesSupported);
  ORVANE_LOG(kLogProgress) << "the RequestedStates is " << states;
  if (!Contains(states, kStateResetText)) {
    ORVANE_LOG(kLogError) << "The CMM is not ready to restart.";
    return kNotReady;
  }
  ORVANE_LOG(kLogProgress) << "The CMM is ready to restart.";

  RequestReset(session, cmm.getPath());
  if (WaitUntilDown(host, port, user, password)) {
    ORVANE_LOG(kLogProgress) << kGoingDown;
    std::cout << kGoingDown << std::endl;
  }
  if (flag != CMM_REBOOT_WAIT) return kSuccess;
  std::cout << "Waiting for CMM reboot success!" << std::endl;
  return WaitForCIMServer(host, port, user, password, kUpRounds, kUpPauseMs) == kSuccess ? kSuccess : kNotConnected;
}

}  // namespace Orvane
