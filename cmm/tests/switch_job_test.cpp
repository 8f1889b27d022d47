// The job of a switch install, poll by poll: the table of its states and texts, errors while it is followed, and waits.
#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr char kUri[] = "http://files/one.bin";
constexpr char kEmptyStatus[] = "1 The JobStatus is Empty because error happened when creats jobinstance.";
constexpr char kInvokeError[] = "Unknown error happened when invokeMethod ";

class SwitchJob : public SwitchTest {
 protected:
  /// The lines from the last poll on.
  std::vector<std::string> LastPoll() const {
    const std::vector<std::string> lines = Lines();
    std::size_t begin = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].rfind("3 Try to get the result", 0) == 0) begin = i;
    }
    return {lines.begin() + static_cast<std::ptrdiff_t>(begin), lines.end()};
  }
};

struct JobRow {
  unsigned state;
  const char* status;
  int result;
  const char* line;
};

// "-" as a result: the job runs on, and the next poll finds it done.
constexpr int kRunsOn = -1;
constexpr char kDoneLine[] = "3 Update completed successfully and the message is ";
constexpr char kFailedLine[] = "1 Update failed and the reason is:  ";
constexpr char kRunningLine[] = "3 Update process started! ";
constexpr char kBusyLine[] = "1 Update failed as another firmware update is in progress. ";
constexpr char kUnknownLine[] = "1 Update failed with an unknown error.";

class SwitchJobTable : public SwitchJob, public ::testing::WithParamInterface<JobRow> {};

TEST_P(SwitchJobTable, IsReadRowByRow) {
  const auto& [state, status, result, line] = GetParam();
  ScriptInstall(JobAnswer(state, status), JobAnswer(7, "done after all"));

  EXPECT_EQ(object.installPackage(kUri), result == kRunsOn ? 0 : result);

  const bool withStatus = line == kDoneLine || line == kFailedLine;
  const std::string expected = std::string(line) + (withStatus ? status : "");
  const std::string info = std::string("3 Job instance info: ( InstanceID:job 7,JobStatus: ") + status +
                           ",JobState: " + std::to_string(state) + " )";
  const std::vector<std::string> lines = Lines();
  const auto at = std::find(lines.begin(), lines.end(), info);
  ASSERT_LT(at + 1, lines.end());
  EXPECT_EQ(at[1], expected);
  EXPECT_EQ(Count("EnumerateInstances CIM_ConcreteJob"), result == kRunsOn ? 2u : 1u);
  EXPECT_EQ(clock.Sleeps(),
            result == kRunsOn ? (std::vector<std::uint32_t>{10000, 60000}) : (std::vector<std::uint32_t>{10000}));
}

INSTANTIATE_TEST_SUITE_P(
    OwnRow, SwitchJobTable,
    ::testing::Values(JobRow{7, kJobDone, 0, kDoneLine}, JobRow{7, "whatever", 0, kDoneLine},
                      JobRow{2, kJobDone, 0, kDoneLine}, JobRow{10, kJobCutOff, 17, kFailedLine},
                      JobRow{10, "whatever", 17, kFailedLine}, JobRow{2, kJobCutOff, 17, kFailedLine},
                      JobRow{4, kJobRunning, kRunsOn, kRunningLine}, JobRow{4, "whatever", kRunsOn, kRunningLine},
                      JobRow{2, kJobRunning, kRunsOn, kRunningLine}, JobRow{2, kJobBusy, 18, kBusyLine},
                      JobRow{9, kJobBusy, 18, kBusyLine}, JobRow{2, "whatever", 2, kUnknownLine},
                      JobRow{0, "whatever", 2, kUnknownLine}));

// A state of one row against a text of another: the higher row holds.
INSTANTIATE_TEST_SUITE_P(HigherRow, SwitchJobTable,
                         ::testing::Values(JobRow{7, kJobCutOff, 0, kDoneLine}, JobRow{7, kJobRunning, 0, kDoneLine},
                                           JobRow{7, kJobBusy, 0, kDoneLine}, JobRow{10, kJobDone, 0, kDoneLine},
                                           JobRow{4, kJobDone, 0, kDoneLine}, JobRow{10, kJobRunning, 17, kFailedLine},
                                           JobRow{10, kJobBusy, 17, kFailedLine},
                                           JobRow{4, kJobCutOff, 17, kFailedLine},
                                           JobRow{4, kJobBusy, kRunsOn, kRunningLine}));

INSTANTIATE_TEST_SUITE_P(TextsAreComparedWhole, SwitchJobTable,
                         ::testing::Values(JobRow{2, "Flash Completed with no apparent errors.", 2, kUnknownLine},
                                           JobRow{2, "flash completed with no apparent errors", 2, kUnknownLine},
                                           JobRow{2, "Flash Completed", 2, kUnknownLine},
                                           JobRow{2, "FLASH INSTALLATION JOB STARTED", 2, kUnknownLine},
                                           JobRow{2, "Busy - Another firmware update in progress ", 2, kUnknownLine}));

TEST_F(SwitchJob, ClassifiesItsTextInEveryPoll) {
  ScriptInstall(JobAnswer(4, "timeout, trying again"), JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_THAT(log.Texts(1), ElementsAre("TIMEOUT")) << "said of the poll that went on";
}

TEST_F(SwitchJob, ClassifiesAnEmptyTextAsWell) {
  ScriptInstall(NoObjects());

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_TRUE(log.Has(4, "CheckUpdateErrorCode CMMJobStatusStrFlagLocal="));
}

struct ClassifiedRow {
  unsigned state;
  const char* status;
  int result;
};

class SwitchJobClassified : public SwitchJob, public ::testing::WithParamInterface<ClassifiedRow> {};

TEST_P(SwitchJobClassified, GivesTheCodeOfTheText) {
  ScriptInstall(JobAnswer(GetParam().state, GetParam().status));

  EXPECT_EQ(object.installPackage(kUri), GetParam().result);
}

// Failed jobs and unknown texts take the code; a finished and a busy one do not.
INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchJobClassified,
    ::testing::Values(ClassifiedRow{10, "Fingerprint mismatch", 10}, ClassifiedRow{2, "Fingerprint mismatch", 10},
                      ClassifiedRow{10, "dcsc_rc_timeout", 16}, ClassifiedRow{2, "file does not exist", 35},
                      ClassifiedRow{9, "CURLE(127) - This is an unknown CURL error", 7},
                      ClassifiedRow{10, "DCSS_RC_RECV_FAIL", 9}, ClassifiedRow{10, "DCSS_RC_CDT_FAIL", 12},
                      ClassifiedRow{10, "Firmware download operation failed", 11},
                      ClassifiedRow{10, "Host key authentication failed", 13},
                      ClassifiedRow{10, "Fingerprint mismatch, failed to contact host", 14},
                      ClassifiedRow{10, "Flashing ended with failure", 15}, ClassifiedRow{7, "TIMEOUT", 0}));

TEST_F(SwitchJob, IsPolledWithoutAnEnd) {
  ScriptInstall(JobAnswer(4, kJobRunning));
  VirtualClock late([this](std::size_t index, std::uint32_t) {
    if (index == 200) server.OnEnumerate(kJobClass, JobAnswer(7, kJobDone));
  });

  EXPECT_EQ(object.installPackage(kUri), 0);

  std::vector<std::uint32_t> waits(201, 60000u);
  waits[0] = 10000;
  EXPECT_EQ(late.Sleeps(), waits);
  EXPECT_EQ(Count("EnumerateInstances CIM_ConcreteJob"), 201u);
  EXPECT_TRUE(log.Has(3, "Try to get the result of the InstallFromURI call: 201"));
  EXPECT_FALSE(log.Has(3, "Try to get the result of the InstallFromURI call: 202"));
}

TEST_F(SwitchJob, ThatIsNotAmongTheJobsEndsIt) {
  ScriptInstall(Objects({Job("another", 7, kJobDone), Job("job 70", 7, kJobDone)}));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(LastPoll(),
              ElementsAre("3 Try to get the result of the InstallFromURI call: 1", kConnectedLine, kEmptyStatus));
}

TEST_F(SwitchJob, ThatVanishesEndsItWhateverItWasBefore) {
  ScriptInstall(JobAnswer(4, kJobRunning), NoObjects(), JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_EQ(Lines().back(), kEmptyStatus);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 60000u));
}

TEST_F(SwitchJob, WithoutATextEndsItAlsoWhenItIsCompleted) {
  ScriptInstall(JobAnswer(7, ""),
                Objects({CimObjectSpec(kJobClass).Key("InstanceID", kJobId).With("JobState", CimUint16(7))}));

  EXPECT_EQ(object.installPackage(kUri), 2);
  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_EQ(Lines().back(), kEmptyStatus);
}

TEST_F(SwitchJob, StandingThereTwiceIsWhatTheLastOneSays) {
  ScriptInstall(Objects({Job(kJobId, 10, "first"), Job("another", 4, kJobRunning), Job(kJobId, 7, "last")}));

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_THAT(LastPoll(), ElementsAre("3 Try to get the result of the InstallFromURI call: 1", kConnectedLine,
                                      "3 Job instance info: ( InstanceID:job 7,JobStatus: first,JobState: 10 )",
                                      "3 Job instance info: ( InstanceID:job 7,JobStatus: last,JobState: 7 )",
                                      "3 Update completed successfully and the message is last"));
}

TEST_F(SwitchJob, WhoseStateIsNoNumberIsReadByItsText) {
  const auto job = [](const CimValue& state, const char* status) {
    return Objects(
        {CimObjectSpec(kJobClass).Key("InstanceID", kJobId).With("ErrorDescription", status).With("JobState", state)});
  };
  ScriptInstall(job(CimString("Completed"), kJobBusy), job(CimNull("uint16"), kJobDone), job(CimString("7"), "text"));

  EXPECT_EQ(object.installPackage(kUri), 18);
  EXPECT_EQ(object.installPackage(kUri), 0);
  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_TRUE(
      log.Has(3, std::string("Job instance info: ( InstanceID:job 7,JobStatus: ") + kJobDone + ",JobState: -1 )"));
}

TEST_F(SwitchJob, CannotBeFollowedWithoutAConnection) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", ThenRefuse(InstallAnswer()));

  EXPECT_EQ(object.installPackage(kUri), 1);

  const std::string refused =
      "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:" + std::to_string(server.Port()) +
      ". Connection failed.";
  EXPECT_THAT(LastPoll(),
              ElementsAre("3 Try to get the result of the InstallFromURI call: 1", refused, refused,
                          "1 Failed to connect the CMM when try to get the result of the InstallFromURI call!"));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u)) << "it is tried once";
}

TEST_F(SwitchJob, IsLostWithTheChassisManagerInMidPolling) {
  ScriptInstall(JobAnswer(4, kJobRunning), ThenRefuse(JobAnswer(4, kJobRunning)));

  EXPECT_EQ(object.installPackage(kUri), 1);

  EXPECT_EQ(Lines().back(), "1 Failed to connect the CMM when try to get the result of the InstallFromURI call!");
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 60000u, 60000u));
}

TEST_F(SwitchJob, IsLostWithTheConnectionInAnAnswer) {
  ScriptInstall(JobAnswer(4, kJobRunning), Close(), HttpStatus(503, "Service Unavailable"), Body("<cut"));

  for (int call = 0; call < 3; ++call) EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre(std::string(kInvokeError) + "Connection closed by CIM Server.",
                                        std::string(kInvokeError) + "HTTP Error (503 Service Unavailable).",
                                        StartsWith(kInvokeError)));
}

struct PollStatus {
  unsigned code;
  const char* line;
  int result;
};

class SwitchJobStatus : public SwitchJob, public ::testing::WithParamInterface<PollStatus> {};

TEST_P(SwitchJobStatus, OfAPoll) {
  ScriptInstall(JobAnswer(4, kJobRunning), CimError(GetParam().code, "the server's own text"), JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage(kUri), GetParam().result);

  EXPECT_THAT(LastPoll(),
              ElementsAre("3 Try to get the result of the InstallFromURI call: 2", kConnectedLine, GetParam().line));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 60000u));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchJobStatus,
    ::testing::Values(PollStatus{2, "1 Wrong userid or password,  Please check your userid and password!", 5},
                      PollStatus{7, "1 CIM_ERR_NOT_SUPPORTED", 20}, PollStatus{1, kEmptyStatus, 2},
                      PollStatus{3, kEmptyStatus, 2}, PollStatus{5, kEmptyStatus, 2}, PollStatus{99, kEmptyStatus, 2}),
    [](const auto& row) { return std::to_string(row.param.code); });

}  // namespace
}  // namespace Orvane::testing
