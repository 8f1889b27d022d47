// What the operations of the library make of a chassis where jobs get stuck, vanish or fail, a CMM does not come back,
// two CMMs are primary, or the target is gone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/fault_flow.h"

namespace Orvane::tests {
namespace {

using std::chrono::seconds;
using ::testing::ValuesIn;

class JobFault : public ::testing::TestWithParam<Flow> {};
TEST_P(JobFault, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kJobFaults[] = {
    {"OfACmmIsStuckBeforeItRuns",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobStuck","state":"new"}})", UpdateCmm, 2, 1,
     "Job is still not in running after 11 times query", seconds(2 + 11 * 23)},
    {"OfACmmIsStuckWhileItRuns", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobStuck"}})", UpdateCmm,
     8, 1, "update failed and the return code message is ", seconds(2 + 1000 * 23)},
    {"OfASwitchIsStuckUntilItVanishes",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobStuck"}},
        {"request":{},"when":{"afterSeconds":7200},"effect":{"kind":"jobVanished"}})",
     UpdateSwitch, 2, 1, "The JobStatus is Empty because error happened when creats jobinstance.", seconds(7210)},
    {"OfAPassThruIsStuckUntilItVanishes",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobStuck"}},
        {"request":{},"when":{"afterSeconds":7200},"effect":{"kind":"jobVanished"}})",
     UpdatePassThru, 2, 1, "The JobStatus is Empty because error happened when creats jobinstance.!", seconds(7210)},
    {"OfACmmVanishes", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobVanished"}})", UpdateCmm, 7, 2,
     "Failed to enumerate job instance with 3 times retry", seconds(5)},
    {"OfASwitchVanishes", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobVanished"}})", UpdateSwitch, 2,
     1, "The JobStatus is Empty because error happened when creats jobinstance.", seconds(10)},
    {"OfAPassThruVanishes", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobVanished"}})",
     UpdatePassThru, 2, 1, "The JobStatus is Empty because error happened when creats jobinstance.!", seconds(10)},
    {"OfACmmFails", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobFails","text":"Checksum wrong"}})",
     UpdateCmm, 2, 4, "Installing job is in error state 10 with status is Checksum wrong", seconds(2 + 4 * 23 + 3)},
    {"OfACmmFailsAtOnce",
     R"({"request":{"class":"VORTA_FirmwareInstallationJob","occurrence":2},
         "effect":{"kind":"jobFails","text":"Checksum wrong"}})",
     UpdateCmm, 2, 4, "Installing job is in error state 10 with status is Checksum wrong", seconds(2 + 23 + 3)},
    {"OfAPassThruFails",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobFails","text":"Checksum wrong"}})", UpdatePassThru,
     15, 3, "Update successfully and the return update info from PassThru is Checksum wrong", seconds(130)},
};
INSTANTIATE_TEST_SUITE_P(Flows, JobFault, ValuesIn(kJobFaults), NameOf);

struct FailureText {
  const char* name;
  const char* text;
  int code;
};

void PrintTo(const FailureText& failure, std::ostream* out) { *out << failure.text; }

class FailedSwitchJob : public ::testing::TestWithParam<FailureText> {};

TEST_P(FailedSwitchJob, EndsInTheCodeOfItsText) {
  FaultyChassis chassis(R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"jobFails","text":")" +
                        std::string(GetParam().text) + "\"}}");
  EXPECT_EQ(UpdateSwitch(chassis.GetAccess()), GetParam().code) << chassis.Lines();
  EXPECT_TRUE(chassis.HasLine(1, std::string("Update failed and the reason is:  ") + GetParam().text));
  EXPECT_EQ(chassis.Waited(), seconds(130));
}

constexpr FailureText kFailureTexts[] = {
    {"UnknownCurlError", "CURLE(127) - This is an unknown CURL error", 7},
    {"Timeout", "DCSC_RC_TIMEOUT", 16},
    {"ReceiveFailure", "dcss_rc_recv_fail", 9},
    {"Fingerprint", "Fingerprint mismatch", 10},
    {"Download", "Firmware download operation failed", 11},
    {"Cdt", "DCSS_RC_CDT_FAIL", 12},
    {"HostKey", "Host key authentication failed", 13},
    {"Contact", "Failed to contact host", 14},
    {"Flash", "Flashing ended with failure", 15},
    {"AnyTimeout", "The connection ran into a timeout", 16},
    {"NoFile", "File does not exist", 35},
    {"NothingKnown", "Checksum wrong", 17},
};
INSTANTIATE_TEST_SUITE_P(Texts, FailedSwitchJob, ValuesIn(kFailureTexts),
                         [](const ::testing::TestParamInfo<FailureText>& failure) { return failure.param.name; });

class ChassisFault : public ::testing::TestWithParam<Flow> {};
TEST_P(ChassisFault, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kChassisFaults[] = {
    {"CmmDoesNotComeBackFromAReboot", R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"cmmStaysDown"}})",
     RebootCmm, 1, 1, "Pegasus CannotConnectException:", seconds(6 + 80 * 50)},
    {"CmmDoesNotComeBackFromAnUpdate", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"cmmStaysDown"}})",
     UpdateAndRebootCmm, 1, 1, "reboot CMM failed and the return code message is ", seconds(97 + 2 + 6 + 80 * 50)},
    {"NoPrimaryToUpdate", R"({"request":{},"effect":{"kind":"targetGone","target":"cmm","bay":1}})", UpdateCmm, 7, 1,
     "collect CMM info failed. [CMM instance is uninitialized].", seconds(1)},
    {"NoPrimaryToReboot", R"({"request":{},"effect":{"kind":"targetGone","target":"cmm","bay":1}})", RebootCmm, 7, 1,
     "collect CMM info failed. [CMM instance is uninitialized].", seconds(0)},
    {"NoSwitchToUpdate", R"({"request":{},"effect":{"kind":"targetGone","target":"switch","bay":1}})", UpdateSwitch, 24,
     3, "Don't find targetinstance for switch.", seconds(0)},
    {"NoSwitchToReseat", R"({"request":{},"effect":{"kind":"targetGone","target":"switch","bay":1}})", ReseatSwitch, 24,
     3, "Don't find targetinstance for switch.", seconds(0)},
    {"NoSwitchToVerify", R"({"request":{},"effect":{"kind":"targetGone","target":"switch","bay":1}})", VerifySwitch, 24,
     3, "Don't find targetinstance for switch.", seconds(10)},
    {"NoPassThruToUpdate", R"({"request":{},"effect":{"kind":"targetGone","target":"passThru","bay":4}})",
     UpdatePassThru, 24, 3, "Don't find targetinstance for switch.", seconds(0)},
    {"NoPassThruToReseat", R"({"request":{},"effect":{"kind":"targetGone","target":"passThru","bay":4}})",
     ReseatPassThru, 24, 3, "Don't find targetinstance for switch.", seconds(0)},
    {"NoPassThruToVerify", R"({"request":{},"effect":{"kind":"targetGone","target":"passThru","bay":4}})",
     VerifyPassThru, 24, 3, "Don't find targetinstance for switch.", seconds(10)},
    {"NoNodeToReseat", R"({"request":{},"effect":{"kind":"targetGone","target":"node","bay":10}})", ReseatBlade, -1, 1,
     "The blade is not ready to change state.", seconds(0)},
    {"SwitchPulledOutDuringItsUpdate",
     R"({"request":{"class":"CIM_ConcreteJob","occurrence":2},
         "effect":{"kind":"targetGone","target":"switch","bay":1}})",
     UpdateSwitch, 17, 1, "Update failed and the reason is:  Wait for Flash Complete", seconds(130)},
    {"PassThruPulledOutDuringItsUpdate",
     R"({"request":{"class":"CIM_ConcreteJob","occurrence":2},
         "effect":{"kind":"targetGone","target":"passThru","bay":4}})",
     UpdatePassThru, 15, 3, "Update successfully and the return update info from PassThru is Wait for Flash",
     seconds(130)},
};
INSTANTIATE_TEST_SUITE_P(Flows, ChassisFault, ValuesIn(kChassisFaults), NameOf);

TEST(TwoPrimaries, AreBothInTheInventory) {
  for (const auto& [faults, count] :
       {std::pair("", 1U), std::pair(R"({"request":{},"effect":{"kind":"twoPrimaries"}})", 2U)}) {
    FaultyChassis chassis(faults);
    const Access& access = chassis.GetAccess();
    CMMInventory inventory(access.host, access.port, access.user, access.password);
    CMMDataList cmms;
    EXPECT_EQ(inventory.GetCMMData(cmms), 0) << chassis.Lines();
    EXPECT_EQ(cmms.Size(), count);
  }
}

TEST(TwoPrimaries, DoNotKeepTheFirstFromBeingUpdated) {
  FaultyChassis chassis(R"({"request":{},"effect":{"kind":"twoPrimaries"}})");
  EXPECT_EQ(UpdateCmm(chassis.GetAccess()), 0) << chassis.Lines();
  EXPECT_TRUE(chassis.HasLine(3, "cmm01")) << chassis.Lines();
}

}  // namespace
}  // namespace Orvane::tests
