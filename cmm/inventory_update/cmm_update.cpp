// The exported firmware update of a chassis manager: forwards to the implementation.
#include <orvane/cmm.h>

#include "cmm/inventory_update/cmm_update_imp.h"

namespace Orvane {

CMMUpdate::CMMUpdate(const std::string& host, unsigned short port, const std::string& user, const std::string& password,
                     const std::string& packageURI)
    : imp_(std::make_unique<TarnUpdate>(host, port, user, password, packageURI)) {}

CMMUpdate::~CMMUpdate() = default;

int CMMUpdate::Apply(CMMUpdateOption option) { return imp_->Apply(option == CMM_UPDATE_REBOOT); }

int CMMUpdate::Reboot() { return imp_->Reboot(); }

void CMMUpdate::SetLogCallBack(LogMessageCallBack* callback) { imp_->SetLogCallBack(callback); }

}  // namespace Orvane
