// The update of a pass-through module from start to end; the install itself stands in
// switch_PassThru_update_install.cpp.
#include "cmm/inventory_update/switch_PassThru_update.h"

#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_PassThru_update_common.h"

namespace Orvane {

using passthru::kLogSource;

namespace {

// The number of the timing marks around an install.
constexpr int kInstallStep = 83;

constexpr int kInvocationError = 212;

// The blanks before the colons, and an error where the switch update writes progress: log readers know them so.
constexpr ModuleClientTexts kClientTexts = {kLogSource,
                                            kLogError,
                                            "Pegasus AlreadyConnectedException :",
                                            "Pegasus InvalidLocatorException :",
                                            "Pegasus CannotCreateSocketException :",
                                            "Pegasus CannotConnectException :",
                                            "Pegasus InvalidNameException :",
                                            "Unknown Exception: ",
                                            kLogProgress};

}  // namespace

std::optional<int> passthru::EnumerationErrorCode(Pegasus::CIMStatusCode status) {
  switch (status) {
    case Pegasus::CIM_ERR_ACCESS_DENIED:
      return 19;
    case Pegasus::CIM_ERR_NOT_SUPPORTED:
      return 20;
    case Pegasus::CIM_ERR_INVALID_CLASS:
      return 22;
    case Pegasus::CIM_ERR_INVALID_PARAMETER:
      return 23;
    case Pegasus::CIM_ERR_FAILED:
      return 27;
    default:
      return std::nullopt;
  }
}

TarnPassThruUpdate::TarnPassThruUpdate(const std::string& host, const std::string& user, const std::string& password,
                                       std::uint16_t port, const std::string& packageUri, int bay)
    : client_(kClientTexts, host, port, user, password),
      host_(host),
      port_(port),
      user_(user),
      password_(password),
      bay_(bay),
      packageUri_(packageUri),
      inventory_(std::make_shared<CMMTarnInventoryImp>(host, port, user, password)) {}

TarnPassThruUpdate::~TarnPassThruUpdate() = default;

void TarnPassThruUpdate::Notify(const char* message) {
  if (callback_ != nullptr) callback_->OnMessage(message);
}

int TarnPassThruUpdate::StartUpdate() {
  Notify("start update pass-through switch");
  CIMIODataList modules;
  inventory_->GetPassThruData(bay_, modules);
  if (modules.Size() == 0) {
    // The package does not depend on what the inventory knows of the module.
    ORVANE_LOG(kLogError) << "Error happened when getPassThruData.";
  }
  for (std::size_t i = 0; i < modules.Size(); ++i) {
    const Physicallnfo& physical = modules.Get(i).Physical;
    ORVANE_LOG(kLogProgress) << "VPDID_S is :" << physical.VpdId;
    ORVANE_LOG(kLogProgress) << "POSID_S is :" << physical.PosId;
    uuidBeforeUpdate_ = physical.UUID;
    ORVANE_LOG(kLogProgress) << "UUID before is :" << uuidBeforeUpdate_;
  }
  ORVANE_LOG(kLogProgress) << "The operation type is " << static_cast<int>(kTargetPassThru);
  Notify("start install package");
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[B]", kInstallStep, 0, packageUri_);
  const int result = ApplyUpdatePackage(kTargetPassThru, packageUri_, false);
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[E]", kInstallStep, result, packageUri_);
  return result;
}

int TarnPassThruUpdate::ApplyUpdatePackage(int operationType, const std::string& uri, bool deferred) {
  try {
    ORVANE_LOG(kLogProgress) << "TarnPassThruUpdate::ApplyUpdatePackage().";
    Notify("apply update package");
    ORVANE_LOG(kLogProgress) << "TarnUpdate::ApplyUpdatePackage,PassThru udpate chosen.";
    ORVANE_LOG(kLogProgress) << "uuid for PassThru before update is " << uuidBeforeUpdate_;
    Notify("start updating switch firmware!");
    const int result = installPackage_PassThru(operationType, Pegasus::String(uri.c_str()), deferred);
    ORVANE_LOG(kLogProgress) << "the return code of installPackage_PassThru is " << result;
    if (result != passthru::kOk) {
      ORVANE_LOG(kLogError) << "PassThru update failed and the return code message is " << getReturnCodeMessage(result);
    }
    return result;
  } catch (...) {
    ORVANE_LOG(kLogError) << "unknown error happened when invokeMethod " << CurrentExceptionText();
    return kInvocationError;
  }
}

std::string TarnPassThruUpdate::getReturnCodeMessage(int code) {
  return code == passthru::kOk ? "InvokeMethod finished with no error." : GetUpdateErrorMessage(code);
}

}  // namespace Orvane
