// The update of a pass-through module from its first progress text to its code, as the exported class runs it, and the
// texts of codes.
#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class PassThruUpdate : public PassThruTest {
 protected:
  PassThruUpdate() {
    ScriptInstall();
    ScriptJob(Job(kFlashed, 7));
    server.OnEnumerate(kPassThruClass, Objects({PassThru("module")}));
    ScriptRecord(PassThru("module"), Package("p"));
  }
};

TEST_F(PassThruUpdate, FollowsItsStepsInOrder) {
  WatchEverything();
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_THAT(
      Lines(),
      ElementsAre(
          "callback start update pass-through switch", "4 GetPassThruData. bayid:2", "3 collect PassThruModuleData",
          SessionConnected(), "3 collect physical info", "4 collect firmware infomation.",
          "4 firmware_indentity.FullVersionString1-2.3.4 raw: 1-2.3.4", "3 VPDID_S is :p vpd", "3 POSID_S is :p pos",
          "3 UUID before is :p uuid", "3 The operation type is 2", "callback start install package",
          "3 [B] step=83 value=0 http://10.0.0.9/package.zip", "3 TarnPassThruUpdate::ApplyUpdatePackage().",
          "callback apply update package", "3 TarnUpdate::ApplyUpdatePackage,PassThru udpate chosen.",
          "3 uuid for PassThru before update is p uuid", "callback start updating switch firmware!",
          "3 Enter TarnPassThruUpdate::installPackage_PassThru.", "3 Successfully connected to host : 127.0.0.1",
          "3 Instances is CIM_SoftwareInstallationService.Name=\"update\"",
          "3 successfully get the instances for CIM_SoftwareInstallationService.", SessionConnected(),
          SessionConnected(),
          "3 installupdate targetinstance//cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module\"",
          "3 Successfully connected to host : 127.0.0.1",
          "3 Invoke method 'InstallFromURI, return CIMValue string = 4096",
          "3 Parameter Name: Job, Parameter Value: //cmm01/root/cimv2:CIM_ConcreteJob.InstanceID=\"JOB_17\"",
          "sleep 10000", "3 GetInstance time = 1", "3 Successfully connected to host : 127.0.0.1",
          "3 InstanceID string =JOB_17", "3 JobStatus string = Flash Completed with no apparent errors",
          "3 JobState string = 7",
          "3 JobStatus string that will be used to get the update status = Flash Completed with no apparent errors",
          "3 Update Finish And the Jobstatus is Flash Completed with no apparent errors",
          "3 the return code of installPackage_PassThru is 0", "3 [E] step=83 value=0 http://10.0.0.9/package.zip"));
}

TEST_F(PassThruUpdate, ReadsTheInventoryBeforeItsFirstInstallRequest) {
  EXPECT_EQ(update.StartUpdate(), 0);
  const std::vector<std::string> conversation = Conversation();
  ASSERT_GE(conversation.size(), 7U);
  EXPECT_THAT(std::vector<std::string>(conversation.begin(), conversation.begin() + 2),
              ElementsAre("connect", "EnumerateInstances CIM_PassThroughModule"));
  const auto service =
      std::find(conversation.begin(), conversation.end(), "EnumerateInstances CIM_SoftwareInstallationService");
  ASSERT_NE(service, conversation.end());
  EXPECT_EQ(*(service - 1), "connect");
  EXPECT_EQ(*(service - 2), "disconnect") << "the inventory has closed its connection";
  EXPECT_EQ(conversation.back(), "disconnect");
}

TEST_F(PassThruUpdate, OfSeveralRecordsInTheBayTheLastOnesUuidStays) {
  server.OnEnumerate(kPassThruClass, Objects({PassThru("module"), PassThru("other")}));
  ScriptRecord(PassThru("other"), Package("q"));
  EXPECT_EQ(update.StartUpdate(), 0);
  const std::vector<std::string> lines = Lines();
  ASSERT_GE(lines.size(), 8U);
  EXPECT_THAT(
      std::vector<std::string>(lines.begin() + 1, lines.begin() + 8),
      ElementsAre("3 VPDID_S is :p vpd", "3 POSID_S is :p pos", "3 UUID before is :p uuid", "3 VPDID_S is :q vpd",
                  "3 POSID_S is :q pos", "3 UUID before is :q uuid", "3 The operation type is 2"));
  EXPECT_THAT(lines, Contains("3 uuid for PassThru before update is q uuid"));
}

TEST_F(PassThruUpdate, ActsOnTheBayOfTheObject) {
  server.OnEnumerate(kPassThruClass, Objects({PassThru("module"), PassThru("module7")}));
  ScriptRecord(PassThru("module7"), Package("p7"));
  server.OnAssociators(PackagePath("p7"), kPackageInSlot, "CIM_Slot", Objects({Slot("iomodule07", "7")}));
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule02", "2"), Slot("iomodule07", "7")}));
  server.OnAssociatorNames(SlotPath("iomodule07"), kPackageInSlot, kPhysicalPackage, Objects({Package("p7")}));
  server.OnAssociators(PackagePath("p7"), kRealizes, kPassThruClass, Objects({PassThru("module7")}));
  SwitchPassThruUpdate seven("127.0.0.1", "USERID", "s3cret", server.Port(), kPackageUri, 7);

  EXPECT_EQ(seven.StartUpdate(), 0);

  EXPECT_THAT(Lines(3), Contains("uuid for PassThru before update is p7 uuid"));
  ASSERT_EQ(Invocations().size(), 1U);
  EXPECT_EQ(ArgumentTexts(Invocations()[0]).back(),
            "Target reference //cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module7\"");
}

TEST_F(PassThruUpdate, WithoutARecordInTheBayGoesOnWithAnEmptyUuid) {
  server.OnEnumerate(kPassThruClass, NoObjects());
  EXPECT_EQ(update.StartUpdate(), 0);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 4),
              ElementsAre("callback start update pass-through switch", "1 Error happened when getPassThruData.",
                          "3 The operation type is 2", "callback start install package"));
  EXPECT_THAT(lines, Contains("3 uuid for PassThru before update is "));
  EXPECT_EQ(Invocations().size(), 1U);
}

TEST_F(PassThruUpdate, WithAnInventoryThatFailsGoesOn) {
  server.OnEnumerate(kPassThruClass, CimError(1, "no"));
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_THAT(Lines(1), ElementsAre("Error happened when getPassThruData."));
}

TEST_F(PassThruUpdate, KeepsTheUuidOfTheUpdateBeforeWhenTheInventoryFails) {
  server.OnEnumerate(kPassThruClass, Objects({PassThru("module")}), NoObjects());
  EXPECT_EQ(update.StartUpdate(), 0);
  Lines();
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_THAT(Lines(3), Contains("uuid for PassThru before update is p uuid"));
}

TEST_F(PassThruUpdate, RunTwiceSendsEightParametersTheSecondTime) {
  EXPECT_EQ(update.StartUpdate(), 0);
  EXPECT_EQ(update.StartUpdate(), 0);
  ASSERT_EQ(Invocations().size(), 2U);
  const std::vector<std::string> once = ArgumentTexts(Invocations()[0]);
  ASSERT_THAT(once, ElementsAre("URI string http://10.0.0.9/package.zip", "InstallOptions uint16[] 5",
                                "InstallOptionsValues string[] ", std::string("Target reference ") + kModulePath));
  std::vector<std::string> twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_THAT(ArgumentTexts(Invocations()[1]), ElementsAreArray(twice));
}

TEST_F(PassThruUpdate, EveryLineNamesItsSourceAndItsPlaceInIt) {
  const ScopedLog records;
  EXPECT_EQ(update.StartUpdate(), 0);
  unsigned own = 0;
  for (const Log::Record& record : records.Records()) {
    EXPECT_EQ(record.file.rfind("cmm/inventory_update/", 0), 0U) << record.file;
    if (record.file != "cmm/inventory_update/switch_PassThru_update") continue;
    ++own;
    EXPECT_GT(record.line, 0);
  }
  EXPECT_EQ(own, 25U);
}

// Failures are told with their code and text.

struct FailureCase {
  const char* name;
  CimAnswer answer;  // of the method
  int result;
  const char* text;
};
class PassThruUpdateFailure : public PassThruUpdate, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(PassThruUpdateFailure, EndsWithItsCodeAndText) {
  server.OnInvoke("InstallFromURI", GetParam().answer);
  EXPECT_EQ(update.StartUpdate(), GetParam().result);
  const std::string code = std::to_string(GetParam().result);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("3 the return code of installPackage_PassThru is " + code,
                          std::string("1 PassThru update failed and the return code message is ") + GetParam().text,
                          "3 [E] step=83 value=" + code + " http://10.0.0.9/package.zip"));
}

INSTANTIATE_TEST_SUITE_P(Codes, PassThruUpdateFailure,
                         ::testing::Values(FailureCase{"Denied", CimError(2, "no"), 5, "Unknown Error"},
                                           FailureCase{"OtherStatus", CimError(12, "no"), 212,
                                                       "CMM Method Invocation Error occurred"},
                                           FailureCase{"Closed", Close(), 212, "CMM Method Invocation Error occurred"},
                                           FailureCase{"NoJob", MethodResult(Uint32Value(1)), 2, "Unknown Error"}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruUpdate, AnUnknownJobStatusIsAnUnknownError) {
  ScriptJob(Job("whatever", 3));
  EXPECT_EQ(update.StartUpdate(), 6);
  EXPECT_THAT(Lines(1), ElementsAre("Update failed with unknown error.",
                                    "PassThru update failed and the return code message is Unknown Error"));
}

struct MessageCase {
  int code;
  const char* text;
};
class PassThruCodeText : public ::testing::TestWithParam<MessageCase> {};

TEST_P(PassThruCodeText, IsThatOfTheTable) {
  EXPECT_EQ(TarnPassThruUpdate::getReturnCodeMessage(GetParam().code), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Codes, PassThruCodeText,
                         ::testing::Values(MessageCase{0, "InvokeMethod finished with no error."},
                                           MessageCase{207, "Failed connecting to server"},
                                           MessageCase{212, "CMM Method Invocation Error occurred"},
                                           MessageCase{213, "CMM Package Installation Result not found!"},
                                           MessageCase{6, "Unknown Error"}, MessageCase{15, "Unknown Error"},
                                           MessageCase{208, "Unknown Error"}, MessageCase{-1, "Unknown Error"}),
                         [](const auto& param) {
                           return param.param.code < 0 ? std::string("Negative") : std::to_string(param.param.code);
                         });

}  // namespace
}  // namespace Orvane::testing
