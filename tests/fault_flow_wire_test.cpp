// What the operations of the library make of a CMM that refuses, drops, answers late or answers nonsense.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/fault_flow.h"

namespace Orvane::tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ValuesIn;

class Refused : public ::testing::TestWithParam<Flow> {};
TEST_P(Refused, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kRefused[] = {
    {"ReadingTheChassis", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"refuse","seconds":10}})", ReadChassis,
     3, 1, "Connection closed by CIM Server.", seconds(0)},
    {"UpdateOfACmm", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"refuse","seconds":10}})", UpdateCmm, 2,
     1, "unknown error happened when invokeMethod ", seconds(2)},
    {"PollOfACmmUpdate",
     R"({"request":{"class":"VORTA_FirmwareInstallationJob","occurrence":1},"effect":{"kind":"refuse","seconds":9}})",
     UpdateCmm, 7, 2, "Failed to enumerate job instance with 3 times retry", seconds(5)},
    {"ConnectsOfACmmUpdateForAnHour",
     R"({"request":{"class":"VORTA_FirmwareInstallationJob","occurrence":1},
         "effect":{"kind":"refuse","seconds":3600,"answerFirst":true}})",
     UpdateCmm, 1, 1, "update failed and the return code message is ", seconds(34)},
    {"ConnectsOfACmmUpdateForAMoment",
     R"({"request":{"class":"VORTA_FirmwareInstallationJob","occurrence":1},
         "effect":{"kind":"refuse","seconds":25,"answerFirst":true}})",
     UpdateCmm, 0, 3, "Installing job finished with the status is ", seconds(100)},
    {"RebootOfACmm", R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"refuse","seconds":10}})",
     RebootCmm, kThrew, 1, "Pegasus Exception: Connection closed by CIM Server.", seconds(0)},
    {"ConnectsOfASwitchUpdate",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"refuse","seconds":11,"answerFirst":true}})",
     UpdateSwitch, 1, 1, "Failed to connect the CMM when try to get the result of the InstallFromURI call!",
     seconds(10)},
    {"ConnectsOfASwitchUpdateUntilItLooks",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"refuse","seconds":10,"answerFirst":true}})",
     UpdateSwitch, 0, 3, "Update completed successfully and the message is ", seconds(130)},
    {"ReseatOfASwitch", R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"refuse","seconds":10}})",
     ReseatSwitch, 4, 1, "ERROR happened with returnvalue Reserved", seconds(0)},
    {"ConnectsOfAPassThruUpdate",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"refuse","seconds":11,"answerFirst":true}})",
     UpdatePassThru, 1, 1, "Pegasus CannotConnectException :", seconds(10)},
    {"ConnectOfABladeReseat",
     R"({"request":{"class":"CIM_PowerManagementService"},
         "effect":{"kind":"refuse","seconds":10,"answerFirst":true}})",
     ReseatBlade, -4, 1, "Connect CIMMOM Failed. RC: -4", seconds(0)},
};
INSTANTIATE_TEST_SUITE_P(Flows, Refused, ValuesIn(kRefused), NameOf);

class Dropped : public ::testing::TestWithParam<Flow> {};
TEST_P(Dropped, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kDropped[] = {
    {"AskingForACmm", R"({"request":{"class":"CIM_ComputerSystem"},"effect":{"kind":"dropBeforeAnswer"}})", AskIsCmm, 0,
     1, "EnumerateInstances Exception: Connection closed by CIM Server.", seconds(0)},
    {"InstallOnACmm", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"dropBeforeAnswer"}})", UpdateCmm, 2,
     1, "Pegasus Exception: Connection closed by CIM Server.", seconds(2)},
    {"InstallOnASwitch", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"dropBeforeAnswer"}})",
     UpdateSwitch, 2, 1, "Unknown error happened when invokeMethod Connection closed by CIM Server.", seconds(0)},
    {"InstallOnAPassThru", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"dropBeforeAnswer"}})",
     UpdatePassThru, 212, 1, "unknown error happened when invokeMethod Connection closed by CIM Server.", seconds(0)},
    {"ReseatOfASwitch", R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"dropBeforeAnswer"}})",
     ReseatSwitch, 4, 1, "ERROR happened with returnvalue Reserved", seconds(0)},
    {"ReseatOfAPassThru", R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"dropBeforeAnswer"}})",
     ReseatPassThru, 4, 1, "unknown error happened when invokeMethod :Connection closed by CIM Server.", seconds(0)},
    {"ReseatOfABlade", R"({"request":{"method":"RequestPowerStateChange"},"effect":{"kind":"dropBeforeAnswer"}})",
     ReseatBlade, 3, 1, "unknown error happened when invokeMethod :Connection closed by CIM Server.", seconds(0)},
    {"PollOfASwitchUpdate",
     R"({"request":{"class":"CIM_ConcreteJob","occurrence":2},"effect":{"kind":"dropBeforeAnswer"}})", UpdateSwitch, 2,
     1, "Connection closed by CIM Server.", seconds(70)},
    {"AnswerToReadingTheChassis",
     R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"dropInAnswer","afterBytes":200}})", ReadChassis, 3, 1,
     "Bad opening element: on line ", seconds(0)},
    {"HeadOfTheAnswerOnly", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"dropInAnswer","afterBytes":0}})",
     ReadChassis, 3, 1, "Validation error: on line 1: Expected <?xml ... ?> style declaration", seconds(0)},
    // The byte that is missing is no part of the XML.
    {"AllButTheLastByteOfAReseat",
     R"({"request":{"method":"RequestPowerStateChange"},"effect":{"kind":"dropInAnswer","afterBytes":16777216}})",
     ReseatBlade, 0, 3, "Invoke method 'RequestPowerStateChange': Completed with No Error", seconds(0)},
    {"AnswerToAPollOfACmmUpdate",
     R"({"request":{"class":"VORTA_FirmwareInstallationJob","occurrence":{"from":2,"to":4}},
         "effect":{"kind":"dropInAnswer","afterBytes":300}})",
     UpdateCmm, 7, 2, "Failed to enumerate job instance with 3 times retry", seconds(28)},
};
INSTANTIATE_TEST_SUITE_P(Flows, Dropped, ValuesIn(kDropped), NameOf);

class HttpStatus : public ::testing::TestWithParam<Flow> {};
TEST_P(HttpStatus, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kHttpStatus[] = {
    {"ReadingTheChassis", R"({"request":{},"effect":{"kind":"httpStatus","status":500,"body":"<html/>"}})", ReadChassis,
     3, 1, "HTTP Error (500 Internal Server Error).", seconds(0)},
    {"ServiceOfACmmUpdateIsNotReady",
     R"({"request":{"class":"CIM_SoftwareInstallationService"},"effect":{"kind":"httpStatus","status":503}})",
     UpdateCmm, 2, 1, "perform func[EnumerateInstances] failed", seconds(1)},
    {"UserLockedOutDuringACmmUpdate",
     R"({"request":{},"when":{"during":"jobRunning"},"effect":{"kind":"httpStatus","status":401,
         "headers":{"WWW-Authenticate":"Basic realm=\"cmm\""}}})",
     UpdateCmm, 7, 2, "Failed to enumerate job instance with 3 times retry", seconds(5)},
    {"UserLockedOutDuringASwitchUpdate",
     R"({"request":{},"when":{"during":"jobRunning","afterSeconds":60},"effect":{"kind":"httpStatus","status":401}})",
     UpdateSwitch, 2, 1, "Unknown error happened when invokeMethod HTTP Error (401 Unauthorized).", seconds(70)},
    {"UserLockedOutDuringAPassThruUpdate",
     R"({"request":{},"when":{"during":"jobRunning","afterSeconds":60},"effect":{"kind":"httpStatus","status":401}})",
     UpdatePassThru, 212, 1, "unknown error happened when invokeMethod HTTP Error (401 Unauthorized).", seconds(70)},
    // The update needs no more than connections then.
    {"CmmNotReadyAfterItsReboot",
     R"({"request":{},"when":{"after":"cmmRebooting"},"effect":{"kind":"httpStatus","status":503}})",
     UpdateAndRebootCmm, 0, 3, "Connect successfully after rebooting CMM.", seconds(97 + 2 + 6 + 4 * 50 + 50)},
    {"CmmNotReadyWhileASwitchRestarts",
     R"({"request":{"operation":"EnumerateInstances"},"when":{"during":"moduleRestarting"},
         "effect":{"kind":"httpStatus","status":503}})",
     ReseatAndVerifySwitch, 6, 1, "Pegasus Exception: HTTP Error (503 Service Unavailable).", seconds(10)},
    {"NodeOfABladeReseat", R"({"request":{},"effect":{"kind":"httpStatus","status":404}})", ReseatBlade, 9, 3,
     "Don't find targetinstance for blade.", seconds(0)},
};
INSTANTIATE_TEST_SUITE_P(Flows, HttpStatus, ValuesIn(kHttpStatus), NameOf);

class Nonsense : public ::testing::TestWithParam<Flow> {};
TEST_P(Nonsense, EndsInTime) { ExpectFlow(GetParam()); }

constexpr Flow kNonsense[] = {
    {"MalformedChassis", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"malformedBody"}})", ReadChassis, 3, 1,
     "Closing element does not match opening element: on line ", seconds(0)},
    {"ChassisOfAnotherLanguage",
     R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"malformedBody","body":"<html><p>Internal error"}})",
     ReadChassis, 3, 1, "Validation error: on line 1: Expected <?xml ... ?> style declaration", seconds(0)},
    {"EmptyChassis", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"malformedBody","body":""}})", ReadChassis,
     3, 1, "Validation error: on line 1: Expected <?xml ... ?> style declaration", seconds(0)},
    {"TruncatedChassis", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"truncatedBody","bytes":500}})",
     ReadChassis, 3, 1, "Bad opening element: on line ", seconds(0)},
    {"MalformedAnswerToAnInstallOnACmm", R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"malformedBody"}})",
     UpdateCmm, 2, 1, "Pegasus Exception: Closing element does not match opening element: ", seconds(2)},
    {"TruncatedAnswerToAnInstallOnASwitch",
     R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"truncatedBody","bytes":400}})", UpdateSwitch, 2, 1,
     "Unknown error happened when invokeMethod Bad attribute value: ", seconds(0)},
    {"MalformedJobOfASwitchUpdate", R"({"request":{"class":"CIM_ConcreteJob"},"effect":{"kind":"malformedBody"}})",
     UpdateSwitch, 2, 1,
     "Unknown error happened when invokeMethod Closing element does not match opening element: ", seconds(10)},
    {"TruncatedJobOfAPassThruUpdate",
     R"({"request":{"class":"CIM_ConcreteJob"},"effect":{"kind":"truncatedBody","bytes":0}})", UpdatePassThru, 212, 1,
     "unknown error happened when invokeMethod Validation error: on line 1: Expected <?xml", seconds(10)},
    {"MalformedAnswerToAReseatOfABlade",
     R"({"request":{"method":"RequestPowerStateChange"},"effect":{"kind":"malformedBody"}})", ReseatBlade, 3, 1,
     "unknown error happened when invokeMethod :Closing element does not match opening element: ", seconds(0)},
    {"TruncatedAnswerToAReseatOfAPassThru",
     R"({"request":{"method":"RequestStateChange"},"effect":{"kind":"truncatedBody","bytes":100}})", ReseatPassThru, 4,
     1, "unknown error happened when invokeMethod :", seconds(0)},
};
INSTANTIATE_TEST_SUITE_P(Flows, Nonsense, ValuesIn(kNonsense), NameOf);

struct Status {
  int cimStatus;
  int code;
  const char* line;
};

// The operation's method ends in each status of a table; the line stands at level 1.
void ExpectCodes(const std::string& method, const Operation& operation, const std::vector<Status>& table) {
  for (const Status& row : table) {
    FaultyChassis chassis(R"({"request":{"method":")" + method + R"("},"effect":{"kind":"cimError","code":)" +
                          std::to_string(row.cimStatus) + R"(,"description":"on demand"}})");
    EXPECT_EQ(operation(chassis.GetAccess()), row.code) << row.cimStatus << "\n" << chassis.Lines();
    EXPECT_TRUE(chassis.HasLine(1, row.line)) << row.line << "\n" << chassis.Lines();
    EXPECT_LE(chassis.Waited(), seconds(2));
  }
}

TEST(CimErrors, OfAnInstallOnACmmAreFailures) {
  ExpectCodes("InstallFromURI", UpdateCmm, {{1, 2, "Pegasus CIMException: "}, {2, 2, "Pegasus CIMException: "}});
}

TEST(CimErrors, OfAnInstallOnASwitchHaveTheirCodes) {
  ExpectCodes("InstallFromURI", UpdateSwitch,
              {{1, 27, "CIM_ERR_FAILED"},
               {2, 19, "CIM_ERR_ACCESS_DENIED"},
               {3, 21, "CIM_ERR_INVALID_NAMESPACE"},
               {4, 23, "CIM_ERR_INVALID_PARAMETER"},
               {6, 24, "CIM_ERR_NOT_FOUND"},
               {7, 20, "CIM_ERR_NOT_SUPPORTED"},
               {16, 26, "CIM_ERR_METHOD_NOT_AVAILABLE"},
               {17, 25, "CIM_ERR_METHOD_NOT_FOUND"}});
}

TEST(CimErrors, OfAnInstallOnAPassThruHaveTheirCodes) {
  ExpectCodes("InstallFromURI", UpdatePassThru,
              {{1, 27, "CIM_ERR_FAILED"},
               {2, 5, "SWITCH_OPT_RC_INSTALL_ERR"},
               {3, 21, "CIM_ERR_INVALID_NAMESPACE"},
               {4, 23, "CIM_ERR_INVALID_PARAMETER"},
               {6, 24, "CIM_ERR_NOT_FOUND"},
               {7, 20, "CIM_ERR_NOT_SUPPORTED"},
               {16, 26, "CIM_ERR_METHOD_NOT_AVAILABLE"},
               {17, 25, "CIM_ERR_METHOD_NOT_FOUND"}});
}

TEST(CimErrors, OfAReseatOfABladeHaveTheirCodes) {
  ExpectCodes("RequestPowerStateChange", ReseatBlade,
              {{1, 12, "on demand"},
               {2, 5, "on demand"},
               {3, 7, "on demand"},
               {4, 8, "on demand"},
               {5, 3, "on demand"},
               {6, 9, "on demand"},
               {7, 6, "on demand"},
               {16, 11, "on demand"},
               {17, 10, "on demand"}});
}

TEST(CimErrors, OfAReseatOfAPassThruAreFailures) {
  ExpectCodes("RequestStateChange", ReseatPassThru,
              {{2, 4, "CIM_ERR_ACCESS_DENIED"}, {16, 4, "CIM_ERR_METHOD_NOT_AVAILABLE"}});
}

TEST(CimErrors, WhileAJobIsFollowedHaveTheirCodes) {
  const std::string denied = R"({"request":{"class":"CIM_ConcreteJob"},"effect":{"kind":"cimError","code":2}})";
  for (int (*const operation)(const Access&) : {UpdateSwitch, UpdatePassThru}) {
    FaultyChassis chassis(denied);
    EXPECT_EQ(operation(chassis.GetAccess()), 5) << chassis.Lines();
    EXPECT_TRUE(chassis.HasLine(1, "Wrong userid or password,  Please check your userid and password!"))
        << chassis.Lines();
    EXPECT_EQ(chassis.Waited(), seconds(10));
  }
}

struct Late {
  const char* name;
  const char* faults;
  int (*operation)(const Access& access);
  // From the start to the end of the operation, its own waits included.
  milliseconds passed;
};

void PrintTo(const Late& late, std::ostream* out) { *out << late.name; }

class Delayed : public ::testing::TestWithParam<Late> {};

TEST_P(Delayed, EndsWellOnceTheAnswerIsThere) {
  FaultyChassis chassis(GetParam().faults);
  EXPECT_EQ(GetParam().operation(chassis.GetAccess()), 0) << chassis.Lines();
  EXPECT_EQ(chassis.Clock().Now(), GetParam().passed);
}

constexpr Late kLate[] = {
    {"ReadingTheChassis", R"({"request":{"class":"CIM_Chassis"},"effect":{"kind":"delay","milliseconds":20000}})",
     ReadChassis, seconds(20)},
    {"ReseatOfABlade",
     R"({"request":{"method":"RequestPowerStateChange"},"effect":{"kind":"delay","milliseconds":5500}})", ReseatBlade,
     milliseconds(5500)},
    // The job ends while its second poll waits for the answer, which tells how it was before.
    {"PollOfASwitchUpdate",
     R"({"request":{"class":"CIM_ConcreteJob","occurrence":2},"effect":{"kind":"delay","milliseconds":600000}})",
     UpdateSwitch, seconds(10 + 60 + 600 + 60)},
};
INSTANTIATE_TEST_SUITE_P(Flows, Delayed, ValuesIn(kLate),
                         [](const ::testing::TestParamInfo<Late>& late) { return late.param.name; });

TEST(Dropped, DoesNotUndoWhatWasCarriedOut) {
  FaultyChassis chassis(R"({"request":{"method":"InstallFromURI"},"effect":{"kind":"dropBeforeAnswer"}})");
  EXPECT_EQ(UpdateSwitch(chassis.GetAccess()), 2);
  EXPECT_EQ(chassis.Simulator().RequestCount("InvokeMethod"), 1U);
  chassis.Clock().Advance(seconds(120));
  CMMInventory inventory(chassis.GetAccess().host, chassis.GetAccess().port, chassis.GetAccess().user,
                         chassis.GetAccess().password);
  CIMIODataList switches;
  ASSERT_EQ(inventory.GetIOModuleDataByBayID(1, switches), 0);
  ASSERT_EQ(switches.Size(), 1U);
  const auto& images = switches.Get(0).Firmwares;
  EXPECT_TRUE(std::any_of(images.begin(), images.end(),
                          [](const FirmwareIdentity& image) { return image.VersionString == "9.9"; }));
}

}  // namespace
}  // namespace Orvane::tests
