// The install of a package on a pass-through module up to its job: what is asked for, in which order, what is sent, and
// what each failure gives.
#include "cmm/tests/passthru_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class PassThruInstall : public PassThruTest {
 protected:
  PassThruInstall() {
    ScriptInstall();
    ScriptJob(Job(kFlashed, 7));
  }
};

TEST_F(PassThruInstall, FollowsItsStepsInOrder) {
  EXPECT_EQ(Install(), 0);

  EXPECT_THAT(
      Lines(),
      ElementsAre(
          "3 Enter TarnPassThruUpdate::installPackage_PassThru.", "3 Successfully connected to host : 127.0.0.1",
          "3 Instances is CIM_SoftwareInstallationService.Name=\"update\"",
          "3 successfully get the instances for CIM_SoftwareInstallationService.",
          "3 installupdate targetinstance//cmm01/root/cimv2:CIM_PassThroughModule.DeviceID=\"module\"",
          "3 Successfully connected to host : 127.0.0.1",
          "3 Invoke method 'InstallFromURI, return CIMValue string = 4096",
          "3 Parameter Name: Job, Parameter Value: //cmm01/root/cimv2:CIM_ConcreteJob.InstanceID=\"JOB_17\"",
          "sleep 10000", "3 GetInstance time = 1", "3 Successfully connected to host : 127.0.0.1",
          "3 InstanceID string =JOB_17", "3 JobStatus string = Flash Completed with no apparent errors",
          "3 JobState string = 7",
          "3 JobStatus string that will be used to get the update status = Flash Completed with no apparent errors",
          "3 Update Finish And the Jobstatus is Flash Completed with no apparent errors"));
  EXPECT_THAT(
      Conversation(),
      ElementsAre("connect", "EnumerateInstances CIM_SoftwareInstallationService", "disconnect",  //
                  "connect", "EnumerateInstances CIM_Slot", "disconnect",                         //
                  "connect", "AssociatorNames CIM_Slot.Tag=\"iomodule02\" [CIM_PackageInSlot, CIM_PhysicalPackage]",
                  "Associators CIM_PhysicalPackage.Tag=\"p\" [CIM_Realizes, CIM_PassThroughModule]", "disconnect",
                  "connect", "InvokeMethod CIM_SoftwareInstallationService.Name=\"update\" InstallFromURI",
                  "disconnect", "connect", "EnumerateInstances CIM_ConcreteJob", "disconnect"));
}

TEST_F(PassThruInstall, SendsFourParametersInTheirOrder) {
  EXPECT_EQ(Install(), 0);
  ASSERT_EQ(Invocations().size(), 1U);
  EXPECT_EQ(Invocations()[0].nameSpace, "root/cimv2");
  EXPECT_EQ(Invocations()[0].objectText, kServicePath);
  EXPECT_THAT(ArgumentTexts(Invocations()[0]),
              ElementsAre("URI string http://10.0.0.9/package.zip", "InstallOptions uint16[] 5",
                          "InstallOptionsValues string[] ", std::string("Target reference ") + kModulePath));
}

TEST_F(PassThruInstall, DeferredIsAnotherOption) {
  EXPECT_EQ(object.installPackage_PassThru(kTargetPassThru, kPackageUri, true), 0);
  EXPECT_THAT(ArgumentTexts(Invocations()[0]), Contains("InstallOptions uint16[] 32768"));
}

TEST_F(PassThruInstall, AsksForEveryInstanceWithAllItsProperties) {
  EXPECT_EQ(Install(), 0);
  unsigned enumerations = 0;
  for (const CimRequest& request : server.Requests()) {
    if (request.objectClass != kInstallationService && request.objectClass != kConcreteJob) continue;
    if (request.operation != "EnumerateInstances") continue;
    ++enumerations;
    EXPECT_EQ(request.nameSpace, "root/cimv2") << request.objectClass;
    // What the requests ask for is what the protocol takes when nothing is said: subclasses and properties of the class
    // and those it derives from, no qualifiers, no origin, no selection.
    for (const char* parameter :
         {"DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}) {
      EXPECT_THAT(request.body, Not(HasSubstr(parameter)));
    }
  }
  EXPECT_EQ(enumerations, 2U);
}

TEST_F(PassThruInstall, TakesTheFirstService) {
  server.OnEnumerate(kInstallationService, Objects({InstallationService("second"), InstallationService("first")}));
  EXPECT_EQ(Install(), 0);
  EXPECT_THAT(Lines(3), Contains("Instances is CIM_SoftwareInstallationService.Name=\"second\""));
  EXPECT_EQ(Invocations()[0].objectText, "CIM_SoftwareInstallationService.Name=\"second\"");
}

TEST_F(PassThruInstall, SearchesTheBayForTheKindOfTargetThatWasAskedFor) {
  server.OnAssociators(PackagePath("p"), kSystemPackage, "CIM_ComputerSystem", Objects({System("switch", {12})}));
  EXPECT_EQ(object.installPackage_PassThru(kTargetIOModule, kPackageUri, false), 0);
  EXPECT_THAT(ArgumentTexts(Invocations()[0]).back(), HasSubstr("CIM_ComputerSystem.Name=\"switch\""));
}

TEST_F(PassThruInstall, AnyReturnValueGoesOn) {
  for (const unsigned value : {0U, 1U, 4294967295U}) {
    CimAnswer answer = JobStarted();
    answer.returnValue = Uint32Value(value);
    server.OnInvoke("InstallFromURI", answer);
    EXPECT_EQ(Install(), 0);
    EXPECT_THAT(Lines(3), Contains("Invoke method 'InstallFromURI, return CIMValue string = " + std::to_string(value)));
  }
}

TEST_F(PassThruInstall, WithoutAModuleInTheBayEndsBeforeTheSecondConnect) {
  server.OnEnumerate("CIM_Slot", NoObjects());
  EXPECT_EQ(Install(), 24);
  EXPECT_THAT(Lines(), ElementsAre("3 Enter TarnPassThruUpdate::installPackage_PassThru.",
                                   "3 Successfully connected to host : 127.0.0.1",
                                   "3 Instances is CIM_SoftwareInstallationService.Name=\"update\"",
                                   "3 successfully get the instances for CIM_SoftwareInstallationService.",
                                   "3 Don't find targetinstance for switch."));
  EXPECT_THAT(Conversation(), ElementsAre("connect", "EnumerateInstances CIM_SoftwareInstallationService", "disconnect",
                                          "connect", "EnumerateInstances CIM_Slot", "disconnect"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(PassThruInstall, ALookupThatFailsIsNoModuleAndNamesTheStatus) {
  WatchEverything();
  server.OnEnumerate("CIM_Slot", CimError(2, "no"));
  EXPECT_EQ(Install(), 24);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("1 CIM_ERR_ACCESS_DENIED", "3 Don't find targetinstance for switch."));
  EXPECT_THAT(Invocations(), IsEmpty());
}

TEST_F(PassThruInstall, ASecondOneSendsTheParametersOfTheFirstAgain) {
  EXPECT_EQ(Install(), 0);
  EXPECT_EQ(object.installPackage_PassThru(kTargetPassThru, "ftp://other", true), 0);
  EXPECT_THAT(ArgumentTexts(Invocations()[1]),
              ElementsAre("URI string http://10.0.0.9/package.zip", "InstallOptions uint16[] 5",
                          "InstallOptionsValues string[] ", std::string("Target reference ") + kModulePath,
                          "URI string ftp://other", "InstallOptions uint16[] 32768", "InstallOptionsValues string[] ",
                          std::string("Target reference ") + kModulePath));
}

TEST_F(PassThruInstall, OneThatFoundNoModuleLeavesItsThreeParametersBehind) {
  server.OnEnumerate("CIM_Slot", NoObjects(), Objects({Slot("iomodule02", "2")}));
  EXPECT_EQ(Install(), 24);
  EXPECT_EQ(Install(), 0);
  EXPECT_EQ(Invocations()[0].arguments.size(), 7U);
}

// The service cannot be read.

struct StatusCase {
  unsigned status;
  const char* line;  // of level 1; null when there is none
  int result;
};
std::string StatusCaseName(const ::testing::TestParamInfo<StatusCase>& param) {
  return "Status" + std::to_string(param.param.status);
}

class PassThruServiceStatus : public PassThruInstall, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(PassThruServiceStatus, HasItsLineAndCode) {
  server.OnEnumerate(kInstallationService, CimError(GetParam().status, "no"));
  EXPECT_EQ(Install(), GetParam().result);
  EXPECT_THAT(Lines(),
              ElementsAre("3 Enter TarnPassThruUpdate::installPackage_PassThru.",
                          "3 Successfully connected to host : 127.0.0.1", std::string("1 ") + GetParam().line));
  EXPECT_THAT(Conversation(),
              ElementsAre("connect", "EnumerateInstances CIM_SoftwareInstallationService", "disconnect"));
}

INSTANTIATE_TEST_SUITE_P(Table, PassThruServiceStatus,
                         ::testing::Values(StatusCase{1, "CIM_ERR_FAILED", 27},
                                           StatusCase{2, "CIM_ERR_ACCESS_DENIED", 19},
                                           StatusCase{4, "CIM_ERR_INVALID_PARAMETER", 23},
                                           StatusCase{5, "CIM_ERR_INVALID_CLASS", 22},
                                           StatusCase{7, "CIM_ERR_NOT_SUPPORTED", 20}),
                         StatusCaseName);

class PassThruServiceOtherStatus : public PassThruInstall, public ::testing::WithParamInterface<unsigned> {};

TEST_P(PassThruServiceOtherStatus, IsNotLoggedAndMeetsTheEmptyList) {
  server.OnEnumerate(kInstallationService, CimError(GetParam(), "no"));
  EXPECT_EQ(Install(), 212);
  EXPECT_THAT(Lines(), ElementsAre("3 Enter TarnPassThruUpdate::installPackage_PassThru.",
                                   "3 Successfully connected to host : 127.0.0.1",
                                   std::string("3 installupdate targetinstance") + kModulePath,
                                   "1 Pegasus AlreadyConnectedException :already connected",
                                   "1 unknown error happened when invokeMethod index out of bounds"))
      << "nothing has disconnected before the second connect";
  EXPECT_TRUE(server.WaitUntilAllClosed());
  EXPECT_THAT(Invocations(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Statuses, PassThruServiceOtherStatus, ::testing::Values(3U, 6U, 10U, 16U, 17U, 20U, 99U));

struct AnswerCase {
  const char* name;
  CimAnswer answer;
};
std::string AnswerCaseName(const ::testing::TestParamInfo<AnswerCase>& param) { return param.param.name; }

class PassThruServiceOtherError : public PassThruInstall, public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(PassThruServiceOtherError, IsLoggedAndMeetsTheEmptyList) {
  server.OnEnumerate(kInstallationService, GetParam().answer);
  EXPECT_EQ(Install(), 212);
  EXPECT_THAT(Lines(1), ElementsAre("unknown error happened when enumerate Instance",
                                    "Pegasus AlreadyConnectedException :already connected",
                                    "unknown error happened when invokeMethod index out of bounds"));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(Answers, PassThruServiceOtherError,
                         ::testing::Values(AnswerCase{"NoService", NoObjects()},
                                           AnswerCase{"HttpError", HttpStatus(500, "Internal Server Error")},
                                           AnswerCase{"NoXml", Body("<html>")}),
                         AnswerCaseName);

TEST_F(PassThruInstall, AServiceThatClosesTheConnectionIsConnectedToAnew) {
  server.OnEnumerate(kInstallationService, Close());
  EXPECT_EQ(Install(), 212);
  EXPECT_THAT(Lines(1), Contains("unknown error happened when enumerate Instance"));
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(PassThruInstall, AnEmptyListOfServicesGivesTheSameWithTheLogOff) {
  server.OnEnumerate(kInstallationService, NoObjects());
  Log::SetMinLogLevel(0);
  EXPECT_EQ(Install(), 212);
  EXPECT_THAT(Invocations(), IsEmpty());
}

// The method fails.

constexpr std::initializer_list<StatusCase> kInvocationStatuses = {
    {1, "CIM_ERR_FAILED", 27},
    {2, "SWITCH_OPT_RC_INSTALL_ERR", 5},
    {3, "CIM_ERR_INVALID_NAMESPACE", 21},
    {4, "CIM_ERR_INVALID_PARAMETER", 23},
    {6, "CIM_ERR_NOT_FOUND", 24},
    {7, "CIM_ERR_NOT_SUPPORTED", 20},
    {16, "CIM_ERR_METHOD_NOT_AVAILABLE", 26},
    {17, "CIM_ERR_METHOD_NOT_FOUND", 25},
};

class PassThruInvocationStatus : public PassThruInstall, public ::testing::WithParamInterface<StatusCase> {};

TEST_P(PassThruInvocationStatus, HasItsLineAndCode) {
  server.OnInvoke("InstallFromURI", CimError(GetParam().status, "no"));
  EXPECT_EQ(Install(), GetParam().result);
  EXPECT_EQ(Lines().back(), std::string("1 ") + GetParam().line);
  EXPECT_EQ(Conversation().back(), "disconnect");
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, PassThruInvocationStatus, ::testing::ValuesIn(kInvocationStatuses), StatusCaseName);

class PassThruInvocationOtherStatus : public PassThruInstall, public ::testing::WithParamInterface<unsigned> {};

TEST_P(PassThruInvocationOtherStatus, EndsThroughTheClosingLines) {
  server.OnInvoke("InstallFromURI", CimError(GetParam(), "no"));
  EXPECT_EQ(Install(), 212);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("3 Successfully connected to host : 127.0.0.1",
                          "3 Complete TarnPassThruUpdate::installPackage_PassThru().",
                          "callback Complete install package on pass-through switch"));
  EXPECT_EQ(Conversation().back(), "disconnect");
}

INSTANTIATE_TEST_SUITE_P(Statuses, PassThruInvocationOtherStatus, ::testing::Values(5U, 8U, 12U, 15U, 21U, 99U));

struct ErrorCase {
  const char* name;
  CimAnswer answer;
  const char* message;
};
std::string ErrorCaseName(const ::testing::TestParamInfo<ErrorCase>& param) { return param.param.name; }

class PassThruInvocationError : public PassThruInstall, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(PassThruInvocationError, IsLoggedWithItsMessage) {
  server.OnInvoke("InstallFromURI", GetParam().answer);
  EXPECT_EQ(Install(), 212);
  EXPECT_EQ(Lines().back(), std::string("1 unknown error happened when invokeMethod ") + GetParam().message);
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, PassThruInvocationError,
    ::testing::Values(ErrorCase{"Http", HttpStatus(503, "Service Unavailable"),
                                "HTTP Error (503 Service Unavailable)."},
                      ErrorCase{"Closed", Close(), "Connection closed by CIM Server."},
                      ErrorCase{"NoReturnValue", MethodResult({}), "type mismatch"},
                      ErrorCase{"ReturnValueOfAnotherType", MethodResult(CimUint16(0)), "type mismatch"},
                      ErrorCase{"ReturnValueIsText", MethodResult(CimString("0")), "type mismatch"}),
    ErrorCaseName);

TEST_F(PassThruInstall, AMissingReturnValueFailsWithTheLogOffToo) {
  CimAnswer answer = JobStarted();
  answer.returnValue.reset();
  server.OnInvoke("InstallFromURI", answer);
  Log::SetMinLogLevel(0);
  EXPECT_EQ(Install(), 212);
}

// The job that the method names.

TEST_F(PassThruInstall, WithoutOutParametersThereIsNoJob) {
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0)));
  EXPECT_EQ(Install(), 2);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("3 Invoke method 'InstallFromURI, return CIMValue string = 0", "3 Empty Parameter",
                          "1 InstanceID not found!"));
  EXPECT_EQ(Conversation().back(), "disconnect") << "no connection outlives the call";
}

TEST_F(PassThruInstall, AnotherOutParameterIsNoJob) {
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0), {{"Jobs", CimString("x=\"JOB_17\"")}}));
  EXPECT_EQ(Install(), 2);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("3 Invoke method 'InstallFromURI, return CIMValue string = 0", "1 InstanceID not found!"));
}

TEST_F(PassThruInstall, AnEmptyJobIsNoJob) {
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0), {{"Job", CimNull("reference")}}));
  EXPECT_EQ(Install(), 2);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("3 Parameter Name: Job, Parameter Value: ", "1 InstanceID not found!"));
}

TEST_F(PassThruInstall, TheJobOfACallBeforeIsForgotten) {
  EXPECT_EQ(Install(), 0);
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0)));
  EXPECT_EQ(Install(), 2);
  const std::vector<std::string> lines = Lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
              ElementsAre("3 Empty Parameter", "1 InstanceID not found!"));
}

struct ReferenceCase {
  const char* name;
  const char* reference;
  const char* id;
};

class PassThruJobReference : public PassThruInstall, public ::testing::WithParamInterface<ReferenceCase> {};

TEST_P(PassThruJobReference, NamesTheJob) {
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0), {{"Other", CimString("a=\"b\"")},
                                                                  {"Job", CimString(GetParam().reference)},
                                                                  {"Job", CimString("x=\"second\"")}}));
  ScriptJob(JobObject(GetParam().id, kFlashed, 7));
  EXPECT_EQ(Install(), 0);
  EXPECT_THAT(Lines(3), Contains(std::string("Parameter Name: Job, Parameter Value: ") + GetParam().reference));
}

INSTANTIATE_TEST_SUITE_P(References, PassThruJobReference,
                         ::testing::Values(ReferenceCase{"Usual", "C.InstanceID=\"JOB_1\"", "JOB_1"},
                                           ReferenceCase{"NoEquals", "xJOB_1", "JOB_1"},
                                           ReferenceCase{"NoEqualsButQuote", "\"JOB_1\"", "JOB_1"},
                                           ReferenceCase{"NoClosingQuote", "C.InstanceID=\"JOB_1", "JOB_1"},
                                           ReferenceCase{"NoQuotes", "C.InstanceID=1234", "234"},
                                           ReferenceCase{"TwoKeys", "C.A=\"first\",InstanceID=\"JOB_1\"", "first"},
                                           ReferenceCase{"EqualsInside", "C.InstanceID=\"a=b\"", "a=b"}),
                         [](const auto& param) { return param.param.name; });

TEST_F(PassThruInstall, AReferenceOfOneCharacterNamesNoJob) {
  server.OnInvoke("InstallFromURI", MethodResult(Uint32Value(0), {{"Job", CimString("x")}}));
  EXPECT_EQ(Install(), 2);
  EXPECT_EQ(Lines().back(), "1 The JobStatus is Empty because error happened when creats jobinstance.!");
}

}  // namespace
}  // namespace Orvane::testing
