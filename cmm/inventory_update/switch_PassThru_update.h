// The update of a pass-through module behind SwitchPassThruUpdate: package install with its job, reboot, reseat and the
// wait for the power-on self test. A near twin of the switch update; where the two differ, they differ on purpose.
#pragma once

#include <Pegasus/Client/CIMClient.h>
#include <orvane/cmm.h>

#include <cstdint>
#include <memory>
#include <string>

#include "cmm/inventory_update/cmm_inventory_imp.h"
#include "cmm/inventory_update/module_client.h"

namespace Orvane {

/// Implementation of SwitchPassThruUpdate. One thread at a time. No operation leaves a connection open; exceptions that
/// leave one are those of the log callback and of a lack of memory.
class TarnPassThruUpdate {
 public:
  /// Keeps the values; connects to nothing. @param port  0: HTTPS on 5989, then HTTP on 5988.
  TarnPassThruUpdate(const std::string& host, const std::string& user, const std::string& password, std::uint16_t port,
                     const std::string& packageUri, int bay);
  virtual ~TarnPassThruUpdate();
  TarnPassThruUpdate(const TarnPassThruUpdate&) = delete;
  TarnPassThruUpdate& operator=(const TarnPassThruUpdate&) = delete;

  void SetLogCallBack(LogMessageCallBack* callback) { callback_ = callback; }

  /// Reads the module's UUID from the inventory and installs the package. @return as installPackage_PassThru()
  int StartUpdate();

  /// Installs @p uri and tells the log the text of a failure's code. Lets no exception pass.
  /// @return as installPackage_PassThru(), 212 for an exception
  int ApplyUpdatePackage(int operationType, const std::string& uri, bool deferred);

  /// Asks the CMM to fetch and install @p uri on the module of the object's bay and follows the job to its end.
  /// Parameters of earlier calls on this object are sent again, ahead of those of this one.
  /// @param operationType  a TargetMode: which kind of target the bay is searched for
  /// @param deferred       install option 32768 instead of 5
  /// @return    0  installed
  ///            1  no connection
  ///            2  no job, or the job vanished or has no status text
  ///            5  access denied, at the invocation or later
  ///            6  unknown job status
  ///           15  the job ended without having reached its end (JobState 10)
  ///           18  another update is running
  ///           19  access denied to the installation service
  ///           20  not supported
  ///           21  invalid namespace
  ///           22  invalid class
  ///           23  invalid parameter
  ///           24  no module in the bay, or the CMM did not find one of the objects
  ///           25  method not found
  ///           26  method not available
  ///           27  CIM_ERR_FAILED
  ///          212  any other error
  int installPackage_PassThru(int operationType, const Pegasus::String& uri, bool deferred);

  /// The text of an install code: one of the 200 range, "Unknown Error" or, for 0, that of success.
  static std::string getReturnCodeMessage(int code);

  /// changePassThruState() with the state that restarts a module.
  int RebootPassThru(int bay, int operationType);

  /// changePassThruState() with the state that power-cycles a module.
  int ReseatPassThru(int bay);

  /// Asks the module of @p bay to change its state, if the modules offer that state.
  /// @return   0  asked for; the module's own answer is in the log only
  ///           1  no connection
  ///           4  not offered, or any error
  ///          24  no module in the bay
  int changePassThruState(int bay, int operationType, Pegasus::Uint16 state);

  /// Looks every 10 seconds, 36 times at most, whether the module of @p bay has completed its self test.
  /// @return   0  completed
  ///          16  not within six minutes
  ///          19  access denied
  ///          20  not supported
  ///          22  invalid class
  ///          23  invalid parameter
  ///          24  no module in the bay, or the CMM cannot be asked
  ///          27  CIM_ERR_FAILED
  int CheckIfRebootSuccess(int bay);

 private:
  struct Job;

  void Notify(const char* message);
  int FindServices(Pegasus::Array<Pegasus::CIMInstance>& services);
  int Install(int operationType, const Pegasus::String& uri, bool deferred,
              const Pegasus::Array<Pegasus::CIMInstance>& services);
  int FollowJob(const std::string& jobId);
  int ReadJob(const std::string& jobId, Job& job);

  ModuleClient client_;
  Pegasus::Array<Pegasus::CIMParamValue> inParameters_;  // never cleared
  Pegasus::Array<Pegasus::CIMParamValue> outParameters_;
  std::string host_;
  std::uint16_t port_;
  std::string user_;
  std::string password_;
  [[maybe_unused]] std::int32_t unusedNumber_ = 0;
  int bay_;
  [[maybe_unused]] std::string unusedText_;
  std::string uuidBeforeUpdate_;
  std::string packageUri_;
  std::shared_ptr<CMMTarnInventoryImp> inventory_;
  LogMessageCallBack* callback_ = nullptr;
};

}  // namespace Orvane
