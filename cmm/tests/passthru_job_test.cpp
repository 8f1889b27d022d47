// How the install of a pass-through module follows its job: every row of the job table, the precedence between rows,
// the waits, and the polls that fail.
#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kNoJobLine[] = "1 The JobStatus is Empty because error happened when creats jobinstance.!";

class PassThruJob : public PassThruTest {
 protected:
  PassThruJob() { ScriptInstall(); }
  /// A job without one of its properties.
  static CimObjectSpec Bare(const std::string& id) { return CimObjectSpec(kConcreteJob).Key("InstanceID", id); }
};

struct RowCase {
  const char* name;
  unsigned state;
  const char* status;
  const char* line;  // what stands before the status text
  int result;
};
constexpr char kFinish[] = "3 Update Finish And the Jobstatus is ";
constexpr char kInfo10[] = "3 Update successfully and the return update info from PassThru is ";
constexpr char kInfoBusy[] = "3 Update failed and the return update info from PassThru is ";

class PassThruJobRows : public PassThruJob, public ::testing::WithParamInterface<RowCase> {};

TEST_P(PassThruJobRows, HaveTheirLineAndCode) {
  ScriptJob(Job(GetParam().status, GetParam().state));
  EXPECT_EQ(Install(), GetParam().result);
  EXPECT_EQ(Lines().back(), std::string(GetParam().line) + GetParam().status);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

// The first row that fits holds, so an earlier row's state or text goes before a later row's.
INSTANTIATE_TEST_SUITE_P(Table, PassThruJobRows,
                         ::testing::Values(RowCase{"State7", 7, "whatever", kFinish, 0},
                                           RowCase{"FlashedText", 3, kFlashed, kFinish, 0},
                                           RowCase{"State7AndFlashed", 7, kFlashed, kFinish, 0},
                                           RowCase{"State7BeforeUnfinished", 7, kUnfinished, kFinish, 0},
                                           RowCase{"State7BeforeStarted", 7, kStarted, kFinish, 0},
                                           RowCase{"State7BeforeBusy", 7, kBusy, kFinish, 0},
                                           RowCase{"FlashedBeforeState10", 10, kFlashed, kFinish, 0},
                                           RowCase{"FlashedBeforeState4", 4, kFlashed, kFinish, 0},
                                           RowCase{"State10", 10, "whatever", kInfo10, 15},
                                           RowCase{"UnfinishedText", 3, kUnfinished, kInfo10, 15},
                                           RowCase{"State10AndUnfinished", 10, kUnfinished, kInfo10, 15},
                                           RowCase{"State10BeforeStarted", 10, kStarted, kInfo10, 15},
                                           RowCase{"State10BeforeBusy", 10, kBusy, kInfo10, 15},
                                           RowCase{"UnfinishedBeforeState4", 4, kUnfinished, kInfo10, 15},
                                           RowCase{"Busy", 3, kBusy, kInfoBusy, 18},
                                           RowCase{"BusyNew", 2, kBusy, kInfoBusy, 18},
                                           RowCase{"BusyKilled", 9, kBusy, kInfoBusy, 18}),
                         [](const auto& param) { return param.param.name; });

class PassThruJobUnknown : public PassThruJob, public ::testing::WithParamInterface<const char*> {};

TEST_P(PassThruJobUnknown, EndsWithSix) {
  ScriptJob(Job(GetParam(), 3));
  EXPECT_EQ(Install(), 6);
  EXPECT_EQ(Lines().back(), "1 Update failed with unknown error.");
}

// Texts are compared whole and with their case; no error is read out of them.
INSTANTIATE_TEST_SUITE_P(Texts, PassThruJobUnknown,
                         ::testing::Values("whatever", " ", "flash completed with no apparent errors",
                                           "Flash Completed with no apparent errors ", "Busy", "DCSC_RC_TIMEOUT",
                                           "File does not exist", "Flash Installation Job Started."));

struct RunningCase {
  const char* name;
  unsigned state;
  const char* status;
};
class PassThruJobRunning : public PassThruJob, public ::testing::WithParamInterface<RunningCase> {};

TEST_P(PassThruJobRunning, IsPolledAgainAMinuteLater) {
  ScriptJob(Job(GetParam().status, GetParam().state), Job(GetParam().status, GetParam().state), Job(kFlashed, 7));
  EXPECT_EQ(Install(), 0);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 60000, 60000));
  const std::vector<std::string> lines = Lines();
  const auto first = std::find(lines.begin(), lines.end(), "sleep 10000");
  const std::string status = GetParam().status;
  const std::string state = std::to_string(GetParam().state);
  EXPECT_THAT(
      std::vector<std::string>(first, first + 9),
      ElementsAre("sleep 10000", "3 GetInstance time = 1", "3 Successfully connected to host : 127.0.0.1",
                  "3 InstanceID string =JOB_17", "3 JobStatus string = " + status, "3 JobState string = " + state,
                  "3 JobStatus string that will be used to get the update status = " + status,
                  "3 Update Initialization and the return update info from PassThru is" + status, "sleep 60000"));
  EXPECT_THAT(lines, Contains("3 GetInstance time = 2"));
  EXPECT_THAT(lines, Contains("3 GetInstance time = 3"));
  EXPECT_THAT(lines, Not(Contains("3 GetInstance time = 4")));
  const std::vector<std::string> conversation = Conversation();
  EXPECT_THAT(std::vector<std::string>(conversation.end() - 9, conversation.end()),
              ElementsAre("connect", "EnumerateInstances CIM_ConcreteJob", "disconnect",  //
                          "connect", "EnumerateInstances CIM_ConcreteJob", "disconnect",  //
                          "connect", "EnumerateInstances CIM_ConcreteJob", "disconnect"));
}

INSTANTIATE_TEST_SUITE_P(Rows, PassThruJobRunning,
                         ::testing::Values(RunningCase{"State4", 4, "42 percent"},
                                           RunningCase{"StartedText", 3, kStarted}, RunningCase{"Both", 4, kStarted},
                                           RunningCase{"State4BeforeBusy", 4, kBusy}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruJob, ThatGoesOnIsPolledWithoutABound) {
  ScriptJob(Job(kStarted, 4));
  onSleep = [this](std::size_t index) {
    if (index == 200) ScriptJob(Job(kFlashed, 7));
  };
  EXPECT_EQ(Install(), 0);
  ASSERT_EQ(clock.Sleeps().size(), 201U) << "10 s, then a minute after each of 200 polls";
  EXPECT_EQ(clock.Elapsed(), std::chrono::seconds(10) + std::chrono::minutes(200));
  EXPECT_THAT(Lines(), Contains("3 GetInstance time = 201"));
}

TEST_F(PassThruJob, EveryInstanceIsLoggedAndTheNamedOneCounts) {
  server.OnEnumerate(kConcreteJob,
                     Objects({JobObject("JOB_1", kBusy, 9), Job(kFlashed, 7), JobObject("JOB_17x", kUnfinished, 10)}));
  EXPECT_EQ(Install(), 0);
  const std::vector<std::string> lines = Lines();
  const auto first = std::find(lines.begin(), lines.end(), "3 InstanceID string =JOB_1");
  ASSERT_GE(lines.end() - first, 9);
  EXPECT_THAT(
      std::vector<std::string>(first, first + 9),
      ElementsAre("3 InstanceID string =JOB_1", std::string("3 JobStatus string = ") + kBusy, "3 JobState string = 9",
                  "3 InstanceID string =JOB_17", std::string("3 JobStatus string = ") + kFlashed,
                  "3 JobState string = 7", "3 InstanceID string =JOB_17x",
                  std::string("3 JobStatus string = ") + kUnfinished, "3 JobState string = 10"));
}

TEST_F(PassThruJob, OfTwoInstancesWithOneIdTheFirstCounts) {
  server.OnEnumerate(kConcreteJob, Objects({Job(kBusy, 9), Job(kFlashed, 7)}));
  EXPECT_EQ(Install(), 18);
  server.OnEnumerate(kConcreteJob, Objects({Bare("JOB_17"), Job(kFlashed, 7)}));
  EXPECT_EQ(Install(), 2) << "also when the first has no status text";
}

TEST_F(PassThruJob, ThatIsNotThereEndsWithTwo) {
  server.OnEnumerate(kConcreteJob, NoObjects());
  EXPECT_EQ(Install(), 2);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("3 GetInstance time = 1", "3 Successfully connected to host : 127.0.0.1", kNoJobLine));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(PassThruJob, OfAnotherSpellingIsNotThere) {
  server.OnEnumerate(kConcreteJob, Objects({JobObject("job_17", kFlashed, 7)}));
  EXPECT_EQ(Install(), 2);
  EXPECT_EQ(Lines().back(), kNoJobLine);
}

TEST_F(PassThruJob, ThatVanishesEndsWithTwo) {
  server.OnEnumerate(kConcreteJob, Objects({Job(kStarted, 4)}), NoObjects());
  EXPECT_EQ(Install(), 2);
  EXPECT_EQ(Lines().back(), kNoJobLine);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 60000));
}

TEST_F(PassThruJob, WithoutAStatusTextEndsWithTwoWhateverItsState) {
  for (const CimObjectSpec& job :
       {Job("", 7), Bare("JOB_17").With("JobState", CimUint16(7)),
        Bare("JOB_17").With("ErrorDescription", CimNull("string")).With("JobState", CimUint16(7))}) {
    server.OnEnumerate(kConcreteJob, Objects({job}));
    EXPECT_EQ(Install(), 2);
    EXPECT_EQ(Lines().back(), kNoJobLine);
  }
}

TEST_F(PassThruJob, WithoutAStateIsToldByItsTextOnly) {
  for (const char* status : {kFlashed, "whatever"}) {
    server.OnEnumerate(kConcreteJob, Objects({Bare("JOB_17").With("ErrorDescription", status)}));
    EXPECT_EQ(Install(), status == kFlashed ? 0 : 6);
    EXPECT_THAT(Lines(3), Contains("JobState string = "));
  }
}

TEST_F(PassThruJob, StatesAreReadLeniently) {
  for (const char* state : {" 7", "7 of 9", "07"}) {
    server.OnEnumerate(kConcreteJob, Objects({Bare("JOB_17").With("ErrorDescription", "x").With("JobState", state)}));
    EXPECT_EQ(Install(), 0) << state;
  }
  for (const char* state : {"x7", "77", "-7", ""}) {
    server.OnEnumerate(kConcreteJob, Objects({Bare("JOB_17").With("ErrorDescription", "x").With("JobState", state)}));
    EXPECT_EQ(Install(), 6) << state;
  }
}

// Polls that fail.

TEST_F(PassThruJob, AccessDeniedWhilePollingIsAWrongPassword) {
  ScriptJob(Job(kStarted, 4));
  server.OnEnumerate(kConcreteJob, Objects({Job(kStarted, 4)}), CimError(2, "no"));
  EXPECT_EQ(Install(), 5);
  EXPECT_EQ(Lines().back(), "1 Wrong userid or password,  Please check your userid and password!");
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_F(PassThruJob, NotSupportedWhilePollingHasAnExclamationMark) {
  server.OnEnumerate(kConcreteJob, CimError(7, "no"));
  EXPECT_EQ(Install(), 20);
  EXPECT_EQ(Lines().back(), "1 CIM_ERR_NOT_SUPPORTED!");
  EXPECT_EQ(Conversation().back(), "disconnect");
}

class PassThruJobOtherStatus : public PassThruJob, public ::testing::WithParamInterface<unsigned> {};

TEST_P(PassThruJobOtherStatus, LeavesNothingRead) {
  server.OnEnumerate(kConcreteJob, CimError(GetParam(), "no"));
  EXPECT_EQ(Install(), 2);
  EXPECT_THAT(Lines(1), ElementsAre("The JobStatus is Empty because error happened when creats jobinstance.!"));
}

INSTANTIATE_TEST_SUITE_P(Statuses, PassThruJobOtherStatus, ::testing::Values(1U, 3U, 4U, 5U, 6U, 8U, 16U, 17U, 99U));

struct PollError {
  const char* name;
  CimAnswer answer;
  const char* message;
};
class PassThruJobError : public PassThruJob, public ::testing::WithParamInterface<PollError> {};

TEST_P(PassThruJobError, EndsThePollingWithItsMessage) {
  server.OnEnumerate(kConcreteJob, Objects({Job(kStarted, 4)}), GetParam().answer, Objects({Job(kFlashed, 7)}));
  EXPECT_EQ(Install(), 212);
  EXPECT_EQ(Lines().back(), std::string("1 unknown error happened when invokeMethod ") + GetParam().message);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 60000));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(Answers, PassThruJobError,
                         ::testing::Values(PollError{"Unauthorized", HttpStatus(401, "Unauthorized"),
                                                     "HTTP Error (401 Unauthorized)."},
                                           PollError{"Unavailable", HttpStatus(503, "Service Unavailable"),
                                                     "HTTP Error (503 Service Unavailable)."},
                                           PollError{"Closed", Close(), "Connection closed by CIM Server."}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruJob, ACmmThatIsAwayAtAPollEndsWithOneAndAsksOnce) {
  server.OnEnumerate(kConcreteJob, ThenRefuse(Objects({Job(kStarted, 4)})));
  EXPECT_EQ(Install(), 1);
  const std::vector<std::string> lines = Lines();
  const std::string refused =
      "1 Pegasus CannotConnectException :Cannot connect to 127.0.0.1:" + std::to_string(server.Port()) +
      ". Connection failed.";
  EXPECT_THAT(std::vector<std::string>(lines.end() - 4, lines.end()),
              ElementsAre("sleep 60000", "3 GetInstance time = 2", refused, refused));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 60000)) << "no second attempt";
}

}  // namespace
}  // namespace Orvane::testing
