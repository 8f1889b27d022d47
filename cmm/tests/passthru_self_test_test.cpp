// The wait for the power-on self test of a pass-through module: 36 looks, ten seconds apart.
#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr char kCompleted[] = "Module completed POST successfully.";
constexpr char kTargetLine[] = "3 Targetinstance is //cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module\"";

class PassThruSelfTest : public PassThruTest {
 protected:
  /// What the looks find, one after the other.
  template <typename... Modules>
  void ScriptLooks(Modules... modules) {
    server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, Objects({modules})...);
  }
};

TEST_F(PassThruSelfTest, FollowsItsStepsInOrder) {
  ScriptLooks(TestedModule("17", "POST in progress"), TestedModule("511", kCompleted));
  WatchEverything();
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 0);
  EXPECT_THAT(Lines(), ElementsAre("3 Try to check if reboot success. Attempt( 0 )", "sleep 10000", SessionConnected(),
                                   SessionConnected(), kTargetLine, "3 elementName:Pass-thru 2", "3 strPostStatus:17",
                                   "3 strPostStatusDescription:POST in progress",
                                   "3 Try to check if reboot success. Attempt( 1 )", "sleep 10000", SessionConnected(),
                                   SessionConnected(), kTargetLine, "3 elementName:Pass-thru 2", "3 strPostStatus:511",
                                   "3 strPostStatusDescription:Module completed POST successfully.",
                                   "3 Reboot switch success."));
  const std::vector<std::string> conversation = Conversation();
  ASSERT_EQ(conversation.size(), 14U);
  EXPECT_THAT(
      std::vector<std::string>(conversation.begin(), conversation.begin() + 7),
      ElementsAre("connect", "EnumerateInstances CIM_Slot", "disconnect", "connect",
                  "AssociatorNames CIM_Slot.Tag=\"iomodule02\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_Realizes, CIM_PassThroughModule]", "disconnect"));
}

TEST_F(PassThruSelfTest, ThatNeverCompletesEndsAfter36Looks) {
  ScriptLooks(TestedModule("511", "Module completed POST successfully"));
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 16);
  EXPECT_THAT(clock.Sleeps(), ElementsAreArray(std::vector<std::uint32_t>(36, 10000)));
  const std::vector<std::string> lines = Lines();
  EXPECT_EQ(lines.back(), "3 Reboot switch timeout.");
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "3 Try to check if reboot success. Attempt( 35 )"), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "3 Try to check if reboot success. Attempt( 36 )"), 0);
}

TEST_F(PassThruSelfTest, MayCompleteAtTheLastLook) {
  ScriptLooks(TestedModule("17", "POST in progress"));
  onSleep = [this](std::size_t index) {
    if (index == 35) ScriptLooks(TestedModule("511", kCompleted));
  };
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 0);
  EXPECT_EQ(clock.Sleeps().size(), 36U);
}

TEST_F(PassThruSelfTest, IsToldByTheDescriptionAlone) {
  for (const char* status : {"0", "17", ""}) {
    ScriptLooks(TestedModule(status, kCompleted));
    EXPECT_EQ(update.CheckIfRebootSuccess(2), 0) << status;
  }
}

class PassThruOtherDescription : public PassThruSelfTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(PassThruOtherDescription, IsNotYetCompleted) {
  ScriptLooks(TestedModule("511", GetParam()));
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 16);
}

INSTANTIATE_TEST_SUITE_P(Texts, PassThruOtherDescription,
                         ::testing::Values("", "module completed POST successfully.",
                                           "Module completed POST successfully. ",
                                           "x Module completed POST successfully.", "511"));

TEST_F(PassThruSelfTest, WithoutItsPropertiesIsNotYetCompleted) {
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 16);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.begin() + 2, lines.begin() + 6),
              ElementsAre(kTargetLine, "3 elementName:", "3 strPostStatus:", "3 strPostStatusDescription:"));
}

TEST_F(PassThruSelfTest, OfAModuleThatIsGoneEndsAtThatLook) {
  ScriptLooks(TestedModule("17", "POST in progress"));
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, Objects({TestedModule("17", "POST in progress")}),
                       NoObjects());
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 24);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("3 Try to check if reboot success. Attempt( 1 )", "sleep 10000",
                          "3 Don't find targetinstance for switch."));
}

TEST_F(PassThruSelfTest, OfABayWithoutAModuleEndsAtTheFirstLook) {
  EXPECT_EQ(update.CheckIfRebootSuccess(3), 24);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000));
}

// Looks that fail.

struct StatusCase {
  unsigned status;
  const char* line;
  int result;
};
class PassThruLookStatus : public PassThruSelfTest, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(PassThruLookStatus, HasItsLineAndCode) {
  ScriptLooks(TestedModule("17", "POST in progress"));
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2")}), CimError(GetParam().status, "no"));
  WatchEverything();
  EXPECT_EQ(update.CheckIfRebootSuccess(2), GetParam().result);
  EXPECT_THAT(Lines(1), ElementsAre(GetParam().line)) << "one line, the operation's own";
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 10000));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

TEST_P(PassThruLookStatus, IsTheSameInEveryRequestOfALook) {
  server.OnAssociators(PackagePath("p"), kRealizes, kPassThruClass, CimError(GetParam().status, "no"));
  EXPECT_EQ(update.CheckIfRebootSuccess(2), GetParam().result);
  EXPECT_THAT(Lines(), ElementsAre("3 Try to check if reboot success. Attempt( 0 )", "sleep 10000",
                                   std::string("1 ") + GetParam().line));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

INSTANTIATE_TEST_SUITE_P(Table, PassThruLookStatus,
                         ::testing::Values(StatusCase{2, "CIM_ERR_ACCESS_DENIED", 19},
                                           StatusCase{7, "CIM_ERR_NOT_SUPPORTED", 20},
                                           StatusCase{4, "CIM_ERR_INVALID_PARAMETER", 23},
                                           StatusCase{5, "CIM_ERR_INVALID_CLASS", 22},
                                           StatusCase{1, "CIM_ERR_FAILED", 27}),
                         [](const auto& param) { return std::string(param.param.line); });

class PassThruLookOtherStatus : public PassThruSelfTest, public ::testing::WithParamInterface<unsigned> {};

TEST_P(PassThruLookOtherStatus, IsNotLoggedAndGoesOn) {
  ScriptLooks(TestedModule("511", kCompleted));
  server.OnEnumerate("CIM_Slot", CimError(GetParam(), "no"), Objects({Slot("iomodule02", "2")}));
  WatchEverything();
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 0);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000, 10000));
  EXPECT_THAT(Lines(1), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Statuses, PassThruLookOtherStatus, ::testing::Values(3U, 6U, 8U, 16U, 17U, 99U));

TEST_F(PassThruSelfTest, AnyOtherStatusOfEveryLookEndsWithTheTimeOut) {
  server.OnEnumerate("CIM_Slot", CimError(6, "no"));
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 16);
  EXPECT_EQ(clock.Sleeps().size(), 36U);
}

struct ErrorCase {
  const char* name;
  CimAnswer answer;
  const char* message;
};
class PassThruLookError : public PassThruSelfTest, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(PassThruLookError, CountsAsAModuleThatIsGone) {
  server.OnEnumerate("CIM_Slot", GetParam().answer);
  EXPECT_EQ(update.CheckIfRebootSuccess(2), 24);
  EXPECT_THAT(Lines(), ElementsAre("3 Try to check if reboot success. Attempt( 0 )", "sleep 10000",
                                   std::string("1 ") + GetParam().message, "3 Don't find targetinstance for switch."));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(Answers, PassThruLookError,
                         ::testing::Values(ErrorCase{"Unauthorized", HttpStatus(401, "Unauthorized"),
                                                     "HTTP Error (401 Unauthorized)."},
                                           ErrorCase{"Closed", Close(), "Connection closed by CIM Server."}),
                         [](const auto& param) { return param.param.name; });

}  // namespace
}  // namespace Orvane::testing
