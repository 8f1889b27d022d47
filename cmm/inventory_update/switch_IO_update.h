// The update of an I/O-module switch behind SwitchIOModuleUpdate: readiness checks, package install with its job, image
// activation, reboot, reseat and the wait for the power-on self test. A near twin of the pass-through update; where the
// two differ, they differ on purpose.
#pragma once

#include <Pegasus/Client/CIMClient.h>
#include <orvane/cmm.h>

#include <cstdint>
#include <memory>
#include <string>

#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/module_client.h"

namespace Orvane {

/// Implementation of SwitchIOModuleUpdate; the operations that it forwards are documented there.
///
/// The public operations throw nothing and, but for the two that say so, leave no connection open. One thread at a
/// time.
class SwitchIOUpdateByCIM {
 public:
  /// Keeps the values; connects to nothing.
  SwitchIOUpdateByCIM(const std::string& host, const std::string& user, const std::string& password, std::uint16_t port,
                      const std::string& pkgFileUri1, const std::string& pkgFileUri2, int bay);
  virtual ~SwitchIOUpdateByCIM();
  SwitchIOUpdateByCIM(const SwitchIOUpdateByCIM&) = delete;
  SwitchIOUpdateByCIM& operator=(const SwitchIOUpdateByCIM&) = delete;

  void SetLogCallBack(LogMessageCallBack* callback) { callback_ = callback; }

  int startUpdate();
  int updateFirmware();
  int ActivateImage(int bay);
  int checkDeferedupdatesupported(int bay);
  int EHCMCheck(int bay);
  int CheckIfRebootSuccess(int bay);
  int Reboot(int bay);
  int Reseat(int bay);

  /// One reading of the EHCM state. Leaves the connection open for the next reading unless it fails.
  /// @return   0  ready
  ///           1  no connection
  ///          28  busy
  ///          29  cannot be read, no switch in the bay, or an unknown state
  ///          30  the state text holds a 0
  int checkEHCMStatus(int bay);

  /// Writes firmware and product data of the switch in @p bay to the log.
  void showBayInfo(int bay) noexcept;

  /// Asks the CMM to fetch and install @p uri on the switch of the object's bay and follows the job to its end.
  /// @return as SwitchIOModuleUpdate::UpdateFirmware()
  int installPackage(const std::string& uri);

 private:
  struct Job;

  // Connection and progress.
  void Notify(const char* message);

  // Readiness checks.
  template <typename Decide>
  int ReadSystemOfBay(const char* operation, const char* countText, int bay, int notFound, Decide decide);

  // Package install. Apart from installPackage() these let exceptions pass.
  int FindServiceAndInstall(const std::string& uri);
  int Install(const std::string& uri, const Pegasus::CIMObjectPath& service);
  int FollowJob(const std::string& jobId);
  int ReadJob(const std::string& jobId, Job& job);

  // Flows. They let exceptions pass.
  int MarkedInstall(const std::string& uri);
  int updateSingleFirmware(const std::string& uri);
  int updateDoubleFirmwares(const std::string& uri1, const std::string& uri2);
  int updateSingleFirmwareWithReboot(const std::string& uri);
  int updateDoubleFirmwaresWithReboot(const std::string& uri1, const std::string& uri2);
  int ActivateAndReboot(const char* rebootFailed);
  int activateNewImage(int bay);
  int ActivateFallbackImage(int bay, Pegasus::Array<Pegasus::CIMInstance>& identities);

  // Reboot and reseat.
  int requestStateChange(int bay, Pegasus::Uint16 requestedState);

  ModuleClient client_;
  std::string host_;
  std::uint16_t port_;
  std::string user_;
  std::string password_;
  int bay_;
  std::string pkgFileUri1_;
  std::string pkgFileUri2_;
  std::shared_ptr<CMMTarnInventoryImp> inventory_;
  LogMessageCallBack* callback_ = nullptr;
  bool missingFallback_ = false;  ///< a switch without a fallback image must be restarted; never reset
};

}  // namespace Orvane
