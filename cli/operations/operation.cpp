// One row per operation. The calls differ in the order of their arguments, so each has its own.
#include "cli/operations/operation.h"

#include "cli/failure.h"

namespace Orvane::cli {
namespace {

using Plan = std::vector<std::string>;

CMMUpdate::CMMUpdateOption RebootOption(const OperationOptions& options) {
  return options.noReboot ? CMMUpdate::CMM_UPDATE_NO_REBOOT : CMMUpdate::CMM_UPDATE_REBOOT;
}

int UpdateCmm(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  CMMUpdate update(access.host, access.port, access.user, access.password, options.packages.front());
  update.SetLogCallBack(&progress);
  return update.Apply(RebootOption(options));
}

int RebootCmm(const Connection& access, const OperationOptions& options, LogMessageCallBack&) {
  try {
    return CMMReboot(access.host, access.port, access.user, access.password,
                     options.noWait ? CMM_REBOOT_NOWAIT : CMM_REBOOT_WAIT);
  } catch (const std::exception&) {
    throw;
  } catch (...) {
    // The CIM client's own exception: the CMM sent no return value, or has no capabilities. The log tells which.
    return kNoLibraryCode;
  }
}

SwitchIOModuleUpdate SwitchAt(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  const std::string first = options.packages.empty() ? std::string() : options.packages.front();
  const std::string second = options.packages.size() < 2 ? std::string() : options.packages[1];
  SwitchIOModuleUpdate update(access.host, access.user, access.password, access.port, first, second, options.bay);
  update.SetLogCallBack(&progress);
  return update;
}

SwitchPassThruUpdate PassThruAt(const Connection& access, const OperationOptions& options,
                                LogMessageCallBack& progress) {
  const std::string package = options.packages.empty() ? std::string() : options.packages.front();
  SwitchPassThruUpdate update(access.host, access.user, access.password, access.port, package, options.bay);
  update.SetLogCallBack(&progress);
  return update;
}

int UpdateSwitch(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  SwitchIOModuleUpdate update = SwitchAt(access, options, progress);
  return options.noReboot ? update.UpdateFirmware() : update.StartUpdate();
}

template <int (SwitchIOModuleUpdate::*kCall)(int)>
int CallSwitch(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  return (SwitchAt(access, options, progress).*kCall)(options.bay);
}

int UpdatePassThru(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  return PassThruAt(access, options, progress).StartUpdate();
}

template <int (SwitchPassThruUpdate::*kCall)(int)>
int CallPassThru(const Connection& access, const OperationOptions& options, LogMessageCallBack& progress) {
  return (PassThruAt(access, options, progress).*kCall)(options.bay);
}

int ReseatBlade(const Connection& access, const OperationOptions& options, LogMessageCallBack&) {
  return Cmm_Blade_Reseat(access.host, access.port, access.user, access.password, 0).ReseatBlade(options.bay);
}

Plan PlanCmmUpdate(const OperationOptions& options) {
  if (options.noReboot) return {"install the package", "leave the restart to you"};
  return {"install the package", "restart the CMM", "wait until it answers again"};
}

Plan PlanCmmReboot(const OperationOptions& options) {
  if (options.noWait) return {"restart the CMM", "not wait until it answers again"};
  return {"restart the CMM", "wait until it answers again"};
}

Plan PlanSwitchUpdate(const OperationOptions& options) {
  const bool two = options.packages.size() > 1;
  Plan plan = two ? Plan{"install the first package", "install the second package"} : Plan{"install the package"};
  if (options.noReboot) {
    plan.emplace_back("leave activation and restart to you");
  } else {
    plan.insert(plan.end(), {"activate the new image", "restart the switch if it does not do so by itself",
                             "wait ten minutes for it"});
  }
  return plan;
}

Plan PlanPassThruUpdate(const OperationOptions&) { return {"install the package", "leave the restart to you"}; }
Plan PlanActivate(const OperationOptions&) { return {"make the fallback image the next one"}; }
Plan PlanReboot(const OperationOptions&) { return {"restart the module"}; }
Plan PlanReseat(const OperationOptions&) { return {"power-cycle the module, as if it were pulled and put back"}; }
Plan PlanBladeReseat(const OperationOptions&) { return {"power-cycle the node, as if it were pulled and put back"}; }
Plan PlanNothing(const OperationOptions&) { return {}; }

constexpr auto kCmm = TargetKind::kCmm;
constexpr auto kSwitch = TargetKind::kSwitch;
constexpr auto kPassThru = TargetKind::kPassThru;
constexpr auto kNode = TargetKind::kNode;

}  // namespace

const std::vector<Operation>& Operations() {
  using Switch = SwitchIOModuleUpdate;
  using PassThru = SwitchPassThruUpdate;
  // Name, help, target, changes, packages, mayStay, comparesVersions, results, resultsWithoutWait, plan, run.
  static const std::vector<Operation> kOperations = {
      {"cmm update", "Install firmware on the primary CMM and restart it", kCmm, true, 1, true, true, CmmUpdateResults,
       nullptr, PlanCmmUpdate, UpdateCmm},
      {"cmm reboot", "Restart the primary CMM", kCmm, true, 0, false, false, CmmRebootResults, CmmRebootNoWaitResults,
       PlanCmmReboot, RebootCmm},
      {"switch update", "Install firmware on a switch, activate it and restart the switch", kSwitch, true, 2, true,
       true, SwitchUpdateResults, nullptr, PlanSwitchUpdate, UpdateSwitch},
      {"switch activate", "Let the fallback image of a switch be the next one", kSwitch, true, 0, false, true,
       SwitchActivateResults, nullptr, PlanActivate, CallSwitch<&Switch::ActivateImage>},
      {"switch reboot", "Restart a switch that defers updates", kSwitch, true, 0, false, false, SwitchRebootResults,
       nullptr, PlanReboot, CallSwitch<&Switch::Reboot>},
      {"switch reseat", "Power-cycle a switch", kSwitch, true, 0, false, false, SwitchReseatResults, nullptr,
       PlanReseat, CallSwitch<&Switch::Reseat>},
      {"switch verify", "Wait until a switch has passed its power-on self test", kSwitch, false, 0, false, false,
       SwitchVerifyResults, nullptr, PlanNothing, CallSwitch<&Switch::CheckIfRebootSuccess>},
      {"switch ehcm", "Wait until a switch is ready for a firmware update", kSwitch, false, 0, false, false,
       SwitchEhcmResults, nullptr, PlanNothing, CallSwitch<&Switch::EHCMCheck>},
      {"switch deferred", "Tell whether a switch defers updates until it is restarted", kSwitch, false, 0, false, false,
       SwitchDeferredResults, nullptr, PlanNothing, CallSwitch<&Switch::CheckDeferedUpdateSupported>},
      {"passthru update", "Install firmware on a pass-through module", kPassThru, true, 1, false, true,
       PassThruUpdateResults, nullptr, PlanPassThruUpdate, UpdatePassThru},
      {"passthru reboot", "Restart a pass-through module", kPassThru, true, 0, false, false, PassThruRebootResults,
       nullptr, PlanReboot, CallPassThru<&PassThru::Reboot>},
      {"passthru reseat", "Power-cycle a pass-through module", kPassThru, true, 0, false, false, PassThruReseatResults,
       nullptr, PlanReseat, CallPassThru<&PassThru::Reseat>},
      {"passthru verify", "Wait until a pass-through module has passed its power-on self test", kPassThru, false, 0,
       false, false, PassThruVerifyResults, nullptr, PlanNothing, CallPassThru<&PassThru::CheckIfRebootSuccess>},
      {"blade reseat", "Power-cycle a compute node", kNode, true, 0, false, false, BladeReseatResults, nullptr,
       PlanBladeReseat, ReseatBlade},
  };
  return kOperations;
}

}  // namespace Orvane::cli
