// Installing from a URI: the call, the states of its job over time, and where the image is afterwards.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "living_chassis.h"

namespace Orvane::simulator::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Installation = LivingChassis;

constexpr const char* kStarted = "4 Flash Installation Job Started";
constexpr const char* kFlashed = "7 Flash Completed with no apparent errors";

TEST_F(Installation, OnACmmRunsFromNewToCompleted) {
  const TemporaryFile package(MakePackage("cmm", "CMFW15A", R"(,"major":2,"minor":6,"revision":4,"build":15)"));

  const CimOutcome outcome = Install(Cmm(), package.Uri());

  EXPECT_EQ(outcome.returnValue, "4096");
  EXPECT_EQ(outcome.jobClass, "VORTA_FirmwareInstallationJob");
  const std::string kClass = "VORTA_FirmwareInstallationJob";
  EXPECT_EQ(Job(outcome.job, kClass), "2 Firmware update is waiting to start");
  Pass(4);
  EXPECT_THAT(Job(outcome.job, kClass), HasSubstr("2 "));
  Pass(1);
  EXPECT_EQ(Job(outcome.job, kClass), "4 Firmware update in progress");
  Pass(84);
  EXPECT_THAT(Job(outcome.job, kClass), HasSubstr("4 "));
  EXPECT_EQ(Version("VORTA:cmm01:backup"), "CMFW13A");
  Pass(1);
  EXPECT_EQ(Job(outcome.job, kClass), "7 Firmware update completed, restart the CMM to activate it");
  EXPECT_EQ(Version("VORTA:cmm01:active"), "CMFW14C");
  const CimInstance waiting = Client().Find("CIM_SoftwareIdentity", "InstanceID", "VORTA:cmm01:backup");
  EXPECT_EQ(waiting["VersionString"], "CMFW15A");
  EXPECT_EQ(waiting["MajorVersion"] + waiting["MinorVersion"] + waiting["RevisionNumber"] + waiting["BuildNumber"],
            "26415");
}

TEST_F(Installation, OnASwitchNeverShowsAnotherTextThanItsClientsWaitFor) {
  const TemporaryFile package(MakePackage("switch", "7.3"));

  const CimOutcome outcome = Install(Switch(1), package.Uri());

  EXPECT_EQ(outcome.returnValue, "4096");
  EXPECT_EQ(outcome.jobClass, "CIM_ConcreteJob");
  EXPECT_EQ(Job(outcome.job), "2 Flash Installation Job Started");
  Pass(1);
  EXPECT_EQ(Job(outcome.job), kStarted);
  Pass(118);
  EXPECT_EQ(Job(outcome.job), kStarted);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "6.9 4", "3.2 2"));
  Pass(1);
  EXPECT_EQ(Job(outcome.job), kFlashed);
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "7.3 6 4", "3.2 2"));
}

TEST_F(Installation, OnASwitchWithoutFallbackImageIsNextAtOnce) {
  const TemporaryFile package(MakePackage("switch", "7.3"));

  Install(Switch(5), package.Uri());
  Pass(120);

  EXPECT_THAT(Images("VORTA:iom05:"), ElementsAre("7.2 2 6", "3.2 2", "7.3 6 3"));
}

TEST_F(Installation, OnAPassThroughModuleIsNextAtOnce) {
  const TemporaryFile package(MakePackage("passthru", "1.2"));

  const CimOutcome outcome = Install(PassThru(4), package.Uri());
  Pass(120);

  EXPECT_EQ(Job(outcome.job), kFlashed);
  EXPECT_THAT(Images("VORTA:iomodule04:"), ElementsAre("1.1 2", "1.2 6 3"));
}

TEST_F(Installation, OfBootCodeReplacesTheBootImage) {
  const TemporaryFile package(MakePackage("switch", "3.4", R"(,"image":"boot")"));

  Install(Switch(1), package.Uri());
  Pass(120);

  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "6.9 4", "3.4 2"));
}

TEST_F(Installation, OfBootCodeFailsWhereThereIsNone) {
  const TemporaryFile package(MakePackage("passthru", "3.4", R"(,"image":"boot")"));

  const CimOutcome outcome = Install(PassThru(4), package.Uri());
  Pass(120);

  EXPECT_EQ(Job(outcome.job), "10 Flashing ended with failure: there is no boot image to replace");
}

TEST_F(Installation, TheSamePackageTwiceIsInstalledTwice) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  for (int i = 0; i < 2; ++i) {
    const CimOutcome outcome = Install(Switch(5), package.Uri());
    Pass(120);
    EXPECT_EQ(Job(outcome.job), kFlashed);
  }
  EXPECT_THAT(Images("VORTA:iom05:"), ElementsAre("7.2 2 6", "3.2 2", "7.3 6 3"));
}

TEST_F(Installation, OnABusyTargetEndsAtOnce) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  const CimOutcome first = Install(Switch(1), package.Uri());

  const CimOutcome second = Install(Switch(1), package.Uri());
  const CimOutcome elsewhere = Install(Switch(2), package.Uri());

  EXPECT_EQ(second.returnValue, "4096");
  EXPECT_EQ(Job(second.job), "8 Busy - Another firmware update in progress");
  Pass(120);
  EXPECT_EQ(Job(first.job), kFlashed);
  EXPECT_EQ(Job(elsewhere.job), kFlashed);
}

TEST_F(Installation, TakesParametersInAnyOrderAndTheLastOfEachName) {
  const TemporaryFile package(MakePackage("passthru", "1.2"));
  const std::string target = PassThru(6).name;

  const CimOutcome outcome =
      InstallWith({Scalar("URI", "string", "http://127.0.0.1:1/gone"), Array("InstallOptions", "uint16", {"5"}),
                   Array("InstallOptionsValues", "string", {""}), Reference("Target", Switch(1).name),
                   Reference("Target", target), Array("InstallOptionsValues", "string", {""}),
                   Array("InstallOptions", "uint16", {"32768"}), Scalar("URI", "string", package.Uri())});
  Pass(120);

  EXPECT_EQ(Job(outcome.job), kFlashed);
  EXPECT_THAT(Images("VORTA:iomodule06:"), ElementsAre("1.1 2", "1.2 6 3"));
}

TEST_F(Installation, TakesAUriWithoutOptions) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  const std::string target = Switch(1).name;

  EXPECT_EQ(InstallWith({Reference("Target", target), Scalar("URI", "", package.Uri())}).returnValue, "4096");
}

TEST_F(Installation, RefusesWrongParameters) {
  const std::string target = Switch(1).name;
  const CimParameter uri = Scalar("URI", "string", "http://127.0.0.1:1/p");
  const CimParameter reference = Reference("Target", target);
  struct {
    const char* name;
    std::vector<CimParameter> parameters;
  } const cases[] = {
      {"no URI", {reference}},
      {"no target", {uri}},
      {"URI of another type", {Scalar("URI", "uint16", "5"), reference}},
      {"URI that is a list", {Array("URI", "string", {"x"}), reference}},
      {"target of another type", {uri, Scalar("Target", "string", "x")}},
      {"scalar option", {uri, reference, Scalar("InstallOptions", "uint16", "5")}},
      {"option out of range", {uri, reference, Array("InstallOptions", "uint16", {"65536"})}},
      {"values of another type", {uri, reference, Array("InstallOptionsValues", "uint16", {"5"})}},
      {"unknown parameter", {uri, reference, Scalar("Other", "string", "x")}},
      {"target of an unknown class", {uri, Reference("Target", R"(<INSTANCENAME CLASSNAME="NoClass"/>)")}},
      {"target with wrong keys", {uri, Reference("Target", R"(<INSTANCENAME CLASSNAME="CIM_Slot"/>)")}},
  };
  for (const auto& wrong : cases) EXPECT_EQ(InstallWith(wrong.parameters).error, 4) << wrong.name;
  EXPECT_TRUE(Client().Enumerate("CIM_ConcreteJob").empty());
}

TEST_F(Installation, ReturnsWhyItCannotBegin) {
  const std::string target = Switch(1).name;
  const CimParameter uri = Scalar("URI", "string", "http://127.0.0.1:1/p");
  const CimParameter reference = Reference("Target", target);
  std::string gone = target;
  gone.replace(gone.find("iomodule01"), 10, "iomodule77");
  const auto uriText = [](const std::string& text) { return Scalar("URI", "string", text); };
  struct {
    const char* name;
    std::vector<CimParameter> parameters;
    const char* returnValue;
  } const cases[] = {
      {"NULL URI", {{"URI", "string", ""}, reference}, "5"},
      {"NULL target", {uri, {"Target", "reference", ""}}, "5"},
      {"empty URI", {uriText(""), reference}, "5"},
      {"64 KB URI", {uriText("http://127.0.0.1/" + std::string(65536, 'a')), reference}, "5"},
      {"no URI at all", {uriText("firmware.pkg"), reference}, "5"},
      {"blank in the URI", {uriText("http://127.0.0.1/a b"), reference}, "5"},
      {"no host", {uriText("http:///p"), reference}, "5"},
      {"unknown scheme", {uriText("tftp://127.0.0.1/p"), reference}, "4107"},
      {"target that is not there", {uri, Reference("Target", gone)}, "5"},
      {"target that takes no firmware",
       {uri, Reference("Target", Client().Enumerate("CIM_Chassis").at(0).name)},
       "4097"},
      {"unsupported option", {uri, reference, Array("InstallOptions", "uint16", {"9"})}, "1"},
      {"more values than options",
       {uri, reference, Array("InstallOptions", "uint16", {"5"}), Array("InstallOptionsValues", "string", {"", ""})},
       "5"},
  };
  for (const auto& wrong : cases) {
    const CimOutcome outcome = InstallWith(wrong.parameters);
    EXPECT_EQ(outcome.returnValue, wrong.returnValue) << wrong.name;
    EXPECT_EQ(outcome.job, "") << wrong.name;
  }
  EXPECT_TRUE(Client().Enumerate("CIM_ConcreteJob").empty());
}

TEST_F(Installation, APackageForAnotherTargetFails) {
  const TemporaryFile package(MakePackage("cmm", "CMFW15A"));

  const CimOutcome outcome = Install(Switch(1), package.Uri());
  Pass(10);

  EXPECT_EQ(Job(outcome.job), "10 Flashing ended with failure: the package is for another target, cmm");
  EXPECT_THAT(Images("VORTA:iom01:"), ElementsAre("7.1 2 6", "6.9 4", "3.2 2"));
}

TEST_F(Installation, AfterAFailureTheTargetIsFree) {
  const TemporaryFile package(MakePackage("cmm", "CMFW15A"));
  Install(Cmm(), "file:///no/such/package");
  Pass(6);

  const CimOutcome outcome = Install(Cmm(), package.Uri());
  Pass(90);

  EXPECT_THAT(Job(outcome.job), HasSubstr("7 "));
}

TEST_F(Installation, JobsGoAnHourAfterTheirEnd) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  const CimOutcome outcome = Install(Switch(1), package.Uri());
  Pass(120 + 3599);
  EXPECT_EQ(Job(outcome.job), kFlashed);
  Pass(1);
  EXPECT_EQ(Job(outcome.job), "");
}

TEST_F(Installation, SeveralClientsSeeOneChassis) {
  const TemporaryFile package(MakePackage("switch", "7.3"));
  const std::string targets[] = {Switch(1).name, Switch(2).name, Switch(3).name, Switch(5).name};
  std::vector<std::thread> threads;
  for (const std::string& target : targets) {
    threads.emplace_back([&, target] {
      CimClient client(simulator_->HttpPort());
      const CimInstance service = client.Enumerate("CIM_SoftwareInstallationService").at(0);
      const CimOutcome outcome = client.Invoke(service.className, service.name, "InstallFromURI",
                                               {Scalar("URI", "string", package.Uri()), Reference("Target", target)});
      for (int i = 0; i < 20; ++i) {
        // Every job seen has a text that fits its state, whatever the other threads do.
        for (const CimInstance& job : client.Enumerate("CIM_ConcreteJob")) {
          EXPECT_EQ(job["ErrorDescription"] == "Flash Completed with no apparent errors", job["JobState"] == "7");
        }
        clock_->Advance(std::chrono::seconds(3));
      }
      EXPECT_EQ(client.Find("CIM_ConcreteJob", "InstanceID", outcome.job)["InstanceID"], outcome.job);
    });
  }
  for (std::thread& thread : threads) thread.join();
  // The thread that came last may have seen its own minute only.
  Pass(120);

  const std::vector<CimInstance> jobs = Client().Enumerate("CIM_ConcreteJob");
  ASSERT_EQ(jobs.size(), 4U);
  for (const CimInstance& job : jobs) EXPECT_EQ(job["JobState"], "7");
}

}  // namespace
}  // namespace Orvane::simulator::tests
