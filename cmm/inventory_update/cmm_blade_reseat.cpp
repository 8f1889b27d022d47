// The reseat of a compute node: the power management service of the node is asked to change its power state to the
// chassis manager's own value for "off and on again", once the node offers it.
#include <Pegasus/Client/CIMClient.h>
#include <orvane/cmm.h>

#include <array>
#include <cstdint>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_peg_client.h"
#include "cmm/inventory_update/cmm_util.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_blade_reseat";

constexpr Uint16 kPowerStateReseat = 32769;
constexpr char kPowerStateReseatText[] = "32769";
// In microseconds, as an interval. The chassis manager takes this for its own default.
constexpr Pegasus::Uint64 kReseatTimeoutUs = 120;

constexpr int kNoMatch = -1;
constexpr int kReseatFailed = 3;
constexpr int kNoTarget = 9;

struct StatusResult {
  Pegasus::CIMStatusCode status;
  int result;
};
constexpr std::array<StatusResult, 8> kStatusResults = {{
    {Pegasus::CIM_ERR_FAILED, 12},
    {Pegasus::CIM_ERR_ACCESS_DENIED, 5},
    {Pegasus::CIM_ERR_INVALID_NAMESPACE, 7},
    {Pegasus::CIM_ERR_INVALID_PARAMETER, 8},
    {Pegasus::CIM_ERR_NOT_FOUND, 9},
    {Pegasus::CIM_ERR_NOT_SUPPORTED, 6},
    {Pegasus::CIM_ERR_METHOD_NOT_AVAILABLE, 11},
    {Pegasus::CIM_ERR_METHOD_NOT_FOUND, 10},
}};

void LogNoConnection(int code) { ORVANE_LOG(kLogError) << "Connect CIMMOM Failed. RC: " << code; }

// The first instance of a class, in the server's order, whose path contains @p nodeName; an uninitialised one when
// there is none.
CIMInstance FirstOfNode(PegClientOpt& session, const char* className, const std::string& nodeName) {
  ORVANE_LOG(kLogProgress) << "enumerateInstances for " << className;
  const Array<CIMInstance> instances = session.EnumerateInstances(cim::kNamespace, className);
  ORVANE_LOG(kLogProgress) << "successfully get the instances for " << className << ".";
  for (Uint32 i = 0; i < instances.size(); ++i) {
    if (Contains(PathText(instances[i]), nodeName.c_str())) return instances[i];
  }
  return {};
}

}  // namespace

Cmm_Blade_Reseat::Cmm_Blade_Reseat(const std::string& host, unsigned int port, const std::string& user,
                                   const std::string& password, int unused)
    : client_(std::make_shared<Pegasus::CIMClient>()),
      inventory_(
          std::make_shared<CMMTarnInventoryImp>(host, static_cast<std::uint16_t>(port & 0xFFFFU), user, password)),
      host_(host),
      port_(port),
      user_(user),
      password_(password),
      unused_(unused) {}

Cmm_Blade_Reseat::~Cmm_Blade_Reseat() = default;
Cmm_Blade_Reseat::Cmm_Blade_Reseat(const Cmm_Blade_Reseat&) = default;
Cmm_Blade_Reseat& Cmm_Blade_Reseat::operator=(const Cmm_Blade_Reseat&) = default;

int Cmm_Blade_Reseat::ReseatBlade(int bay) {
  return ExportedCall(kLogSource, "Cmm_Blade_Reseat::ReseatBlade", kReseatFailed, [this, bay] {
    try {
      const CIMInstance service = inventory_->GetTargetInstance(bay, kTargetBladePower);
      if (service.isUninitialized()) {
        ORVANE_LOG(kLogProgress) << "Don't find targetinstance for blade.";
        return kNoTarget;
      }
      ORVANE_LOG(kLogProgress) << "Targetinstance is " << PathText(service);
      PegClientOpt session;
      const SessionCloser closer(session);
      if (const int code = session.Connect(host_, port_, user_, password_); code != kOk) {
        LogNoConnection(code);
        return code;
      }
      const std::string node = NodeName(bay);
      ORVANE_LOG(kLogDetail) << "Target Node bay: " << node;
      CIMInstance element;
      GetManagedElementREF(node, element);
      std::string states;
      const int result = GetAvailableRequestedPowerStates(node, states);
      if (!Contains(states, kPowerStateReseatText)) {
        // What the lookup gave passes through: a node that was read but does not offer the state gives 0.
        ORVANE_LOG(kLogError) << "The blade is not ready to change state.";
        return result;
      }
      ORVANE_LOG(kLogProgress) << "PowerState: " << kPowerStateReseat;
      Array<CIMParamValue> in;
      in.append(CIMParamValue(cim::kPowerState, CIMValue(kPowerStateReseat)));
      in.append(CIMParamValue(cim::kManagedElement, CIMValue(element.getPath())));
      in.append(CIMParamValue(cim::kTimeoutPeriod, CIMValue(Pegasus::CIMDateTime(kReseatTimeoutUs, true))));
      Array<CIMParamValue> out;
      const CIMValue answer =
          session.InvokeMethodOrThrow(cim::kNamespace, service.getPath(), cim::kRequestPowerStateChange, in, out);
      Uint32 value = 0;
      answer.get(value);
      ORVANE_LOG(kLogProgress) << "Invoke method 'RequestPowerStateChange' retCode:" << value;
      if (value == 0) {
        ORVANE_LOG(kLogProgress) << "Invoke method 'RequestPowerStateChange': Completed with No Error";
        return kOk;
      }
      ORVANE_LOG(kLogError) << "Invoke method 'RequestPowerStateChange' with err: " << value;
      return kReseatFailed;
    } catch (const Pegasus::CIMException& error) {
      ORVANE_LOG(kLogError) << ErrorText(error);
      return ParseError(error.getCode());
    } catch (...) {
      ORVANE_LOG(kLogError) << "unknown error happened when invokeMethod :" << CurrentExceptionText();
      return kReseatFailed;
    }
  });
}

int Cmm_Blade_Reseat::GetManagedElementREF(std::string nodeName, CIMInstance& element) {
  return ExportedCall(kLogSource, "Cmm_Blade_Reseat::GetManagedElementREF", kNoMatch, [this, &nodeName, &element] {
    PegClientOpt session;
    const SessionCloser closer(session);
    if (const int code = session.Connect(host_, port_, user_, password_); code != kOk) {
      LogNoConnection(code);
      return kNoConnection;
    }
    const CIMInstance found = FirstOfNode(session, cim::kVortaComputerSystem, nodeName);
    if (found.isUninitialized()) return kNoMatch;
    element = found;
    return kOk;
  });
}

int Cmm_Blade_Reseat::GetAvailableRequestedPowerStates(std::string nodeName, std::string& states) {
  return ExportedCall(
      kLogSource, "Cmm_Blade_Reseat::GetAvailableRequestedPowerStates", kNoMatch, [this, &nodeName, &states] {
        PegClientOpt session;
        const SessionCloser closer(session);
        if (const int code = session.Connect(host_, port_, user_, password_); code != kOk) {
          LogNoConnection(code);
          return kNoConnection;
        }
        const CIMInstance found = FirstOfNode(session, cim::kAssociatedPowerManagementService, nodeName);
        if (found.isUninitialized()) return kNoMatch;
        states = PropertyText(found, cim::kAvailableRequestedPowerStates);
        return kOk;
      });
}

int Cmm_Blade_Reseat::ParseError(const Pegasus::CIMStatusCode& code) {
  for (const StatusResult& known : kStatusResults) {
    if (known.status == code) return known.result;
  }
  return kReseatFailed;
}

}  // namespace Orvane
