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

class SwitchBadInput : public SwitchTest {};

TEST_F(SwitchBadInput, CredentialsThatAreRefusedInMidPolling) {
  ScriptInstall(JobAnswer(4, kJobRunning), CimError(2, "denied"), JobAnswer(4, kJobRunning),
                HttpStatus(401, "Unauthorized"));

  EXPECT_EQ(update.UpdateFirmware(), 5);
  EXPECT_EQ(update.UpdateFirmware(), 2);

  EXPECT_TRUE(log.Has(1, "Wrong userid or password,  Please check your userid and password!"));
  EXPECT_TRUE(log.Has(1, "Unknown error happened when invokeMethod HTTP Error (401 Unauthorized)."));
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
