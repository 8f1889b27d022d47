// Log lines, progress texts and waits of the switch update in one sequence: what stands before what.
#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;

/// Puts a line of its own among those of the switch update.
void Mark(const std::string& text) { Log(3, "cmm/inventory_update/switch_IO_update", 1).Stream() << text; }

class MarkingProgress : public LogMessageCallBack {
 public:
  void OnMessage(const std::string& message) override { Mark("callback " + message); }
};

const std::string kIdentityImage = std::string(
                                       "3 Parameter instance of method 'modifyInstance' "
                                       "instancesIOMElement[i]  getPath : ") +
                                   IdentityPath("iom03");

class SwitchOrder : public SwitchTest {
 protected:
  SwitchOrder()
      : two("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "http://files/two.bin", kBay),
        waits([](std::size_t, std::uint32_t milliseconds) { Mark("sleep " + std::to_string(milliseconds)); }) {
    for (SwitchIOModuleUpdate* facade : {&update, &two}) facade->SetLogCallBack(&marking);
    ScriptInstall(JobAnswer(7, kJobDone));
    server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {6, 4})}));
    ScriptDeferred("1");
    server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));
  }

  static std::vector<std::string> Install(const std::vector<std::string>& job) {
    return Joined({{"3 [B] step=83 value=0 ", "3 Enter SwitchIOUpdateByCIM::installPackage.",
                    "3 callback start install package on I/O Module switch", kConnectedLine,
                    std::string("3 Successfully get the CIM_SoftwareInstallationService instance: ") + kServicePath,
                    std::string("3 Successfully get the IO target instance: ") + kTargetPath, kAlreadyConnectedLine,
                    "3 Invoke method 'InstallFromURI', return CIMValue string = 4096",
                    std::string("3 Parameter Target of method 'InstallFromURI': ") + kTargetPath,
                    "3 Parameter Name: Job, Parameter Value: CIM_ConcreteJob.InstanceID=\"job 7\"", "3 sleep 10000"},
                   job,
                   {"3 [E] step=83 value=0 "}});
  }
  static std::vector<std::string> Done(int poll) {
    return {"3 Try to get the result of the InstallFromURI call: " + std::to_string(poll), kConnectedLine,
            std::string("3 Job instance info: ( InstanceID:job 7,JobStatus: ") + kJobDone + ",JobState: 7 )",
            std::string("3 Update completed successfully and the message is ") + kJobDone};
  }
  static std::vector<std::string> Activation() {
    return {"3 Enter activateNewImage().",
            "3 start SwitchIOUpdateByCIM::activateNewImage().",
            "3 callback start activateNewImage",
            "3 sleep 10000",
            kConnectedLine,
            "3 start EnumerateInstances VORTA_IOMElementFirmwareIdentity.",
            "3 Succeeded to collect instancesIOMElement instances.",
            "3 instancesIOMElement.size() = 1",
            "3 VORTA_IOMElementFirmwareIdentity: iom03",
            "3 ElementSoftwareStatus: 6 4 ",
            "3 Succeeded to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4",
            kIdentityImage,
            "3 Succeeded to modify ElementSoftwareStatus to 3."};
  }
  static std::vector<std::string> StateChange(const std::string& state) {
    return {"3 RequestedStates: " + state, std::string("3 Targetinstance is ") + kTargetPath,
            "3 Invoke method 'RequestStateChange',return CIMValue string = 0",
            "3 Invoke method 'RequestStateChange': Completed with No Error"};
  }
  static std::vector<std::string> Reboot() {
    return Joined({{"3 Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported().", kConnectedLine,
                    "3 Successfully get the VORTA_IOModuleComputerSystem instance: ", "3 Instances.size() = 1",
                    "3 ElementName_ = IO Module 03", "3 defered = 1", "3 switch deferedupdatesupported is 1",
                    "3 callback start reboot I/O Module switch"},
                   StateChange("11")});
  }
  /// What every flow begins with on a chassis whose inventory knows no switch.
  static std::vector<std::string> Entry(const std::string& callback) {
    return {"3 Enter SwitchIOUpdateByCIM::startUpdate!", "3 callback " + callback,
            "3 Enter SwitchIOUpdateByCIM::showBayInfo!", "1 Failed to collect information of the switch!"};
  }
  static std::vector<std::string> Flow(const std::string& name) {
    return {"3 SwitchIOUpdateByCIM::" + name + "().", "3 callback start " + name};
  }
  static std::vector<std::string> Restart() {
    return {"3 callback rebooting I/O Module switch successfully! waiting the switch to restart.", "3 sleep 600000"};
  }

  MarkingProgress marking;
  SwitchIOModuleUpdate two;  ///< with two packages
  VirtualClock waits;        ///< in front of the fixture's clock
};

TEST_F(SwitchOrder, OfAnInstallOfOnePackage) {
  EXPECT_EQ(update.UpdateFirmware(), 0);

  EXPECT_EQ(Lines(), Joined({Entry("start UpdateFirmware"), Flow("updateSingleFirmware"), Install(Done(1))}));
}

TEST_F(SwitchOrder, OfAnInstallOfTwoPackages) {
  EXPECT_EQ(two.UpdateFirmware(), 0);

  EXPECT_EQ(Lines(), Joined({Entry("start UpdateFirmware"),
                             Flow("updateDoubleFirmwares"),
                             {"3 start installPackage pkgFileURI1."},
                             Install(Done(1)),
                             {"3 start installPackage pkgFileURI2."},
                             Install(Done(1))}));
}

TEST_F(SwitchOrder, OfAWholeUpdateWithOnePackage) {
  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_EQ(Lines(), Joined({Entry("start UpdateWithReboot"), Flow("updateSingleFirmwareWithReboot"), Install(Done(1)),
                             Activation(), Reboot(), Restart()}));
}

TEST_F(SwitchOrder, OfAWholeUpdateWithTwoPackages) {
  EXPECT_EQ(two.StartUpdate(), 0);

  EXPECT_EQ(Lines(), Joined({Entry("start UpdateWithReboot"),
                             Flow("updateDoubleFirmwaresWithReboot"),
                             {"3 callback start installPackage pkgFileURI1"},
                             Install(Done(1)),
                             {"3 callback start installPackage pkgFileURI2"},
                             Install(Done(1)),
                             Activation(),
                             Reboot(),
                             Restart()}));
}

TEST_F(SwitchOrder, OfAJobThatRunsOn) {
  server.OnEnumerate(kJobClass, JobAnswer(4, kJobRunning), JobAnswer(7, kJobDone));

  EXPECT_EQ(update.UpdateFirmware(), 0);

  const std::vector<std::string> running = {
      "3 Try to get the result of the InstallFromURI call: 1", kConnectedLine,
      std::string("3 Job instance info: ( InstanceID:job 7,JobStatus: ") + kJobRunning + ",JobState: 4 )",
      "3 Update process started! ", "3 sleep 60000"};
  EXPECT_EQ(Lines(),
            Joined({Entry("start UpdateFirmware"), Flow("updateSingleFirmware"), Install(Joined({running, Done(2)}))}));
}

TEST_F(SwitchOrder, OfAReseat) {
  EXPECT_EQ(update.Reseat(kBay), 0);

  EXPECT_EQ(Lines(), Joined({{"3 callback start reseat I/O Module switch"}, StateChange("32769")}));
}

TEST_F(SwitchOrder, OfAFailedRebootInAFlow) {
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "6")));

  EXPECT_EQ(update.StartUpdate(), 0);

  const std::vector<std::string> lines = Lines();
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(
      std::vector<std::string>(lines.end() - 4, lines.end()),
      Joined({{"1 Invoke method 'RequestStateChange': In Use", "1 Error happened when reboot the switch"}, Restart()}));
}

TEST_F(SwitchOrder, OfConnectsThatFail) {
  nobody.SetLogCallBack(&marking);

  EXPECT_EQ(nobody.ActivateImage(kBay), 1);

  EXPECT_THAT(Lines(), ElementsAre("3 Enter activateNewImage().", "3 start SwitchIOUpdateByCIM::activateNewImage().",
                                   "3 callback start activateNewImage", "3 sleep 10000", kRefusedLine, kRefusedLine,
                                   "3 sleep 10000", kRefusedLine, kRefusedLine, "3 sleep 10000", kRefusedLine,
                                   kRefusedLine, "1 Failed to connect to the CMM"));
}

TEST_F(SwitchOrder, OfTheReadingsOfABusySwitch) {
  const CimAnswer busy = Objects({EhcmSystem("IO Module 03", "2")});
  server.OnEnumerate(kSystemClass, busy, busy, busy, Objects({EhcmSystem("IO Module 03", "1")}));

  EXPECT_EQ(update.EHCMCheck(kBay), 0);

  std::vector<std::string> steps;
  for (const std::string& line : Lines()) {
    if (line.rfind("3 sleep", 0) == 0 || line.rfind("3 EHCMState_", 0) == 0 || line.rfind("3 check", 0) == 0) {
      steps.push_back(line);
    }
  }
  EXPECT_THAT(steps,
              ElementsAre("3 EHCMState_ = 2", "3 sleep 10000", "3 EHCMState_ = 2", "3 EHCMState_ = 2", "3 sleep 10000",
                          "3 EHCMState_ = 1", "3 sleep 10000", "3 checkEHCMStatus() ends successfully."))
      << "a wait before the second reading, and one behind each further one";
}

TEST_F(SwitchOrder, OfTheWaitForTheSelfTest) {
  const auto tested = [](const std::string& status, const std::string& description) {
    return Objects({System("switch03", {12})
                        .With("ElementName", "Switch 3")
                        .With("PostStatus", status)
                        .With("PostStatusDescription", description)});
  };
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem", tested("17", "testing"),
                       tested("511", "Module completed POST successfully."));

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 0);

  EXPECT_THAT(
      Lines(),
      ElementsAre("3 Try to check if reboot success. Attempt( 0 )", "3 sleep 10000",
                  std::string("3 Targetinstance is ") + kTargetPath, "3 ElementName:Switch 3", "3 PostStatus:17",
                  "3 PostStatusDescription:testing", "3 Try to check if reboot success. Attempt( 1 )", "3 sleep 10000",
                  std::string("3 Targetinstance is ") + kTargetPath, "3 ElementName:Switch 3", "3 PostStatus:511",
                  "3 PostStatusDescription:Module completed POST successfully.", "3 Reboot switch success."));
}

}  // namespace
}  // namespace Orvane::testing
