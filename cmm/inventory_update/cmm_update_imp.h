// The firmware update of a chassis manager behind CMMUpdate: installs a package through the CIM server, follows the job
// to its end and, when asked to, reboots the manager and waits for it.
#pragma once

#include <orvane/cmm.h>

#include <cstdint>
#include <memory>
#include <string>

#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/cmm_peg_client.h"

namespace Orvane {

/// Implementation of CMMUpdate. One thread at a time; can be used again after any outcome.
class TarnUpdate {
 public:
  /// Keeps the values; connects to nothing.
  TarnUpdate(const std::string& host, std::uint16_t port, const std::string& user, const std::string& password,
             const std::string& packageUri);
  TarnUpdate(const TarnUpdate&) = delete;
  TarnUpdate& operator=(const TarnUpdate&) = delete;

  /// CMMUpdate::Apply(). No connection is left open on any way out.
  int Apply(bool reboot);

  /// CMMUpdate::Reboot().
  int Reboot();

  void SetLogCallBack(LogMessageCallBack* callback) { callback_ = callback; }

 private:
  int ApplyUpdatePackage(int operationType, const std::string& packageUri, bool reboot);
  int RebootAndProbe();

  // The install. What they return, Apply() returns.
  int installPackage_CMM(int operationType, const std::string& packageUri);
  int StartInstallation(const Pegasus::Array<Pegasus::CIMInstance>& services);
  int QueryInstallJob(const std::string& id);

  /// Builds the arguments of the install method. @return false when the target was not found.
  bool BuildInParameters(int operationType, const std::string& packageUri);

  /// Connects, sleeping before every attempt.
  /// @return whether the last attempt connected; false without any attempt when @p attempts is below 1.
  bool TryConnect(int attempts, std::uint32_t pauseMs);

  /// TryConnect(), then disconnects.
  bool ProbeConnection(int attempts, std::uint32_t pauseMs);

  /// The text of the last parameter of exactly that name; empty when there is none.
  static std::string GetOutParameterValue(const std::string& name,
                                          const Pegasus::Array<Pegasus::CIMParamValue>& parameters);

  /// The value of the first key in the text of a path, without its quotes. A text without a key, or with nothing behind
  /// its first "=" and one more character, stays whole up to its first quote.
  static std::string ExtractInstanceId(const std::string& text);

  void Report(const std::string& message);

  Pegasus::Array<Pegasus::CIMParamValue> inParameters_;
  Pegasus::Array<Pegasus::CIMParamValue> outParameters_;
  std::string host_;
  std::uint16_t port_;
  std::string user_;
  std::string password_;
  std::string packageUri_;
  std::string job_;  ///< reference to the job of the last install, as text
  std::string jobId_;
  std::shared_ptr<CMMTarnInventoryImp> inventory_;
  std::shared_ptr<PegClientOpt> session_;
  LogMessageCallBack* callback_ = nullptr;
};

}  // namespace Orvane
