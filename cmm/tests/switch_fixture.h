// What the tests of the switch update share: a scripted chassis manager with one switch, virtual time, the log, the
// progress texts, and short names for what an update reads.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cmm/inventory_update/switch_IO_update.h"
#include "cmm/tests/inventory_fixture.h"
#include "testing/cim_server.h"
#include "testing/scoped_log.h"
#include "testing/virtual_clock.h"

namespace Orvane::testing {

constexpr int kBay = 3;

// Lines that many sequences hold, with their level.
constexpr char kConnectedLine[] = "3 Successfully connected to host : 127.0.0.1";
constexpr char kAlreadyConnectedLine[] = "3 Pegasus AlreadyConnectedException :already connected";
constexpr char kRefusedLine[] = "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:1. Connection failed.";

// What the install asks for and gets.
constexpr char kServiceClass[] = "CIM_SoftwareInstallationService";
constexpr char kServicePath[] = "CIM_SoftwareInstallationService.Name=\"install\"";
constexpr char kTargetPath[] = "//cmm01/root/cimv2:CIM_ComputerSystem.Name=\"switch03\"";
constexpr char kJobClass[] = "CIM_ConcreteJob";
constexpr char kJobId[] = "job 7";
constexpr char kJobDone[] = "Flash Completed with no apparent errors";
constexpr char kJobRunning[] = "Flash Installation Job Started";
constexpr char kJobBusy[] = "Busy - Another firmware update in progress";
constexpr char kJobCutOff[] = "Wait for Flash Complete - finished without 100% Progress";

constexpr char kSystemClass[] = "VORTA_IOModuleComputerSystem";
constexpr char kIdentityClass[] = "VORTA_IOMElementFirmwareIdentity";

/// A switch as the readiness checks see it.
inline CimObjectSpec IOSystem(const std::string& elementName) {
  return CimObjectSpec(kSystemClass).Key("Name", elementName).With("ElementName", elementName);
}
inline CimObjectSpec EhcmSystem(const std::string& elementName, const std::string& state) {
  return IOSystem(elementName).With("EHCMState", state).With("EHCMFirmwareUpdateSupported", "maybe");
}
inline CimObjectSpec DeferredSystem(const std::string& elementName, const std::string& value) {
  return IOSystem(elementName).With("DeferredUpdateSupported", value);
}

inline CimObjectSpec Service(const std::string& name) { return CimObjectSpec(kServiceClass).Key("Name", name); }
inline CimObjectSpec Job(const std::string& id, unsigned state, const std::string& status) {
  return CimObjectSpec(kJobClass)
      .Key("InstanceID", id)
      .With("ErrorDescription", status)
      .With("JobState", CimUint16(state));
}
inline CimAnswer JobAnswer(unsigned state, const std::string& status) { return Objects({Job(kJobId, state, status)}); }
/// What InstallFromURI returns, with the job's reference given as a text.
inline CimAnswer InstallAnswer(const std::string& jobText) {
  return MethodResult(CimTyped("uint32", "4096"), {{"Job", CimString(jobText)}});
}
inline CimAnswer InstallAnswer() {
  return MethodResult(CimTyped("uint32", "4096"),
                      {{"Job", CimReference(CimObjectSpec(kJobClass).Key("InstanceID", kJobId).Path())}});
}

/// A link between a switch and one of its images.
inline CimObjectSpec IdentityLink(const std::string& owner, std::initializer_list<unsigned> status) {
  return CimObjectSpec(kIdentityClass)
      .Key("Antecedent", owner)
      .With("ElementSoftwareStatus", CimUint16Array(status))
      .With("Dependent", owner + " image");
}
inline std::string IdentityPath(const std::string& owner) {
  return std::string(kIdentityClass) + ".Antecedent=\"" + owner + "\"";
}

/// Keeps the progress texts.
class Progress : public LogMessageCallBack {
 public:
  void OnMessage(const std::string& message) override { texts.push_back(message); }
  std::vector<std::string> texts;
};

/// Throws at one of the progress texts.
class ThrowingProgress : public Progress {
 public:
  explicit ThrowingProgress(std::string text) : text_(std::move(text)) {}
  void OnMessage(const std::string& message) override {
    Progress::OnMessage(message);
    if (message == text_) throw std::runtime_error("the display is gone");
  }

 private:
  std::string text_;
};

/// Sequences of lines one behind the other.
inline std::vector<std::string> Joined(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> lines;
  for (const std::vector<std::string>& part : parts) lines.insert(lines.end(), part.begin(), part.end());
  return lines;
}

/// The lines of an install whose first poll finds the job done, with the timing marks around it.
inline std::vector<std::string> InstalledLines() {
  return {"3 [B] step=83 value=0 ",
          "3 Enter SwitchIOUpdateByCIM::installPackage.",
          kConnectedLine,
          std::string("3 Successfully get the CIM_SoftwareInstallationService instance: ") + kServicePath,
          std::string("3 Successfully get the IO target instance: ") + kTargetPath,
          kAlreadyConnectedLine,
          "3 Invoke method 'InstallFromURI', return CIMValue string = 4096",
          std::string("3 Parameter Target of method 'InstallFromURI': ") + kTargetPath,
          "3 Parameter Name: Job, Parameter Value: CIM_ConcreteJob.InstanceID=\"job 7\"",
          "3 Try to get the result of the InstallFromURI call: 1",
          kConnectedLine,
          std::string("3 Job instance info: ( InstanceID:job 7,JobStatus: ") + kJobDone + ",JobState: 7 )",
          std::string("3 Update completed successfully and the message is ") + kJobDone,
          "3 [E] step=83 value=0 "};
}

class SwitchTest : public ::testing::Test {
 protected:
  SwitchTest() : SwitchTest(HttpsServer()) {}
  explicit SwitchTest(CimServer::Options options)
      : server(std::move(options)),
        update("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", kBay),
        object("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", kBay),
        nobody("127.0.0.1", "USERID", "s3cret", 1, "http://files/one.bin", "", kBay) {
    for (SwitchIOModuleUpdate* facade : {&update, &nobody}) facade->SetLogCallBack(&progress);
    object.SetLogCallBack(&progress);
  }
  ~SwitchTest() override { EXPECT_TRUE(server.WaitUntilAllClosed()) << "a connection outlived its operation"; }

  /// The target lookup finds this instance in the bay, by default a system called switch03.
  void ScriptTarget(const CimObjectSpec& target = System("switch03", {12})) {
    server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule03", "3")}));
    server.OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("package")}));
    server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem", Objects({target}));
  }
  /// A chassis manager on which the install comes as far as the polling, which reads these answers.
  template <typename... Answers>
  void ScriptInstall(Answers... jobs) {
    ScriptTarget();
    server.OnEnumerate(kServiceClass, Objects({Service("install"), Service("other")}));
    server.OnInvoke("InstallFromURI", InstallAnswer());
    server.OnEnumerate(kJobClass, std::move(jobs)...);
  }
  void ScriptDeferred(const std::string& value) {
    server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", value)}));
  }

  /// What the switch update logged, as "level text"; the real time behind a timing mark is left out.
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const Log::Record& record : log.Records()) {
      if (record.file != "cmm/inventory_update/switch_IO_update") continue;
      lines.push_back(std::to_string(record.level) + " " + record.text.substr(0, record.text.find(" elapsed=")));
    }
    return lines;
  }
  /// The journal once every connection is closed.
  std::vector<std::string> Conversation() const {
    EXPECT_TRUE(server.WaitUntilAllClosed());
    return server.Conversation();
  }
  std::vector<CimRequest> RequestsOf(const std::string& operation) const {
    std::vector<CimRequest> found;
    for (const CimRequest& request : server.Requests()) {
      if (request.operation == operation) found.push_back(request);
    }
    return found;
  }
  /// How many requests of this summary were made.
  std::size_t Count(const std::string& summary) const {
    const std::vector<std::string> all = server.Summaries();
    return static_cast<std::size_t>(std::count(all.begin(), all.end(), summary));
  }

  CimServer server;
  VirtualClock clock;
  ScopedLog log;
  Progress progress;
  SwitchIOModuleUpdate update;
  SwitchIOUpdateByCIM object;   ///< for the operations that the facade offers as part of others only
  SwitchIOModuleUpdate nobody;  ///< nothing listens on its port
};

}  // namespace Orvane::testing
