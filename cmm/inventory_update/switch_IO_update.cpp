// The switch update's facade and its object: construction, texts of the connection, and the progress callback. The
// operations stand in the files beside this one, by concern.
#include "cmm/inventory_update/switch_IO_update.h"

#include <algorithm>
#include <array>

#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_IO_update_common.h"

namespace Orvane {
namespace switchio {
namespace {

// The colons and blanks differ from those of the session and of the pass-through update; log readers know them so.
constexpr ModuleClientTexts kClientTexts = {kLogSource,
                                            kLogProgress,
                                            "Pegasus AlreadyConnectedException :",
                                            "Pegasus InvalidLocatorException : ",
                                            "Pegasus CannotCreateSocketException:",
                                            "Pegasus CannotConnectException:",
                                            "Pegasus InvalidNameException: ",
                                            "Unknown Exception: ",
                                            kLogError};

struct StatusCode {
  Pegasus::CIMStatusCode status;
  int result;
};
constexpr std::array<StatusCode, 5> kReadErrorCodes = {{
    {Pegasus::CIM_ERR_FAILED, 27},
    {Pegasus::CIM_ERR_ACCESS_DENIED, 19},
    {Pegasus::CIM_ERR_INVALID_PARAMETER, 23},
    {Pegasus::CIM_ERR_INVALID_CLASS, 22},
    {Pegasus::CIM_ERR_NOT_SUPPORTED, 20},
}};

}  // namespace

std::optional<int> ReadErrorCode(Pegasus::CIMStatusCode status) {
  const auto row = std::find_if(kReadErrorCodes.begin(), kReadErrorCodes.end(),
                                [status](const StatusCode& known) { return known.status == status; });
  if (row == kReadErrorCodes.end()) return std::nullopt;
  return row->result;
}

}  // namespace switchio

SwitchIOUpdateByCIM::SwitchIOUpdateByCIM(const std::string& host, const std::string& user, const std::string& password,
                                         std::uint16_t port, const std::string& pkgFileUri1,
                                         const std::string& pkgFileUri2, int bay)
    : client_(switchio::kClientTexts, host, port, user, password),
      host_(host),
      port_(port),
      user_(user),
      password_(password),
      bay_(bay),
      pkgFileUri1_(pkgFileUri1),
      pkgFileUri2_(pkgFileUri2),
      inventory_(std::make_shared<CMMTarnInventoryImp>(host, port, user, password)) {}

SwitchIOUpdateByCIM::~SwitchIOUpdateByCIM() = default;

void SwitchIOUpdateByCIM::Notify(const char* message) {
  if (callback_ != nullptr) callback_->OnMessage(message);
}

SwitchIOModuleUpdate::SwitchIOModuleUpdate(const std::string& host, const std::string& user,
                                           const std::string& password, unsigned short port,
                                           const std::string& pkgFileURI1, const std::string& pkgFileURI2, int bay)
    : imp_(std::make_shared<SwitchIOUpdateByCIM>(host, user, password, port, pkgFileURI1, pkgFileURI2, bay)) {}

SwitchIOModuleUpdate::~SwitchIOModuleUpdate() = default;
SwitchIOModuleUpdate::SwitchIOModuleUpdate(const SwitchIOModuleUpdate&) = default;
SwitchIOModuleUpdate& SwitchIOModuleUpdate::operator=(const SwitchIOModuleUpdate&) = default;

int SwitchIOModuleUpdate::StartUpdate() { return imp_->startUpdate(); }
int SwitchIOModuleUpdate::UpdateFirmware() { return imp_->updateFirmware(); }
int SwitchIOModuleUpdate::ActivateImage(int bay) { return imp_->ActivateImage(bay); }
int SwitchIOModuleUpdate::CheckDeferedUpdateSupported(int bay) { return imp_->checkDeferedupdatesupported(bay); }
int SwitchIOModuleUpdate::EHCMCheck(int bay) { return imp_->EHCMCheck(bay); }
int SwitchIOModuleUpdate::CheckIfRebootSuccess(int bay) { return imp_->CheckIfRebootSuccess(bay); }
int SwitchIOModuleUpdate::Reboot(int bay) { return imp_->Reboot(bay); }
int SwitchIOModuleUpdate::Reseat(int bay) { return imp_->Reseat(bay); }
void SwitchIOModuleUpdate::SetLogCallBack(LogMessageCallBack* cb) { imp_->SetLogCallBack(cb); }

}  // namespace Orvane
