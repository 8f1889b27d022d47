// What the tests of the pass-through update share: a scripted chassis with one pass-through module, virtual time, and a
// journal in which log lines, progress texts and waits stand in the order in which they came.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "cmm/inventory_update/switch_PassThru_update.h"
#include "cmm/tests/inventory_fixture.h"
#include "testing/virtual_clock.h"

namespace Orvane::testing {

constexpr char kInstallationService[] = "CIM_SoftwareInstallationService";
constexpr char kServicePath[] = "CIM_SoftwareInstallationService.Name=\"update\"";
constexpr char kModulePath[] = "//cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module\"";
constexpr char kConcreteJob[] = "CIM_ConcreteJob";
constexpr char kCapabilities[] = "VORTA_PassThroughModuleEnabledLogicalElementCapabilities";
constexpr char kPackageUri[] = "http://10.0.0.9/package.zip";

constexpr char kFlashed[] = "Flash Completed with no apparent errors";
constexpr char kUnfinished[] = "Wait for Flash Complete - finished without 100% Progress";
constexpr char kStarted[] = "Flash Installation Job Started";
constexpr char kBusy[] = "Busy - Another firmware update in progress";

inline CimObjectSpec InstallationService(const std::string& name = "update") {
  return CimObjectSpec(kInstallationService).Key("Name", name);
}

inline CimObjectSpec JobObject(const std::string& id, const std::string& status, unsigned state) {
  return CimObjectSpec(kConcreteJob)
      .Key("InstanceID", id)
      .With("ErrorDescription", status)
      .With("JobState", CimUint16(state));
}

inline CimValue Uint32Value(unsigned value) { return CimTyped("uint32", std::to_string(value)); }

/// The answer of a method that created a job.
inline CimAnswer JobStarted(const std::string& id = "JOB_17") {
  return MethodResult(
      Uint32Value(4096),
      {{"Job", CimReference({kConcreteJob, {{"InstanceID", id, "string", nullptr}}, "root/cimv2", "cmm01"})}});
}

inline CimObjectSpec Capabilities(std::initializer_list<unsigned> states) {
  return CimObjectSpec(kCapabilities)
      .Key("InstanceID", "capabilities")
      .With("RequestedStatesSupported", CimUint16Array(states));
}

inline CimObjectSpec TestedModule(const std::string& postStatus, const std::string& description) {
  return PassThru("module")
      .With("ElementName", "Pass-thru 2")
      .With("PostStatus", postStatus)
      .With("PostStatusDescription", description);
}

/// An in-parameter as "name type value", with "[]" behind the type of an array.
inline std::string ArgumentText(const CimArgument& argument) {
  std::string text = argument.name + " " + argument.type + (argument.isArray ? "[]" : "");
  for (const std::string& value : argument.values) text += " " + value;
  return text;
}

inline std::vector<std::string> ArgumentTexts(const CimRequest& request) {
  std::vector<std::string> texts;
  for (const CimArgument& argument : request.arguments) texts.push_back(ArgumentText(argument));
  return texts;
}

/// Collects log records, progress texts and waits as lines, in their order. Thread-safe.
class Timeline {
 public:
  void Add(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    lines_.push_back(line);
  }
  std::vector<std::string> Take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(lines_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> lines_;
};

/// "3 text" for a record. How long a timed step took is left out: it differs from run to run.
inline std::string RecordLine(const Log::Record& record) {
  const std::string line = std::to_string(record.level) + " " + record.text;
  return line.substr(0, line.find(" elapsed="));
}

class PassThruTest : public ::testing::Test, protected LogMessageCallBack {
 protected:
  PassThruTest() : PassThruTest(HttpsServer()) {}
  explicit PassThruTest(CimServer::Options options)
      : server(std::move(options)),
        timeline(std::make_shared<Timeline>()),
        clock([this](std::size_t index, std::uint32_t milliseconds) {
          timeline->Add("sleep " + std::to_string(milliseconds));
          if (onSleep) onSleep(index);
        }),
        update("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 2),
        object("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 2) {
    Log::SetSink([lines = timeline, whole = everything](const Log::Record& record) {
      if (*whole || record.file == "cmm/inventory_update/switch_PassThru_update") lines->Add(RecordLine(record));
    });
    update.SetLogCallBack(this);
    object.SetLogCallBack(this);
    ScriptModule();
  }

  void OnMessage(const std::string& message) override { timeline->Add("callback " + message); }

  /// The module of bay 2: its slot, its package and itself.
  void ScriptModule() {
    server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}));
    server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("p")}));
    server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, Objects({PassThru("module")}));
  }
  /// What the inventory reads of a module.
  void ScriptRecord(const CimObjectSpec& module, const CimObjectSpec& package) {
    const std::string path = PathText(module.Path());
    const std::string tag = package.keys.front().text;
    server.OnAssociators(path, kRealizes, kPhysicalPackage, Objects({package}));
    server.OnAssociators(PackagePath(tag), kPackageInSlot, "CIM_Slot", Objects({Slot("slot " + tag, "2")}));
    server.OnAssociators(path, kElementIdentity, kIdentity, Objects({Image("image")}));
  }
  /// A service that creates the job JOB_17.
  void ScriptInstall() {
    server.OnEnumerate(kInstallationService, Objects({InstallationService()}));
    server.OnInvoke("InstallFromURI", JobStarted());
  }
  /// What the polls find of JOB_17, one after the other.
  template <typename... Jobs>
  void ScriptJob(Jobs... jobs) {
    server.OnEnumerate(kConcreteJob, Objects({jobs})...);
  }
  static CimObjectSpec Job(const std::string& status, unsigned state) { return JobObject("JOB_17", status, state); }

  int Install() { return object.installPackage_PassThru(kTargetPassThru, kPackageUri, false); }

  /// From here on the journal holds every source's lines.
  void WatchEverything() { *everything = true; }
  std::vector<std::string> Lines() { return timeline->Take(); }
  /// The lines of one level, without the level.
  std::vector<std::string> Lines(unsigned level) {
    const std::string mark = std::to_string(level) + " ";
    std::vector<std::string> texts;
    for (const std::string& line : timeline->Take()) {
      if (line.rfind(mark, 0) == 0) texts.push_back(line.substr(mark.size()));
    }
    return texts;
  }
  std::string SessionConnected() const {
    return "3 Connect CIMOM . H:127.0.0.1 P:" + std::to_string(server.Port()) + " U:USERID RC: 0";
  }
  /// The server's journal once every connection is closed.
  std::vector<std::string> Conversation() const {
    EXPECT_TRUE(server.WaitUntilAllClosed());
    return server.Conversation();
  }
  /// The requests for a method.
  std::vector<CimRequest> Invocations() const {
    std::vector<CimRequest> found;
    for (CimRequest& request : server.Requests()) {
      if (request.operation == "InvokeMethod" && request.authorized) found.push_back(std::move(request));
    }
    return found;
  }

  ScopedLog log;
  CimServer server;
  std::shared_ptr<Timeline> timeline;
  std::shared_ptr<bool> everything = std::make_shared<bool>(false);
  std::function<void(std::size_t)> onSleep;
  VirtualClock clock;
  SwitchPassThruUpdate update;
  TarnPassThruUpdate object;
};

}  // namespace Orvane::testing
