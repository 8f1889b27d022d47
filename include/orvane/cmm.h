// The public interface of the chassis library: inventory records and the inventory itself, the progress callback, and
// the operations that update, reboot and reseat the parts of a chassis.
// It needs the standard library, Boost's shared_ptr and, for the lookups of the blade reseat, two headers of the CIM
// client.
#pragma once

#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMStatusCode.h>

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#define ORVANE_EXPORT __attribute__((visibility("default")))

namespace Pegasus {
class CIMClient;
}

namespace Orvane {

class CMMInventory;
class CMMTarnInventoryImp;
class SwitchIOUpdateByCIM;
class TarnPassThruUpdate;
class TarnUpdate;

/// Vital product data of one physical package. The name is spelt with a small L before "nfo".
struct ORVANE_EXPORT Physicallnfo {
  /// Texts are empty; SlotNumber has no meaning before the inventory has set it.
  Physicallnfo();
  Physicallnfo(const Physicallnfo& other);
  Physicallnfo(Physicallnfo&& other) noexcept;
  Physicallnfo& operator=(const Physicallnfo& other);
  Physicallnfo& operator=(Physicallnfo&& other) noexcept;
  ~Physicallnfo();

  std::int32_t SlotNumber = -1;  ///< bay number of the slot that holds the package
  std::string UUID;
  std::string PosId;
  std::string VpdId;
  std::string Manufacturer;
  std::string SubSystemManufacturer;
  std::string ProductName;
  std::string PartNumber;
  std::string SKU;
  std::string SerialNumber;
};

/// One firmware image of a module. Texts are those of the CIM values, unparsed; an array reads as its elements, each
/// followed by one blank.
struct ORVANE_EXPORT FirmwareIdentity {
  /// Texts are empty; IsNotBootRom and Classifications have no meaning before the inventory has set them.
  FirmwareIdentity();
  FirmwareIdentity(const FirmwareIdentity& other);
  FirmwareIdentity(FirmwareIdentity&& other) noexcept;
  FirmwareIdentity& operator=(const FirmwareIdentity& other);
  FirmwareIdentity& operator=(FirmwareIdentity&& other) noexcept;
  ~FirmwareIdentity();

  std::string VersionString;
  std::string MajorVersion;
  std::string MinorVersion;
  std::string RevisionNumber;
  std::string BuildNumber;
  bool IsNotBootRom = true;           ///< false when ClassificationDescriptions contains "Boot ROM"
  std::string ElementSoftwareStatus;  ///< status of the link between module and image; empty for a CMM's images
  std::string ElementName;
  std::string TargetTypes;
  /// "<version>-<major>.<minor>.<revision>", at most 255 bytes, for CMM firmware with a version; else empty.
  std::string FullVersionString;
  std::int32_t Classifications = -1;  ///< -1 when the server offers none or it is not a number
  std::string ClassificationDescriptions;
  /// "<VpdId>-<PosId>-<ClassificationDescriptions>" of the module, "Null" for an empty part, at most 127 bytes; set for
  /// I/O modules only.
  std::string ModuleFirmwareKey;
};

/// One IP protocol endpoint.
struct ORVANE_EXPORT IPInfo {
  /// Texts are empty; the numbers have no meaning before the inventory has set them.
  IPInfo();
  IPInfo(const IPInfo& other);
  IPInfo(IPInfo&& other) noexcept;
  IPInfo& operator=(const IPInfo& other);
  IPInfo& operator=(IPInfo&& other) noexcept;
  ~IPInfo();

  std::int32_t ProtocolIFType = -1;  ///< as in CIM_IPProtocolEndpoint; unset when the server's text is no number
  std::int32_t AddressOrigin = -1;   ///< as in CIM_IPProtocolEndpoint; unset when the server's text is no number
  std::string Name;
  std::string IPv4Address;
  std::string SubnetMask;
  std::string IPv6Address;
  std::string IPv6SubnetPrefixLength;
};

/// The chassis. All texts start empty.
struct ORVANE_EXPORT ChassisInfo {
  ChassisInfo();
  ChassisInfo(const ChassisInfo& other);
  ChassisInfo(ChassisInfo&& other) noexcept;
  ChassisInfo& operator=(const ChassisInfo& other);
  ChassisInfo& operator=(ChassisInfo&& other) noexcept;
  ~ChassisInfo();

  std::string Name;
  std::string ElementName;
  std::string Model;
  std::string PartNumber;
  std::string SerialNumber;
};

/// One chassis management module (CMM).
struct ORVANE_EXPORT CMMData {
  CMMData();
  CMMData(const CMMData& other);
  CMMData(CMMData&& other) noexcept;
  CMMData& operator=(const CMMData& other);
  CMMData& operator=(CMMData&& other) noexcept;
  ~CMMData();

  Physicallnfo Physical;
  std::vector<FirmwareIdentity> Firmwares;  ///< in the server's order
  std::vector<IPInfo> IPs;                  ///< without duplicate addresses
  std::int32_t NotPrimary = 0;              ///< 0: the primary CMM; 1: a spare in a redundancy set
  std::string Name;
};

/// One I/O module (switch) or pass-through module. Its bay is Physical.SlotNumber.
struct ORVANE_EXPORT CIMIOData {
  CIMIOData();
  CIMIOData(const CIMIOData& other);
  CIMIOData(CIMIOData&& other) noexcept;
  CIMIOData& operator=(const CIMIOData& other);
  CIMIOData& operator=(CIMIOData&& other) noexcept;
  ~CIMIOData();

  bool IsPassThru = false;
  std::string Label;  ///< free text of the caller; the inventory leaves it empty
  Physicallnfo Physical;
  std::vector<IPInfo> IPs;  ///< I/O modules only
  std::vector<FirmwareIdentity> Firmwares;
};

/// CMM records in the order of the inventory. Filled by CMMInventory only; holds a share of each record.
class ORVANE_EXPORT CMMDataList {
 public:
  CMMDataList();
  ~CMMDataList();
  CMMDataList(const CMMDataList&) = delete;
  CMMDataList& operator=(const CMMDataList&) = delete;

  /// Number of records.
  std::uint64_t Size() const;

  /// The record at @p index, which must be below Size(); there is no range check.
  CMMData& Get(std::size_t index);

 private:
  friend class CMMInventory;
  friend class CMMTarnInventoryImp;

  std::vector<boost::shared_ptr<CMMData>> records_;
};

/// Module records in the order of the inventory. Filled by CMMInventory only; holds a share of each record.
class ORVANE_EXPORT CIMIODataList {
 public:
  CIMIODataList();
  ~CIMIODataList();
  CIMIODataList(const CIMIODataList&) = delete;
  CIMIODataList& operator=(const CIMIODataList&) = delete;

  /// Number of records.
  std::uint64_t Size() const;

  /// The record at @p index, which must be below Size(); there is no range check.
  CIMIOData& Get(std::size_t index);

 private:
  friend class CMMInventory;
  friend class CMMTarnInventoryImp;

  std::vector<boost::shared_ptr<CIMIOData>> records_;
};

/// Receives progress texts. The library borrows the object and never deletes it; it is called on the thread that runs
/// the operation.
class ORVANE_EXPORT LogMessageCallBack {
 public:
  virtual ~LogMessageCallBack();

  /// @param message  one short progress sentence, valid during the call only.
  virtual void OnMessage(const std::string& message) = 0;
};

/// Ignores every progress text.
class ORVANE_EXPORT EmptyLogMessageCallBack : public LogMessageCallBack {
 public:
  ~EmptyLogMessageCallBack() override;
  void OnMessage(const std::string& message) override;
};

/// The inventory of one chassis, read from the CIM server of its management module.
///
/// Every operation opens its own connection and closes it before it returns, keeps no result for the next one, throws
/// nothing and writes what went wrong to the log. A request waits at most 300 seconds. Every server certificate is
/// accepted, and a failed HTTPS connect is followed by plain HTTP.
/// One thread at a time may use an object; separate objects are independent.
class ORVANE_EXPORT CMMInventory {
 public:
  /// Keeps the four values and connects to nothing yet.
  /// @param host      name or address of the CMM
  /// @param port      tried with HTTPS, then with HTTP; 0 means HTTPS on 5989, then HTTP on 5988
  /// @param user      user of the CIM server
  /// @param password  never written to the log
  CMMInventory(const std::string& host, unsigned short port, const std::string& user, const std::string& password);
  ~CMMInventory();
  CMMInventory(const CMMInventory&) = delete;
  CMMInventory& operator=(const CMMInventory&) = delete;

  /// True exactly when the server answers and has at least one CMM; false on any failure.
  bool IsCMM();

  /// Appends the primary CMM to @p list (every CMM that is no spare in a redundancy set), sharing the record.
  /// @param list  entries already in it stay; unchanged unless 0 is returned.
  /// @return  0  read, or stopped by an unexpected error that only the log tells
  ///          1  no connection
  ///          3  the server has no CMM (or did not tell), or the firmware of the last CMM could not be read
  ///          4  unexpected error
  int GetCMMData(CMMDataList& list);

  /// Reads the chassis.
  /// @param info  filled when the server has exactly one chassis; otherwise left as it was, also when 0 is returned.
  /// @return  0  read, or the server does not have exactly one chassis (the log tells)
  ///          1  no connection
  ///          3  CIM error
  ///          4  unexpected error
  int GetChassisInfo(ChassisInfo& info);

  /// GetIOModuleDataByBayID() with bay 0: every I/O module.
  int GetIOModuleData(CIMIODataList& list);

  /// Appends I/O modules (switches) to @p list, sharing the records. A module that cannot be read completely is left
  /// out; the log has the reason.
  /// @param bayId  bay number from 1 (the first module found there); 0 means every bay.
  /// @param list   entries already in it stay; unchanged unless 0 is returned, except with bay 0, where modules read
  ///               before a failure stay.
  /// @return  0  read
  ///          1  no connection
  ///          3  CIM error, no I/O module at all, or @p bayId below 0 (then nothing was sent)
  ///          4  unexpected error
  ///          5  no module in that bay
  int GetIOModuleDataByBayID(int bayId, CIMIODataList& list);

  /// Appends every pass-through module of one bay to @p list, sharing the records.
  /// @param bayId  bay number; no value stands for all bays, and none is refused.
  /// @param list   entries already in it stay; unchanged unless 0 is returned.
  /// @return  0  read
  ///          1  no connection
  ///          2  CIM error
  ///          3  the product data or firmware of a pass-through module could not be read
  ///          4  unexpected error
  ///          5  no pass-through module in that bay
  int GetPassThruData(int bayId, CIMIODataList& list);

  /// The kind of module in a bay.
  /// @return  1  I/O module (switch)
  ///          2  pass-through module
  ///          3  neither, or any failure
  int GetSwitchType(int bayId);

  /// Appends to @p bays the other bays whose I/O module is of the same type (same PosId and VpdId) as that in @p bayId.
  /// @param bays  in the server's order; entries already in it stay.
  /// @return  0  found
  ///          1  no connection
  ///          3  CIM error; or bays were found, but the product data of the last module could not be read
  ///          4  unexpected error; or as 3, for a reason that is no CIM error
  ///          5  no other module of that type
  int CollectSameTypeModuleBayID(int bayId, std::vector<int>& bays);

  /// The bays that hold equipment of one kind, as decimal numbers joined by commas in the server's order: "1,2,14".
  /// @param kind  0: CMMs; 1: I/O modules and pass-through modules; 4: compute nodes and every other computer system
  /// @return  empty when there is none, for any other kind, and on any failure.
  std::string GetManagedEquipmentInfo(int kind);

 private:
  std::unique_ptr<CMMTarnInventoryImp> imp_;
};

/// What CMMReboot() does once the reboot has been asked for.
enum CMMRebootFlag {
  CMM_REBOOT_WAIT = 0,   ///< wait until the CMM accepts a connection again
  CMM_REBOOT_NOWAIT = 1  ///< return as soon as the CMM was seen to go down, or did not go down within two minutes
};

/// Restarts the primary CMM: asks for it, watches for about two minutes whether the CMM goes down, and waits as @p flag
/// says. Blocks meanwhile. Prints "CMM is doing reboot operation!" to standard output when the CMM went down, and
/// "Waiting for CMM reboot success!" before it waits. A CMM that does not go down is no failure.
/// @param port  as for CMMInventory
/// @return  0  asked for and, with CMM_REBOOT_WAIT, the CMM answered again
///          1  no connection, or the CMM did not answer again within 80 attempts, 50 seconds apart
///          2  the CMM's capabilities could not be read
///          7  no primary CMM was found, which includes that nothing answers
///          9  the CMM does not offer the restart
/// @throws Pegasus::Exception when the CMM accepts no request for the restart or has no capabilities. No connection
///         stays open. Thread-safe.
ORVANE_EXPORT int CMMReboot(const std::string& host, unsigned short port, const std::string& user,
                            const std::string& password, CMMRebootFlag flag);

/// Updates the firmware of the primary CMM from a package that the CMM fetches itself.
///
/// Every call opens its own connections, closes them on every way out, and blocks until it is done; an object can be
/// used again after any outcome. One thread at a time may use an object; separate objects are independent.
class ORVANE_EXPORT CMMUpdate {
 public:
  enum CMMUpdateOption {
    CMM_UPDATE_REBOOT = 0,    ///< install, reboot the CMM and wait until it answers again
    CMM_UPDATE_NO_REBOOT = 1  ///< install only
  };

  /// Keeps the values and connects to nothing yet.
  /// @param packageURI  where the CMM fetches the package; passed on unchanged
  CMMUpdate(const std::string& host, unsigned short port, const std::string& user, const std::string& password,
            const std::string& packageURI);
  ~CMMUpdate();
  CMMUpdate(const CMMUpdate&) = delete;
  CMMUpdate& operator=(const CMMUpdate&) = delete;

  /// Installs the package, follows its job to the end, for hours if need be, and then does what @p option says.
  /// @return  0  installed and, with CMM_UPDATE_REBOOT, the CMM answered again
  ///          1  no connection: before the installation, while its job was followed, before or after the reboot
  ///          2  the service could not be read or refused the installation; the job failed, did not start to run within
  ///             11 polls or ended in an unknown state; or an unexpected CIM error
  ///          6  the CMM started no job
  ///          7  no primary CMM, or no job could be read
  ///          8  the job still ran after 1000 polls
  ///          or what CMMReboot() gave
  /// @throws what the callback throws, if it is no Pegasus::Exception.
  int Apply(CMMUpdateOption option);

  /// CMMReboot() with CMM_REBOOT_WAIT: its codes, its lines on standard output and its exceptions. The callback is told
  /// nothing.
  int Reboot();

  /// @param callback  receives the progress texts from now on; null for none. Borrowed: keep it alive.
  void SetLogCallBack(LogMessageCallBack* callback);

 private:
  std::unique_ptr<TarnUpdate> imp_;
};

/// Updates, activates, reboots, reseats and checks the I/O-module switch of one bay. Copies share one object.
///
/// Every operation blocks until it is done, throws nothing, closes its connections before it returns and writes what
/// went wrong to the log. One thread at a time may use an object and its copies; separate objects are independent.
class ORVANE_EXPORT SwitchIOModuleUpdate {
 public:
  /// Keeps the values and connects to nothing yet.
  /// @param host         name or address of the CMM
  /// @param port         tried with HTTPS, then with HTTP; 0 means HTTPS on 5989, then HTTP on 5988
  /// @param pkgFileURI1  where the CMM fetches the first, or only, package; passed on unchanged
  /// @param pkgFileURI2  the second package; empty when there is none
  /// @param bay          I/O bay of the switch to update
  SwitchIOModuleUpdate(const std::string& host, const std::string& user, const std::string& password,
                       unsigned short port, const std::string& pkgFileURI1, const std::string& pkgFileURI2, int bay);
  ~SwitchIOModuleUpdate();
  SwitchIOModuleUpdate(const SwitchIOModuleUpdate&);
  SwitchIOModuleUpdate& operator=(const SwitchIOModuleUpdate&);

  /// UpdateFirmware(), then ActivateImage() and Reboot() of the same bay and a wait of ten minutes. A failed activation
  /// or reboot is logged only. Does not wait for the self test; CheckIfRebootSuccess() does.
  /// @return as UpdateFirmware(); then 0, or 2 for an unexpected error of the activation
  int StartUpdate();

  /// Installs the first package and then, if there is one, the second; each install lasts until its job ends, however
  /// long that takes. A failed first install ends it.
  /// @return   0  installed
  ///           1  no connection, at any stage
  ///           2  no installation service, no job, a vanished job, an unknown job status, or an unexpected error
  ///           5  access denied while the job was followed
  ///           7 to 16, 35  what CheckUpdateErrorCode() made of the status of a failed job
  ///          17  the job failed with a status that says no more
  ///          18  another update is running
  ///          19  access denied
  ///          20  not supported
  ///          21  invalid namespace
  ///          22  invalid class
  ///          23  invalid parameter
  ///          24  no switch in the bay, or the CMM did not find one of the objects
  ///          25  method not found
  ///          26  method not available
  ///          27  the CMM reports a general failure
  int UpdateFirmware();

  /// Makes the fallback image of the switch the one that its next start takes.
  /// @return  0  activated
  ///          1  no connection
  ///          2  the CMM refused the change, or an unexpected error
  ///          3  no fallback image (Reboot() then restarts a switch that it would leave alone otherwise), or the images
  ///             could not be read
  int ActivateImage(int bay);

  /// Whether the switch takes new firmware at its next restart only.
  /// @return   1  no connection
  ///           6  no switch in the bay
  ///          29  the switches could not be read
  ///          33  supported
  ///          34  not supported
  int CheckDeferedUpdateSupported(int bay);

  /// Whether the switch is ready for an update; while it is busy, waits up to 310 seconds and looks up to 31 times
  /// more.
  /// @return   0  ready
  ///           1  no connection
  ///          29  the switches could not be read, no switch in the bay, or an unknown state
  ///          30  not ready
  ///          32  still busy after the wait, or any of the failures above after it was busy at first
  int EHCMCheck(int bay);

  /// Waits until the switch has completed its power-on self test: looks 36 times, each time after 10 seconds.
  /// @return   0  completed
  ///           6  unexpected error
  ///          16  not completed after six minutes
  ///          19  access denied
  ///          20  not supported
  ///          22  invalid class
  ///          23  invalid parameter
  ///          24  no switch in the bay, or no connection
  ///          27  the CMM reports a general failure
  int CheckIfRebootSuccess(int bay);

  /// Restarts the switch if that is needed: it supports deferred updates, or it does not and ActivateImage(), also as
  /// part of StartUpdate(), found no fallback image with this object. Does not wait for the restart.
  /// @return   0  asked for, or not needed, or whether it is needed could not be read
  ///           2  unexpected error
  ///           4  refused, or the request failed
  ///          24  no switch in the bay
  ///          below 0  no connection
  int Reboot(int bay);

  /// Power-cycles the switch, in every case. Does not wait for the restart.
  /// @return as Reboot(), 0 only when asked for
  int Reseat(int bay);

  /// @param cb  receives the progress texts from now on; null for none. Borrowed: keep it alive. An exception that it
  ///            throws ends the operation with the code of an unexpected error.
  void SetLogCallBack(LogMessageCallBack* cb);

 private:
  std::shared_ptr<SwitchIOUpdateByCIM> imp_;
};

/// Updates, reboots, reseats and checks the pass-through module of one bay. Copies share one object.
///
/// Every call blocks until it is done, closes its connections before it returns, throws nothing and writes what went
/// wrong to the log; an exception of the callback ends it with the code of "any other error". A request waits at most
/// 300 seconds. Every server certificate is accepted, and a failed HTTPS connect is followed by plain HTTP.
/// One thread at a time may use an object and its copies.
class ORVANE_EXPORT SwitchPassThruUpdate {
 public:
  /// Keeps the values and connects to nothing yet.
  /// @param port        as for CMMInventory
  /// @param packageURI  where the CMM fetches the package; passed on unchanged
  /// @param bay         I/O bay of the module that StartUpdate() updates
  SwitchPassThruUpdate(const std::string& host, const std::string& user, const std::string& password,
                       unsigned short port, const std::string& packageURI, int bay);
  ~SwitchPassThruUpdate();
  SwitchPassThruUpdate(const SwitchPassThruUpdate&);
  SwitchPassThruUpdate& operator=(const SwitchPassThruUpdate&);

  /// Lets the CMM install the package on the module and follows the job to its end, looking once a minute without a
  /// limit. Use one object per package: a second call on the same object sends the parameters of the first one again,
  /// ahead of its own.
  /// @return    0  installed
  ///            1  no connection, at any stage
  ///            2  the CMM started no job, or the job vanished or told nothing
  ///            5  access denied when the installation was asked for, or later
  ///            6  the job has a status that is not known
  ///           15  the job ended before it was complete
  ///           18  another firmware update is running
  ///           19  access denied to the installation service
  ///           20  not supported (CIM status 7)
  ///           21  invalid namespace (CIM status 3)
  ///           22  invalid class (CIM status 5)
  ///           23  invalid parameter (CIM status 4)
  ///           24  no pass-through module in the bay, or the bay could not be read, or not found (CIM status 6)
  ///           25  no such method (CIM status 17)
  ///           26  method not available (CIM status 16)
  ///           27  the CMM failed (CIM status 1)
  ///          212  no installation service, or any other error
  int StartUpdate();

  /// Asks the module of @p bay to restart and does not wait for it; CheckIfRebootSuccess() does.
  /// @return   0  asked for; what the module answered is in the log only. Also when the CMM did not answer in time, or
  ///              with a CIM status that has no meaning here
  ///           1  no connection
  ///           4  the modules do not offer it, CIM error, or any other error
  ///          24  no pass-through module in the bay, or the bay could not be read
  int Reboot(int bay);

  /// Asks the module of @p bay to take itself off power and on again. @return as Reboot()
  int Reseat(int bay);

  /// Looks every 10 seconds, 36 times at most, whether the module of @p bay has completed its power-on self test. The
  /// first look comes 10 seconds after the call.
  /// @return   0  completed
  ///          16  not completed within six minutes, or any other error
  ///          19  access denied
  ///          20  not supported
  ///          22  invalid class
  ///          23  invalid parameter
  ///          24  no pass-through module in the bay, or the bay could not be read: a module that is gone is not waited
  ///              for
  ///          27  CIM_ERR_FAILED
  int CheckIfRebootSuccess(int bay);

  /// @param cb  receives the progress texts from now on; null for none. Borrowed: keep it alive.
  void SetLogCallBack(LogMessageCallBack* cb);

 private:
  std::shared_ptr<TarnPassThruUpdate> imp_;
};

/// Reseats (power-cycles) compute nodes through the CMM's power management service. Copies share client and inventory.
///
/// Every call closes its connections before it returns, throws nothing and writes what went wrong to the log. A request
/// waits at most 300 seconds. Every server certificate is accepted, and a failed HTTPS connect is followed by plain
/// HTTP. One thread at a time may use an object and its copies.
class ORVANE_EXPORT Cmm_Blade_Reseat {
 public:
  /// Keeps the values and connects to nothing yet.
  /// @param port    as for CMMInventory
  /// @param unused  kept and never looked at
  Cmm_Blade_Reseat(const std::string& host, unsigned int port, const std::string& user, const std::string& password,
                   int unused);
  ~Cmm_Blade_Reseat();
  Cmm_Blade_Reseat(const Cmm_Blade_Reseat&);
  Cmm_Blade_Reseat& operator=(const Cmm_Blade_Reseat&);

  /// Asks the CMM to take the node in @p bay off power and on again.
  /// @param bay  node bay; 1 to 9 are called node01 to node09, every other number stands behind "node" as it is
  /// @return   0  done, or the node does not offer it (the log tells: "The blade is not ready to change state.")
  ///           1  no connection to read what the node offers
  ///          -1  what the node offers could not be found
  ///          -2  the host has no address
  ///          -3  no socket
  ///          -4  no connection
  ///          -5  a name is not valid
  ///          -6  any other failure to connect
  ///           3  the node refused, or any error without a code of its own
  ///           5, 6, 7, 8, 10, 11, 12  CIM error, see ParseError()
  ///           9  no power management service of that node, it could not be read, or not found (CIM status 6)
  int ReseatBlade(int bay);

  /// Finds the computer system of a node: the first whose object path contains @p nodeName.
  /// @param nodeName  for example node03
  /// @param element   set when 0 is returned, else left as it was
  /// @return   0  found
  ///           1  no connection
  ///          -1  none, or any error
  int GetManagedElementREF(std::string nodeName, Pegasus::CIMInstance& element);

  /// Reads the power states that a node offers, from the first association with its power management service whose
  /// object path contains @p nodeName.
  /// @param states  the numbers, each followed by one blank; empty when the association has none. Set when 0 is
  ///                returned, else left as it was
  /// @return   0  found
  ///           1  no connection
  ///          -1  none, or any error
  int GetAvailableRequestedPowerStates(std::string nodeName, std::string& states);

  /// The code of ReseatBlade() for a CIM error.
  /// @return   5  access denied
  ///           6  not supported
  ///           7  invalid namespace
  ///           8  invalid parameter
  ///           9  not found
  ///          10  method not found
  ///          11  method not available
  ///          12  CIM_ERR_FAILED
  ///           3  every other status
  int ParseError(const Pegasus::CIMStatusCode& code);

 private:
  std::shared_ptr<Pegasus::CIMClient> client_;
  std::shared_ptr<CMMTarnInventoryImp> inventory_;
  std::string host_;
  unsigned int port_;
  std::string user_;
  std::string password_;
  [[maybe_unused]] int unused_;
};

/// What a failed installation job's status text tells, in any case of letters (that of the global locale). Of several
/// failures in one text the last of this list counts.
/// @return  0   no known failure
///          7   "CURLE(127) - THIS IS AN UNKNOWN CURL ERROR"
///          8   "DCSC_RC_TIMEOUT"; as it holds "TIMEOUT" too, 16 is what comes back
///          9   "DCSS_RC_RECV_FAIL"
///          10  "FINGERPRINT MISMATCH"
///          11  "FIRMWARE DOWNLOAD OPERATION FAILED"
///          12  "DCSS_RC_CDT_FAIL"
///          13  "HOST KEY AUTHENTICATION FAILED"
///          14  "FAILED TO CONTACT HOST"
///          15  "FLASHING ENDED WITH FAILURE"
///          16  "TIMEOUT"
///          35  "FILE DOES NOT EXIST"
/// Thread-safe.
ORVANE_EXPORT int CheckUpdateErrorCode(const std::string& status);

/// The text of a code of CMMUpdate::Apply() or CMMReboot(); "Unkown exception." (spelt so) for a code that has none of
/// its own, among them 6 and 8. Thread-safe.
ORVANE_EXPORT std::string GetUpdateResultMessage(unsigned int code);

/// The text of the codes 207, 212 and 213; "Unknown Error" for every other one. Thread-safe.
ORVANE_EXPORT std::string GetUpdateErrorMessage(int code);

}  // namespace Orvane
