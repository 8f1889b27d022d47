// The firmware update of a chassis manager. Counts and waits are those that chassis managers need: an installation runs
// for up to hours, and a reboot for up to one.
#include "cmm/inventory_update/cmm_update_imp.h"

#include <platform/sleep.h>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_update_messages.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::String;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_update_imp";

// Results of Apply(). The reboot adds its own.
constexpr int kSuccess = 0;
constexpr int kNotConnected = 1;
constexpr int kFailed = 2;
constexpr int kNoJob = 6;
constexpr int kInstanceNotFound = 7;
constexpr int kInstallTimeout = 8;

// Steps of the timing log.
constexpr int kStepInstall = 32;
constexpr int kStepReboot = 63;

constexpr int kOperationTypeCmm = 0;
constexpr Uint16 kInstallOptionUpdate = 5;

struct Attempts {
  int count;
  std::uint32_t pauseMs;  ///< before each
};
constexpr Attempts kConnectForInstall = {3, 1000};
constexpr Attempts kConnectForPoll = {3, 3000};
constexpr Attempts kProbeBeforeReboot = {10, 2000};
constexpr Attempts kProbeAfterReboot = {80, 50000};

constexpr int kPassesUntilRunning = 11;
constexpr int kPasses = 1000;
constexpr std::uint32_t kPassPauseMs = 20000;
constexpr int kJobEnumerations = 3;

// CIM_ConcreteJob.JobState.
constexpr int kJobRunning = 4;
constexpr int kJobCompleted = 7;
constexpr int kJobTerminated = 8;
constexpr int kJobKilled = 9;
constexpr int kJobException = 10;
/// Stands for a job that is not in the list.
constexpr int kJobUnknown = 62235;

constexpr char kInvokeFailed[] = "unknown error happened when invokeMethod ";
constexpr char kNoConnectionBeforeReboot[] = "Cannot connect to CMM before reboot CMM, exit reboot procedure.";
constexpr char kNoConnectionAfterReboot[] = "Cannot connect to CMM after rebooting CMM.";
constexpr char kConnectedAfterReboot[] = "Connect successfully after rebooting CMM.";
constexpr char kInstalled[] = "CMM package installated successfully.";

std::string ResultText(int result) { return GetUpdateResultMessage(static_cast<unsigned>(result)); }

std::string PathTextOf(const CIMInstance& instance) { return ToStdString(instance.getPath().toString()); }

/// What a polling pass finds out about the job.
struct JobReading {
  int state = kJobUnknown;
  std::string status;
};

/// The reading of the job @p id; of several with that identifier the last one counts.
JobReading ReadJob(const Array<CIMInstance>& jobs, const std::string& id) {
  JobReading reading;
  for (Uint32 i = 0; i < jobs.size(); ++i) {
    const std::string instanceId = PropertyText(jobs[i], cim::kInstanceId);
    ORVANE_LOG(kLogDetail) << "InstanceID     is: " << instanceId;
    if (instanceId != id) continue;
    reading.status = PropertyText(jobs[i], cim::kErrorDescription);
    reading.state = LenientInt(PropertyText(jobs[i], cim::kJobState));
    // The labels are crossed; readers of these logs know them so.
    ORVANE_LOG(kLogDetail) << "JobStatus      is: " << reading.status;
    ORVANE_LOG(kLogDetail) << "JobDescription is: " << reading.state;
  }
  return reading;
}

}  // namespace

TarnUpdate::TarnUpdate(const std::string& host, std::uint16_t port, const std::string& user,
                       const std::string& password, const std::string& packageUri)
    : host_(host),
      port_(port),
      user_(user),
      password_(password),
      packageUri_(packageUri),
      inventory_(std::make_shared<CMMTarnInventoryImp>(host, port, user, password)),
      session_(std::make_shared<PegClientOpt>()) {}

int TarnUpdate::Apply(bool reboot) {
  const SessionCloser closer(*session_);
  try {
    ORVANE_LOG(kLogProgress) << "The operation type is OperationType_CMM(" << kOperationTypeCmm << ")";
    Report("start up update CMM");
    return ApplyUpdatePackage(kOperationTypeCmm, packageUri_, reboot);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << kInvokeFailed << ErrorText(error);
    return kFailed;
  }
}

int TarnUpdate::Reboot() { return CMMReboot(host_, port_, user_, password_, CMM_REBOOT_WAIT); }

int TarnUpdate::ApplyUpdatePackage(int operationType, const std::string& packageUri, bool reboot) {
  ORVANE_LOG(kLogProgress) << "TarnUpdate::ApplyUpdatePackage().";
  Report("start to install Package...");
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[B]", kStepInstall, 0, packageUri);
  const int result = installPackage_CMM(operationType, packageUri);
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[E]", kStepInstall, result, packageUri);
  // Level 1 also after a success, so that every log tells how an installation ended.
  ORVANE_LOG(kLogError) << "the return code of installPackage_CMM is " << result;
  if (result != kSuccess) {
    ORVANE_LOG(kLogError) << "update failed and the return code message is " << ResultText(result);
    return result;
  }
  if (!reboot) {
    ORVANE_LOG(kLogProgress) << "No need to reboot CMM now, exit CMM installing procedure.";
    return kSuccess;
  }
  return RebootAndProbe();
}

int TarnUpdate::RebootAndProbe() {
  if (!ProbeConnection(kProbeBeforeReboot.count, kProbeBeforeReboot.pauseMs)) {
    ORVANE_LOG(kLogError) << kNoConnectionBeforeReboot;
    return kNotConnected;
  }
  Report("Reboot CMM...");
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[B]", kStepReboot, 0, "");
  const int result = CMMReboot(host_, port_, user_, password_, CMM_REBOOT_WAIT);
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[E]", kStepReboot, result, "");
  if (result != kSuccess) {
    ORVANE_LOG(kLogError) << "reboot CMM failed and the return code message is " << ResultText(result);
    return result;
  }
  Report("Reboot CMM finished successfully, test if CMM is OK...");
  if (!ProbeConnection(kProbeAfterReboot.count, kProbeAfterReboot.pauseMs)) {
    Report(kNoConnectionAfterReboot);
    ORVANE_LOG(kLogError) << kNoConnectionAfterReboot;
    return kNotConnected;
  }
  Report(kConnectedAfterReboot);
  ORVANE_LOG(kLogProgress) << kConnectedAfterReboot;
  Report(kInstalled);
  ORVANE_LOG(kLogProgress) << kInstalled;
  return kSuccess;
}

int TarnUpdate::installPackage_CMM(int operationType, const std::string& packageUri) {
  ORVANE_LOG(kLogProgress) << "Enter TarnUpdate::InstallPackage...";
  if (!TryConnect(kConnectForInstall.count, kConnectForInstall.pauseMs)) return kNotConnected;
  Array<CIMInstance> services;
  if (session_->EnumerateInstancesStatus(cim::kNamespace, cim::kSoftwareInstallationService, services) != 0) {
    ORVANE_LOG(kLogError) << "perform func[EnumerateInstances] failed";
    session_->Disconnect();
    return kFailed;
  }
  for (Uint32 i = 0; i < services.size(); ++i) {
    ORVANE_LOG(kLogDetail) << "Instances is " << PathTextOf(services[i]);
  }
  ORVANE_LOG(kLogProgress) << "successfully get the instances for " << cim::kSoftwareInstallationService << ".";
  session_->Disconnect();
  if (!BuildInParameters(operationType, packageUri)) return kInstanceNotFound;
  try {
    return StartInstallation(services);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << kInvokeFailed << ErrorText(error);
    session_->Disconnect();
    return kFailed;
  }
}

bool TarnUpdate::BuildInParameters(int operationType, const std::string& packageUri) {
  inParameters_.clear();
  outParameters_.clear();
  inParameters_.append(CIMParamValue(cim::kUri, CIMValue(String(packageUri.c_str()))));
  const CIMInstance target = inventory_->GetTargetInstance(0, operationType);
  if (target.isUninitialized()) {
    ORVANE_LOG(kLogError) << "collect CMM info failed. [CMM instance is uninitialized].\n";
    return false;
  }
  ORVANE_LOG(kLogProgress) << "installupdate targetinstance " << PathTextOf(target);
  Array<Uint16> options;
  options.append(kInstallOptionUpdate);
  Array<String> optionValues;
  optionValues.append(String::EMPTY);
  inParameters_.append(CIMParamValue(cim::kTarget, CIMValue(target.getPath())));
  inParameters_.append(CIMParamValue(cim::kInstallOptions, CIMValue(options)));
  inParameters_.append(CIMParamValue(cim::kInstallOptionsValues, CIMValue(optionValues)));
  return true;
}

int TarnUpdate::StartInstallation(const Array<CIMInstance>& services) {
  ORVANE_LOG(kLogDetail) << "try to connect cimom.";
  if (!TryConnect(kConnectForInstall.count, kConnectForInstall.pauseMs)) return kNotConnected;
  ORVANE_LOG(kLogDetail) << "InvokeCimMethod to Update CMM";
  const CIMValue returned = session_->InvokeMethod(cim::kNamespace, services[0].getPath(), cim::kInstallFromUri,
                                                   inParameters_, outParameters_);
  // The number plays no part, the job tells what became of the installation; but a call without one has failed.
  Uint32 number = 0;
  returned.get(number);
  ORVANE_LOG(kLogProgress) << "Invoke method 'InstallFromURI', return CIMValue string = "
                           << ToStdString(returned.toString());
  job_ = GetOutParameterValue(cim::kJob, outParameters_);
  if (job_.empty()) {
    ORVANE_LOG(kLogError) << "InstanceID not found!";
    return kNoJob;
  }
  session_->Disconnect();
  jobId_ = ExtractInstanceId(job_);
  const int result = QueryInstallJob(jobId_);
  ORVANE_LOG(kLogProgress) << "Complete TarnUpdate::installPackage_CMM().";
  return result;
}

int TarnUpdate::QueryInstallJob(const std::string& id) {
  ORVANE_LOG(kLogDetail) << "Begin to query installing the status of job " << id;
  bool seenRunning = false;
  int pass = 0;
  while (pass < kPassesUntilRunning || seenRunning) {
    ORVANE_LOG(kLogProgress) << "The " << pass + 1 << " times retry:";
    if (!TryConnect(kConnectForPoll.count, kConnectForPoll.pauseMs)) return kNotConnected;
    Array<CIMInstance> jobs;
    for (int i = 0; i < kJobEnumerations && jobs.size() == 0; ++i) {
      jobs = session_->EnumerateInstances(cim::kJobNamespace, cim::kVortaFirmwareInstallationJob);
    }
    if (jobs.size() == 0) {
      ORVANE_LOG(kLogWarning) << "Failed to enumerate job instance with " << kJobEnumerations << " times retry";
      return kInstanceNotFound;
    }
    const JobReading job = ReadJob(jobs, id);
    session_->Disconnect();
    int result = kFailed;
    switch (job.state) {
      case kJobCompleted:
        ORVANE_LOG(kLogProgress) << "Installing job finished with the status is " << job.status;
        return kSuccess;
      case kJobRunning:
        seenRunning = true;
        result = kInstallTimeout;
        ORVANE_LOG(kLogDetail) << "Installing job CMM_OPT_RC_INSTALL_JOB_TIMEOUTis in running with the statue is "
                               << job.status;
        break;
      case kJobTerminated:
      case kJobKilled:
      case kJobException:
        ORVANE_LOG(kLogDetail) << "Installing job is in error state " << job.state << " with status is " << job.status;
        return kFailed;
      default:
        ORVANE_LOG(kLogDetail) << "Installing job is in unstable state " << job.state << " with status is "
                               << job.status;
        break;
    }
    ++pass;
    platform::Sleep(kPassPauseMs);
    if (pass >= kPasses) return result;
  }
  ORVANE_LOG(kLogError) << "Job is still not in running after " << pass << " times query";
  return kFailed;
}

bool TarnUpdate::TryConnect(int attempts, std::uint32_t pauseMs) {
  for (int attempt = 0; attempt < attempts; ++attempt) {
    platform::Sleep(pauseMs);
    if (session_->Connect(host_, port_, user_, password_) == 0) return true;
  }
  return false;
}

bool TarnUpdate::ProbeConnection(int attempts, std::uint32_t pauseMs) {
  if (!TryConnect(attempts, pauseMs)) return false;
  session_->Disconnect();
  return true;
}

std::string TarnUpdate::GetOutParameterValue(const std::string& name, const Array<CIMParamValue>& parameters) {
  std::string text;
  for (Uint32 i = 0; i < parameters.size(); ++i) {
    if (ToStdString(parameters[i].getParameterName()) != name) continue;
    text = ToStdString(parameters[i].getValue().toString());
    ORVANE_LOG(kLogProgress) << "Parameter Name: " << name << ", Parameter Value: " << text;
  }
  return text;
}

std::string TarnUpdate::ExtractInstanceId(const std::string& text) {
  const std::size_t equals = text.find('=');
  const bool hasValue = equals != std::string::npos && equals + 2 < text.size();
  const std::size_t begin = hasValue ? equals + 2 : 0;
  return text.substr(begin, text.find('"', begin) - begin);
}

void TarnUpdate::Report(const std::string& message) {
  LogMessageCallBack& callback = callback_ == nullptr ? emptyLogMessageCallBack : *callback_;
  callback.OnMessage(message);
}

}  // namespace Orvane
