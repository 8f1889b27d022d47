// The install of a package on a pass-through module: the service is found, the module looked up, the method invoked,
// and the job that it creates is followed to its end.
#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_util.h"
#include "cmm/inventory_update/switch_PassThru_update.h"
#include "cmm/inventory_update/switch_PassThru_update_common.h"
#include "platform/sleep.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::String;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {

using passthru::kLogSource;

struct TarnPassThruUpdate::Job {
  std::string status;  // ErrorDescription
  std::string state;   // JobState
};

namespace {

constexpr int kNoJob = 2;
constexpr int kWrongCredentials = 5;
constexpr int kNotSupported = 20;
constexpr int kInvocationError = 212;

constexpr Uint16 kOptionUpdate = 5;
constexpr Uint16 kOptionDeferred = 32768;

constexpr std::uint32_t kConnectPauseMs = 1000;
constexpr std::uint32_t kFirstPollPauseMs = 10000;
constexpr std::uint32_t kPollPauseMs = 60000;

// What a CIM error after the service was found gives. An access that is denied has a text of its own here.
struct InstallError {
  Pegasus::CIMStatusCode status;
  const char* text;
  int result;
};
constexpr std::array<InstallError, 8> kInstallErrors = {{
    {Pegasus::CIM_ERR_ACCESS_DENIED, "SWITCH_OPT_RC_INSTALL_ERR", kWrongCredentials},
    {Pegasus::CIM_ERR_NOT_SUPPORTED, "CIM_ERR_NOT_SUPPORTED", kNotSupported},
    {Pegasus::CIM_ERR_INVALID_NAMESPACE, "CIM_ERR_INVALID_NAMESPACE", 21},
    {Pegasus::CIM_ERR_INVALID_PARAMETER, "CIM_ERR_INVALID_PARAMETER", 23},
    {Pegasus::CIM_ERR_NOT_FOUND, "CIM_ERR_NOT_FOUND", 24},
    {Pegasus::CIM_ERR_METHOD_NOT_FOUND, "CIM_ERR_METHOD_NOT_FOUND", 25},
    {Pegasus::CIM_ERR_METHOD_NOT_AVAILABLE, "CIM_ERR_METHOD_NOT_AVAILABLE", 26},
    {Pegasus::CIM_ERR_FAILED, "CIM_ERR_FAILED", 27},
}};

// How a job stands: the first row holds whose state or text is the job's.
struct JobRow {
  std::optional<int> state;
  const char* status;
  const char* line;           // followed by the job's status text
  std::optional<int> result;  // none: the job goes on
};
constexpr std::array<JobRow, 4> kJobRows = {{
    {7, "Flash Completed with no apparent errors", "Update Finish And the Jobstatus is ", 0},
    {10, "Wait for Flash Complete - finished without 100% Progress",
     "Update successfully and the return update info from PassThru is ", 15},
    {4, "Flash Installation Job Started", "Update Initialization and the return update info from PassThru is",
     std::nullopt},
    {std::nullopt, "Busy - Another firmware update in progress",
     "Update failed and the return update info from PassThru is ", 18},
}};
constexpr int kUnknownJobStatus = 6;

}  // namespace

int TarnPassThruUpdate::installPackage_PassThru(int operationType, const String& uri, bool deferred) {
  ORVANE_LOG(kLogProgress) << "Enter TarnPassThruUpdate::installPackage_PassThru.";
  const ModuleClientCloser closer(client_);
  if (!client_.ConnectInThree(kConnectPauseMs)) return passthru::kNoConnection;
  Array<CIMInstance> services;
  if (const int result = FindServices(services); result != passthru::kOk) return result;
  try {
    return Install(operationType, uri, deferred, services);
  } catch (const Pegasus::CIMException& error) {
    const auto row = std::find_if(kInstallErrors.begin(), kInstallErrors.end(),
                                  [&error](const InstallError& known) { return known.status == error.getCode(); });
    if (row != kInstallErrors.end()) {
      ORVANE_LOG(kLogError) << row->text;
      return row->result;
    }
  } catch (...) {
    ORVANE_LOG(kLogError) << "unknown error happened when invokeMethod " << CurrentExceptionText();
    return kInvocationError;
  }
  ORVANE_LOG(kLogProgress) << "Complete TarnPassThruUpdate::installPackage_PassThru().";
  Notify("Complete install package on pass-through switch");
  return kInvocationError;
}

// Leaves the connection open after an error that has no code: the next connect then meets it.
int TarnPassThruUpdate::FindServices(Array<CIMInstance>& services) {
  try {
    services = client_.EnumerateInstances(cim::kNamespace, cim::kSoftwareInstallationService);
    const std::string path = PathText(services[0]);
    ORVANE_LOG(kLogProgress) << "Instances is " << path;
    ORVANE_LOG(kLogProgress) << "successfully get the instances for CIM_SoftwareInstallationService.";
    client_.Disconnect();
  } catch (const Pegasus::CIMException& error) {
    if (const std::optional<int> result = passthru::EnumerationErrorCode(error.getCode())) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode());
      client_.Disconnect();
      return *result;
    }
  } catch (const Pegasus::Exception&) {
    ORVANE_LOG(kLogError) << "unknown error happened when enumerate Instance";
  }
  return passthru::kOk;
}

int TarnPassThruUpdate::Install(int operationType, const String& uri, bool deferred,
                                const Array<CIMInstance>& services) {
  const Array<Uint16> options(1, deferred ? kOptionDeferred : kOptionUpdate);
  inParameters_.append(CIMParamValue(cim::kUri, CIMValue(uri)));
  inParameters_.append(CIMParamValue(cim::kInstallOptions, CIMValue(options)));
  inParameters_.append(CIMParamValue(cim::kInstallOptionsValues, CIMValue(Array<String>(1, String::EMPTY))));

  const CIMInstance target = inventory_->GetTargetInstance(bay_, operationType);
  if (target.isUninitialized()) {
    ORVANE_LOG(kLogProgress) << passthru::kNoTargetFound;
    return passthru::kNoTarget;
  }
  ORVANE_LOG(kLogProgress) << "installupdate targetinstance" << PathText(target);
  inParameters_.append(CIMParamValue(cim::kTarget, CIMValue(target.getPath())));

  if (!client_.ConnectInThree(kConnectPauseMs)) return passthru::kNoConnection;
  const CIMValue answer =
      client_.Client().invokeMethod(Pegasus::CIMNamespaceName(cim::kNamespace), services[0].getPath(),
                                    cim::kInstallFromUri, inParameters_, outParameters_);
  Uint32 returnValue = 0;
  answer.get(returnValue);
  ORVANE_LOG(kLogProgress) << "Invoke method 'InstallFromURI, return CIMValue string = " << returnValue;

  const std::string job = client_.OutParameterText(outParameters_, cim::kJob);
  if (job.empty()) {
    ORVANE_LOG(kLogError) << "InstanceID not found!";
    return kNoJob;
  }
  client_.Disconnect();
  platform::Sleep(kFirstPollPauseMs);
  return FollowJob(JobIdOf(job));
}

// Polls without an end: a module that flashes has its own pace, and nobody else watches the job.
int TarnPassThruUpdate::FollowJob(const std::string& jobId) {
  for (unsigned poll = 1;; ++poll) {
    ORVANE_LOG(kLogProgress) << "GetInstance time = " << poll;
    Job job;
    if (const int result = ReadJob(jobId, job); result != passthru::kOk) return result;
    ORVANE_LOG(kLogProgress) << "JobStatus string that will be used to get the update status = " << job.status;
    const int state = LenientInt(job.state);
    const auto row = std::find_if(kJobRows.begin(), kJobRows.end(), [&job, state](const JobRow& candidate) {
      return candidate.state == state || candidate.status == job.status;
    });
    if (row == kJobRows.end()) {
      ORVANE_LOG(kLogError) << "Update failed with unknown error.";
      return kUnknownJobStatus;
    }
    ORVANE_LOG(kLogProgress) << row->line << job.status;
    if (row->result) return *row->result;
    platform::Sleep(kPollPauseMs);
  }
}

int TarnPassThruUpdate::ReadJob(const std::string& jobId, Job& job) {
  if (!client_.Connect()) return passthru::kNoConnection;
  std::map<std::string, Job> jobs;
  try {
    const Array<CIMInstance> instances = client_.EnumerateInstances(cim::kJobNamespace, cim::kConcreteJob);
    for (Uint32 i = 0; i < instances.size(); ++i) {
      const std::string id = PropertyText(instances[i], cim::kInstanceId);
      const Job found = {PropertyText(instances[i], cim::kErrorDescription),
                         PropertyText(instances[i], cim::kJobState)};
      ORVANE_LOG(kLogProgress) << "InstanceID string =" << id;
      ORVANE_LOG(kLogProgress) << "JobStatus string = " << found.status;
      ORVANE_LOG(kLogProgress) << "JobState string = " << found.state;
      jobs.emplace(id, found);
    }
  } catch (const Pegasus::CIMException& error) {
    if (error.getCode() == Pegasus::CIM_ERR_ACCESS_DENIED) {
      ORVANE_LOG(kLogError) << "Wrong userid or password,  Please check your userid and password!";
      return kWrongCredentials;
    }
    if (error.getCode() == Pegasus::CIM_ERR_NOT_SUPPORTED) {
      ORVANE_LOG(kLogError) << "CIM_ERR_NOT_SUPPORTED!";
      return kNotSupported;
    }
  }
  client_.Disconnect();
  const auto found = jobs.find(jobId);
  if (found == jobs.end() || found->second.status.empty()) {
    ORVANE_LOG(kLogError) << "The JobStatus is Empty because error happened when creats jobinstance.!";
    return kNoJob;
  }
  job = found->second;
  return passthru::kOk;
}

}  // namespace Orvane
