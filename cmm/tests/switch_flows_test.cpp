// The update flows of a switch, one package or two, with and without activation and reboot, and the activation itself.
#include <optional>

#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kInstallText[] = "start install package on I/O Module switch";
constexpr char kRestartText[] = "rebooting I/O Module switch successfully! waiting the switch to restart.";
constexpr char kActivationIgnored[] =
    "3 Failed to activate the new image. This can be ignored because it normally means that this switch doesn't "
    "support activation.";
constexpr char kNoFallback[] =
    "3 Failed to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4. This is usually "
    "because this switch does not support activation. ";
constexpr char kFallbackFlag[] =
    "3 set missing_fallback to true, and krant will reboot the switch in reboot call later";
constexpr char kModify[] = "ModifyInstance VORTA_IOMElementFirmwareIdentity.Antecedent=\"iom03\"";
constexpr char kStateChange[] = "InvokeMethod CIM_ComputerSystem.Name=\"switch03\" RequestStateChange";

/// The first lines of every flow on a chassis whose inventory knows no switch.
std::vector<std::string> Begin(const std::string& flow) {
  return {"3 Enter SwitchIOUpdateByCIM::startUpdate!", "3 Enter SwitchIOUpdateByCIM::showBayInfo!",
          "1 Failed to collect information of the switch!", "3 SwitchIOUpdateByCIM::" + flow + "()."};
}

std::vector<std::string> ActivatedLines() {
  return {"3 Enter activateNewImage().",
          "3 start SwitchIOUpdateByCIM::activateNewImage().",
          kConnectedLine,
          "3 start EnumerateInstances VORTA_IOMElementFirmwareIdentity.",
          "3 Succeeded to collect instancesIOMElement instances.",
          "3 instancesIOMElement.size() = 1",
          "3 VORTA_IOMElementFirmwareIdentity: iom03",
          "3 ElementSoftwareStatus: 6 4 ",
          "3 Succeeded to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4",
          "3 Parameter instance of method 'modifyInstance' instancesIOMElement[i]  getPath : " + IdentityPath("iom03"),
          "3 Succeeded to modify ElementSoftwareStatus to 3."};
}

std::vector<std::string> RebootedLines() {
  return {"3 Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported().",
          kConnectedLine,
          "3 Successfully get the VORTA_IOModuleComputerSystem instance: ",
          "3 Instances.size() = 1",
          "3 ElementName_ = IO Module 03",
          "3 defered = 1",
          "3 switch deferedupdatesupported is 1",
          "3 RequestedStates: 11",
          std::string("3 Targetinstance is ") + kTargetPath,
          "3 Invoke method 'RequestStateChange',return CIMValue string = 0",
          "3 Invoke method 'RequestStateChange': Completed with No Error"};
}

class SwitchFlows : public SwitchTest {
 protected:
  SwitchFlows()
      : two("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "http://files/two.bin", kBay) {
    two.SetLogCallBack(&progress);
  }
  /// Everything that a flow with reboot asks for succeeds.
  void ScriptWholeUpdate() {
    ScriptInstall(JobAnswer(7, kJobDone));
    server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {6, 4})}));
    ScriptDeferred("1");
    server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));
  }
  std::vector<std::string> InstalledUris() const {
    std::vector<std::string> uris;
    for (const CimRequest& request : RequestsOf("InvokeMethod")) {
      if (request.method == "InstallFromURI") uris.push_back(request.arguments.at(0).values.at(0));
    }
    return uris;
  }
  bool HasLine(const std::string& line) const {
    const std::vector<std::string> lines = Lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  SwitchIOModuleUpdate two;  ///< with two packages
};

TEST_F(SwitchFlows, UpdateFirmwareInstallsTheOnlyPackage) {
  ScriptInstall(JobAnswer(7, kJobDone));

  EXPECT_EQ(update.UpdateFirmware(), 0);

  EXPECT_EQ(Lines(), Joined({Begin("updateSingleFirmware"), InstalledLines()}));
  EXPECT_THAT(progress.texts, ElementsAre("start UpdateFirmware", "start updateSingleFirmware", kInstallText));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u));
  EXPECT_THAT(InstalledUris(), ElementsAre("http://files/one.bin"));
}

TEST_F(SwitchFlows, UpdateFirmwareInstallsTwoPackages) {
  ScriptInstall(JobAnswer(7, kJobDone));

  EXPECT_EQ(two.UpdateFirmware(), 0);

  EXPECT_EQ(Lines(), Joined({Begin("updateDoubleFirmwares"),
                             {"3 start installPackage pkgFileURI1."},
                             InstalledLines(),
                             {"3 start installPackage pkgFileURI2."},
                             InstalledLines()}));
  EXPECT_THAT(progress.texts,
              ElementsAre("start UpdateFirmware", "start updateDoubleFirmwares", kInstallText, kInstallText));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u));
  EXPECT_THAT(InstalledUris(), ElementsAre("http://files/one.bin", "http://files/two.bin"));
}

TEST_F(SwitchFlows, StartUpdateInstallsActivatesRebootsAndWaits) {
  ScriptWholeUpdate();

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_EQ(Lines(),
            Joined({Begin("updateSingleFirmwareWithReboot"), InstalledLines(), ActivatedLines(), RebootedLines()}));
  EXPECT_THAT(progress.texts,
              ElementsAre("start UpdateWithReboot", "start updateSingleFirmwareWithReboot", kInstallText,
                          "start activateNewImage", "start reboot I/O Module switch", kRestartText));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u, 600000u));
}

TEST_F(SwitchFlows, StartUpdateWithTwoPackages) {
  ScriptWholeUpdate();

  EXPECT_EQ(two.StartUpdate(), 0);

  EXPECT_EQ(Lines(), Joined({Begin("updateDoubleFirmwaresWithReboot"), InstalledLines(), InstalledLines(),
                             ActivatedLines(), RebootedLines()}));
  EXPECT_THAT(progress.texts,
              ElementsAre("start UpdateWithReboot", "start updateDoubleFirmwaresWithReboot",
                          "start installPackage pkgFileURI1", kInstallText, "start installPackage pkgFileURI2",
                          kInstallText, "start activateNewImage", "start reboot I/O Module switch", kRestartText));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u, 10000u, 600000u));
  EXPECT_THAT(InstalledUris(), ElementsAre("http://files/one.bin", "http://files/two.bin"));
}

TEST_F(SwitchFlows, NoConnectionIsOpenWhileTheSwitchRestarts) {
  ScriptWholeUpdate();
  const VirtualClock watched([this](std::size_t, std::uint32_t) { EXPECT_TRUE(server.WaitUntilAllClosed()); });

  EXPECT_EQ(two.StartUpdate(), 0);

  EXPECT_EQ(watched.Sleeps().back(), 600000u);
}

/// The four flows.
struct Flow {
  const char* name;
  bool twoPackages;
  int (SwitchIOModuleUpdate::*run)();
};
constexpr Flow kFlows[] = {{"Single", false, &SwitchIOModuleUpdate::UpdateFirmware},
                           {"Double", true, &SwitchIOModuleUpdate::UpdateFirmware},
                           {"SingleWithReboot", false, &SwitchIOModuleUpdate::StartUpdate},
                           {"DoubleWithReboot", true, &SwitchIOModuleUpdate::StartUpdate}};

class SwitchFlow : public SwitchFlows, public ::testing::WithParamInterface<Flow> {
 protected:
  int Run() { return ((GetParam().twoPackages ? two : update).*GetParam().run)(); }
};

INSTANTIATE_TEST_SUITE_P(All, SwitchFlow, ::testing::ValuesIn(kFlows),
                         [](const auto& flow) { return flow.param.name; });

TEST_P(SwitchFlow, EndsWithAFailedFirstInstall) {
  ScriptWholeUpdate();
  server.OnEnumerate(kJobClass, JobAnswer(2, kJobBusy));

  EXPECT_EQ(Run(), 18);

  EXPECT_THAT(InstalledUris(), ElementsAre("http://files/one.bin"));
  EXPECT_EQ(RequestsOf("InvokeMethod").size(), 1u);
  EXPECT_THAT(RequestsOf("ModifyInstance"), IsEmpty());
  EXPECT_EQ(Lines().back(), "3 [E] step=83 value=18 ");
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u));
}

TEST_P(SwitchFlow, EndsWithTwoForACallbackThatThrows) {
  ScriptWholeUpdate();
  for (const char* text :
       {"start UpdateFirmware", "start UpdateWithReboot", "start updateSingleFirmware", "start updateDoubleFirmwares",
        "start updateSingleFirmwareWithReboot", "start updateDoubleFirmwaresWithReboot", kInstallText}) {
    ThrowingProgress throwing(text);
    for (SwitchIOModuleUpdate* facade : {&update, &two}) facade->SetLogCallBack(&throwing);
    const int result = Run();
    const bool sent = std::count(throwing.texts.begin(), throwing.texts.end(), text) != 0;
    EXPECT_EQ(result, sent ? 2 : 0) << text;
    EXPECT_EQ(sent, throwing.texts.back() == text) << "nothing goes on behind it";
  }
}

TEST_F(SwitchFlows, EveryStepActsOnTheBayOfTheObject) {
  ScriptWholeUpdate();
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule03", "3"), Slot("iomodule12", "12")}));
  server.OnAssociatorNames(SlotPath("iomodule12"), kPackageInSlot, kPhysicalPackage, Objects({Package("package12")}));
  server.OnAssociators(PackagePath("package12"), kSystemPackage, "CIM_ComputerSystem",
                       Objects({System("switch12", {12})}));
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4}), IdentityLink("iom12", {4})}));
  server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", "0"), DeferredSystem("IO Module 12", "1")}));
  SwitchIOModuleUpdate twelve("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", 12);

  EXPECT_EQ(twelve.StartUpdate(), 0);

  const std::vector<CimRequest> invocations = RequestsOf("InvokeMethod");
  ASSERT_EQ(invocations.size(), 2u);
  EXPECT_THAT(invocations[0].arguments.at(3).values,
              ElementsAre("//cmm01/root/cimv2:CIM_ComputerSystem.Name=\"switch12\""));
  EXPECT_EQ(invocations[1].method, "RequestStateChange");
  EXPECT_EQ(invocations[1].objectText, SystemPath("switch12"));
  ASSERT_EQ(RequestsOf("ModifyInstance").size(), 1u);
  EXPECT_EQ(RequestsOf("ModifyInstance").front().objectText, IdentityPath("iom12"));
}

TEST_F(SwitchFlows, AFailedSecondInstallGivesItsCode) {
  ScriptWholeUpdate();
  server.OnEnumerate(kJobClass, JobAnswer(7, kJobDone), JobAnswer(10, "Fingerprint mismatch"), JobAnswer(7, kJobDone),
                     JobAnswer(10, "Fingerprint mismatch"));

  EXPECT_EQ(two.UpdateFirmware(), 10);
  EXPECT_EQ(two.StartUpdate(), 10);

  EXPECT_EQ(InstalledUris().size(), 4u);
  EXPECT_THAT(RequestsOf("ModifyInstance"), IsEmpty());
}

TEST_F(SwitchFlows, AnEmptySecondPackageMeansOnePackageAlsoWhenTheFirstIsEmpty) {
  ScriptInstall(JobAnswer(10, "file does not exist"));
  SwitchIOModuleUpdate empty("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", kBay);

  EXPECT_EQ(empty.UpdateFirmware(), 35);

  EXPECT_THAT(InstalledUris(), ElementsAre(""));
}

TEST_F(SwitchFlows, AnEmptyFirstOfTwoPackagesIsInstalledAllTheSame) {
  ScriptInstall(JobAnswer(7, kJobDone));
  SwitchIOModuleUpdate second("127.0.0.1", "USERID", "s3cret", server.Port(), "", "http://files/two.bin", kBay);

  EXPECT_EQ(second.UpdateFirmware(), 0);

  EXPECT_THAT(InstalledUris(), ElementsAre("", "http://files/two.bin"));
}

TEST_F(SwitchFlows, AFailedActivationIsLoggedAndTheSwitchRebootedAllTheSame) {
  ScriptWholeUpdate();
  server.OnEnumerate(kIdentityClass, CimError(1, "no"));

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_TRUE(HasLine(kActivationIgnored));
  EXPECT_EQ(Count(kStateChange), 1u);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u, 600000u));
}

TEST_F(SwitchFlows, ASwitchWithoutFallbackImageIsRebootedAlsoWhenItNeedNotBe) {
  ScriptWholeUpdate();
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {2})}));
  ScriptDeferred("0");

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_TRUE(HasLine(kFallbackFlag));
  EXPECT_TRUE(HasLine(kActivationIgnored));
  EXPECT_EQ(Count(kStateChange), 1u);
}

TEST_F(SwitchFlows, ASwitchWithFallbackImageAndWithoutDeferredUpdatesIsNotRebooted) {
  ScriptWholeUpdate();
  ScriptDeferred("0");

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_EQ(Count(kModify), 1u);
  EXPECT_EQ(Count(kStateChange), 0u);
  EXPECT_EQ(progress.texts.back(), kRestartText);
  EXPECT_EQ(clock.Sleeps().back(), 600000u);
}

TEST_F(SwitchFlows, AFailedRebootIsLoggedAndTheResultStays) {
  ScriptWholeUpdate();
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "2")));

  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(Lines().back(), "1 Error happened when reboot the switch");
  EXPECT_EQ(two.StartUpdate(), 0);
  EXPECT_EQ(Lines().back(), "1 Error happened when reboot the switch.");

  EXPECT_EQ(std::count(progress.texts.begin(), progress.texts.end(), kRestartText), 2);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u, 600000u, 10000u, 10000u, 10000u, 600000u));
}

TEST_F(SwitchFlows, ARefusedActivationEndsTheFlowWithTwo) {
  ScriptWholeUpdate();
  server.OnModify("", CimError(2, "not allowed"));

  EXPECT_EQ(update.StartUpdate(), 2);

  EXPECT_EQ(Lines().back(), "1 StartUpdate ended by an exception: not allowed");
  EXPECT_EQ(Count(kStateChange), 0u);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u));
}

TEST_F(SwitchFlows, ACallbackThatThrowsBehindTheInstallEndsTheFlowWithTwo) {
  ScriptWholeUpdate();
  for (const char* text : {"start activateNewImage", kRestartText}) {
    ThrowingProgress throwing(text);
    update.SetLogCallBack(&throwing);
    EXPECT_EQ(update.StartUpdate(), 2) << text;
    EXPECT_EQ(log.Texts(1).back(), "StartUpdate ended by an exception: the display is gone");
  }
}

TEST_F(SwitchFlows, ACallbackThatThrowsAtAPackageOfTwoEndsTheFlowThere) {
  ScriptWholeUpdate();
  std::size_t installs = 0;
  for (const char* text : {"start installPackage pkgFileURI1", "start installPackage pkgFileURI2"}) {
    ThrowingProgress throwing(text);
    two.SetLogCallBack(&throwing);
    EXPECT_EQ(two.StartUpdate(), 2) << text;
    EXPECT_EQ(log.Texts(1).back(), "StartUpdate ended by an exception: the display is gone");
    EXPECT_EQ(throwing.texts.back(), text);
    EXPECT_EQ(InstalledUris().size(), installs) << text;
    ++installs;
  }
}

TEST_F(SwitchFlows, ACallbackThatThrowsAtTheRebootIsAFailedReboot) {
  ScriptWholeUpdate();
  ThrowingProgress throwing("start reboot I/O Module switch");
  update.SetLogCallBack(&throwing);

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_EQ(Lines().back(), "1 Error happened when reboot the switch");
  EXPECT_EQ(throwing.texts.back(), kRestartText);
  EXPECT_EQ(Count(kStateChange), 0u);
  EXPECT_EQ(clock.Sleeps().back(), 600000u);
}

class SwitchActivation : public SwitchFlows {};

// Only a list of images without a fallback one says that there is none.
TEST_F(SwitchActivation, ThatFailsOtherwiseMakesNoRebootNecessary) {
  ScriptTarget();
  ScriptDeferred("0");
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));
  server.OnEnumerate(kIdentityClass, CimError(5, "no such class"), Objects({IdentityLink("iom03", {4})}));
  server.OnModify("", CimError(1, "not now"));

  EXPECT_EQ(update.ActivateImage(kBay), 3);
  EXPECT_EQ(update.Reboot(kBay), 0);
  EXPECT_EQ(update.ActivateImage(kBay), 2);
  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_EQ(Count(kStateChange), 0u);
}

TEST(SwitchActivationWithoutConnection, MakesNoRebootNecessary) {
  CimServer::Options options = HttpsServer();
  options.port = CimServer(options).Port();
  std::optional<CimServer> server;
  const VirtualClock clock;
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", options.port, "", "", kBay);
  EXPECT_EQ(update.ActivateImage(kBay), 1);

  server.emplace(options);
  server->OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 03", "0")}));
  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_THAT(server->Summaries(), ElementsAre("EnumerateInstances VORTA_IOModuleComputerSystem"));
}

TEST_F(SwitchActivation, StepByStep) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {6, 4})}));

  EXPECT_EQ(update.ActivateImage(kBay), 0);

  EXPECT_EQ(Lines(), ActivatedLines());
  EXPECT_THAT(progress.texts, ElementsAre("start activateNewImage"));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances VORTA_IOMElementFirmwareIdentity", kModify, "disconnect"));
}

TEST_F(SwitchActivation, WritesTheInstanceBackWithTheStatusThree) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {6, 4})}));

  update.ActivateImage(kBay);

  const CimRequest enumeration = server.Requests().at(0);
  EXPECT_EQ(enumeration.nameSpace, "root/cimv2");
  const CimRequest request = server.Requests().at(1);
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  EXPECT_EQ(request.objectText, IdentityPath("iom03"));
  ASSERT_EQ(request.arguments.size(), 3u);
  EXPECT_EQ(request.arguments[0].name, "Antecedent");
  EXPECT_THAT(request.arguments[0].values, ElementsAre("iom03"));
  EXPECT_EQ(request.arguments[1].name, "ElementSoftwareStatus");
  EXPECT_EQ(request.arguments[1].type, "uint16");
  EXPECT_TRUE(request.arguments[1].isArray);
  EXPECT_THAT(request.arguments[1].values, ElementsAre("3"));
  EXPECT_EQ(request.arguments[2].name, "Dependent");
  EXPECT_THAT(request.arguments[2].values, ElementsAre("iom03 image"));
}

TEST_F(SwitchActivation, TakesTheFirstFallbackImageOfTheBay) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom04", {4}), IdentityLink("iom03 a", {6}),
                                              IdentityLink("iom03 b", {4}), IdentityLink("iom03 c", {4})}));

  EXPECT_EQ(update.ActivateImage(kBay), 0);

  EXPECT_EQ(RequestsOf("ModifyInstance").size(), 1u);
  EXPECT_EQ(RequestsOf("ModifyInstance").front().objectText, IdentityPath("iom03 b"));
  EXPECT_TRUE(HasLine("3 VORTA_IOMElementFirmwareIdentity: iom04"));
  EXPECT_TRUE(HasLine("3 VORTA_IOMElementFirmwareIdentity: iom03 a"));
  EXPECT_TRUE(HasLine("3 ElementSoftwareStatus: 6 "));
}

struct ActivationRow {
  int bay;
  const char* owner;
  unsigned status;
  bool activated;
};

class SwitchActivationRule : public SwitchFlows, public ::testing::WithParamInterface<ActivationRow> {};

TEST_P(SwitchActivationRule, NeedsTheBaysKeyAndA4) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink(GetParam().owner, {GetParam().status})}));

  EXPECT_EQ(update.ActivateImage(GetParam().bay), GetParam().activated ? 0 : 3);

  EXPECT_EQ(RequestsOf("ModifyInstance").size(), GetParam().activated ? 1u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchActivationRule,
                         ::testing::Values(ActivationRow{7, "Name=iom07 of the chassis", 4, true},
                                           ActivationRow{7, "iom07", 6, false}, ActivationRow{7, "iom07", 2, false},
                                           ActivationRow{7, "iom07", 14, true}, ActivationRow{7, "iom7", 4, false},
                                           ActivationRow{7, "IOM07", 4, false}, ActivationRow{12, "iom12", 4, true},
                                           ActivationRow{1, "iom012", 4, true}, ActivationRow{1, "iom12", 4, false},
                                           ActivationRow{0, "iom00", 4, true}, ActivationRow{-1, "iom01", 4, false},
                                           ActivationRow{99, "iom99", 4, true}));

TEST_F(SwitchActivation, WithoutFallbackImageIsThree) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {2, 6})}));

  EXPECT_EQ(update.ActivateImage(kBay), 3);

  EXPECT_THAT(Lines(), ElementsAre("3 Enter activateNewImage().", "3 start SwitchIOUpdateByCIM::activateNewImage().",
                                   kConnectedLine, "3 start EnumerateInstances VORTA_IOMElementFirmwareIdentity.",
                                   "3 Succeeded to collect instancesIOMElement instances.",
                                   "3 instancesIOMElement.size() = 1", "3 VORTA_IOMElementFirmwareIdentity: iom03",
                                   "3 ElementSoftwareStatus: 2 6 ", kNoFallback, kFallbackFlag));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances VORTA_IOMElementFirmwareIdentity", "disconnect"));
}

TEST_F(SwitchActivation, AnEmptyListIsWithoutFallbackImageToo) {
  EXPECT_EQ(update.ActivateImage(kBay), 3);

  EXPECT_TRUE(HasLine("3 instancesIOMElement.size() = 0"));
  EXPECT_EQ(Lines().back(), kFallbackFlag);
}

TEST_F(SwitchActivation, GivesUpAfterThreeConnects) {
  EXPECT_EQ(nobody.ActivateImage(kBay), 1);

  EXPECT_THAT(Lines(), ElementsAre("3 Enter activateNewImage().", "3 start SwitchIOUpdateByCIM::activateNewImage().",
                                   kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine,
                                   "1 Failed to connect to the CMM"));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u, 10000u));
}

TEST_F(SwitchActivation, ImagesThatCannotBeReadAreThree) {
  server.OnEnumerate(kIdentityClass, CimError(2, "denied"), CimError(99, "odd"), Close(),
                     HttpStatus(401, "Unauthorized"));

  for (int call = 0; call < 4; ++call) {
    EXPECT_EQ(update.ActivateImage(kBay), 3);
    EXPECT_EQ(Lines().back(), "1 Failed to collect instancesIOMElement instances.");
  }
  EXPECT_FALSE(HasLine(kFallbackFlag));
}

TEST_F(SwitchActivation, ARefusedChangeIsTwo) {
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4})}));
  server.OnModify("", CimError(1, "not now"), Close());

  EXPECT_EQ(update.ActivateImage(kBay), 2);
  EXPECT_EQ(update.ActivateImage(kBay), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre("ActivateImage ended by an exception: not now",
                                        "ActivateImage ended by an exception: Connection closed by CIM Server."));
}

TEST_F(SwitchActivation, AStatusOfAnotherTypeIsTwo) {
  server.OnEnumerate(
      kIdentityClass,
      Objects({CimObjectSpec(kIdentityClass).Key("Antecedent", "iom03").With("ElementSoftwareStatus", "4")}));

  EXPECT_EQ(update.ActivateImage(kBay), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre("ActivateImage ended by an exception: type mismatch"));
  EXPECT_THAT(RequestsOf("ModifyInstance"), IsEmpty());
}

TEST_F(SwitchActivation, ACallbackThatThrowsIsTwo) {
  ThrowingProgress throwing("start activateNewImage");
  update.SetLogCallBack(&throwing);

  EXPECT_EQ(update.ActivateImage(kBay), 2);

  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

}  // namespace
}  // namespace Orvane::testing
