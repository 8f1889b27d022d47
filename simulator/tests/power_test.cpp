// Restarts and reseats: which are offered, what a client sees meanwhile, which firmware runs afterwards; the CMM that
// really leaves the network.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "living_chassis.h"
#include "model/model_builder.h"

namespace Orvane::simulator::tests {
namespace {

using testing::ElementsAre;

using Power = LivingChassis;

std::string Post(const CimInstance& module) {
  return module["EnabledState"] + " " + module["PostStatus"] + " " + module["PostStatusDescription"];
}

constexpr const char* kPassed = "2 511 Module completed POST successfully.";
constexpr const char* kRunning = "10 128 Module is running POST.";

TEST_F(Power, ARestartedSwitchRunsItsSelfTest) {
  EXPECT_EQ(Post(Switch(1)), kPassed);

  EXPECT_EQ(Request(Switch(1), "11"), "0");

  EXPECT_EQ(Post(Switch(1)), kRunning);
  EXPECT_EQ(Switch(1)["TransitioningToState"], "11");
  Pass(89);
  EXPECT_EQ(Post(Switch(1)), kRunning);
  Pass(1);
  EXPECT_EQ(Post(Switch(1)), kPassed);
  EXPECT_EQ(Switch(1)["TransitioningToState"], "12");
  EXPECT_EQ(Switch(1)["RequestedState"], "11");
  EXPECT_EQ(Post(Switch(2)), kPassed);
}

TEST_F(Power, AReseatedModuleLosesPowerFirst) {
  EXPECT_EQ(Request(PassThru(4), "32769"), "0");

  EXPECT_EQ(Post(PassThru(4)), "3 0 Module is not powered.");
  Pass(29);
  EXPECT_EQ(Post(PassThru(4)), "3 0 Module is not powered.");
  Pass(1);
  EXPECT_EQ(Post(PassThru(4)), kRunning);
  Pass(60);
  EXPECT_EQ(Post(PassThru(4)), kPassed);
}

TEST_F(Power, AnActivatedImageRunsAfterTheRestart) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  Install(Switch(1), package.Uri());
  Pass(120);
  const CimInstance association = Client().Find("VORTA_IOMElementFirmwareIdentity", "Antecedent", "VORTA:iom01:main2");

  EXPECT_EQ(Client().Modify(association, Array("ElementSoftwareStatus", "uint16", {"3"})).error, 0);

  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "7.3 3", "3.2 2"));
  Pass(3600);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "7.3 3", "3.2 2"));
  Request(Switch(1), "11");
  Pass(89);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "7.3 3", "3.2 2"));
  Pass(1);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 6 4", "7.3 2 6", "3.2 2"));
}

TEST_F(Power, AnImageThatIsNotActivatedDoesNotRun) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  Install(Switch(1), package.Uri());
  Pass(120);

  Request(Switch(1), "11");
  Pass(90);

  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "7.3 6 4", "3.2 2"));
}

TEST_F(Power, ASwitchThatCannotWaitRestartsWhenAnImageIsActivated) {
  const CimInstance association = Client().Find("VORTA_IOMElementFirmwareIdentity", "Antecedent", "VORTA:iom03:main2");
  ASSERT_EQ(Switch(3)["DeferredUpdateSupported"], "0");

  Client().Modify(association, Array("ElementSoftwareStatus", "uint16", {"3"}));

  EXPECT_EQ(Post(Switch(3)), kRunning);
  Pass(90);
  EXPECT_EQ(Post(Switch(3)), kPassed);
  EXPECT_THAT(Images("VORTA:iom03:"), ElementsAre("7.2 6 4", "6.9 2 6", "3.2 2"));
}

TEST_F(Power, OnlyOneImageIsNext) {
  for (const char* id : {"VORTA:iom01:main2", "VORTA:iom01:main1"}) {
    const CimInstance association = Client().Find("VORTA_IOMElementFirmwareIdentity", "Antecedent", id);
    Client().Modify(association, Array("ElementSoftwareStatus", "uint16", {"3"}));
  }
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 3", "6.9 6", "3.2 2"));
}

TEST_F(Power, AModuleWithOneImageTakesTheNewOneInItsPlace) {
  const TemporaryFile forSwitch(MakePackage("switch", "7.3"));
  const TemporaryFile forPassThru(MakePackage("passthru", "1.2"));
  Install(Switch(5), forSwitch.Uri());
  Install(PassThru(4), forPassThru.Uri());
  Pass(120);

  EXPECT_EQ(Request(Switch(5), "11"), "0");
  EXPECT_EQ(Request(PassThru(4), "11"), "0");
  Pass(90);

  EXPECT_THAT(Images("VORTA:iom05:"), ElementsAre("7.3 2 6", "3.2 2"));
  EXPECT_THAT(Images("VORTA:iomodule04:"), ElementsAre("1.2 2"));
}

TEST_F(Power, RefusesWhatIsNotOffered) {
  EXPECT_EQ(Request(Switch(1), "2"), "4097");
  EXPECT_EQ(Request(Cmm(), "3"), "4097");
  EXPECT_EQ(Request(PassThru(4), "40000"), "4097");
  for (const char* state : {"0", "1", "5", "12", "13", "32767"}) EXPECT_EQ(Request(Switch(1), state), "5") << state;
  EXPECT_EQ(Post(Switch(1)), kPassed);
}

TEST_F(Power, RefusesWrongParameters) {
  const CimInstance target = Switch(1);
  const auto invoke = [&](const std::vector<CimParameter>& parameters) {
    return Client().Invoke(target.className, target.name, "RequestStateChange", parameters);
  };
  EXPECT_EQ(invoke({}).error, 4);
  EXPECT_EQ(invoke({Scalar("RequestedState", "uint32", "11")}).error, 4);
  EXPECT_EQ(invoke({Scalar("RequestedState", "uint16", "11"), Scalar("Other", "string", "")}).error, 4);
  EXPECT_EQ(invoke({{"RequestedState", "uint16", ""}}).returnValue, "5");
  EXPECT_EQ(invoke({Scalar("RequestedState", "uint16", "11"),
                    Scalar("TimeoutPeriod", "datetime", "00000000000100.000000:000")})
                .returnValue,
            "4098");
  EXPECT_EQ(Post(Switch(1)), kPassed);
  EXPECT_EQ(invoke({Scalar("RequestedState", "uint16", "11"), {"TimeoutPeriod", "datetime", ""}}).returnValue, "0");
}

TEST_F(Power, AModuleDoesOneThingAtATime) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  Request(Switch(1), "11");
  EXPECT_EQ(Request(Switch(1), "32769"), "4099");
  Install(Switch(2), package.Uri());
  EXPECT_EQ(Request(Switch(2), "11"), "6");
  Pass(120);
  EXPECT_EQ(Request(Switch(1), "11"), "0");
  EXPECT_EQ(Request(Switch(2), "11"), "0");
}

TEST_F(Power, ARestartingCmmLeavesTheNetworkAndComesBackWithItsNewVersion) {
  const TemporaryFile package(MakePackage("cmm", "CMFW15A"));
  Install(Cmm(), package.Uri());
  Pass(90);
  CimClient idle(simulator_->HttpPort());
  idle.Enumerate("CIM_Chassis");
  const std::uint16_t port = simulator_->HttpPort();

  EXPECT_EQ(Request(Cmm(), "11"), "0");

  EXPECT_EQ(Cmm()["TransitioningToState"], "11");
  Pass(4);
  EXPECT_TRUE(IsListening(port));
  Pass(1);
  EXPECT_FALSE(IsListening(port));
  EXPECT_THROW(idle.Enumerate("CIM_Chassis"), std::runtime_error);
  EXPECT_THROW(Client().Enumerate("CIM_Chassis"), std::runtime_error);
  Pass(179);
  EXPECT_FALSE(IsListening(port));
  Pass(1);
  Reconnect();
  EXPECT_EQ(simulator_->HttpPort(), port);
  EXPECT_EQ(Version("VORTA:cmm01:active"), "CMFW15A");
  EXPECT_EQ(Version("VORTA:cmm01:backup"), "CMFW14C");
  EXPECT_EQ(Cmm()["EnabledState"], "2");
  EXPECT_EQ(Cmm()["TransitioningToState"], "12");
}

TEST_F(Power, ACmmMayRestartAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    Reconnect();
    EXPECT_EQ(Request(Cmm(), "32769"), "0");
    EXPECT_EQ(Request(Cmm(), "11"), "4099");
    Pass(184);
    EXPECT_FALSE(IsListening(simulator_->HttpPort()));
    Pass(1);
  }
  EXPECT_TRUE(IsListening(simulator_->HttpPort()));
}

TEST_F(Power, AStandbyCmmRestartsUnnoticed) {
  EXPECT_EQ(Request(Cmm("cmm02"), "11"), "0");
  Pass(5);
  EXPECT_EQ(Cmm("cmm02")["EnabledState"], "10");
  Pass(180);
  EXPECT_EQ(Cmm("cmm02")["EnabledState"], "6");
}

TEST_F(Power, JobsGoOnWhileTheCmmIsAway) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  const CimOutcome outcome = Install(Switch(1), package.Uri());
  Request(Cmm(), "11");
  Pass(185);
  Reconnect();
  EXPECT_EQ(Job(outcome.job), "7 Flash Completed with no apparent errors");
}

TEST_F(Power, EndsWhileACmmIsAway) {
  Request(Cmm(), "11");
  Pass(10);
  simulator_.reset();
  Pass(1000);
}

// At every point of a restart the simulator can end, whatever its clock's thread is at.
TEST(RestartOnAScaledClock, CanBeCutShortAnywhere) {
  const auto clock = std::make_shared<ScaledClock>(500);
  int begun = 0;
  for (int i = 0; i < 40; ++i) {
    Options options;
    options.authentication = false;
    options.httpsPort = -1;
    options.clock = clock;
    const Simulator simulator(BuiltInModel(), options);
    CimClient client(simulator.HttpPort());
    const CimInstance cmm = client.Find("VORTA_CMMComputerSystem", "Name", "cmm01");
    try {
      client.Invoke(cmm.className, cmm.name, "RequestStateChange", {Scalar("RequestedState", "uint16", "11")});
      ++begun;
    } catch (const std::runtime_error&) {  // a machine so busy that the CMM was gone before its answer came
      continue;
    }
    // Down 10 ms after the request.
    std::this_thread::sleep_for(std::chrono::microseconds(8000 + i * 100));
  }
  EXPECT_GT(begun, 0);
}

class NodePower : public LivingChassis {
 protected:
  CimInstance Node(const std::string& name) { return Client().Find("VORTA_ComputerSystem", "Name", name); }
  CimInstance PowerOf(const std::string& name) {
    for (CimInstance& association : Client().Enumerate("CIM_AssociatedPowerManagementService")) {
      if (association["UserOfService"].find(name) != std::string::npos) return association;
    }
    throw std::runtime_error("no power of " + name);
  }
  CimOutcome RequestPower(const std::string& name, std::vector<CimParameter> parameters) {
    const CimInstance service = Client().Find("CIM_PowerManagementService", "SystemName", name);
    return Client().Invoke(service.className, service.name, "RequestPowerStateChange", parameters);
  }
  CimOutcome RequestPower(const std::string& name, const std::string& state) {
    return RequestPower(name, {Scalar("PowerState", "uint16", state), Reference("ManagedElement", Node(name).name),
                               Scalar("TimeoutPeriod", "datetime", "00000000000000.000120:000")});
  }
};

TEST_F(NodePower, AReseatedNodeCycles) {
  ASSERT_EQ(PowerOf("node03")["PowerState"], "2");

  EXPECT_EQ(RequestPower("node03", "32769").returnValue, "0");

  EXPECT_EQ(PowerOf("node03")["PowerState"], "8");
  EXPECT_EQ(Node("node03")["EnabledState"], "3");
  EXPECT_EQ(RequestPower("node03", "32769").returnValue, "4099");
  Pass(59);
  EXPECT_EQ(PowerOf("node03")["PowerState"], "8");
  Pass(1);
  EXPECT_EQ(PowerOf("node03")["PowerState"], "2");
  EXPECT_EQ(Node("node03")["EnabledState"], "2");
  EXPECT_EQ(PowerOf("node04")["PowerState"], "2");
}

TEST_F(NodePower, ANodeThatWasOffStaysOff) {
  ASSERT_EQ(PowerOf("node09")["PowerState"], "8");
  EXPECT_EQ(RequestPower("node09", "32769").returnValue, "0");
  Pass(60);
  EXPECT_EQ(PowerOf("node09")["PowerState"], "8");
}

TEST_F(NodePower, GoesOffAndOn) {
  EXPECT_EQ(RequestPower("node01", "8").returnValue, "0");
  EXPECT_EQ(Node("node01")["EnabledState"], "3");
  EXPECT_EQ(RequestPower("node01", "2").returnValue, "0");
  EXPECT_EQ(PowerOf("node01")["PowerState"], "2");
}

TEST_F(NodePower, RefusesWhatMakesNoSense) {
  const CimParameter state = Scalar("PowerState", "uint16", "32769");
  const CimParameter element = Reference("ManagedElement", Node("node03").name);
  EXPECT_EQ(RequestPower("node03", "5").returnValue, "4097");
  EXPECT_EQ(RequestPower("node03", {state}).error, 4);
  EXPECT_EQ(RequestPower("node03", {element}).error, 4);
  EXPECT_EQ(RequestPower("node03", {Scalar("PowerState", "uint32", "2"), element}).error, 4);
  EXPECT_EQ(RequestPower("node03", {state, Reference("ManagedElement", R"(<INSTANCENAME CLASSNAME=""/>)")}).error, 4);
  EXPECT_EQ(RequestPower("node04", {state, element}).returnValue, "5");
  EXPECT_EQ(RequestPower("node03", {state, {"ManagedElement", "reference", ""}}).returnValue, "5");
  EXPECT_EQ(RequestPower("node03", {state, element, Scalar("TimeoutPeriod", "datetime", "20261121090000.000000+000")})
                .returnValue,
            "5");
  EXPECT_EQ(PowerOf("node03")["PowerState"], "2");
}

class OddChassis : public LivingChassis {
 protected:
  OddChassis()
      : LivingChassis(BuildModel("m.json", R"({"formatVersion":1,"chassis":{},
          "timing":{"moduleRestart":3,"cmmInstall":1,"cmmJobStart":0,"moduleInstall":7},
          "cmms":[{"bay":1,"requestedStates":[2,3],"firmware":[{"id":"only","versionString":"A","targetTypes":["Firmware:CMM"]}]}],
          "switches":[{"bay":1,"postStatus":16,"postStatusDescription":"Module failed POST.","installAs":"next",
            "firmware":[{"id":"a","versionString":"1","status":[2]},{"id":"b","versionString":"0","status":[4]}]},
            {"bay":2}],
          "nodes":[{"bay":1,"powerStates":[2,5]}],
          "extraInstances":[{"class":"VORTA_FirmwareInstallationJob","properties":{"InstanceID":"JOB_1","JobState":7}},
            {"class":"CIM_ConcreteJob","properties":{"InstanceID":"JOB_2"}}]})")) {}
};

TEST_F(OddChassis, OffersTheStatesOfTheModel) {
  EXPECT_EQ(Client().Enumerate("VORTA_CMMEnabledLogicalElementCapabilities").at(0)["RequestedStatesSupported"], "2 3");
  EXPECT_EQ(Request(Cmm(), "11"), "4097");
  // Offered, but nothing that a simulated CMM or node could do.
  EXPECT_EQ(Request(Cmm(), "2"), "1");
  const CimInstance service = Client().Enumerate("CIM_PowerManagementService").at(0);
  const std::string node = Client().Enumerate("VORTA_ComputerSystem").at(0).name;
  const auto requestPower = [&](const char* state) {
    return Client()
        .Invoke(service.className, service.name, "RequestPowerStateChange",
                {Scalar("PowerState", "uint16", state), Reference("ManagedElement", node)})
        .returnValue;
  };
  EXPECT_EQ(requestPower("5"), "1");
  EXPECT_EQ(requestPower("8"), "4097");
  EXPECT_EQ(requestPower("2"), "0");
  EXPECT_EQ(Client().Enumerate("CIM_AssociatedPowerManagementService").at(0)["AvailableRequestedPowerStates"], "2 5");
}

TEST_F(OddChassis, GivesItsJobsOtherNamesThanTheModel) {
  const TemporaryFile package(MakePackage("switch", "2"));
  const CimOutcome outcome = Install(Switch(1), package.Uri());
  EXPECT_EQ(outcome.returnValue, "4096");
  EXPECT_EQ(outcome.job, "JOB_3");
  Pass(7);
  EXPECT_EQ(Job("JOB_3"), "7 Flash Completed with no apparent errors");
  EXPECT_EQ(Job("JOB_1"), "7 ");
}

TEST_F(OddChassis, KeepsAFailedSelfTest) {
  Request(Switch(1), "11");
  EXPECT_EQ(Post(Switch(1)), kRunning);
  Pass(3);
  EXPECT_EQ(Post(Switch(1)), "2 16 Module failed POST.");
}

TEST_F(OddChassis, PassesASelfTestOfWhichTheModelSaysNothing) {
  EXPECT_EQ(Post(Switch(2)), "2  ");
  Request(Switch(2), "11");
  Pass(3);
  EXPECT_EQ(Post(Switch(2)), kPassed);
}

TEST_F(OddChassis, InstallsAsNextWhereTheModelSaysSo) {
  const TemporaryFile package(MakePackage("switch", "2"));
  Install(Switch(1), package.Uri());
  Pass(7);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("1 2", "2 6 3"));
  Request(Switch(1), "11");
  Pass(3);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("1 6 4", "2 2 6"));
}

TEST_F(OddChassis, FailsToInstallOnAModuleWithoutAnImage) {
  const TemporaryFile package(MakePackage("switch", "2"));
  const CimOutcome outcome = Install(Switch(2), package.Uri());
  Pass(7);
  EXPECT_EQ(Job(outcome.job), "10 Flashing ended with failure: the module has no firmware image");
}

TEST_F(OddChassis, ACmmWithOneImageHoldsTheNewOneBesideIt) {
  const TemporaryFile package(MakePackage("cmm", "B"));
  Install(Cmm(), package.Uri());
  Pass(1);
  EXPECT_EQ(Version("VORTA:cmm01:only"), "A");
  EXPECT_EQ(Version("VORTA:cmm01:staged"), "B");
}

}  // namespace
}  // namespace Orvane::simulator::tests
