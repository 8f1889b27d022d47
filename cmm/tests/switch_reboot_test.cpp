// Reboot and reseat of a switch, and the wait for its power-on self test.
#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kSkipped[] =
    "3 deferedupdatesupported==null or 0 and have fallback section, in this case, the switch will reboot automatically "
    "or activate dynamically, so ignore reboot operation in krant and return successfully";
constexpr char kStateChange[] = "InvokeMethod CIM_ComputerSystem.Name=\"switch03\" RequestStateChange";
constexpr char kNoTarget[] = "3 Don't find targetinstance for switch.";
constexpr char kTargetLine[] = "3 Targetinstance is //cmm01/root/cimv2:CIM_ComputerSystem.Name=\"switch03\"";
constexpr char kDoneLine[] = "3 Invoke method 'RequestStateChange': Completed with No Error";

class SwitchReboot : public SwitchTest {
 protected:
  void ScriptStateChange(const CimAnswer& answer = MethodResult(CimTyped("uint32", "0"))) {
    ScriptTarget();
    server.OnInvoke("RequestStateChange", answer);
  }
  void FindNoFallbackImage() { EXPECT_EQ(update.ActivateImage(kBay), 3); }
  /// The lines from this one on.
  std::vector<std::string> LinesFrom(const std::string& first) const {
    const std::vector<std::string> lines = Lines();
    const auto begin = std::find(lines.begin(), lines.end(), first);
    return {begin, lines.end()};
  }
};

TEST_F(SwitchReboot, OfASwitchWithDeferredUpdatesStepByStep) {
  ScriptDeferred("1");
  ScriptStateChange();

  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_THAT(Lines(), ElementsAre("3 Enter SwitchIOUpdateByCIM::checkDeferedupdatesupported().", kConnectedLine,
                                   "3 Successfully get the VORTA_IOModuleComputerSystem instance: ",
                                   "3 Instances.size() = 1", "3 ElementName_ = IO Module 03", "3 defered = 1",
                                   "3 switch deferedupdatesupported is 1", "3 RequestedStates: 11", kTargetLine,
                                   "3 Invoke method 'RequestStateChange',return CIMValue string = 0", kDoneLine));
  EXPECT_THAT(progress.texts, ElementsAre("start reboot I/O Module switch"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(SwitchReboot, RequestsAndConnections) {
  ScriptDeferred("1");
  ScriptStateChange();

  update.Reboot(kBay);

  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances VORTA_IOModuleComputerSystem", "disconnect",  //
                          "connect", "EnumerateInstances CIM_Slot", "disconnect",                      //
                          "connect",
                          "AssociatorNames CIM_Slot.Tag=\"iomodule03\" [CIM_PackageInSlot, "
                          "CIM_PhysicalPackage]",
                          "Associators CIM_PhysicalPackage.Tag=\"package\" [CIM_ComputerSystemPackage, "
                          "CIM_ComputerSystem]",
                          "disconnect",  //
                          "connect", kStateChange, "disconnect"));
}

struct Operation {
  const char* name;
  int (SwitchIOModuleUpdate::*run)(int);
  const char* state;
};
constexpr Operation kReboot = {"Reboot", &SwitchIOModuleUpdate::Reboot, "11"};
constexpr Operation kReseat = {"Reseat", &SwitchIOModuleUpdate::Reseat, "32769"};

class SwitchStateChange : public SwitchReboot, public ::testing::WithParamInterface<Operation> {
 protected:
  int Run(int bay = kBay) { return (update.*GetParam().run)(bay); }
};

INSTANTIATE_TEST_SUITE_P(Both, SwitchStateChange, ::testing::Values(kReboot, kReseat),
                         [](const auto& row) { return row.param.name; });

TEST_P(SwitchStateChange, SendsOneParameter) {
  ScriptDeferred("1");
  ScriptStateChange();

  EXPECT_EQ(Run(), 0);

  ASSERT_EQ(RequestsOf("InvokeMethod").size(), 1u);
  const CimRequest request = RequestsOf("InvokeMethod").front();
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  EXPECT_EQ(request.method, "RequestStateChange");
  EXPECT_EQ(request.objectText, SystemPath("switch03"));
  ASSERT_EQ(request.arguments.size(), 1u);
  EXPECT_EQ(request.arguments[0].name, "RequestedState");
  EXPECT_EQ(request.arguments[0].type, "uint16");
  EXPECT_FALSE(request.arguments[0].isArray);
  EXPECT_THAT(request.arguments[0].values, ElementsAre(GetParam().state));
  EXPECT_TRUE(log.Has(3, std::string("RequestedStates: ") + GetParam().state));
}

TEST_P(SwitchStateChange, WithoutASwitchInTheBayIs24) {
  ScriptDeferred("1");
  ScriptStateChange();
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule04", "4")}));

  EXPECT_EQ(Run(), 24);

  EXPECT_EQ(Lines().back(), kNoTarget);
  EXPECT_THAT(RequestsOf("InvokeMethod"), IsEmpty());
}

TEST_P(SwitchStateChange, WithoutAConnectionForTheRequestGivesTheSessionsCode) {
  ScriptDeferred("1");
  ScriptStateChange();
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem",
                       ThenRefuse(Objects({System("switch03", {12})})));

  EXPECT_EQ(Run(), -4);

  EXPECT_EQ(Lines().back(), "1 Connect CIMMOM Failed. RC: -4");
}

TEST_P(SwitchStateChange, ThatFailsIsFourWithTheReservedLine) {
  ScriptDeferred("1");
  ScriptStateChange(CimError(2, "denied"));
  EXPECT_EQ(Run(), 4);
  server.OnInvoke("RequestStateChange", Close());
  EXPECT_EQ(Run(), 4);
  server.OnInvoke("RequestStateChange", MethodResult(std::nullopt));
  EXPECT_EQ(Run(), 4);

  EXPECT_THAT(log.Texts(1),
              ElementsAre("Pegasus CIMException: denied",
                          "Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved",
                          "Pegasus Exception: Connection closed by CIM Server.",
                          "Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved",
                          "Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved"));
  EXPECT_TRUE(log.Has(3, "Invoke method 'RequestStateChange',return CIMValue string = "));
}

TEST_P(SwitchStateChange, ACallbackThatThrowsEndsItWithTwo) {
  ScriptDeferred("1");
  ScriptStateChange();
  ThrowingProgress throwing(GetParam().run == kReboot.run ? "start reboot I/O Module switch"
                                                          : "start reseat I/O Module switch");
  update.SetLogCallBack(&throwing);

  EXPECT_EQ(Run(), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre(std::string(GetParam().name) + " ended by an exception: the display is gone"));
  EXPECT_THAT(RequestsOf("InvokeMethod"), IsEmpty());
}

TEST_P(SwitchStateChange, WorksWithoutACallback) {
  ScriptDeferred("1");
  ScriptStateChange();
  update.SetLogCallBack(nullptr);

  EXPECT_EQ(Run(), 0);

  EXPECT_EQ(Count(kStateChange), 1u);
}

TEST_F(SwitchReboot, ReseatStepByStepMakesNoCheck) {
  ScriptDeferred("0");
  ScriptStateChange();

  EXPECT_EQ(update.Reseat(kBay), 0);

  EXPECT_THAT(Lines(), ElementsAre("3 RequestedStates: 32769", kTargetLine,
                                   "3 Invoke method 'RequestStateChange',return CIMValue string = 0", kDoneLine));
  EXPECT_THAT(progress.texts, ElementsAre("start reseat I/O Module switch"));
  EXPECT_EQ(Count("EnumerateInstances VORTA_IOModuleComputerSystem"), 0u);
}

struct ReturnRow {
  const char* value;
  const char* line;
  int result;
};

class SwitchReturnValue : public SwitchReboot, public ::testing::WithParamInterface<ReturnRow> {};

TEST_P(SwitchReturnValue, IsReadWhole) {
  ScriptStateChange(MethodResult(CimTyped("uint32", GetParam().value)));

  EXPECT_EQ(update.Reseat(kBay), GetParam().result);

  const std::vector<std::string> lines = Lines();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[lines.size() - 2],
            std::string("3 Invoke method 'RequestStateChange',return CIMValue string = ") + GetParam().value);
  EXPECT_EQ(lines.back(), GetParam().line);
}

constexpr char kReserved[] = "1 Invoke method 'RequestStateChange': ERROR happened with returnvalue Reserved";
INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchReturnValue,
    ::testing::Values(
        ReturnRow{"0", kDoneLine, 0}, ReturnRow{"1", "1 Invoke method 'RequestStateChange': Not Supported", 4},
        ReturnRow{"2", "1 Invoke method 'RequestStateChange': Unknown or Unspecified Error", 4},
        ReturnRow{"3", "1 Invoke method 'RequestStateChange': Cannot complete within Timeout Period", 4},
        ReturnRow{"4", "1 Invoke method 'RequestStateChange': Failed (4)", 4},
        ReturnRow{"5", "1 Invoke method 'RequestStateChange': Invalid Parameter", 4},
        ReturnRow{"6", "1 Invoke method 'RequestStateChange': In Use", 4},
        ReturnRow{"4096", "1 Invoke method 'RequestStateChange': Method Parameters Checked - Job Started", 4},
        ReturnRow{"4097", "1 Invoke method 'RequestStateChange': Invalid State Transitiond", 4},
        ReturnRow{"4098", "1 Invoke method 'RequestStateChange': Use of Timeout Parameter Not Supported", 4},
        ReturnRow{"4099", "1 Invoke method 'RequestStateChange': Busy", 4}, ReturnRow{"7", kReserved, 4},
        ReturnRow{"40", kReserved, 4}, ReturnRow{"4100", kReserved, 4}, ReturnRow{"10", kReserved, 4}),
    [](const auto& row) { return row.param.value; });

TEST_F(SwitchReboot, IsSkippedWithoutDeferredUpdatesAndWithAFallbackImage) {
  ScriptDeferred("0");
  ScriptStateChange();

  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_EQ(LinesFrom("3 switch deferedupdatesupported is null or 0"),
            (std::vector<std::string>{"3 switch deferedupdatesupported is null or 0", kSkipped}));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances VORTA_IOModuleComputerSystem", "disconnect"));
  EXPECT_THAT(progress.texts, IsEmpty());
}

TEST_F(SwitchReboot, IsDoneWithoutDeferredUpdatesWhenTheFallbackImageIsMissing) {
  ScriptDeferred("");
  ScriptStateChange();
  FindNoFallbackImage();

  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_EQ(
      LinesFrom("3 switch deferedupdatesupported is null or 0"),
      (std::vector<std::string>{"3 switch deferedupdatesupported is null or 0", "3 RequestedStates: 11", kTargetLine,
                                "3 Invoke method 'RequestStateChange',return CIMValue string = 0", kDoneLine}));
}

TEST_F(SwitchReboot, AMissingFallbackImageIsRememberedForTheObjectsLife) {
  ScriptDeferred("0");
  ScriptStateChange();
  FindNoFallbackImage();
  server.OnEnumerate(kIdentityClass, Objects({IdentityLink("iom03", {4})}));
  EXPECT_EQ(update.ActivateImage(kBay), 0) << "a later success does not take it back";

  EXPECT_EQ(update.Reboot(kBay), 0);
  EXPECT_EQ(update.Reboot(kBay), 0);
  EXPECT_EQ(Count(kStateChange), 2u);

  SwitchIOModuleUpdate copy(update);
  EXPECT_EQ(copy.Reboot(kBay), 0);
  EXPECT_EQ(Count(kStateChange), 3u);

  SwitchIOModuleUpdate fresh("127.0.0.1", "USERID", "s3cret", server.Port(), "", "", kBay);
  EXPECT_EQ(fresh.Reboot(kBay), 0);
  EXPECT_EQ(Count(kStateChange), 3u) << "another object knows nothing of it";
}

/// A deferred-update check that fails.
struct CheckFailure {
  const char* name;
  CimAnswer answer;
};

class SwitchRebootCheckFailure : public SwitchReboot, public ::testing::WithParamInterface<CheckFailure> {};

TEST_P(SwitchRebootCheckFailure, SkipsTheRebootWithSuccessAlsoWithoutFallbackImage) {
  ScriptStateChange();
  server.OnEnumerate(kSystemClass, GetParam().answer);
  FindNoFallbackImage();

  EXPECT_EQ(update.Reboot(kBay), 0);

  EXPECT_EQ(LinesFrom("2 cmm check deferedupdatesupported property not supported"),
            (std::vector<std::string>{"2 cmm check deferedupdatesupported property not supported", kSkipped}));
  EXPECT_EQ(Count(kStateChange), 0u);
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchRebootCheckFailure,
                         ::testing::Values(CheckFailure{"NoSwitch", NoObjects()},
                                           CheckFailure{"CimError", CimError(2, "denied")},
                                           CheckFailure{"OtherError", Close()}),
                         [](const auto& row) { return row.param.name; });

TEST_F(SwitchReboot, WithoutAConnectionForTheCheckIsSkippedWithSuccess) {
  EXPECT_EQ(nobody.Reboot(kBay), 0);

  EXPECT_EQ(
      LinesFrom("1 Failed to connect to the CMM."),
      (std::vector<std::string>{"1 Failed to connect to the CMM.",
                                "2 cmm connection error while getting deferedupdatesupported property", kSkipped}));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000u, 1000u));
  EXPECT_THAT(progress.texts, IsEmpty());
}

class SwitchSelfTest : public SwitchReboot {
 protected:
  static CimObjectSpec Tested(const std::string& status, const std::string& description) {
    return System("switch03", {12})
        .With("ElementName", "Switch 3")
        .With("PostStatus", status)
        .With("PostStatusDescription", description);
  }
  static CimObjectSpec Passed() { return Tested("511", "Module completed POST successfully."); }
  static std::vector<std::string> Reading(int attempt, const std::string& status, const std::string& description) {
    return {"3 Try to check if reboot success. Attempt( " + std::to_string(attempt) + " )", kTargetLine,
            "3 ElementName:Switch 3", "3 PostStatus:" + status, "3 PostStatusDescription:" + description};
  }
};

TEST_F(SwitchSelfTest, StepByStep) {
  ScriptTarget();
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem", Objects({Tested("1", "testing")}),
                       Objects({Passed()}));

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 0);

  EXPECT_EQ(Lines(), Joined({Reading(0, "1", "testing"),
                             Reading(1, "511", "Module completed POST successfully."),
                             {"3 Reboot switch success."}}));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u));
  EXPECT_THAT(progress.texts, IsEmpty());
}

struct SelfTestRow {
  const char* status;
  const char* description;
};

class SwitchSelfTestUnfinished : public SwitchSelfTest, public ::testing::WithParamInterface<SelfTestRow> {};

TEST_P(SwitchSelfTestUnfinished, IsLookedAt36Times) {
  ScriptTarget(Tested(GetParam().status, GetParam().description));

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 16);

  EXPECT_EQ(clock.Sleeps(), std::vector<std::uint32_t>(36, 10000u));
  EXPECT_EQ(Count("EnumerateInstances CIM_Slot"), 36u);
  EXPECT_TRUE(log.Has(3, "Try to check if reboot success. Attempt( 35 )"));
  EXPECT_FALSE(log.Has(3, "Try to check if reboot success. Attempt( 36 )"));
  EXPECT_EQ(Lines().back(), "3 Reboot switch timeout.");
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchSelfTestUnfinished,
                         ::testing::Values(SelfTestRow{"511", "Module completed POST successfully"},
                                           SelfTestRow{"511", "Module completed POST with errors."},
                                           SelfTestRow{"511", ""},
                                           SelfTestRow{"51", "Module completed POST successfully."},
                                           SelfTestRow{"5110", "Module completed POST successfully."},
                                           SelfTestRow{"", "Module completed POST successfully."}));

TEST_F(SwitchSelfTest, CompletedAtTheLastReadingIsInTime) {
  ScriptTarget(Tested("1", "testing"));
  VirtualClock late([this](std::size_t index, std::uint32_t) {
    if (index == 35) ScriptTarget(Passed());
  });

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 0);

  EXPECT_EQ(late.Sleeps().size(), 36u);
}

TEST_F(SwitchSelfTest, PropertiesThatAreAbsentReadAsEmpty) {
  ScriptTarget();

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 16);

  EXPECT_TRUE(log.Has(3, "ElementName:"));
  EXPECT_TRUE(log.Has(3, "PostStatus:"));
  EXPECT_TRUE(log.Has(3, "PostStatusDescription:"));
}

TEST_F(SwitchSelfTest, AVanishedSwitchIsNotWaitedFor) {
  ScriptTarget(Tested("1", "testing"));
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule03", "3")}), NoObjects());

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 24);

  EXPECT_EQ(Lines(),
            Joined({Reading(0, "1", "testing"), {"3 Try to check if reboot success. Attempt( 1 )", kNoTarget}}));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 10000u));
}

TEST_F(SwitchSelfTest, WithoutAConnectionThereIsNoSwitch) {
  EXPECT_EQ(nobody.CheckIfRebootSuccess(kBay), 24);

  EXPECT_THAT(Lines(), ElementsAre("3 Try to check if reboot success. Attempt( 0 )", kNoTarget));
}

struct StatusRow {
  unsigned code;
  const char* line;  ///< null: none
  int result;
};

class SwitchSelfTestStatus : public SwitchSelfTest, public ::testing::WithParamInterface<StatusRow> {};

TEST_P(SwitchSelfTestStatus, EndsTheWait) {
  server.OnEnumerate("CIM_Slot", CimError(GetParam().code, "the server's own text"));

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), GetParam().result);

  std::vector<std::string> expected = {"3 Try to check if reboot success. Attempt( 0 )"};
  if (GetParam().line != nullptr) expected.emplace_back(GetParam().line);
  EXPECT_EQ(Lines(), expected);
  EXPECT_EQ(log.Texts(1).size(), GetParam().line != nullptr ? 1u : 0u) << "the lookup adds no line of its own";
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u));
}

INSTANTIATE_TEST_SUITE_P(Rows, SwitchSelfTestStatus,
                         ::testing::Values(StatusRow{2, "1 CIM_ERR_ACCESS_DENIED", 19},
                                           StatusRow{7, "1 CIM_ERR_NOT_SUPPORTED", 20},
                                           StatusRow{4, "1 CIM_ERR_INVALID_PARAMETER", 23},
                                           StatusRow{5, "1 CIM_ERR_INVALID_CLASS", 22},
                                           StatusRow{1, "1 CIM_ERR_FAILED", 27}, StatusRow{3, nullptr, 6},
                                           StatusRow{6, nullptr, 6}, StatusRow{99, nullptr, 6}),
                         [](const auto& row) { return std::to_string(row.param.code); });

TEST_F(SwitchSelfTest, AnyOtherErrorIsLoggedWithItsTextAndSix) {
  server.OnEnumerate("CIM_Slot", Close(), HttpStatus(401, "Unauthorized"));

  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 6);
  EXPECT_EQ(update.CheckIfRebootSuccess(kBay), 6);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: Connection closed by CIM Server.",
                                        "Pegasus Exception: HTTP Error (401 Unauthorized)."));
}

}  // namespace
}  // namespace Orvane::testing
