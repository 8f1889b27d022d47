// The whole update of a chassis manager: installation, probe, reboot, probe; the callback that follows it, and what
// becomes of an object after failures.
#include <Pegasus/Client/CIMClient.h>

#include <stdexcept>

#include "cmm/tests/cmm_update_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Sleeps = std::vector<std::uint32_t>;

constexpr char kRebooted[] = "Reboot CMM finished successfully, test if CMM is OK...";

/// A CMM that goes down in the second round after the reboot request and comes back in the first wait of 50 seconds.
class CmmUpdateFlow : public CmmUpdateTest {
 protected:
  CmmUpdateFlow() {
    onSleep = [this](std::uint32_t milliseconds) {
      if (milliseconds == 50000 && !cmm.IsUp() && !staysDown) cmm.Up();
      if (Requests("InvokeMethod").size() < 2 || milliseconds != 2000) return;
      if (++rounds == 2) cmm.Down(kSessionA);
    };
  }

  int ApplyWithReboot() { return Apply(CMMUpdate::CMM_UPDATE_REBOOT); }
  /// The lines behind the end of the installation.
  Lines LinesAfterInstall() const {
    const Lines all = transcript.All();
    const auto end = std::find(all.begin(), all.end(), "cmm_update_imp 1 the return code of installPackage_CMM is 0");
    EXPECT_NE(end, all.end());
    return end == all.end() ? Lines{} : Lines(end + 1, all.end());
  }
  Lines RebootBegin() const {
    return {"sleep 2000", ConnectLine(), "callback Reboot CMM...", "cmm_update_imp 3 [B] step=63 value=0 "};
  }
  Lines RebootRequested() const {
    return {ConnectLine(),
            "cmm_inventory_target 3 the size of insts_CmptSys is 1",
            "cmm_inventory_target 4 Primary CMM found!",
            std::string("cmm_reboot 3 Targetinstance is ") + kCmmPath,
            ConnectLine(),
            "cmm_reboot 3 enumerateInstances for VORTA_CMMEnabledLogicalElementCapabilities",
            std::string("cmm_reboot 3 Reboot Instances is :") + kCapabilitiesPath +
                "successfully get the instances for VORTA_CMMEnabledLogicalElementCapabilities.",
            "cmm_reboot 3 the RequestedStates is 2 11 ",
            "cmm_reboot 3 The CMM is ready to restart.",
            "cmm_peg_client 3 Invoke Cim Method",
            "cmm_reboot 3 Invoke method 'RequestStateChange',return CIMValue string = 0"};
  }
  Lines DownAndUp() const {
    return Lines{"sleep 2000", ConnectLine(), "sleep 2000"} + RefusedConnect() +
           Lines{"cmm_reboot 3 CMM is doing reboot operation!", "stdout CMM is doing reboot operation!\n",
                 "stdout Waiting for CMM reboot success!\n", "sleep 50000", ConnectLine()};
  }
  static Lines RebootEnd(int result) { return {"cmm_update_imp 3 [E] step=63 value=" + std::to_string(result) + " "}; }
  void ExpectFailedReboot(int result, const std::string& text) const {
    const Lines lines = transcript.All();
    const Lines end =
        RebootEnd(result) + Lines{"cmm_update_imp 1 reboot CMM failed and the return code message is " + text};
    ASSERT_GE(lines.size(), end.size());
    EXPECT_EQ(Lines(lines.end() - static_cast<std::ptrdiff_t>(end.size()), lines.end()), end);
    EXPECT_THAT(transcript.Of("callback "),
                ElementsAre("start up update CMM", "start to install Package...", "Reboot CMM..."));
  }

  static constexpr unsigned kSessionA = 1;
  bool staysDown = false;
  int rounds = 0;
};

TEST_F(CmmUpdateFlow, InstallsRebootsAndProbes) {
  EXPECT_EQ(ApplyWithReboot(), 0);
  EXPECT_THAT(LinesAfterInstall(),
              ElementsAreArray(RebootBegin() + RebootRequested() + DownAndUp() + RebootEnd(0) +
                               Lines{std::string("callback ") + kRebooted, "sleep 50000", ConnectLine(),
                                     "callback Connect successfully after rebooting CMM.",
                                     "cmm_update_imp 3 Connect successfully after rebooting CMM.",
                                     "callback CMM package installated successfully.",
                                     "cmm_update_imp 3 CMM package installated successfully."}));
}

TEST_F(CmmUpdateFlow, ReportsEveryStep) {
  EXPECT_EQ(ApplyWithReboot(), 0);
  EXPECT_THAT(transcript.Of("callback "),
              ElementsAre("start up update CMM", "start to install Package...", "Reboot CMM...", kRebooted,
                          "Connect successfully after rebooting CMM.", "CMM package installated successfully."));
}

TEST_F(CmmUpdateFlow, WaitsAsLongAsEachStepNeeds) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), JobIs(7)); });
  EXPECT_EQ(ApplyWithReboot(), 0);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{1000, 1000, 3000, 20000, 3000,  // installation
                                    2000,                           // probe before the reboot
                                    2000, 2000, 50000,              // reboot
                                    50000}));                       // probe after it
}

TEST_F(CmmUpdateFlow, ConversesInThisOrder) {
  EXPECT_EQ(ApplyWithReboot(), 0);
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_SoftwareInstallationService", "disconnect",             //
                          "connect", "EnumerateInstances CIM_ComputerSystem", "disconnect",                          //
                          "connect", std::string("InvokeMethod ") + kServicePath + " InstallFromURI", "disconnect",  //
                          "connect", "EnumerateInstances VORTA_FirmwareInstallationJob", "disconnect",               //
                          "connect", "disconnect",                                             // probe
                          "connect", "EnumerateInstances CIM_ComputerSystem", "disconnect",    // reboot: target
                          "connect", std::string("EnumerateInstances ") + kCapabilitiesClass,  // session A
                          std::string("InvokeMethod ") + kCmmPath + " RequestStateChange",     //
                          "connect", "disconnect",                                             // session B
                          "connect", "disconnect",                                             // back again
                          "connect", "disconnect"));                                           // probe
}

TEST_F(CmmUpdateFlow, WithoutRebootEndsBehindTheInstallation) {
  EXPECT_EQ(Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  EXPECT_THAT(LinesAfterInstall(),
              ElementsAre("cmm_update_imp 3 No need to reboot CMM now, exit CMM installing procedure."));
  EXPECT_THAT(transcript.Of("callback "), ElementsAre("start up update CMM", "start to install Package..."));
  EXPECT_EQ(clock.Sleeps(), (Sleeps{1000, 1000, 3000}));
}

TEST_F(CmmUpdateFlow, FailedInstallationIsNotFollowedByAReboot) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(10)); });
  EXPECT_EQ(ApplyWithReboot(), 2);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{1000, 1000, 3000}));
  EXPECT_EQ(Requests("InvokeMethod").size(), 1U);
  EXPECT_THAT(transcript.Of("callback "), ElementsAre("start up update CMM", "start to install Package..."));
}

TEST_F(CmmUpdateFlow, NoAnswerBeforeTheRebootGivesOneAfterTenProbes) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, ThenRefuse(JobIs(7))); });
  EXPECT_EQ(ApplyWithReboot(), 1);
  EXPECT_THAT(LinesAfterInstall(),
              ElementsAreArray(Repeat(10, Lines{"sleep 2000"} + RefusedConnect()) +
                               Lines{"cmm_update_imp 1 Cannot connect to CMM before reboot CMM, exit reboot "
                                     "procedure."}));
  EXPECT_EQ(Requests("InvokeMethod").size(), 1U) << "no reboot";
  EXPECT_THAT(transcript.Of("callback "), ElementsAre("start up update CMM", "start to install Package..."));
}

TEST_F(CmmUpdateFlow, AnswerToTheTenthProbeIsEnough) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, ThenRefuse(JobIs(7))); });
  constexpr std::size_t kSleepsUntilTheTenthProbe = 3 + 10;
  onSleep = [this](std::uint32_t milliseconds) {
    if (clock.Sleeps().size() == kSleepsUntilTheTenthProbe) {
      cmm.Down();
      cmm.Up();
    }
    if (clock.Sleeps().size() == kSleepsUntilTheTenthProbe + 1) cmm.Down(kSessionA);
    if (milliseconds == 50000 && !cmm.IsUp()) cmm.Up();
  };
  EXPECT_EQ(ApplyWithReboot(), 0);
}

TEST_F(CmmUpdateFlow, NoAnswerAfterTheRebootGivesOneAfterEightyProbes) {
  callback.then = [this](const std::string& message) {
    if (message != kRebooted) return;
    staysDown = true;
    cmm.Down();
  };
  EXPECT_EQ(ApplyWithReboot(), 1);
  EXPECT_THAT(LinesAfterInstall(),
              ElementsAreArray(RebootBegin() + RebootRequested() + DownAndUp() + RebootEnd(0) +
                               Lines{std::string("callback ") + kRebooted} +
                               Repeat(80, Lines{"sleep 50000"} + RefusedConnect()) +
                               Lines{"callback Cannot connect to CMM after rebooting CMM.",
                                     "cmm_update_imp 1 Cannot connect to CMM after rebooting CMM."}));
}

TEST_F(CmmUpdateFlow, CmmThatDoesNotComeBackGivesTheCodeOfTheReboot) {
  staysDown = true;
  EXPECT_EQ(ApplyWithReboot(), 1);
  ExpectFailedReboot(1, "Connect CIMOM failed.");
  const Sleeps sleeps = clock.Sleeps();
  EXPECT_EQ(std::count(sleeps.begin(), sleeps.end(), 50000U), 80) << "no probe behind the failed reboot";
}

TEST_F(CmmUpdateFlow, UnreadableCapabilitiesGiveTwo) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kCapabilitiesClass, CimError(1, "broken")); });
  EXPECT_EQ(ApplyWithReboot(), 2);
  ExpectFailedReboot(2, "Internal function perform failed.");
}

TEST_F(CmmUpdateFlow, PrimaryCmmThatVanishedGivesSeven) {
  cmm.Do([](CimServer& server) { server.OnEnumerate("CIM_ComputerSystem", Objects({PrimaryCmm()}), NoObjects()); });
  EXPECT_EQ(ApplyWithReboot(), 7);
  ExpectFailedReboot(7, "Not found specific instance.");
}

TEST_F(CmmUpdateFlow, CmmThatOffersNoRestartGivesNine) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kCapabilitiesClass, Objects({Capabilities(CimUint16(2))})); });
  EXPECT_EQ(ApplyWithReboot(), 9);
  ExpectFailedReboot(9, "Failed to reboot CMM.");
}

TEST_F(CmmUpdateFlow, ExceptionOfTheRebootGivesTwo) {
  cmm.Do([](CimServer& server) { server.OnInvoke("RequestStateChange", CimError(1, "busy")); });
  EXPECT_EQ(ApplyWithReboot(), 2);
  EXPECT_EQ(transcript.All().back(), "cmm_update_imp 1 unknown error happened when invokeMethod type mismatch");
  EXPECT_FALSE(transcript.Has(RebootEnd(2).front())) << "the exception leaves no end mark";
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(CmmUpdateFlow, MissingCapabilitiesGiveTwo) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kCapabilitiesClass, NoObjects()); });
  EXPECT_EQ(ApplyWithReboot(), 2);
  EXPECT_EQ(transcript.All().back(), "cmm_update_imp 1 unknown error happened when invokeMethod index out of bounds");
}

TEST_F(CmmUpdateFlow, CmmThatDoesNotGoDownIsDoneToo) {
  onSleep = nullptr;
  EXPECT_EQ(ApplyWithReboot(), 0);
  Sleeps sleeps = {1000, 1000, 3000, 2000};
  sleeps.insert(sleeps.end(), 61, 2000);
  sleeps.insert(sleeps.end(), 2, 50000);
  EXPECT_EQ(clock.Sleeps(), sleeps);
}

TEST_F(CmmUpdateFlow, WithoutACallbackNothingIsMissing) {
  CMMUpdate update = Update();
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 0);
  EXPECT_TRUE(transcript.Has("cmm_update_imp 3 CMM package installated successfully."));
}

TEST_F(CmmUpdateFlow, NullCallbackEndsTheReports) {
  CMMUpdate update = Update();
  update.SetLogCallBack(&callback);
  update.SetLogCallBack(nullptr);
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  EXPECT_THAT(transcript.Of("callback "), IsEmpty());
}

TEST_F(CmmUpdateFlow, LaterCallbackReplacesTheFirst) {
  Transcript ignored;
  TranscribedCallBack first(ignored);
  CMMUpdate update = Update();
  update.SetLogCallBack(&first);
  update.SetLogCallBack(&callback);
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  EXPECT_THAT(ignored.All(), IsEmpty());
  EXPECT_EQ(transcript.Of("callback ").size(), 2U);
}

TEST_F(CmmUpdateFlow, CallbackIsBorrowed) {
  {
    CMMUpdate update = Update();
    update.SetLogCallBack(&callback);
    EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  }
  EXPECT_NO_THROW(callback.OnMessage("still alive"));
}

class CmmUpdateVerbosity : public CmmUpdateFlow, public ::testing::WithParamInterface<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Level, CmmUpdateVerbosity, ::testing::Values(0U, 1U, 2U, 3U));

TEST_P(CmmUpdateVerbosity, WritesTheLinesUpToItsLevelAndChangesNothingElse) {
  EXPECT_EQ(ApplyWithReboot(), 0);
  Lines expected;
  for (const std::string& line : transcript.All()) {
    const std::size_t blank = line.find(' ');
    const bool logged = line.compare(0, 4, "cmm_") == 0;
    if (!logged || static_cast<unsigned>(line[blank + 1] - '0') <= GetParam()) expected.push_back(line);
  }
  transcript.Clear();
  rounds = 0;
  cmm.Down();
  cmm.Up();
  const std::size_t before = Requests("InvokeMethod").size();
  onSleep = [this, before](std::uint32_t milliseconds) {
    if (milliseconds == 50000 && !cmm.IsUp()) cmm.Up();
    if (Requests("InvokeMethod").size() == before + 2 && milliseconds == 2000 && ++rounds == 2) cmm.Down(kSessionA);
  };
  const TranscribedLog quieter(transcript, GetParam());
  EXPECT_EQ(ApplyWithReboot(), 0);
  EXPECT_THAT(transcript.All(), ElementsAreArray(expected));
}

class CallbackText : public CmmUpdateFlow, public ::testing::WithParamInterface<const char*> {
 protected:
  /// Throws once, at the text under test.
  template <typename Error>
  void ThrowOnce(Error error) {
    callback.then = [this, error](const std::string& message) {
      if (thrown || message != GetParam()) return;
      thrown = true;
      throw Error(error);
    };
  }

  bool thrown = false;
};
INSTANTIATE_TEST_SUITE_P(CmmUpdate, CallbackText,
                         ::testing::Values("start up update CMM", "start to install Package...", "Reboot CMM...",
                                           kRebooted, "Connect successfully after rebooting CMM.",
                                           "CMM package installated successfully."));

TEST_P(CallbackText, ExceptionReachesTheCallerAndLeavesNothingOpen) {
  CMMUpdate update = Update();
  update.SetLogCallBack(&callback);
  ThrowOnce(std::runtime_error("the caller's own"));
  EXPECT_THROW(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), std::runtime_error);
  EXPECT_TRUE(cmm.WaitForOpenConnections(0));
  EXPECT_EQ(transcript.All().back(), std::string("callback ") + GetParam());
  rounds = 0;
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0) << "the object can be used again";
}

TEST_P(CallbackText, PegasusExceptionGivesTwo) {
  CMMUpdate update = Update();
  update.SetLogCallBack(&callback);
  ThrowOnce(Pegasus::Exception(Pegasus::String("the caller's own")));
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 2);
  EXPECT_EQ(transcript.All().back(), "cmm_update_imp 1 unknown error happened when invokeMethod the caller's own");
}

TEST_F(CmmUpdateFlow, ObjectMayGoAfterAFailedCall) {
  cmm.Do([](CimServer& server) { server.OnInvoke("InstallFromURI", Close()); });
  {
    CMMUpdate update = Update();
    update.SetLogCallBack(&callback);
    EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 2);
  }
  EXPECT_TRUE(cmm.WaitForOpenConnections(0));
}

TEST_F(CmmUpdateFlow, UnusedObjectConnectsToNothing) {
  { const CMMUpdate update = Update(); }
  EXPECT_THAT(cmm.Conversation(), IsEmpty());
  EXPECT_THAT(transcript.All(), IsEmpty());
}

TEST_F(CmmUpdateFlow, ObjectWorksAgainAfterEachFailure) {
  CMMUpdate update = Update();
  cmm.Down();
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 1);
  cmm.Up();
  cmm.Server().OnEnumerate(kServiceClass, HttpStatus(503, "Service Unavailable"));
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 2);
  cmm.Server().OnEnumerate(kServiceClass, Objects({CimObjectSpec(kServiceClass).Key("Name", "installer")}));
  cmm.Server().OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "0")));
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 6);
  cmm.Server().OnInvoke("InstallFromURI", InstallStarted());
  cmm.Server().OnEnumerate(kJobClass, NoObjects());
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 7);
  cmm.Server().OnEnumerate(kJobClass, JobIs(7));
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_REBOOT), 0);
}

}  // namespace
}  // namespace Orvane::testing
