// The bounds are those of the library's loops: attempts times the pause before each; requests themselves, which may
// take up to five minutes each, are not counted.
#include "cli/progress/steps.h"

#include <algorithm>
#include <iterator>

namespace Orvane::cli {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kManagementModule = "the CMM";
constexpr std::string_view kJob = "job";
constexpr std::string_view kJobLine = "Parameter Name: Job, Parameter Value: ";

constexpr Step kSteps[] = {
    // Every method but the installations on modules, just before its request is sent.
    {"cmm_peg_client", "Invoke Cim Method", {}, {}, 0s, Stage::kAsking},

    // Every installation: what its job's identifier is found in.
    {"cmm_update_imp", kJobLine, "installing the package", kJob, 23000s, Stage::kJobRunning},
    {{}, kJobLine, "installing the package", kJob, 0s, Stage::kJobRunning},

    // CMM update.
    {{},
     "Enter TarnUpdate::InstallPackage...",
     "looking for the installation service",
     kManagementModule,
     3s,
     Stage::kUnchanged},
    {{}, "installupdate targetinstance ", "asking for the installation", kManagementModule, 3s, Stage::kUnchanged},
    {{}, "Installing job finished", {}, {}, 0s, Stage::kJobEnded},
    {{}, "No need to reboot CMM now", {}, {}, 0s, Stage::kJobEnded},
    {{},
     "Reboot CMM finished successfully",
     "checking that the CMM answers",
     "the CMM to answer",
     4000s,
     Stage::kUnchanged},

    // CMM reboot.
    {{}, "Reboot CMM...", "checking that the CMM can be restarted", kManagementModule, 20s, Stage::kUnchanged},
    {{}, "The CMM is ready to restart.", "asking the CMM to restart", {}, 0s, Stage::kUnchanged},
    {"cmm_reboot", "Invoke method 'RequestStateChange',", "restarting the CMM", "the CMM to go down", 122s,
     Stage::kStateRequested},
    {{}, "Waiting for CMM reboot success!", "restarting the CMM", "the CMM to answer again", 4000s, Stage::kUnchanged},

    // Switch.
    {{}, "Enter SwitchIOUpdateByCIM::startUpdate!", "reading the switch", {}, 0s, Stage::kUnchanged},
    {{},
     "Enter SwitchIOUpdateByCIM::installPackage.",
     "looking for the installation service",
     kManagementModule,
     2s,
     Stage::kPreparing},
    {{},
     "Successfully get the IO target instance: ",
     "asking for the installation",
     kManagementModule,
     2s,
     Stage::kAsking},
    {{}, "Update completed successfully", {}, {}, 0s, Stage::kJobEnded},
    {{}, "Enter activateNewImage().", "activating the new image", kManagementModule, 30s, Stage::kUnchanged},
    {{}, "Parameter instance of method 'modifyInstance'", "activating the new image", {}, 0s, Stage::kAsking},
    {{}, "Succeeded to modify ElementSoftwareStatus to 3.", {}, {}, 0s, Stage::kStateRequested},
    {{},
     "Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported",
     "asking whether updates are deferred",
     kManagementModule,
     2s,
     Stage::kUnchanged},
    {{}, "RequestedStates: 11", "asking the switch to restart", {}, 0s, Stage::kUnchanged},
    {{}, "RequestedStates: 32769", "asking for the reseat of the switch", {}, 0s, Stage::kUnchanged},
    {{}, "Invoke method 'RequestStateChange',", {}, {}, 0s, Stage::kStateRequested},
    {{},
     "rebooting I/O Module switch successfully!",
     "letting the switch restart",
     "its restart",
     600s,
     Stage::kUnchanged},
    {{},
     "Enter SwitchIOUpdateByCIM::checkEHCMStatus",
     "reading the EHCM state",
     "the switch to be ready",
     312s,
     Stage::kUnchanged},

    // Pass-through module.
    {{},
     "Enter TarnPassThruUpdate::installPackage_PassThru.",
     "looking for the installation service",
     kManagementModule,
     2s,
     Stage::kPreparing},
    {{}, "installupdate targetinstance", "asking for the installation", kManagementModule, 2s, Stage::kAsking},
    {{}, "Update Finish And the Jobstatus is", {}, {}, 0s, Stage::kJobEnded},
    {{}, "The Pass-Thru is ready to change state.", "asking the module to change its state", {}, 0s, Stage::kUnchanged},

    // Switch and pass-through module.
    {{},
     "Try to check if reboot success. Attempt( 0 )",
     "checking the power-on self test",
     "its completion",
     360s,
     Stage::kUnchanged},

    // Blade.
    {{}, "PowerState: 32769", "asking for the reseat of the node", {}, 0s, Stage::kUnchanged},
    {{}, "Invoke method 'RequestPowerStateChange' retCode:", {}, {}, 0s, Stage::kStateRequested},
};

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

}  // namespace

const Step* FindStep(std::string_view file, std::string_view line) {
  const std::string_view source = file.substr(file.rfind('/') + 1);
  const auto* const found = std::find_if(std::begin(kSteps), std::end(kSteps), [&](const Step& step) {
    return StartsWith(line, step.line) && (step.source.empty() || step.source == source);
  });
  return found == std::end(kSteps) ? nullptr : found;
}

std::string_view JobInLine(std::string_view line) {
  if (!StartsWith(line, kJobLine)) return {};
  std::string_view job = line.substr(kJobLine.size());
  if (const std::size_t equals = job.find('='); equals != std::string_view::npos) job.remove_prefix(equals + 1);
  if (!job.empty()) job.remove_prefix(1);  // the quote
  return job.substr(0, job.find('"'));
}

}  // namespace Orvane::cli
