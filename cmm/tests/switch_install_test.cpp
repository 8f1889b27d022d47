// The install of a package on a switch up to its job: service, target, connections, the invocation and what it returns.
#include <map>

#include "cmm/tests/switch_fixture.h"

namespace Orvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr char kEnter[] = "3 Enter SwitchIOUpdateByCIM::installPackage.";
constexpr char kFoundService[] =
    "3 Successfully get the CIM_SoftwareInstallationService instance: CIM_SoftwareInstallationService.Name=\"install\"";
constexpr char kEnumerateServices[] = "EnumerateInstances CIM_SoftwareInstallationService";
constexpr char kInvoke[] = "InvokeMethod CIM_SoftwareInstallationService.Name=\"install\" InstallFromURI";
constexpr char kUri[] = "http://files/one.bin";
constexpr char kServiceError[] = "Unknown error happened when enumerate CIM_SoftwareInstallationService. ";
constexpr char kInvokeError[] = "Unknown error happened when invokeMethod ";

const std::string kFoundTarget = std::string("3 Successfully get the IO target instance: ") + kTargetPath;
const std::string kTargetParameter = std::string("3 Parameter Target of method 'InstallFromURI': ") + kTargetPath;

class SwitchInstall : public SwitchTest {
 protected:
  /// The lines of an install that comes as far as the invocation, and these behind them.
  static std::vector<std::string> UpToInvocation(std::vector<std::string> further) {
    further.insert(further.begin(), {kEnter, kConnectedLine, kFoundService, kFoundTarget, kAlreadyConnectedLine});
    return further;
  }
  void ExpectNoInvocation() const { EXPECT_THAT(RequestsOf("InvokeMethod"), IsEmpty()); }
};

TEST_F(SwitchInstall, StepByStep) {
  ScriptInstall(JobAnswer(4, kJobRunning), JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage(kUri), 0);

  const std::string jobDone =
      "3 Job instance info: ( InstanceID:job 7,JobStatus: Flash Completed with no apparent errors,JobState: 7 )";
  EXPECT_EQ(
      Lines(),
      UpToInvocation({"3 Invoke method 'InstallFromURI', return CIMValue string = 4096", kTargetParameter,
                      "3 Parameter Name: Job, Parameter Value: CIM_ConcreteJob.InstanceID=\"job 7\"",
                      "3 Try to get the result of the InstallFromURI call: 1", kConnectedLine,
                      "3 Job instance info: ( InstanceID:job 7,JobStatus: Flash Installation Job Started,JobState: 4 )",
                      "3 Update process started! ", "3 Try to get the result of the InstallFromURI call: 2",
                      kConnectedLine, jobDone,
                      "3 Update completed successfully and the message is Flash Completed with no apparent errors"}));
  EXPECT_THAT(progress.texts, ElementsAre("start install package on I/O Module switch"));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(10000u, 60000u));
}

// The lookup's connections stand beside the install's own, so each is looked at by itself.
TEST_F(SwitchInstall, RequestsAndConnections) {
  ScriptInstall(JobAnswer(4, kJobRunning), JobAnswer(7, kJobDone));

  object.installPackage(kUri);

  const std::string slot = "AssociatorNames " + SlotPath("iomodule03") + " [CIM_PackageInSlot, CIM_PhysicalPackage]";
  const std::string package =
      "Associators " + PackagePath("package") + " [CIM_ComputerSystemPackage, CIM_ComputerSystem]";
  const std::string jobs = "EnumerateInstances CIM_ConcreteJob";
  EXPECT_THAT(server.Summaries(),
              ElementsAre(kEnumerateServices, "EnumerateInstances CIM_Slot", slot, package, kInvoke, jobs, jobs));
  std::map<unsigned, std::vector<std::string>> connections;
  for (const CimRequest& request : server.Requests()) connections[request.connection].push_back(request.Summary());
  std::vector<std::vector<std::string>> inOrder;
  inOrder.reserve(connections.size());
  for (const auto& [number, requests] : connections) inOrder.push_back(requests);
  EXPECT_THAT(inOrder, ElementsAre(ElementsAre(kEnumerateServices, kInvoke), ElementsAre("EnumerateInstances CIM_Slot"),
                                   ElementsAre(slot, package), ElementsAre(jobs), ElementsAre(jobs)));
}

TEST_F(SwitchInstall, IsDisconnectedDuringEachWait) {
  ScriptInstall(JobAnswer(4, kJobRunning), JobAnswer(4, "anything"), JobAnswer(7, kJobDone));
  const VirtualClock watched([this](std::size_t, std::uint32_t) { EXPECT_TRUE(server.WaitUntilAllClosed()); });

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_THAT(watched.Sleeps(), ElementsAre(10000u, 60000u, 60000u));
}

TEST_F(SwitchInstall, SendsFourParametersInOrder) {
  ScriptInstall(JobAnswer(7, kJobDone));

  object.installPackage(kUri);

  ASSERT_EQ(RequestsOf("InvokeMethod").size(), 1u);
  const CimRequest request = RequestsOf("InvokeMethod").front();
  EXPECT_EQ(request.objectText, kServicePath);
  EXPECT_EQ(request.method, "InstallFromURI");
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  ASSERT_EQ(request.arguments.size(), 4u);
  const auto expect = [&request](std::size_t index, const char* name, const char* type, bool isArray,
                                 const std::string& value) {
    EXPECT_EQ(request.arguments[index].name, name);
    EXPECT_EQ(request.arguments[index].type, type) << name;
    EXPECT_EQ(request.arguments[index].isArray, isArray) << name;
    EXPECT_THAT(request.arguments[index].values, ElementsAre(value)) << name;
  };
  expect(0, "URI", "string", false, kUri);
  expect(1, "InstallOptions", "uint16", true, "5");
  expect(2, "InstallOptionsValues", "string", true, "");
  expect(3, "Target", "reference", false, kTargetPath);
}

TEST_F(SwitchInstall, EveryLineNamesItsPlaceInTheSource) {
  ScriptInstall(JobAnswer(7, kJobDone));

  object.installPackage(kUri);

  std::map<std::string, int> places;
  for (const Log::Record& record : log.Records()) {
    EXPECT_GT(record.line, 0) << record.text;
    if (record.file == "cmm/inventory_update/switch_IO_update") places[record.text.substr(0, 20)] = record.line;
  }
  EXPECT_NE(places.at("Successfully connect"), places.at("Pegasus AlreadyConne"));
  EXPECT_NE(places.at("Successfully connect"), places.at("Parameter Name: Job,"));
}

TEST_F(SwitchInstall, ASecondInstallSendsItsOwnParametersOnly) {
  ScriptInstall(JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage(kUri), 0);
  EXPECT_EQ(object.installPackage(kUri), 0);

  ASSERT_EQ(RequestsOf("InvokeMethod").size(), 2u);
  EXPECT_EQ(RequestsOf("InvokeMethod").back().arguments.size(), 4u);
}

TEST_F(SwitchInstall, EnumeratesServicesAndJobsWithDefaultFlagsInTheirNamespace) {
  ScriptInstall(JobAnswer(7, kJobDone));

  object.installPackage(kUri);

  for (const CimRequest& request : RequestsOf("EnumerateInstances")) {
    EXPECT_EQ(request.nameSpace, "root/cimv2") << "a leading slash does not travel";
    EXPECT_THAT(request.head, EndsWith("\r\nCIMObject: root%2Fcimv2"));
    for (const char* flag :
         {"DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}) {
      EXPECT_EQ(request.body.find(flag), std::string::npos) << flag;
    }
  }
}

TEST_F(SwitchInstall, GivesUpAfterThreeConnects) {
  EXPECT_EQ(nobody.UpdateFirmware(), 1);

  const std::vector<std::string> lines = Lines();
  const auto enter = std::find(lines.begin(), lines.end(), kEnter);
  EXPECT_EQ(std::vector<std::string>(enter, lines.end()),
            (std::vector<std::string>{kEnter, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine, kRefusedLine,
                                      kRefusedLine, "1 Failed to connect to the CMM.", "3 [E] step=83 value=1 "}));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000u, 1000u));
}

struct StatusRow {
  unsigned code;
  const char* line;
  int result;
};

class SwitchInstallServiceStatus : public SwitchInstall, public ::testing::WithParamInterface<StatusRow> {};

TEST_P(SwitchInstallServiceStatus, EndsTheInstall) {
  ScriptTarget();
  server.OnEnumerate(kServiceClass, CimError(GetParam().code, "the server's own text"));

  EXPECT_EQ(object.installPackage(kUri), GetParam().result);

  EXPECT_THAT(Lines(), ElementsAre(kEnter, kConnectedLine, GetParam().line));
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerateServices, "disconnect"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchInstallServiceStatus,
    ::testing::Values(StatusRow{1, "1 CIM_ERR_FAILED when enumerate CIM_SoftwareInstallationService. ", 27},
                      StatusRow{2, "1 CIM_ERR_ACCESS_DENIED when enumerate CIM_SoftwareInstallationService. ", 19},
                      StatusRow{4, "1 CIM_ERR_INVALID_PARAMETER when enumerate CIM_SoftwareInstallationService. ", 23},
                      StatusRow{5, "1 CIM_ERR_INVALID_CLASS when enumerate CIM_SoftwareInstallationService. ", 22},
                      StatusRow{7, "1 CIM_ERR_NOT_SUPPORTED when enumerate CIM_SoftwareInstallationService. ", 20}),
    [](const auto& row) { return std::to_string(row.param.code); });

class SwitchInstallOtherServiceStatus : public SwitchInstall, public ::testing::WithParamInterface<unsigned> {};

TEST_P(SwitchInstallOtherServiceStatus, GoesOnAndMeetsTheEmptyList) {
  ScriptTarget();
  server.OnEnumerate(kServiceClass, CimError(GetParam(), "the server's own text"));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(Lines(), ElementsAre(kEnter, kConnectedLine, std::string("1 ") + kServiceError + "index out of bounds"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerateServices, "disconnect"));
}

INSTANTIATE_TEST_SUITE_P(Codes, SwitchInstallOtherServiceStatus, ::testing::Values(3u, 6u, 16u, 17u, 99u));

TEST_F(SwitchInstall, NoServiceAtAllIsAnUnknownError) {
  ScriptTarget();

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(Lines(), ElementsAre(kEnter, kConnectedLine, std::string("1 ") + kServiceError + "index out of bounds"));
  EXPECT_THAT(Conversation(), ElementsAre("connect", kEnumerateServices, "disconnect"));
}

TEST_F(SwitchInstall, ServicesThatCannotBeReadAreAnUnknownError) {
  ScriptTarget();
  server.OnEnumerate(kServiceClass, HttpStatus(401, "Unauthorized"), Close(), Body("no XML"));

  for (int call = 0; call < 3; ++call) EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre(std::string(kServiceError) + "HTTP Error (401 Unauthorized).",
                                        std::string(kServiceError) + "Connection closed by CIM Server.",
                                        StartsWith(std::string(kServiceError) + "Validation error: on line 1")));
  ExpectNoInvocation();
}

TEST_F(SwitchInstall, NoSwitchInTheBayIs24) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnEnumerate("CIM_Slot", Objects({Slot("iomodule04", "4")}));

  EXPECT_EQ(object.installPackage(kUri), 24);

  EXPECT_THAT(Lines(), ElementsAre(kEnter, kConnectedLine, kFoundService, "3 Don't find targetinstance for switch."));
  ExpectNoInvocation();
}

TEST_F(SwitchInstall, ALookupThatFailsIs24AsWell) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnEnumerate("CIM_Slot", CimError(2, "denied"));

  EXPECT_EQ(object.installPackage(kUri), 24);

  EXPECT_EQ(Lines().back(), "3 Don't find targetinstance for switch.");
  ExpectNoInvocation();
}

TEST_F(SwitchInstall, TheSecondConnectIsTriedThreeTimesToo) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnEnumerate(kServiceClass, ThenClose(Objects({Service("install")})));
  server.OnAssociators(PackagePath("package"), kSystemPackage, "CIM_ComputerSystem",
                       ThenRefuse(Objects({System("switch03", {12})})));

  EXPECT_EQ(object.installPackage(kUri), 1);

  const std::string refused =
      "1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:" + std::to_string(server.Port()) +
      ". Connection failed.";
  EXPECT_THAT(Lines(),
              ElementsAre(kEnter, kConnectedLine, kFoundService, kFoundTarget, refused, refused, refused, refused,
                          refused, refused, "1 Failed to connect to the CMM when invoke method InstallFromURI."));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1000u, 1000u));
  ExpectNoInvocation();
}

class SwitchInstallInvocationStatus : public SwitchInstall, public ::testing::WithParamInterface<StatusRow> {};

TEST_P(SwitchInstallInvocationStatus, EndsTheInstall) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", CimError(GetParam().code, "the server's own text"));

  EXPECT_EQ(object.installPackage(kUri), GetParam().result);

  EXPECT_EQ(Lines(), UpToInvocation({GetParam().line}));
  EXPECT_EQ(server.Summaries().back(), kInvoke);
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

constexpr char kComplete[] = "3 Complete SwitchIOUpdateByCIM::installPackage().";

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchInstallInvocationStatus,
    ::testing::Values(StatusRow{1, "1 CIM_ERR_FAILED", 27}, StatusRow{2, "1 CIM_ERR_ACCESS_DENIED", 19},
                      StatusRow{3, "1 CIM_ERR_INVALID_NAMESPACE", 21}, StatusRow{4, "1 CIM_ERR_INVALID_PARAMETER", 23},
                      StatusRow{6, "1 CIM_ERR_NOT_FOUND", 24}, StatusRow{7, "1 CIM_ERR_NOT_SUPPORTED", 20},
                      StatusRow{16, "1 CIM_ERR_METHOD_NOT_AVAILABLE", 26},
                      StatusRow{17, "1 CIM_ERR_METHOD_NOT_FOUND", 25}, StatusRow{5, kComplete, 2},
                      StatusRow{8, kComplete, 2}, StatusRow{99, kComplete, 2}),
    [](const auto& row) { return std::to_string(row.param.code); });

TEST_F(SwitchInstall, AnInvocationThatFailsOtherwiseIsAnUnknownError) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", Close(), HttpStatus(500, "Internal Server Error"), Body("no XML"));

  for (int call = 0; call < 3; ++call) EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre(std::string(kInvokeError) + "Connection closed by CIM Server.",
                                        std::string(kInvokeError) + "HTTP Error (500 Internal Server Error).",
                                        StartsWith(std::string(kInvokeError) + "Validation error: on line 1")));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(SwitchInstall, WithoutOutParametersThereIsNoJob) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "0")));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_EQ(Lines(),
            UpToInvocation({"3 Invoke method 'InstallFromURI', return CIMValue string = 0", kTargetParameter,
                            "1 Empty Parameter", "1 Error to get the job InstanceID of the InstallFromURI method!"}));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(SwitchInstall, OutParametersOfOtherNamesAreNoJob) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "0"), {{"Jobs", CimString("=\"job 7\"")}}));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_EQ(Lines(), UpToInvocation({"3 Invoke method 'InstallFromURI', return CIMValue string = 0", kTargetParameter,
                                     "1 Error to get the job InstanceID of the InstallFromURI method!"}));
}

TEST_F(SwitchInstall, ANullJobIsNone) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "0"), {{"Job", CimNull("string")}}));

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_EQ(Lines(), UpToInvocation({"3 Invoke method 'InstallFromURI', return CIMValue string = 0", kTargetParameter,
                                     "3 Parameter Name: Job, Parameter Value: ",
                                     "1 Error to get the job InstanceID of the InstallFromURI method!"}));
}

TEST_F(SwitchInstall, TheFirstJobParameterCounts) {
  ScriptInstall(JobAnswer(7, kJobDone));
  server.OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "0"), {{"Other", CimString("=\"a\"")},
                                                                           {"Job", CimString("=\"job 7\"")},
                                                                           {"Last", CimString("=\"b\"")}}));

  EXPECT_EQ(object.installPackage(kUri), 0);
}

class SwitchInstallReturnValue : public SwitchInstall, public ::testing::WithParamInterface<const char*> {};

TEST_P(SwitchInstallReturnValue, IsLoggedAndNeverTested) {
  ScriptInstall(JobAnswer(7, kJobDone));
  const std::string text = GetParam();
  server.OnInvoke("InstallFromURI",
                  MethodResult(text.empty() ? std::nullopt : std::optional<CimValue>(CimTyped("uint32", text)),
                               {{"Job", CimString("=\"job 7\"")}}));

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_TRUE(log.Has(3, "Invoke method 'InstallFromURI', return CIMValue string = " + text));
}

INSTANTIATE_TEST_SUITE_P(Values, SwitchInstallReturnValue, ::testing::Values("0", "1", "4097", ""));

struct ReferenceRow {
  const char* name;
  const char* reference;
  const char* id;
};

class SwitchInstallJobReference : public SwitchInstall, public ::testing::WithParamInterface<ReferenceRow> {};

TEST_P(SwitchInstallJobReference, GivesTheIdentifier) {
  ScriptInstall(Objects({Job("another", 10, kJobBusy), Job(GetParam().id, 7, kJobDone)}));
  server.OnInvoke("InstallFromURI", InstallAnswer(GetParam().reference));

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_TRUE(log.Has(3, "Job instance info: ( InstanceID:" + std::string(GetParam().id) +
                             ",JobStatus: Flash Completed with no apparent errors,JobState: 7 )"));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SwitchInstallJobReference,
    ::testing::Values(ReferenceRow{"Plain", "CIM_ConcreteJob.InstanceID=\"j1\"", "j1"},
                      ReferenceRow{"WithHost", "//cmm01/root/cimv2:CIM_ConcreteJob.InstanceID=\"j1\"", "j1"},
                      ReferenceRow{"TwoKeys", "CIM_ConcreteJob.InstanceID=\"j1\",Name=\"x\"", "j1"},
                      ReferenceRow{"NoEqualsSign", "\"j1\" and more", "j1"},
                      ReferenceRow{"NoEqualsSignNoQuote", "xj1", "j1"},
                      ReferenceRow{"NoClosingQuote", "CIM_ConcreteJob.InstanceID=\"j1", "j1"},
                      ReferenceRow{"NoQuotes", "CIM_ConcreteJob.InstanceID=j1", "1"},
                      ReferenceRow{"EmptyId", "CIM_ConcreteJob.InstanceID=\"\"", ""},
                      ReferenceRow{"OneCharacter", "x", ""}, ReferenceRow{"EndsAtTheEqualsSign", "a=", ""}),
    [](const auto& row) { return row.param.name; });

TEST_F(SwitchInstall, UrisTravelUnchanged) {
  ScriptInstall(JobAnswer(7, kJobDone));
  const std::vector<std::string> uris = {"", std::string(64 * 1024, 'u'), "ftp://user:pw@files/a b?x=1&y=<2>\"'",
                                         "file:///\xC3\xA4.bin"};

  for (const std::string& uri : uris) EXPECT_EQ(object.installPackage(uri), 0);

  const std::vector<CimRequest> requests = RequestsOf("InvokeMethod");
  ASSERT_EQ(requests.size(), uris.size());
  for (std::size_t i = 0; i < uris.size(); ++i) {
    EXPECT_EQ(requests[i].arguments[0].values, std::vector<std::string>{uris[i]});
  }
  for (const Log::Record& record : log.Records()) EXPECT_EQ(record.text.find("user:pw"), std::string::npos);
}

TEST_F(SwitchInstall, AUriThatIsNoUtf8IsAnUnknownError) {
  ScriptInstall(JobAnswer(7, kJobDone));

  EXPECT_EQ(object.installPackage("http://\xff"), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre(StartsWith(kInvokeError)));
  ExpectNoInvocation();
}

TEST_F(SwitchInstall, WorksWithoutACallback) {
  ScriptInstall(JobAnswer(7, kJobDone));
  object.SetLogCallBack(nullptr);

  EXPECT_EQ(object.installPackage(kUri), 0);

  EXPECT_THAT(progress.texts, IsEmpty());
}

TEST_F(SwitchInstall, ACallbackThatThrowsEndsItWithTwo) {
  ScriptInstall(JobAnswer(7, kJobDone));
  ThrowingProgress throwing("start install package on I/O Module switch");
  object.SetLogCallBack(&throwing);

  EXPECT_EQ(object.installPackage(kUri), 2);

  EXPECT_THAT(log.Texts(1), ElementsAre("installPackage ended by an exception: the display is gone"));
  ExpectNoInvocation();
}

}  // namespace
}  // namespace Orvane::testing
