// Faults in a living chassis: jobs that get stuck, vanish or fail, a CMM that stays down, two primaries, a target that
// is gone; and faults that wait for a state of the chassis.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "living_chassis.h"

namespace Orvane::simulator::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kReset = "11";
constexpr const char* kReseat = "32769";
constexpr int kDay = 86400;

class ChassisWithFaults : public LivingChassis {
 protected:
  // Starts anew with these faults, the elements of "faults".
  void Serve(const std::string& faults) {
    Options options;
    options.authentication = false;
    options.httpsPort = -1;
    options.clock = clock_;
    options.faults = ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[)" + faults + "]}");
    Reconnect();
    simulator_ = std::make_unique<Simulator>(BuiltInModel(), options);
  }

  // The effect meets the first installation.
  void ServeForInstallation(const std::string& effect) {
    Serve(R"({"request":{"method":"InstallFromURI","occurrence":1},"effect":)" + effect + "}");
  }
  // The effect comes with the first call of Trigger().
  void ServeForTrigger(const std::string& effect) {
    Serve(R"({"request":{"class":"CIM_Chassis","occurrence":1},"effect":)" + effect + "}");
  }
  void Trigger() { Client().Enumerate("CIM_Chassis"); }

  // Requests that Probe() sends end in an error under these circumstances.
  void ServeWhen(const std::string& when) {
    Serve(R"({"request":{"class":"CIM_Chassis"},"when":)" + when + R"(,"effect":{"kind":"cimError","code":1}})");
  }
  bool Probe() {
    try {
      Client().Enumerate("CIM_Chassis");
      return false;
    } catch (const std::runtime_error&) {
      return true;
    }
  }

  std::string InstallOnSwitch(int bay = 1) { return Install(Switch(bay), package_.Uri()).job; }

  std::vector<std::string> Names(const std::string& className, const std::string& property = "Name") {
    std::vector<std::string> names;
    for (const CimInstance& instance : Client().Enumerate(className)) names.push_back(instance[property]);
    return names;
  }

  const TemporaryFile package_{MakePackage("switch", "7.3")};
  const std::vector<std::string> imagesBefore_ = {"7.1 2 6", "6.9 4", "3.2 2"};
};

TEST_F(ChassisWithFaults, AJobStuckInNewNeverRuns) {
  ServeForInstallation(R"({"kind":"jobStuck","state":"new"})");
  const std::string job = InstallOnSwitch();
  Pass(kDay);
  EXPECT_THAT(Job(job), StartsWith("2 "));
  EXPECT_EQ(Images("VORTA:iom01:"), imagesBefore_);
}

TEST_F(ChassisWithFaults, AJobStuckInRunningNeverEnds) {
  ServeForInstallation(R"({"kind":"jobStuck"})");
  const std::string job = InstallOnSwitch();
  EXPECT_THAT(Job(job), StartsWith("2 "));
  Pass(1);
  EXPECT_THAT(Job(job), StartsWith("4 "));
  Pass(kDay);
  EXPECT_THAT(Job(job), StartsWith("4 "));
  EXPECT_EQ(Images("VORTA:iom01:"), imagesBefore_);
}

TEST_F(ChassisWithFaults, AJobGetsStuckWhereItIs) {
  ServeForTrigger(R"({"kind":"jobStuck"})");
  const std::string job = InstallOnSwitch();
  Trigger();
  Pass(kDay);
  EXPECT_THAT(Job(job), StartsWith("2 "));
}

TEST_F(ChassisWithFaults, AJobVanishesBeforeItCanBeRead) {
  ServeForInstallation(R"({"kind":"jobVanished"})");
  const CimOutcome outcome = Install(Switch(1), package_.Uri());
  EXPECT_EQ(outcome.returnValue, "4096");
  EXPECT_NE(outcome.job, "");
  EXPECT_THAT(Names("CIM_ConcreteJob"), IsEmpty());
  Pass(kDay);
  EXPECT_EQ(Images("VORTA:iom01:"), imagesBefore_);
}

TEST_F(ChassisWithFaults, AJobVanishesWhileItRuns) {
  ServeForTrigger(R"({"kind":"jobVanished"})");
  const std::string job = InstallOnSwitch();
  Pass(60);
  EXPECT_THAT(Job(job), StartsWith("4 "));
  Trigger();
  EXPECT_EQ(Job(job), "");
  Pass(kDay);
  EXPECT_EQ(Images("VORTA:iom01:"), imagesBefore_);
}

TEST_F(ChassisWithFaults, AJobFailsWhereItWouldEnd) {
  ServeForInstallation(R"({"kind":"jobFails","text":"Fingerprint mismatch"})");
  const std::string job = InstallOnSwitch();
  Pass(119);
  EXPECT_THAT(Job(job), StartsWith("4 "));
  Pass(1);
  EXPECT_EQ(Job(job), "10 Fingerprint mismatch");
  EXPECT_EQ(Images("VORTA:iom01:"), imagesBefore_);
}

TEST_F(ChassisWithFaults, ARunningJobFailsAtOnce) {
  ServeForTrigger(R"({"kind":"jobFails","text":"Timed out"})");
  const std::string job = InstallOnSwitch();
  Pass(60);
  Trigger();
  EXPECT_EQ(Job(job), "10 Timed out");
}

TEST_F(ChassisWithFaults, AFaultOfTheFirstJobLeavesTheOthersAlone) {
  ServeForInstallation(R"({"kind":"jobStuck"})");
  const std::string first = InstallOnSwitch(1);
  const std::string second = InstallOnSwitch(2);
  Pass(120);
  EXPECT_THAT(Job(first), StartsWith("4 "));
  EXPECT_THAT(Job(second), StartsWith("7 "));
}

TEST_F(ChassisWithFaults, AFaultMeetsAllJobsThatGoOn) {
  ServeForTrigger(R"({"kind":"jobVanished"})");
  InstallOnSwitch(1);
  Pass(119);
  InstallOnSwitch(2);
  InstallOnSwitch(3);
  Pass(1);
  EXPECT_THAT(Names("CIM_ConcreteJob"), SizeIs(3));
  Trigger();
  // The first one has ended.
  EXPECT_THAT(Names("CIM_ConcreteJob"), SizeIs(1));
}

TEST_F(ChassisWithFaults, AnInstallationThatStartsNoJobTakesItsFaultWithIt) {
  ServeForInstallation(R"({"kind":"jobVanished"})");
  const CimOutcome refused = Install(Switch(1), "gopher://a/b");
  EXPECT_EQ(refused.job, "");
  const std::string job = InstallOnSwitch();
  EXPECT_THAT(Job(job), StartsWith("2 "));
}

TEST_F(ChassisWithFaults, SeveralFaultsOfOneJobComeEachAtItsMoment) {
  Serve(R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobFails","text":"first"}},
           {"request":{"method":"InstallFromURI"},"effect":{"kind":"jobFails","text":"second"}},
           {"request":{"method":"InstallFromURI"},"effect":{"kind":"dropBeforeAnswer"}})");
  EXPECT_THROW(InstallOnSwitch(), std::runtime_error);
  Reconnect();
  const std::string job = Names("CIM_ConcreteJob", "InstanceID").at(0);
  Pass(120);
  EXPECT_EQ(Job(job), "10 first");
}

TEST_F(ChassisWithFaults, ACmmStaysDown) {
  Serve(R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"cmmStaysDown"}})");
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  Pass(4);
  EXPECT_TRUE(IsListening(simulator_->HttpPort()));
  Pass(1);
  EXPECT_FALSE(IsListening(simulator_->HttpPort()));
  Pass(kDay);
  EXPECT_FALSE(IsListening(simulator_->HttpPort()));
}

TEST_F(ChassisWithFaults, ACmmThatRebootsAlreadyStaysDown) {
  ServeForTrigger(R"({"kind":"cmmStaysDown"})");
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  Trigger();
  Pass(kDay);
  EXPECT_FALSE(IsListening(simulator_->HttpPort()));
}

TEST_F(ChassisWithFaults, TwoCmmsCallThemselvesPrimary) {
  ServeForTrigger(R"({"kind":"twoPrimaries"})");
  EXPECT_THAT(Names("CIM_IsSpare"), SizeIs(1));
  EXPECT_THAT(Names("VORTA_CMMComputerSystem", "EnabledState"), ElementsAre("2", "6"));
  Trigger();
  EXPECT_THAT(Names("CIM_IsSpare"), IsEmpty());
  EXPECT_THAT(Names("VORTA_CMMComputerSystem", "EnabledState"), ElementsAre("2", "2"));
}

struct Pulled {
  const char* target;
  int bay;
  const char* className;
  const char* property;
  const char* name;
};

void PrintTo(const Pulled& pulled, std::ostream* out) { *out << pulled.target; }

class TargetThatIsGone : public ChassisWithFaults, public testing::WithParamInterface<Pulled> {};

TEST_P(TargetThatIsGone, IsMissingFromThatRequestOn) {
  const Pulled& pulled = GetParam();
  Serve(R"({"request":{"occurrence":2},"effect":{"kind":"targetGone","target":")" + std::string(pulled.target) +
        R"(","bay":)" + std::to_string(pulled.bay) + "}}");
  const std::vector<std::string> before = Names(pulled.className, pulled.property);
  const std::vector<std::string> after = Names(pulled.className, pulled.property);
  EXPECT_THAT(before, Contains(pulled.name));
  EXPECT_THAT(after, Not(Contains(pulled.name)));
  EXPECT_EQ(after.size() + 1, before.size());
}

INSTANTIATE_TEST_SUITE_P(Kinds, TargetThatIsGone,
                         testing::Values(Pulled{"cmm", 2, "VORTA_CMMComputerSystem", "Name", "cmm02"},
                                         Pulled{"switch", 5, "VORTA_IOModuleComputerSystem", "Name", "iomodule05"},
                                         Pulled{"passThru", 4, "VORTA_PassThroughModule", "DeviceID", "iomodule04"},
                                         Pulled{"node", 10, "VORTA_ComputerSystem", "Name", "node10"}),
                         [](const testing::TestParamInfo<Pulled>& pulled) { return pulled.param.target; });

TEST_F(ChassisWithFaults, AnEmptyBayStaysEmpty) {
  // In bay 4 is a pass-through module.
  ServeForTrigger(R"({"kind":"targetGone","target":"switch","bay":4})");
  const std::size_t before = Names("CIM_ManagedSystemElement").size();
  Trigger();
  EXPECT_THAT(Names("CIM_ManagedSystemElement"), SizeIs(before));
}

TEST_F(ChassisWithFaults, ATargetThatIsGoneEndsItsInstallation) {
  ServeForTrigger(R"({"kind":"targetGone","target":"switch","bay":1})");
  const std::string job = InstallOnSwitch();
  Pass(60);
  Trigger();
  Pass(60);
  EXPECT_THAT(Job(job), StartsWith("10 Wait for Flash Complete"));
}

TEST_F(ChassisWithFaults, AFaultIsThereWhileAJobRuns) {
  ServeWhen(R"({"during":"jobRunning"})");
  EXPECT_FALSE(Probe());
  InstallOnSwitch();
  EXPECT_TRUE(Probe());
  Pass(119);
  EXPECT_TRUE(Probe());
  Pass(1);
  EXPECT_FALSE(Probe());
  InstallOnSwitch();
  EXPECT_TRUE(Probe());
}

TEST_F(ChassisWithFaults, AFaultIsThereOnceAJobHasEnded) {
  ServeWhen(R"({"after":"jobRunning"})");
  InstallOnSwitch();
  Pass(119);
  EXPECT_FALSE(Probe());
  // No request in between sees the end of the job.
  Pass(kDay);
  EXPECT_TRUE(Probe());
}

TEST_F(ChassisWithFaults, AStuckJobGoesOnForEver) {
  Serve(R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobStuck"}},
           {"request":{"class":"CIM_Chassis"},"when":{"after":"jobRunning"},"effect":{"kind":"cimError","code":1}})");
  InstallOnSwitch();
  Pass(kDay);
  EXPECT_FALSE(Probe());
}

TEST_F(ChassisWithFaults, AFaultIsThereWhileTheCmmShutsDown) {
  ServeWhen(R"({"during":"cmmRebooting"})");
  EXPECT_FALSE(Probe());
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  EXPECT_TRUE(Probe());
  Pass(185);
  Reconnect();
  EXPECT_FALSE(Probe());
}

TEST_F(ChassisWithFaults, AFaultIsThereOnceTheCmmIsBack) {
  ServeWhen(R"({"after":"cmmRebooting"})");
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  EXPECT_FALSE(Probe());
  Pass(185);
  Reconnect();
  EXPECT_TRUE(Probe());
}

TEST_F(ChassisWithFaults, ARestartingModuleIsNoRebootingCmm) {
  ServeWhen(R"({"during":"cmmRebooting"})");
  EXPECT_EQ(Request(Switch(1), kReset), "0");
  EXPECT_FALSE(Probe());
}

TEST_F(ChassisWithFaults, AFaultIsThereWhileAModuleRestarts) {
  ServeWhen(R"({"during":"moduleRestarting"})");
  EXPECT_EQ(Request(Switch(1), kReset), "0");
  EXPECT_TRUE(Probe());
  Pass(90);
  EXPECT_FALSE(Probe());
  EXPECT_EQ(Request(PassThru(4), kReseat), "0");
  EXPECT_TRUE(Probe());
}

TEST_F(ChassisWithFaults, AFaultIsThereOnceANodeHasBeenReseated) {
  ServeWhen(R"({"after":"moduleRestarting"})");
  const CimInstance node = Client().Find("VORTA_ComputerSystem", "Name", "node10");
  const CimInstance service = Client().Find("CIM_PowerManagementService", "SystemName", "node10");
  const CimOutcome outcome =
      Client().Invoke(service.className, service.name, "RequestPowerStateChange",
                      {Scalar("PowerState", "uint16", kReseat), Reference("ManagedElement", node.name)});
  EXPECT_EQ(outcome.returnValue, "0");
  EXPECT_FALSE(Probe());
  Pass(60);
  EXPECT_TRUE(Probe());
}

TEST_F(ChassisWithFaults, OverlappingRefusalAndRebootEndTogether) {
  Serve(R"({"request":{"class":"CIM_Chassis","occurrence":1},"effect":{"kind":"refuse","seconds":100}})");
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  EXPECT_TRUE(Probe());
  // The refusal ends while the CMM is down.
  Pass(100);
  EXPECT_FALSE(IsListening(simulator_->HttpPort()));
  Pass(85);
  EXPECT_TRUE(IsListening(simulator_->HttpPort()));
}

TEST_F(ChassisWithFaults, ARefusalLongerThanARebootHidesItsEnd) {
  Serve(R"({"request":{"class":"CIM_Chassis","occurrence":1},"effect":{"kind":"refuse","seconds":1000}})");
  EXPECT_EQ(Request(Cmm(), kReset), "0");
  EXPECT_TRUE(Probe());
  Pass(999);
  EXPECT_FALSE(IsListening(simulator_->HttpPort()));
  Pass(1);
  EXPECT_TRUE(IsListening(simulator_->HttpPort()));
}

}  // namespace
}  // namespace Orvane::simulator::tests
