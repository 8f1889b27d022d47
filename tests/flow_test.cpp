// Whole updates, reboots and reseats of the library against the simulated chassis, over real HTTPS and on virtual time:
// each ends well, and the inventory shows afterwards what changed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/cmm.h>
#include <orvane/simulator/simulator.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "testing/virtual_clock.h"

namespace Orvane::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kHost = "127.0.0.1";
constexpr const char* kUser = "USERID";
constexpr const char* kPassword = "secret";

class Messages : public LogMessageCallBack {
 public:
  void OnMessage(const std::string& message) override { texts_ += message + "\n"; }
  std::string texts_;
};

class Flow : public ::testing::Test {
 protected:
  Flow() {
    simulator::Options options;
    options.password = kPassword;
    options.httpPort = -1;
    options.clock = chassisTime_;
    simulator_ = std::make_unique<simulator::Simulator>(simulator::BuiltInModel(), options);
    port_ = simulator_->HttpsPort();
  }

  // The URI of a package for a target.
  static std::string Package(const std::string& target, const std::string& version, const std::string& more = "") {
    const std::string path = ::testing::TempDir() + "orvane-flow-" + target + version + ".pkg";
    std::ofstream(path) << R"({"orvane_package":1,"target":")" << target << R"(","version":")" << version << "\""
                        << more << R"(,"payload":"ZmlybXdhcmU=",)"
                        << R"("sha256":"c3bf47ea1f4a4a605470313cacb3a44f4a461f68c6faeab07e737610cb5ac835"})";
    return "file://" + path;
  }

  std::vector<std::string> ModuleVersions(int bay, bool isPassThru) const {
    CMMInventory inventory(kHost, port_, kUser, kPassword);
    CIMIODataList modules;
    EXPECT_EQ(isPassThru ? inventory.GetPassThruData(bay, modules) : inventory.GetIOModuleDataByBayID(bay, modules), 0);
    std::vector<std::string> versions;
    for (std::size_t i = 0; i < modules.Size(); ++i) {
      for (const FirmwareIdentity& image : modules.Get(i).Firmwares) {
        versions.push_back(image.VersionString + " " + image.ElementSoftwareStatus);
      }
    }
    return versions;
  }

  std::string ActiveCmmVersion() const {
    CMMInventory inventory(kHost, port_, kUser, kPassword);
    CMMDataList cmms;
    EXPECT_EQ(inventory.GetCMMData(cmms), 0);
    return cmms.Size() == 1 ? cmms.Get(0).Firmwares.at(0).FullVersionString : "no CMM";
  }

  std::shared_ptr<simulator::ManualClock> chassisTime_ = std::make_shared<simulator::ManualClock>();
  Orvane::testing::VirtualClock waits_{[clock = chassisTime_](std::size_t, std::uint32_t milliseconds) {
    clock->Advance(std::chrono::milliseconds(milliseconds));
  }};
  std::unique_ptr<simulator::Simulator> simulator_;
  std::uint16_t port_ = 0;
  Messages messages_;
};

TEST_F(Flow, UpdatesTheCmmAndRestartsIt) {
  const std::string package = Package("cmm", "CMFW15A", R"(,"major":2,"minor":6,"revision":3)");
  CMMUpdate update(kHost, port_, kUser, kPassword, package);
  update.SetLogCallBack(&messages_);
  ASSERT_EQ(ActiveCmmVersion(), "CMFW14C-2.5.1");

  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 0);

  EXPECT_EQ(ActiveCmmVersion(), "CMFW15A-2.6.3");
  EXPECT_THAT(messages_.texts_, HasSubstr("CMM package installated successfully."));
}

TEST_F(Flow, UpdatesTheCmmWithoutRestart) {
  CMMUpdate update(kHost, port_, kUser, kPassword, Package("cmm", "CMFW15A"));

  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);

  EXPECT_EQ(ActiveCmmVersion(), "CMFW14C-2.5.1");
}

TEST_F(Flow, ReportsACmmPackageThatCannotBeInstalled) {
  CMMUpdate update(kHost, port_, kUser, kPassword, Package("switch", "7.3"));

  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 2);
}

TEST_F(Flow, RestartsTheCmmWithoutWaiting) {
  EXPECT_EQ(CMMReboot(kHost, port_, kUser, kPassword, CMM_REBOOT_NOWAIT), 0);
  // Seen to be down in the third round.
  EXPECT_EQ(waits_.Elapsed(), std::chrono::seconds(6));
}

TEST_F(Flow, UpdatesActivatesAndRestartsASwitchThatWaits) {
  SwitchIOModuleUpdate update(kHost, kUser, kPassword, port_, Package("switch", "7.3"), "", 1);

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_EQ(update.CheckIfRebootSuccess(1), 0);
  EXPECT_THAT(ModuleVersions(1, false), ElementsAre("7.1 6 4 ", "7.3 2 6 ", "3.2 2 "));
}

TEST_F(Flow, UpdatesASwitchThatActivatesByItself) {
  SwitchIOModuleUpdate update(kHost, kUser, kPassword, port_, Package("switch", "7.3"), "", 3);

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_THAT(ModuleVersions(3, false), ElementsAre("7.2 6 4 ", "7.3 2 6 ", "3.2 2 "));
}

TEST_F(Flow, UpdatesASwitchWithoutFallbackImage) {
  SwitchIOModuleUpdate update(kHost, kUser, kPassword, port_, Package("switch", "7.3"), "", 5);

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_THAT(ModuleVersions(5, false), ElementsAre("7.3 2 6 ", "3.2 2 "));
}

TEST_F(Flow, UpdatesASwitchWithTwoPackages) {
  SwitchIOModuleUpdate update(kHost, kUser, kPassword, port_, Package("switch", "3.4", R"(,"image":"boot")"),
                              Package("switch", "7.3"), 2);

  EXPECT_EQ(update.StartUpdate(), 0);

  EXPECT_THAT(ModuleVersions(2, false), ElementsAre("7.1 6 4 ", "7.3 2 6 ", "3.4 2 "));
}

TEST_F(Flow, ReseatsASwitch) {
  SwitchIOModuleUpdate update(kHost, kUser, kPassword, port_, "", "", 2);

  EXPECT_EQ(update.Reseat(2), 0);
  EXPECT_EQ(update.Reseat(2), 4);  // busy
  waits_.Forget();
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 0);
  EXPECT_EQ(waits_.Elapsed(), std::chrono::seconds(90));
}

TEST_F(Flow, SaysWhyASwitchPackageCannotBeInstalled) {
  const auto install = [&](const std::string& uri) {
    return SwitchIOModuleUpdate(kHost, kUser, kPassword, port_, uri, "", 1).UpdateFirmware();
  };
  EXPECT_EQ(install("file:///no/such/package"), 35);
  EXPECT_EQ(install("http://127.0.0.1:" + std::to_string(port_) + "/"), 9);  // HTTPS there
  EXPECT_EQ(install("https://" + std::string(kHost) + ":" + std::to_string(port_) + "/"), 11);
  EXPECT_EQ(install(Package("cmm", "X")), 15);
  EXPECT_EQ(install(""), 2);
  EXPECT_EQ(install("tftp://127.0.0.1/p"), 2);
}

TEST_F(Flow, UpdatesAndRestartsAPassThroughModule) {
  SwitchPassThruUpdate update(kHost, kUser, kPassword, port_, Package("passthru", "1.2"), 4);

  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(update.Reboot(4), 0);
  EXPECT_EQ(update.CheckIfRebootSuccess(4), 0);

  EXPECT_THAT(ModuleVersions(4, true), ElementsAre("1.2 2 "));
}

TEST_F(Flow, InstallsAgainWithOnePassThroughObject) {
  SwitchPassThruUpdate update(kHost, kUser, kPassword, port_, Package("passthru", "1.2"), 6);

  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(update.StartUpdate(), 0);
}

TEST_F(Flow, ReseatsABlade) {
  Cmm_Blade_Reseat blade(kHost, port_, kUser, kPassword, 0);

  EXPECT_EQ(blade.ReseatBlade(10), 0);
  EXPECT_EQ(blade.ReseatBlade(10), 3);  // it is on its way already
  EXPECT_EQ(blade.ReseatBlade(8), 9);   // an empty bay
}

}  // namespace
}  // namespace Orvane::tests
