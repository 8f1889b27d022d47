// The polling of an installation job: states, passes, waits, retries, and a CMM that gets lost meanwhile.
#include <thread>

#include "cmm/tests/cmm_update_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::SizeIs;

using Sleeps = std::vector<std::uint32_t>;

class CmmInstallJob : public CmmUpdateTest {
 protected:
  /// The lines from the first pass to the end of the job.
  Lines JobLines() const {
    const Lines all = transcript.All();
    const auto begin = std::find(all.begin(), all.end(), "cmm_update_imp 3 The 1 times retry:");
    const auto end = std::find(all.begin(), all.end(), "cmm_update_imp 3 Complete TarnUpdate::installPackage_CMM().");
    EXPECT_NE(end, all.end());
    return Lines(begin, end);
  }
  /// A pass up to the enumeration.
  Lines PassBegin(int number) const {
    return {"cmm_update_imp 3 The " + std::to_string(number) + " times retry:", "sleep 3000", ConnectLine()};
  }
  /// What is read of a list with the job under test alone.
  static Lines JobRead(int state, const std::string& status) {
    return {"cmm_update_imp 4 InstanceID     is: JOB_17", "cmm_update_imp 4 JobStatus      is: " + status,
            "cmm_update_imp 4 JobDescription is: " + std::to_string(state)};
  }
  static Lines Running(const std::string& status) {
    return JobRead(4, status) +
           Lines{"cmm_update_imp 4 Installing job CMM_OPT_RC_INSTALL_JOB_TIMEOUTis in running with the statue is " +
                     status,
                 "sleep 20000"};
  }
  static Lines Unstable(int state, const std::string& status) {
    return JobRead(state, status) + Lines{"cmm_update_imp 4 Installing job is in unstable state " +
                                              std::to_string(state) + " with status is " + status,
                                          "sleep 20000"};
  }
  /// The sleeps of an installation with @p passes polls, of which the last is followed by no pause.
  static Sleeps SleepsOf(int passes) {
    Sleeps sleeps = {1000, 1000, 3000};
    for (int pass = 1; pass < passes; ++pass) {
      sleeps.push_back(20000);
      sleeps.push_back(3000);
    }
    return sleeps;
  }
  void ExpectEnd(int result) const {
    EXPECT_TRUE(transcript.Has("cmm_update_imp 1 the return code of installPackage_CMM is " + std::to_string(result)));
  }
};

TEST_F(CmmInstallJob, RunsThenCompletes) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, JobIs(4, "loading"), JobIs(4, "writing"), JobIs(7, "written"));
  });
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(JobLines(),
              ElementsAreArray(PassBegin(1) + Running("loading") + PassBegin(2) + Running("writing") + PassBegin(3) +
                               JobRead(7, "written") +
                               Lines{"cmm_update_imp 3 Installing job finished with the status is written"}));
  EXPECT_EQ(clock.Sleeps(), SleepsOf(3)) << "two pauses of 20 seconds";
}

TEST_F(CmmInstallJob, IsAskedForOncePerPassOnAConnectionOfItsOwn) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), JobIs(7)); });
  EXPECT_EQ(Apply(), 0);
  const Lines conversation = Conversation();
  const Lines poll = {"connect", "EnumerateInstances VORTA_FirmwareInstallationJob", "disconnect"};
  ASSERT_GE(conversation.size(), 6U);
  EXPECT_EQ(Lines(conversation.end() - 6, conversation.end()), poll + poll);
  for (const CimRequest& request : Requests("EnumerateInstances")) {
    EXPECT_EQ(request.nameSpace, "root/cimv2");
    EXPECT_NE(request.head.find("CIMObject: root%2Fcimv2"), std::string::npos) << request.head;
  }
}

class JobErrorState : public CmmInstallJob, public ::testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(CmmInstall, JobErrorState, ::testing::Values(8, 9, 10));

TEST_P(JobErrorState, EndsAtOnceWithTwo) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, JobIs(4, "loading"), JobIs(static_cast<unsigned>(GetParam()), "no such file"),
                       JobIs(7));
  });
  EXPECT_EQ(Apply(), 2);
  EXPECT_THAT(JobLines(),
              ElementsAreArray(PassBegin(1) + Running("loading") + PassBegin(2) + JobRead(GetParam(), "no such file") +
                               Lines{"cmm_update_imp 4 Installing job is in error state " + std::to_string(GetParam()) +
                                     " with status is no such file"}));
  EXPECT_EQ(clock.Sleeps(), SleepsOf(2));
  ExpectEnd(2);
  EXPECT_TRUE(transcript.Has(
      "cmm_update_imp 1 update failed and the return code message is Internal function perform failed."));
}

TEST_P(JobErrorState, EndsInTheFirstPassToo) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(static_cast<unsigned>(GetParam()))); });
  EXPECT_EQ(Apply(), 2);
  EXPECT_EQ(clock.Sleeps(), SleepsOf(1));
}

TEST_F(CmmInstallJob, ThatNeverRunsIsGivenUpAfterElevenPasses) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(2, "new")); });
  EXPECT_EQ(Apply(), 2);
  Lines expected;
  for (int pass = 1; pass <= 11; ++pass) expected = expected + PassBegin(pass) + Unstable(2, "new");
  EXPECT_THAT(JobLines(), ElementsAreArray(expected + Lines{"cmm_update_imp 1 Job is still not in running after 11 "
                                                            "times query"}));
  Sleeps sleeps = SleepsOf(11);
  sleeps.push_back(20000);
  EXPECT_EQ(clock.Sleeps(), sleeps);
}

TEST_F(CmmInstallJob, ThatIsNotInTheListCountsAsUnstable) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, Objects({Job("JOB_1", CimUint16(7)), Job("JOB_170", CimUint16(7)),
                                           Job("job_17", CimUint16(7)), Job("", CimUint16(7))}));
  });
  EXPECT_EQ(Apply(), 2);
  Lines expected;
  for (int pass = 1; pass <= 11; ++pass) {
    expected = expected + PassBegin(pass) +
               Lines{"cmm_update_imp 4 InstanceID     is: JOB_1",
                     "cmm_update_imp 4 InstanceID     is: JOB_170",
                     "cmm_update_imp 4 InstanceID     is: job_17",
                     "cmm_update_imp 4 InstanceID     is: ",
                     "cmm_update_imp 4 Installing job is in unstable state 62235 with status is ",
                     "sleep 20000"};
  }
  EXPECT_THAT(JobLines(), ElementsAreArray(expected + Lines{"cmm_update_imp 1 Job is still not in running after 11 "
                                                            "times query"}));
}

TEST_F(CmmInstallJob, ThatRunsInTheEleventhPassIsFollowed) {
  onSleep = [this](std::uint32_t /*milliseconds*/) {
    constexpr std::size_t kSleepsUntilTheEleventhPoll = 3 + 2 * 10;
    if (clock.Sleeps().size() == kSleepsUntilTheEleventhPoll)
      cmm.Server().OnEnumerate(kJobClass, JobIs(4), JobIs(3), JobIs(3), JobIs(7));
  };
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(3)); });
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(clock.Sleeps(), SleepsOf(14));
}

TEST_F(CmmInstallJob, ThatAlwaysRunsTimesOutAfterAThousandPasses) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4, "busy")); });
  EXPECT_EQ(Apply(), 8);
  Sleeps sleeps = SleepsOf(1000);
  sleeps.push_back(20000);
  EXPECT_EQ(clock.Sleeps(), sleeps);
  const Lines lines = JobLines();
  const Lines last = PassBegin(1000) + Running("busy");
  ASSERT_EQ(lines.size(), 1000 * last.size());
  EXPECT_EQ(Lines(lines.end() - static_cast<std::ptrdiff_t>(last.size()), lines.end()), last);
  ExpectEnd(8);
  EXPECT_TRUE(transcript.Has("cmm_update_imp 1 update failed and the return code message is Unkown exception."));
}

TEST_F(CmmInstallJob, ThatRanAndVanishedGivesTwoAfterAThousandPasses) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), Objects({Job("another", CimUint16(7))})); });
  EXPECT_EQ(Apply(), 2);
  Sleeps sleeps = SleepsOf(1000);
  sleeps.push_back(20000);
  EXPECT_EQ(clock.Sleeps(), sleeps);
  EXPECT_TRUE(transcript.Has("cmm_update_imp 4 Installing job is in unstable state 62235 with status is "));
}

TEST_F(CmmInstallJob, ThatVanishedForAWhileIsFoundAgain) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, JobIs(4), Objects({Job("another", CimUint16(7))}), JobIs(4), JobIs(7));
  });
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(clock.Sleeps(), SleepsOf(4));
}

TEST_F(CmmInstallJob, EmptyListIsAskedForThreeTimesAndGivesSeven) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, NoObjects()); });
  EXPECT_EQ(Apply(), 7);
  EXPECT_THAT(
      JobLines(),
      ElementsAreArray(PassBegin(1) + Lines{"cmm_update_imp 2 Failed to enumerate job instance with 3 times retry"}));
  const std::string poll = "EnumerateInstances VORTA_FirmwareInstallationJob";
  const Lines conversation = Conversation();
  ASSERT_GE(conversation.size(), 5U);
  EXPECT_EQ(Lines(conversation.end() - 5, conversation.end()), (Lines{"connect", poll, poll, poll, "disconnect"}));
  ExpectEnd(7);
  EXPECT_TRUE(
      transcript.Has("cmm_update_imp 1 update failed and the return code message is Not found specific instance."));
}

TEST_F(CmmInstallJob, ObjectCanBeUsedAgainAfterAnEmptyList) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, NoObjects(), NoObjects(), NoObjects(), JobIs(7)); });
  CMMUpdate update = Update();
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 7);
  EXPECT_TRUE(cmm.WaitForOpenConnections(0)) << "nothing stays connected behind the call";
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  EXPECT_FALSE(transcript.Has(ConnectLine(-1)));
}

TEST_F(CmmInstallJob, ListThatComesAtTheThirdRequestIsUsed) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, NoObjects(), NoObjects(), JobIs(7)); });
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(clock.Sleeps(), SleepsOf(1)) << "no pause between the requests";
}

TEST_F(CmmInstallJob, ErrorsOfTheEnumerationAreRetriedWithinThePass) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, CimError(1, "broken"), Close(), JobIs(7)); });
  EXPECT_EQ(Apply(), 0);
  EXPECT_TRUE(transcript.Has("cmm_peg_client 1 EnumerateInstances Exception: broken"));
  EXPECT_TRUE(transcript.Has("cmm_peg_client 1 EnumerateInstances Exception: Connection closed by CIM Server."));
}

TEST_F(CmmInstallJob, CredentialsThatStopToCountGiveSeven) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), JobIs(4), HttpStatus(401, "Unauthorized")); });
  EXPECT_EQ(Apply(), 7);
  EXPECT_EQ(transcript.Of("cmm_peg_client 1 "),
            Repeat(3, {"Client HTTP Exception: HTTP Error (401 Unauthorized).RESP: [401]"}));
  EXPECT_EQ(clock.Sleeps(), SleepsOf(3));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(CmmInstallJob, LostBeforeTheFirstPassGivesOneAfterThreeAttempts) {
  cmm.Do([](CimServer& server) { server.OnInvoke("InstallFromURI", ThenRefuse(InstallStarted())); });
  EXPECT_EQ(Apply(), 1);
  EXPECT_THAT(JobLines(),
              ElementsAreArray(Lines{"cmm_update_imp 3 The 1 times retry:", "sleep 3000"} + RefusedConnect() +
                               Lines{"sleep 3000"} + RefusedConnect() + Lines{"sleep 3000"} + RefusedConnect()));
  ExpectEnd(1);
}

TEST_F(CmmInstallJob, CmmThatRestartsBetweenPassesIsFoundAgain) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4)); });
  onSleep = [this](std::uint32_t milliseconds) {
    if (milliseconds == 20000) cmm.Down();
    if (clock.Sleeps().size() == 6) {  // the third attempt of the second pass
      cmm.Up();
      cmm.Server().OnEnumerate(kJobClass, JobIs(7));
    }
  };
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{1000, 1000, 3000, 20000, 3000, 3000}));
}

TEST_F(CmmInstallJob, CmmThatStaysAwayBetweenPassesGivesOne) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4)); });
  onSleep = [this](std::uint32_t milliseconds) {
    if (milliseconds == 20000) cmm.Down();
  };
  EXPECT_EQ(Apply(), 1);
  EXPECT_EQ(clock.Sleeps(), (Sleeps{1000, 1000, 3000, 20000, 3000, 3000, 3000}));
}

TEST_F(CmmInstallJob, CmmThatDiesInAnAnswerGivesSeven) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), ThenRefuse(Close())); });
  EXPECT_EQ(Apply(), 7);
  const std::string refused =
      "EnumerateInstances Exception: Cannot connect to 127.0.0.1:" + std::to_string(cmm.Port()) +
      ". Connection failed.";
  EXPECT_THAT(transcript.Of("cmm_peg_client 1 "),
              ElementsAre("EnumerateInstances Exception: Connection closed by CIM Server.", refused, refused));
}

struct StateText {
  const char* name;
  CimValue value;
  int state;
};
class JobStateText : public CmmInstallJob, public ::testing::WithParamInterface<StateText> {};
INSTANTIATE_TEST_SUITE_P(
    CmmInstall, JobStateText,
    ::testing::Values(StateText{"Uint32", CimTyped("uint32", "7"), 7}, StateText{"Text", CimString("7"), 7},
                      StateText{"TextWithMore", CimString("7 (Completed)"), 7},
                      StateText{"LeadingBlank", CimString(" 7"), 7}, StateText{"LeadingZero", CimString("007"), 7},
                      StateText{"Array", CimUint16Array({7, 10}), 7}, StateText{"NoHexadecimal", CimString("0x7"), 0},
                      StateText{"NoOctal", CimString("011"), 11}, StateText{"NoNumber", CimString("Completed 7"), 0},
                      StateText{"Empty", CimString(""), 0}, StateText{"Null", CimNull("uint16"), 0},
                      StateText{"Seventy", CimUint16(70), 70}, StateText{"Negative", CimString("-7"), -7},
                      StateText{"LargestNumber", CimUint16(65535), 65535}, StateText{"Starting", CimUint16(3), 3},
                      StateText{"Suspended", CimUint16(5), 5}, StateText{"ShuttingDown", CimUint16(6), 6},
                      StateText{"Service", CimUint16(11), 11}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_P(JobStateText, IsTheNumberAtItsBeginning) {
  cmm.Do(
      [](CimServer& server) { server.OnEnumerate(kJobClass, Objects({Job("JOB_17", GetParam().value, "as told")})); });
  EXPECT_EQ(Apply(), GetParam().state == 7 ? 0 : 2);
  EXPECT_TRUE(transcript.Has("cmm_update_imp 4 JobDescription is: " + std::to_string(GetParam().state)));
  if (GetParam().state != 7) {
    EXPECT_TRUE(transcript.Has("cmm_update_imp 4 Installing job is in unstable state " +
                               std::to_string(GetParam().state) + " with status is as told"));
  }
}

TEST_F(CmmInstallJob, WithoutItsPropertiesIsUnstable) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, Objects({CimObjectSpec(kJobClass).Key("InstanceID", "JOB_17")}));
  });
  EXPECT_EQ(Apply(), 2);
  EXPECT_TRUE(transcript.Has("cmm_update_imp 4 JobStatus      is: "));
  EXPECT_TRUE(transcript.Has("cmm_update_imp 4 Installing job is in unstable state 0 with status is "));
}

TEST_F(CmmInstallJob, LaterInstanceOfTheSameIdentifierCounts) {
  cmm.Do([](CimServer& server) {
    server.OnEnumerate(kJobClass, Objects({Job("JOB_17", CimUint16(10), "old"), Job("x", CimUint16(10), "other"),
                                           Job("JOB_17", CimUint16(7), "new")}));
  });
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(JobLines(), ElementsAreArray(PassBegin(1) + JobRead(10, "old") +
                                           Lines{"cmm_update_imp 4 InstanceID     is: x"} + JobRead(7, "new") +
                                           Lines{"cmm_update_imp 3 Installing job finished with the status is new"}));
}

TEST_F(CmmInstallJob, CompletedWinsWhateverTheStatusSays) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(7, "FINGERPRINT MISMATCH")); });
  EXPECT_EQ(Apply(), 0);
}

TEST_F(CmmInstallJob, SamePackageTwiceFollowsTheSecondJob) {
  cmm.Do([](CimServer& server) {
    server.OnInvoke("InstallFromURI",
                    MethodResult(CimTyped("uint32", "4096"), {{"Job", CimString("C.InstanceID=\"JOB_1\"")}}),
                    MethodResult(CimTyped("uint32", "4096"), {{"Job", CimString("C.InstanceID=\"JOB_2\"")}}));
    server.OnEnumerate(kJobClass, Objects({Job("JOB_1", CimUint16(7)), Job("JOB_2", CimUint16(10))}));
  });
  CMMUpdate update = Update();
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 0);
  EXPECT_EQ(update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT), 2);
}

TEST_F(CmmInstallJob, TwoObjectsOnTwoThreadsDoNotMeet) {
  cmm.Do([](CimServer& server) { server.OnEnumerate(kJobClass, JobIs(4), JobIs(4), JobIs(4), JobIs(4), JobIs(7)); });
  CMMUpdate first = Update("http://127.0.0.1/first");
  CMMUpdate second = Update("http://127.0.0.1/second");
  std::vector<int> results = {-1, -1};
  std::thread other([&] { results[0] = first.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT); });
  results[1] = second.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT);
  other.join();
  EXPECT_THAT(results, Each(0));
  EXPECT_THAT(Requests("InvokeMethod"), SizeIs(2));
  EXPECT_TRUE(cmm.WaitForOpenConnections(0));
}

}  // namespace
}  // namespace Orvane::testing
