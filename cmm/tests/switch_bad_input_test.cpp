// Bad input for every operation of the switch update: odd bays, wrong credentials, several threads, and a chassis
// manager that restarts. Each ends in a code, without an open connection.
#include <memory>
#include <thread>

#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class SwitchBadBay : public SwitchTest, public ::testing::WithParamInterface<int> {};

TEST_P(SwitchBadBay, HasNoSwitch) {
  ScriptInstall(JobAnswer(7, kJobDone));
  ScriptDeferred("1");
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4})}));
  const int bay = GetParam();
  SwitchIOModuleUpdate odd("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", bay);

  EXPECT_EQ(odd.UpdateFirmware(), 24);
  EXPECT_EQ(odd.StartUpdate(), 24);
  EXPECT_EQ(odd.ActivateImage(bay), 3);
  EXPECT_EQ(odd.CheckDeferedUpdateSupported(bay), 6);
  EXPECT_EQ(odd.EHCMCheck(bay), 29);
  EXPECT_EQ(odd.Reboot(bay), 0) << "the check finds no switch, and that skips the reboot";
  EXPECT_EQ(odd.Reseat(bay), 24);
  EXPECT_EQ(odd.CheckIfRebootSuccess(bay), 24);
  EXPECT_TRUE(RequestsOf("InvokeMethod").empty());
  EXPECT_TRUE(RequestsOf("ModifyInstance").empty());
}

INSTANTIATE_TEST_SUITE_P(Bays, SwitchBadBay, ::testing::Values(0, -1, 4, 99));

class SwitchBadInput : public SwitchTest {
 protected:
  /// The bay holds a pass-through module: its slot and package are there, but no computer system.
  void PutAPassThroughModuleIntoTheBay() {
    ScriptInstall(JobAnswer(7, kJobDone));
    server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem", NoObjects());
    server.OnAssociators(PackagePath("package"), kRealizes, kPassThruClass, Objects({PassThru("module")}));
    server.OnEnumerate(kSystemClass, Objects({DeferredSystem("IO Module 04", "1")}));
    server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom04", {4})}));
  }
};

TEST_F(SwitchBadInput, ABayWithAPassThroughModuleHoldsNoSwitch) {
  PutAPassThroughModuleIntoTheBay();

  EXPECT_EQ(update.UpdateFirmware(), 24);
  EXPECT_EQ(update.StartUpdate(), 24);
  EXPECT_EQ(update.ActivateImage(kBay), 3);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 6);
  EXPECT_EQ(update.EHCMCheck(kBay), 29);
  EXPECT_EQ(update.Reboot(kBay), 0);
  EXPECT_EQ(update.Reseat(kBay), 24);
  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 24);
  EXPECT_TRUE(RequestsOf("InvokeMethod").empty());
  EXPECT_TRUE(RequestsOf("ModifyInstance").empty());
  EXPECT_TRUE(log.Has(1, "not find intereting instance"));
}

// The object's bay is that of the updates; every other operation has a bay of its own.
TEST_F(SwitchBadInput, TheBayOfTheCallCountsNotThatOfTheObject) {
  ScriptTarget();
  ScriptDeferred("1");
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem",
                       Objects({System("switch03", {12})
                                    .With("PostStatus", "511")
                                    .With("PostStatusDescription", "Module completed POST successfully.")}));
  SwitchIOModuleUpdate other("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", 9);

  EXPECT_EQ(other.Reboot(kBay), 0);
  EXPECT_EQ(other.Reseat(kBay), 0);
  EXPECT_EQ(RequestsOf("InvokeMethod").size(), 2u);
  EXPECT_EQ(other.CheckIfRebootSuccess(kBay), 0);
  EXPECT_EQ(update.Reseat(9), 24);
  EXPECT_EQ(update.CheckIfRebootSuccess(9), 24);

  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 09", "0"), EhcmSystem("IO Module 03", "2")}),
                     Objects({EhcmSystem("IO Module 09", "0"), EhcmSystem("IO Module 03", "2")}),
                     Objects({EhcmSystem("IO Module 09", "0"), EhcmSystem("IO Module 03", "1")}));
  EXPECT_EQ(other.EHCMCheck(kBay), 0);
  EXPECT_EQ(other.EHCMCheck(9), 30);
}

TEST_F(SwitchBadInput, WithoutACallbackEveryOperationRunsInSilence) {
  ScriptInstall(JobAnswer(7, kJobDone));
  ScriptDeferred("1");
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4})}));
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));
  SwitchIOModuleUpdate two("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin",
                           "http://files/two.bin", kBay);
  update.SetLogCallBack(nullptr);

  for (SwitchIOModuleUpdate* facade : {&update, &two}) {
    EXPECT_EQ(facade->UpdateFirmware(), 0);
    EXPECT_EQ(facade->StartUpdate(), 0);
    EXPECT_EQ(facade->ActivateImage(kBay), 0);
    EXPECT_EQ(facade->Reboot(kBay), 0);
    EXPECT_EQ(facade->Reseat(kBay), 0);
  }
  EXPECT_TRUE(progress.texts.empty());
}

TEST_F(SwitchBadInput, TheSamePackageAsFirstAndSecondIsInstalledTwice) {
  ScriptInstall(JobAnswer(7, kJobDone));
  SwitchIOModuleUpdate same("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin",
                            "http://files/one.bin", kBay);

  EXPECT_EQ(same.UpdateFirmware(), 0);

  ASSERT_EQ(RequestsOf("InvokeMethod").size(), 2u);
  for (const CimRequest& request : RequestsOf("InvokeMethod")) {
    EXPECT_EQ(request.arguments.at(0).values, std::vector<std::string>{"http://files/one.bin"});
  }
}

TEST(SwitchBadCredentials, ShowAtTheFirstRequestOfEveryOperation) {
  CimServer::Options options = HttpsServer();
  options.user = "USERID";
  options.password = "another";
  CimServer server(options);
  const VirtualClock clock;
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", kBay);

  EXPECT_EQ(update.UpdateFirmware(), 2);
  EXPECT_EQ(update.StartUpdate(), 2);
  EXPECT_EQ(update.ActivateImage(kBay), 3);
  EXPECT_EQ(update.CheckDeferedUpdateSupported(kBay), 29);
  EXPECT_EQ(update.EHCMCheck(kBay), 29);
  EXPECT_EQ(update.Reboot(kBay), 0);
  EXPECT_EQ(update.Reseat(kBay), 24);
  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 6);

  EXPECT_TRUE(log.Has(1,
                      "Unknown error happened when enumerate CIM_SoftwareInstallationService. "
                      "HTTP Error (401 Unauthorized)."));
  for (const Log::Record& record : log.Records()) EXPECT_THAT(record.text, Not(HasSubstr("s3cret")));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(SwitchBadInput, CredentialsThatAreRefusedInMidPolling) {
  ScriptInstall(JobAnswer(4, kJobRunning), CimError(2, "denied"), JobAnswer(4, kJobRunning),
                HttpStatus(401, "Unauthorized"));

  EXPECT_EQ(update.UpdateFirmware(), 5);
  EXPECT_EQ(update.UpdateFirmware(), 2);

  EXPECT_TRUE(log.Has(1, "Wrong userid or password,  Please check your userid and password!"));
  EXPECT_TRUE(log.Has(1, "Unknown error happened when invokeMethod HTTP Error (401 Unauthorized)."));
}

/// A chassis manager that speaks no TLS.
class SwitchPlainHttp : public SwitchTest {
 protected:
  SwitchPlainHttp() : SwitchTest(CimServer::Options()) {}
};

TEST_F(SwitchPlainHttp, ServesEveryOperation) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem",
                       Objects({System("switch03", {12})
                                    .With("PostStatus", "511")
                                    .With("PostStatusDescription", "Module completed POST successfully.")}));
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4})}));
  server.OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "1").With("DeferredUpdateSupported", "1")}));
  server.OnInvoke("RequestStateChange", MethodResult(CimTyped("uint32", "0")));

  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(update.EHCMCheck(kBay), 0);
  EXPECT_EQ(update.Reseat(kBay), 0);
  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 0);

  EXPECT_EQ(RequestsOf("InvokeMethod").size(), 3u);
  for (const CimRequest& request : server.Requests()) EXPECT_FALSE(request.tls);
}

TEST(SwitchRestart, OfTheChassisManagerBetweenTwoPollsIsNotNoticed) {
  CimServer::Options options = HttpsServer();
  auto server = std::make_unique<CimServer>(options);
  options.port = server->Port();
  const auto script = [&server](const CimAnswer& job) {
    server->OnEnumerate("CIM_Slot", Objects({Slot("iomodule03", "3")}));
    server->OnAssociatorNames("", kPackageInSlot, kPhysicalPackage, Objects({Package("package")}));
    server->OnAssociators("", kSystemPackage, "CIM_ComputerSystem", Objects({System("switch03", {12})}));
    server->OnEnumerate(kServiceClass, Objects({Service("install")}));
    server->OnInvoke("InstallFromURI", InstallAnswer());
    server->OnEnumerate(kJobClass, job);
  };
  script(JobAnswer(4, kJobRunning));
  const VirtualClock clock([&](std::size_t index, std::uint32_t) {
    if (index != 1) return;
    server.reset();
    server = std::make_unique<CimServer>(options);
    script(JobAnswer(7, kJobDone));
  });
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", options.port, "http://files/one.bin", "", kBay);

  EXPECT_EQ(update.UpdateFirmware(), 0);

  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 60000u));
  EXPECT_THAT(server->Summaries(), ElementsAre("EnumerateInstances CIM_ConcreteJob"));
}

TEST(SwitchRestart, DuringTheBusyWaitEndsItWith32) {
  std::unique_ptr<CimServer> server = std::make_unique<CimServer>(HttpsServer());
  server->OnEnumerate(kSystemClass, Objects({EhcmSystem("IO Module 03", "2")}));
  const VirtualClock clock([&server](std::size_t, std::uint32_t) { server.reset(); });
  const ScopedLog log;
  SwitchIOModuleUpdate update("127.0.0.1", "USERID", "s3cret", server->Port(), "", "", kBay);

  EXPECT_EQ(update.EHCMCheck(kBay), 32);
}

TEST_F(SwitchBadInput, TwoObjectsOnTwoThreadsDoNotDisturbEachOther) {
  ScriptInstall(JobAnswer(7, kJobDone));
  const auto run = [this](int& failures) {
    SwitchIOModuleUpdate own("127.0.0.1", "USERID", "s3cret", server.Port(), "http://files/one.bin", "", kBay);
    for (int call = 0; call < 10; ++call) failures += own.UpdateFirmware() == 0 ? 0 : 1;
  };
  int first = 0;
  int second = 0;
  std::thread other([&] { run(second); });
  run(first);
  other.join();

  EXPECT_EQ(first + second, 0);
  EXPECT_EQ(RequestsOf("InvokeMethod").size(), 20u);
}

TEST_F(SwitchBadInput, AnObjectCanBeDestroyedAfterAFailedCall) {
  server.OnAnything(Close());
  {
    SwitchIOModuleUpdate failed("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", kBay);
    EXPECT_EQ(failed.UpdateFirmware(), 2);
  }

  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(SwitchBadInput, TheSamePackageCanBeInstalledTwice) {
  ScriptInstall(JobAnswer(7, kJobDone));

  EXPECT_EQ(update.UpdateFirmware(), 0);
  EXPECT_EQ(update.UpdateFirmware(), 0);

  EXPECT_EQ(RequestsOf("InvokeMethod").size(), 2u);
}

}  // namespace
}  // namespace Orvane::testing
