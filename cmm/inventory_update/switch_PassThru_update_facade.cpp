// The exported update of a pass-through module: forwards to the shared object and stops exceptions at the library's
// border.
#include <orvane/cmm.h>

#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/switch_PassThru_update.h"
#include "cmm/inventory_update/switch_PassThru_update_common.h"

namespace Orvane {

using passthru::kLogSource;

namespace {

// What an exception that escapes an operation gives.
constexpr int kInstallFailed = 212;
constexpr int kStateChangeFailed = 4;
constexpr int kNotVerified = 16;

}  // namespace

SwitchPassThruUpdate::SwitchPassThruUpdate(const std::string& host, const std::string& user,
                                           const std::string& password, unsigned short port,
                                           const std::string& packageURI, int bay)
    : imp_(std::make_shared<TarnPassThruUpdate>(host, user, password, port, packageURI, bay)) {}

SwitchPassThruUpdate::~SwitchPassThruUpdate() = default;
SwitchPassThruUpdate::SwitchPassThruUpdate(const SwitchPassThruUpdate&) = default;
SwitchPassThruUpdate& SwitchPassThruUpdate::operator=(const SwitchPassThruUpdate&) = default;

int SwitchPassThruUpdate::StartUpdate() {
  return ExportedCall(kLogSource, "SwitchPassThruUpdate::StartUpdate", kInstallFailed,
                      [this] { return imp_->StartUpdate(); });
}

int SwitchPassThruUpdate::Reboot(int bay) {
  return ExportedCall(kLogSource, "SwitchPassThruUpdate::Reboot", kStateChangeFailed,
                      [this, bay] { return imp_->RebootPassThru(bay, kTargetPassThru); });
}

int SwitchPassThruUpdate::Reseat(int bay) {
  return ExportedCall(kLogSource, "SwitchPassThruUpdate::Reseat", kStateChangeFailed,
                      [this, bay] { return imp_->ReseatPassThru(bay); });
}

int SwitchPassThruUpdate::CheckIfRebootSuccess(int bay) {
  return ExportedCall(kLogSource, "SwitchPassThruUpdate::CheckIfRebootSuccess", kNotVerified,
                      [this, bay] { return imp_->CheckIfRebootSuccess(bay); });
}

void SwitchPassThruUpdate::SetLogCallBack(LogMessageCallBack* cb) { imp_->SetLogCallBack(cb); }

}  // namespace Orvane
