// The install of a package on a switch: the service is found, the switch looked up, the method invoked, and the job
// that it creates is followed to its end.
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
using Pegasus::CIMObjectPath;
using Pegasus::CIMParamValue;
using Pegasus::CIMValue;
using Pegasus::String;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {

using switchio::kLogSource;

struct SwitchIOUpdateByCIM::Job {
  std::string status;  // ErrorDescription
  int state = -1;      // JobState; -1 when it is absent or no number
};

namespace {

constexpr int kFailed = 2;
constexpr int kWrongCredentials = 5;
constexpr int kJobException = 17;
constexpr int kOtherUpdateRuns = 18;
constexpr int kNotSupported = 20;

constexpr Uint16 kOptionUpdate = 5;

constexpr std::uint32_t kFirstPollPauseMs = 10000;
constexpr std::uint32_t kPollPauseMs = 60000;

// What a CIM error of the invocation gives.
struct InvocationError {
  Pegasus::CIMStatusCode status;
  int result;
};
constexpr std::array<InvocationError, 8> kInvocationErrors = {{
    {Pegasus::CIM_ERR_FAILED, 27},
    {Pegasus::CIM_ERR_ACCESS_DENIED, 19},
    {Pegasus::CIM_ERR_INVALID_NAMESPACE, 21},
    {Pegasus::CIM_ERR_INVALID_PARAMETER, 23},
    {Pegasus::CIM_ERR_NOT_FOUND, 24},
    {Pegasus::CIM_ERR_NOT_SUPPORTED, 20},
    {Pegasus::CIM_ERR_METHOD_NOT_AVAILABLE, 26},
    {Pegasus::CIM_ERR_METHOD_NOT_FOUND, 25},
}};

// How a job stands: the first row holds whose state or text is the job's.
enum class JobStage { kDone, kException, kRunning, kOtherUpdate, kUnknown };
struct JobRow {
  std::optional<int> state;
  const char* status;
  JobStage stage;
};
constexpr std::array<JobRow, 4> kJobRows = {{
    {7, "Flash Completed with no apparent errors", JobStage::kDone},
    {10, "Wait for Flash Complete - finished without 100% Progress", JobStage::kException},
    {4, "Flash Installation Job Started", JobStage::kRunning},
    {std::nullopt, "Busy - Another firmware update in progress", JobStage::kOtherUpdate},
}};

JobStage StageOf(const std::string& status, int state) {
  const auto row = std::find_if(kJobRows.begin(), kJobRows.end(), [&status, state](const JobRow& candidate) {
    return candidate.state == state || candidate.status == status;
  });
  return row == kJobRows.end() ? JobStage::kUnknown : row->stage;
}

std::string PathText(const CIMObjectPath& path) { return ToStdString(path.toString()); }

}  // namespace

int SwitchIOUpdateByCIM::installPackage(const std::string& uri) {
  return ExportedCall(kLogSource, "installPackage", kFailed, [this, &uri] {
    const ModuleClientCloser closer(client_);
    ORVANE_LOG(kLogProgress) << "Enter SwitchIOUpdateByCIM::installPackage.";
    Notify("start install package on I/O Module switch");
    if (!client_.ConnectInThree(switchio::kConnectPauseMs)) {
      ORVANE_LOG(kLogError) << switchio::kConnectFailed;
      return switchio::kNoConnection;
    }
    return FindServiceAndInstall(uri);
  });
}

int SwitchIOUpdateByCIM::FindServiceAndInstall(const std::string& uri) {
  constexpr char kFailedToEnumerate[] = " when enumerate CIM_SoftwareInstallationService. ";
  CIMObjectPath service;
  try {
    Array<CIMInstance> services;
    try {
      services = client_.EnumerateInstances(cim::kNamespace, cim::kSoftwareInstallationService);
    } catch (const Pegasus::CIMException& error) {
      if (const std::optional<int> result = switchio::ReadErrorCode(error.getCode())) {
        ORVANE_LOG(kLogError) << StatusName(error.getCode()) << kFailedToEnumerate;
        return *result;
      }
    }
    service = services[0].getPath();
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown error happened" << kFailedToEnumerate << CurrentExceptionText();
    return kFailed;
  }
  ORVANE_LOG(kLogProgress) << "Successfully get the CIM_SoftwareInstallationService instance: " << PathText(service);

  try {
    return Install(uri, service);
  } catch (const Pegasus::CIMException& error) {
    const auto row = std::find_if(kInvocationErrors.begin(), kInvocationErrors.end(),
                                  [&error](const InvocationError& known) { return known.status == error.getCode(); });
    if (row != kInvocationErrors.end()) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode());
      return row->result;
    }
    ORVANE_LOG(kLogProgress) << "Complete SwitchIOUpdateByCIM::installPackage().";
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown error happened when invokeMethod " << CurrentExceptionText();
  }
  return kFailed;
}

int SwitchIOUpdateByCIM::Install(const std::string& uri, const CIMObjectPath& service) {
  Array<String> optionValues;
  optionValues.append(String::EMPTY);
  Array<CIMParamValue> inParameters;
  inParameters.append(CIMParamValue(cim::kUri, CIMValue(String(uri.c_str()))));
  inParameters.append(CIMParamValue(cim::kInstallOptions, CIMValue(Array<Uint16>(1, kOptionUpdate))));
  inParameters.append(CIMParamValue(cim::kInstallOptionsValues, CIMValue(optionValues)));

  const CIMInstance target = inventory_->GetTargetInstance(bay_, kTargetIOModule);
  if (target.isUninitialized()) {
    ORVANE_LOG(kLogProgress) << switchio::kNoTargetFound;
    return switchio::kNoTarget;
  }
  ORVANE_LOG(kLogProgress) << "Successfully get the IO target instance: " << PathText(target.getPath());
  inParameters.append(CIMParamValue(cim::kTarget, CIMValue(target.getPath())));

  if (!client_.ConnectInThree(switchio::kConnectPauseMs)) {
    ORVANE_LOG(kLogError) << "Failed to connect to the CMM when invoke method InstallFromURI.";
    return switchio::kNoConnection;
  }
  Array<CIMParamValue> outParameters;
  const CIMValue answer =
      client_.Client().invokeMethod(Pegasus::CIMNamespaceName(cim::kNamespace), service,
                                    Pegasus::CIMName(cim::kInstallFromUri), inParameters, outParameters);
  ORVANE_LOG(kLogProgress) << "Invoke method 'InstallFromURI', return CIMValue string = "
                           << ToStdString(answer.toString());
  ORVANE_LOG(kLogProgress) << "Parameter Target of method 'InstallFromURI': " << PathText(target.getPath());

  const std::string job = client_.OutParameterText(outParameters, cim::kJob);
  if (job.empty()) {
    ORVANE_LOG(kLogError) << "Error to get the job InstanceID of the InstallFromURI method!";
    return kFailed;
  }
  client_.Disconnect();
  platform::Sleep(kFirstPollPauseMs);
  return FollowJob(JobIdOf(job));
}

// Polls without an end: a switch that flashes has its own pace, and nobody else watches the job.
int SwitchIOUpdateByCIM::FollowJob(const std::string& jobId) {
  for (std::uint64_t poll = 1;; ++poll) {
    ORVANE_LOG(kLogProgress) << "Try to get the result of the InstallFromURI call: " << poll;
    Job job;
    if (const int result = ReadJob(jobId, job); result != switchio::kOk) return result;
    const int classified = CheckUpdateErrorCode(job.status);
    if (job.status.empty()) {
      ORVANE_LOG(kLogError) << "The JobStatus is Empty because error happened when creats jobinstance.";
      return kFailed;
    }
    switch (StageOf(job.status, job.state)) {
      case JobStage::kDone:
        ORVANE_LOG(kLogProgress) << "Update completed successfully and the message is " << job.status;
        return switchio::kOk;
      case JobStage::kException:
        ORVANE_LOG(kLogError) << "Update failed and the reason is:  " << job.status;
        return classified != 0 ? classified : kJobException;
      case JobStage::kRunning:
        ORVANE_LOG(kLogProgress) << "Update process started! ";
        platform::Sleep(kPollPauseMs);
        break;
      case JobStage::kOtherUpdate:
        ORVANE_LOG(kLogError) << "Update failed as another firmware update is in progress. ";
        return kOtherUpdateRuns;
      case JobStage::kUnknown:
        ORVANE_LOG(kLogError) << "Update failed with an unknown error.";
        return classified != 0 ? classified : kFailed;
    }
  }
}

// One look at the jobs, on a connection of its own. A job that is not there leaves `job` as it was.
int SwitchIOUpdateByCIM::ReadJob(const std::string& jobId, Job& job) {
  if (!client_.Connect()) {
    ORVANE_LOG(kLogError) << "Failed to connect the CMM when try to get the result of the InstallFromURI call!";
    return switchio::kNoConnection;
  }
  try {
    const Array<CIMInstance> instances = client_.EnumerateInstances(cim::kJobNamespace, cim::kConcreteJob);
    for (Uint32 i = 0; i < instances.size(); ++i) {
      if (PropertyTextOrThrow(instances[i], cim::kInstanceId) != jobId) continue;
      job.status = PropertyTextOrThrow(instances[i], cim::kErrorDescription);
      job.state = CIMValueToInt(PegClientOpt::GetPropertyValueOrThrow(instances[i], cim::kJobState));
      ORVANE_LOG(kLogProgress) << "Job instance info: ( InstanceID:" << jobId << ",JobStatus: " << job.status
                               << ",JobState: " << job.state << " )";
    }
  } catch (const Pegasus::CIMException& error) {
    if (error.getCode() == Pegasus::CIM_ERR_ACCESS_DENIED) {
      ORVANE_LOG(kLogError) << "Wrong userid or password,  Please check your userid and password!";
      return kWrongCredentials;
    }
    if (error.getCode() == Pegasus::CIM_ERR_NOT_SUPPORTED) {
      ORVANE_LOG(kLogError) << StatusName(error.getCode());
      return kNotSupported;
    }
  }
  client_.Disconnect();
  return switchio::kOk;
}

}  // namespace Orvane
