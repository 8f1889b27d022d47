// The update flows of a switch: one package or two, with or without activation and reboot, and the activation of a
// freshly installed image.
#include <platform/sleep.h>

#include "cmm/inventory_update/cim_names.h"
#include "cmm/inventory_update/cmm_exceptions.h"
#include "cmm/inventory_update/cmm_inventory_common.h"
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/switch_IO_update.h"
#include "cmm/inventory_update/switch_IO_update_common.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::Uint16;
using Pegasus::Uint32;

namespace Orvane {

using switchio::kLogSource;

namespace {

constexpr int kNothingToActivate = 3;

// The number of module installs among the timing marks.
constexpr int kInstallStep = 83;

// CIM_ElementSoftwareIdentity.ElementSoftwareStatus of the image that the next start takes.
constexpr Uint16 kStatusNext = 3;

constexpr std::uint32_t kActivationPauseMs = 10000;
constexpr std::uint32_t kRestartPauseMs = 600000;

}  // namespace

int SwitchIOUpdateByCIM::updateFirmware() {
  return ExportedCall(kLogSource, "UpdateFirmware", switchio::kUnexpectedError, [this] {
    ORVANE_LOG(kLogProgress) << "Enter SwitchIOUpdateByCIM::startUpdate!";  // log readers know both entries so
    Notify("start UpdateFirmware");
    showBayInfo(bay_);
    return pkgFileUri2_.empty() ? updateSingleFirmware(pkgFileUri1_)
                                : updateDoubleFirmwares(pkgFileUri1_, pkgFileUri2_);
  });
}

int SwitchIOUpdateByCIM::startUpdate() {
  return ExportedCall(kLogSource, "StartUpdate", switchio::kUnexpectedError, [this] {
    ORVANE_LOG(kLogProgress) << "Enter SwitchIOUpdateByCIM::startUpdate!";
    Notify("start UpdateWithReboot");
    showBayInfo(bay_);
    return pkgFileUri2_.empty() ? updateSingleFirmwareWithReboot(pkgFileUri1_)
                                : updateDoubleFirmwaresWithReboot(pkgFileUri1_, pkgFileUri2_);
  });
}

// The marks leave the URI out: it may hold credentials of the file server.
int SwitchIOUpdateByCIM::MarkedInstall(const std::string& uri) {
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[B]", kInstallStep, 0, "");
  const int result = installPackage(uri);
  AddDetailTimeDebugLog(kLogProgress, kLogSource, __LINE__, "[E]", kInstallStep, result, "");
  return result;
}

int SwitchIOUpdateByCIM::updateSingleFirmware(const std::string& uri) {
  ORVANE_LOG(kLogProgress) << "SwitchIOUpdateByCIM::updateSingleFirmware().";
  Notify("start updateSingleFirmware");
  return MarkedInstall(uri);
}

int SwitchIOUpdateByCIM::updateDoubleFirmwares(const std::string& uri1, const std::string& uri2) {
  ORVANE_LOG(kLogProgress) << "SwitchIOUpdateByCIM::updateDoubleFirmwares().";
  Notify("start updateDoubleFirmwares");
  ORVANE_LOG(kLogProgress) << "start installPackage pkgFileURI1.";
  if (const int result = MarkedInstall(uri1); result != switchio::kOk) return result;
  ORVANE_LOG(kLogProgress) << "start installPackage pkgFileURI2.";
  return MarkedInstall(uri2);
}

int SwitchIOUpdateByCIM::updateSingleFirmwareWithReboot(const std::string& uri) {
  ORVANE_LOG(kLogProgress) << "SwitchIOUpdateByCIM::updateSingleFirmwareWithReboot().";
  Notify("start updateSingleFirmwareWithReboot");
  if (const int result = MarkedInstall(uri); result != switchio::kOk) return result;
  return ActivateAndReboot("Error happened when reboot the switch");
}

int SwitchIOUpdateByCIM::updateDoubleFirmwaresWithReboot(const std::string& uri1, const std::string& uri2) {
  ORVANE_LOG(kLogProgress) << "SwitchIOUpdateByCIM::updateDoubleFirmwaresWithReboot().";
  Notify("start updateDoubleFirmwaresWithReboot");
  Notify("start installPackage pkgFileURI1");
  if (const int result = MarkedInstall(uri1); result != switchio::kOk) return result;
  Notify("start installPackage pkgFileURI2");
  if (const int result = MarkedInstall(uri2); result != switchio::kOk) return result;
  return ActivateAndReboot("Error happened when reboot the switch.");
}

// What is installed stays installed, so neither a failed activation nor a failed reboot changes the result.
int SwitchIOUpdateByCIM::ActivateAndReboot(const char* rebootFailed) {
  if (activateNewImage(bay_) != switchio::kOk) {
    ORVANE_LOG(kLogProgress) << "Failed to activate the new image. This can be ignored because it normally means that "
                                "this switch doesn't support activation.";
  }
  if (Reboot(bay_) != switchio::kOk) {
    ORVANE_LOG(kLogError) << rebootFailed;
  }
  Notify("rebooting I/O Module switch successfully! waiting the switch to restart.");
  platform::Sleep(kRestartPauseMs);
  return switchio::kOk;
}

int SwitchIOUpdateByCIM::ActivateImage(int bay) {
  return ExportedCall(kLogSource, "ActivateImage", switchio::kUnexpectedError,
                      [this, bay] { return activateNewImage(bay); });
}

int SwitchIOUpdateByCIM::activateNewImage(int bay) {
  const ModuleClientCloser closer(client_);
  ORVANE_LOG(kLogProgress) << "Enter activateNewImage().";
  ORVANE_LOG(kLogProgress) << "start SwitchIOUpdateByCIM::activateNewImage().";
  Notify("start activateNewImage");
  platform::Sleep(kActivationPauseMs);
  if (!client_.ConnectInThree(kActivationPauseMs)) {
    ORVANE_LOG(kLogError) << "Failed to connect to the CMM";
    return switchio::kNoConnection;
  }
  ORVANE_LOG(kLogProgress) << "start EnumerateInstances VORTA_IOMElementFirmwareIdentity.";
  Array<CIMInstance> identities;
  try {
    identities = client_.EnumerateInstances(cim::kNamespace, cim::kVortaIOMElementFirmwareIdentity);
  } catch (...) {
    ORVANE_LOG(kLogError) << "Failed to collect instancesIOMElement instances.";
    return kNothingToActivate;
  }
  ORVANE_LOG(kLogProgress) << "Succeeded to collect instancesIOMElement instances.";
  ORVANE_LOG(kLogProgress) << "instancesIOMElement.size() = " << identities.size();
  return ActivateFallbackImage(bay, identities);
}

// Makes the first fallback image of the bay the next one. A status of 6 alone does not count, whatever the lines say.
int SwitchIOUpdateByCIM::ActivateFallbackImage(int bay, Array<CIMInstance>& identities) {
  const std::string bayKey = "iom" + TwoDigits(bay);
  for (Uint32 i = 0; i < identities.size(); ++i) {
    CIMInstance& identity = identities[i];
    const std::string owner = PropertyTextOrThrow(identity, cim::kAntecedent);
    const std::string status = PropertyTextOrThrow(identity, cim::kElementSoftwareStatus);
    ORVANE_LOG(kLogProgress) << "VORTA_IOMElementFirmwareIdentity: " << owner;
    ORVANE_LOG(kLogProgress) << "ElementSoftwareStatus: " << status;
    if (!Contains(owner, bayKey.c_str()) || !Contains(status, "4")) continue;

    ORVANE_LOG(kLogProgress)
        << "Succeeded to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4";
    ORVANE_LOG(kLogProgress) << "Parameter instance of method 'modifyInstance' instancesIOMElement[i]  getPath : "
                             << ToStdString(identity.getPath().toString());
    identity.getProperty(identity.findProperty(cim::kElementSoftwareStatus))
        .setValue(Pegasus::CIMValue(Array<Uint16>(1, kStatusNext)));
    client_.Client().modifyInstance(Pegasus::CIMNamespaceName(cim::kNamespace), identity);
    ORVANE_LOG(kLogProgress) << "Succeeded to modify ElementSoftwareStatus to 3.";
    return switchio::kOk;
  }
  ORVANE_LOG(kLogProgress)
      << "Failed to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4. This is usually "
         "because this switch does not support activation. ";
  missingFallback_ = true;
  ORVANE_LOG(kLogProgress) << "set missing_fallback to true, and krant will reboot the switch in reboot call later";
  return kNothingToActivate;
}

}  // namespace Orvane
