// The requests of a session: what goes over the wire, what comes back, and for every failure the result and the line of
// the guarded form and the exception of the other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "cmm/inventory_update/cmm_peg_client.h"
#include "cmm/inventory_update/cmm_util.h"
#include "testing/cim_server.h"
#include "testing/scoped_log.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using namespace testing;  // NOLINT(google-build-using-namespace): the scripted server's answers read as sentences

using Instances = Pegasus::Array<Pegasus::CIMInstance>;
using Pegasus::CIMName;
using Pegasus::CIMObjectPath;

const Pegasus::CIMNamespaceName& NameSpace() {
  static const Pegasus::CIMNamespaceName name("root/cimv2");
  return name;
}

CimObjectSpec Slot(const std::string& tag, unsigned number) {
  return CimObjectSpec("CIM_Slot").Key("Tag", tag).With("Number", CimUint16(number));
}

CIMObjectPath Path(const char* text) { return CIMObjectPath(Pegasus::String(text)); }

// Names of the parameters of an intrinsic call, in the order in which they were sent.
std::vector<std::string> Parameters(const CimRequest& request) {
  const std::string mark = "<IPARAMVALUE NAME=\"";
  std::vector<std::string> names;
  for (std::size_t at = request.body.find(mark); at != std::string::npos; at = request.body.find(mark, at)) {
    at += mark.size();
    names.push_back(request.body.substr(at, request.body.find('"', at) - at));
  }
  return names;
}

// The text of one property of each instance.
std::vector<std::string> Texts(const Instances& instances, const char* property) {
  std::vector<std::string> texts;
  for (Pegasus::Uint32 i = 0; i < instances.size(); ++i) {
    texts.push_back(ToStdString(PegClientOpt::GetPropertyValue(instances[i], CIMName(property)).toString()));
  }
  return texts;
}

class SessionOperations : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(session_.ConnectOnce("127.0.0.1", server_.Port(), "USERID", "pw", false), 0); }

  // Expects exactly one line in the log, of level 1, with this text.
  void ExpectOnlyError(const std::string& text) const {
    EXPECT_THAT(log_.Texts(1), ElementsAre(text));
    EXPECT_EQ(log_.Records().size(), 1u);
  }

  CimServer server_;
  PegClientOpt session_;
  ScopedLog log_;
};

class SessionEnumerate : public SessionOperations {
 protected:
  Instances Enumerate() { return session_.EnumerateInstances(NameSpace(), CIMName("CIM_Slot")); }
  Instances EnumerateOrThrow() { return session_.EnumerateInstancesOrThrow(NameSpace(), CIMName("CIM_Slot")); }
};

TEST_F(SessionEnumerate, GivesTheInstancesInTheServersOrder) {
  server_.OnEnumerate("CIM_Slot", Objects({Slot("b", 2), Slot("a", 1), Slot("c", 3)}));

  EXPECT_THAT(Texts(Enumerate(), "Number"), ElementsAre("2", "1", "3"));

  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionEnumerate, SendsTheClassNameAlone) {
  Enumerate();
  EnumerateOrThrow();

  ASSERT_EQ(server_.Requests().size(), 2u);
  for (const CimRequest& request : server_.Requests()) {
    EXPECT_EQ(request.operation, "EnumerateInstances");
    EXPECT_EQ(request.nameSpace, "root/cimv2");
    EXPECT_EQ(request.objectClass, "CIM_Slot");
    EXPECT_THAT(Parameters(request), ElementsAre("ClassName"));
  }
}

TEST_F(SessionEnumerate, HttpErrorIsAnEmptyListAndOneLine) {
  server_.OnEnumerate("CIM_Slot", HttpStatus(503, "Service Unavailable"));

  EXPECT_EQ(Enumerate().size(), 0u);

  ExpectOnlyError("Client HTTP Exception: HTTP Error (503 Service Unavailable).RESP: [503]");
}

TEST_F(SessionEnumerate, CimErrorIsAnEmptyListAndOneLine) {
  server_.OnEnumerate("CIM_Slot", CimError(5, "no such class"));

  EXPECT_EQ(Enumerate().size(), 0u);

  ExpectOnlyError("EnumerateInstances Exception: no such class");
}

TEST_F(SessionEnumerate, AClosedConnectionIsAnEmptyListAndOneLine) {
  server_.OnEnumerate("CIM_Slot", Close());

  EXPECT_EQ(Enumerate().size(), 0u);

  ExpectOnlyError("EnumerateInstances Exception: Connection closed by CIM Server.");
}

TEST_F(SessionEnumerate, WithoutAConnectionIsAnEmptyListAndOneLine) {
  session_.Disconnect();

  EXPECT_EQ(Enumerate().size(), 0u);

  ExpectOnlyError("EnumerateInstances Exception: not connected");
}

TEST_F(SessionEnumerate, AnAnswerThatIsNoXmlIsAnEmptyListAndOneLine) {
  server_.OnEnumerate("CIM_Slot", Body("<html><body>login</body></html>"));

  EXPECT_EQ(Enumerate().size(), 0u);

  ASSERT_EQ(log_.Records().size(), 1u);
  EXPECT_THAT(log_.Texts(1), ElementsAre(StartsWith("EnumerateInstances Exception: Validation error: on line 1")));
}

TEST_F(SessionEnumerate, AnInstanceWithTwoPropertiesOfOneNameSpoilsTheWholeAnswer) {
  server_.OnEnumerate("CIM_Slot", Objects({Slot("a", 1), Slot("b", 2).With("Number", CimUint16(3))}));

  EXPECT_EQ(Enumerate().size(), 0u);

  EXPECT_THAT(log_.Texts(1), ElementsAre(StartsWith("EnumerateInstances Exception: ")));
}

TEST_F(SessionEnumerate, ThePassingFormThrowsAndLogsNothing) {
  server_.OnEnumerate("CIM_Slot", CimError(5, "no such class"), HttpStatus(404, "Not Found"), Close());

  EXPECT_THROW(EnumerateOrThrow(), Pegasus::CIMException);
  EXPECT_THROW(EnumerateOrThrow(), Pegasus::CIMClientHTTPErrorException);
  EXPECT_THROW(EnumerateOrThrow(), Pegasus::CIMClientMalformedHTTPException);

  EXPECT_THAT(log_.Records(), IsEmpty());
}

class SessionEnumerateStatus : public SessionOperations {
 protected:
  // A list with one entry, to see whether a call leaves it alone.
  void SetUp() override {
    SessionOperations::SetUp();
    instances_.append(Pegasus::CIMInstance(CIMName("CIM_Before")));
  }
  int Enumerate() { return session_.EnumerateInstancesStatus("root/cimv2", "CIM_Slot", instances_); }
  void ExpectListAlone() const {
    ASSERT_EQ(instances_.size(), 1u);
    EXPECT_EQ(ToStdString(instances_[0].getClassName().getString()), "CIM_Before");
  }

  Instances instances_;
};

TEST_F(SessionEnumerateStatus, SuccessReplacesTheList) {
  server_.OnEnumerate("CIM_Slot", Objects({Slot("a", 1), Slot("b", 2)}));

  EXPECT_EQ(Enumerate(), 0);

  EXPECT_THAT(Texts(instances_, "Number"), ElementsAre("1", "2"));
  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionEnumerateStatus, SuccessWithNoInstanceEmptiesTheList) {
  EXPECT_EQ(Enumerate(), 0);

  EXPECT_EQ(instances_.size(), 0u);
}

TEST_F(SessionEnumerateStatus, SendsTheClassNameAlone) {
  EXPECT_EQ(session_.EnumerateInstancesStatus("/root/cimv2", "CIM_Slot", instances_), 0);

  ASSERT_EQ(server_.Requests().size(), 1u);
  EXPECT_EQ(server_.Requests()[0].nameSpace, "root/cimv2");
  EXPECT_EQ(server_.Requests()[0].objectClass, "CIM_Slot");
  EXPECT_THAT(Parameters(server_.Requests()[0]), ElementsAre("ClassName"));
}

TEST_F(SessionEnumerateStatus, Http503IsMinusEight) {
  server_.OnEnumerate("CIM_Slot", HttpStatus(503, "Service Unavailable"));

  EXPECT_EQ(Enumerate(), -8);

  ExpectListAlone();
  ExpectOnlyError("Client HTTP Exception: HTTP Error (503 Service Unavailable).RESP: [503]");
}

TEST_F(SessionEnumerateStatus, Http404IsMinusNine) {
  server_.OnEnumerate("CIM_Slot", HttpStatus(404, "Not Found"));

  EXPECT_EQ(Enumerate(), -9);

  ExpectListAlone();
  ExpectOnlyError("Client HTTP Exception: HTTP Error (404 Not Found).RESP: [404]");
}

struct OtherStatus {
  unsigned status;
  const char* reason;
};

class SessionEnumerateStatusOther : public SessionEnumerateStatus, public ::testing::WithParamInterface<OtherStatus> {};

TEST_P(SessionEnumerateStatusOther, IsSuccessAndLeavesTheListAlone) {
  const auto [status, reason] = GetParam();
  server_.OnEnumerate("CIM_Slot", HttpStatus(status, reason));

  EXPECT_EQ(Enumerate(), 0);

  ExpectListAlone();
  const std::string number = std::to_string(status);
  ExpectOnlyError("Client HTTP Exception: HTTP Error (" + number + " " + reason + ").RESP: [" + number + "]");
}

INSTANTIATE_TEST_SUITE_P(Http, SessionEnumerateStatusOther,
                         ::testing::Values(OtherStatus{400, "Bad Request"}, OtherStatus{401, "Unauthorized"},
                                           OtherStatus{403, "Forbidden"}, OtherStatus{500, "Internal Server Error"},
                                           OtherStatus{501, "Not Implemented"}),
                         [](const auto& status) { return std::to_string(status.param.status); });

TEST_F(SessionEnumerateStatus, CimErrorIsMinusSeven) {
  server_.OnEnumerate("CIM_Slot", CimError(5, "no such class"));

  EXPECT_EQ(Enumerate(), -7);

  ExpectListAlone();
  ExpectOnlyError("EnumerateInstances error. return code:5error message:no such class");
}

TEST_F(SessionEnumerateStatus, AClosedConnectionIsMinusSix) {
  server_.OnEnumerate("CIM_Slot", Close());

  EXPECT_EQ(Enumerate(), -6);

  ExpectListAlone();
  ExpectOnlyError("unknown error happened when enumerate Reboot Instance :Connection closed by CIM Server.");
}

TEST_F(SessionEnumerateStatus, ANameThatIsNotValidIsMinusSix) {
  EXPECT_EQ(session_.EnumerateInstancesStatus("root/cimv2", "not a class", instances_), -6);

  ExpectListAlone();
  EXPECT_THAT(server_.Requests(), IsEmpty());
  ExpectOnlyError("unknown error happened when enumerate Reboot Instance :The CIM name is not valid: not a class");
}

TEST(SessionCredentials, WrongOnesAreHttp401) {
  CimServer::Options options;
  options.tls = true;
  options.user = "USERID";
  options.password = "right";
  CimServer server(options);
  PegClientOpt session;
  Instances instances;
  ASSERT_EQ(session.Connect("127.0.0.1", server.Port(), "USERID", "wrong"), 0);
  const ScopedLog log;

  EXPECT_EQ(session.EnumerateInstancesStatus("root/cimv2", "CIM_Slot", instances), 0);

  EXPECT_EQ(instances.size(), 0u);
  EXPECT_THAT(log.Texts(1), ElementsAre("Client HTTP Exception: HTTP Error (401 Unauthorized).RESP: [401]"));
}

class SessionAssociators : public SessionOperations {
 protected:
  Pegasus::Array<Pegasus::CIMObject> Ask() {
    return session_.Associators(NameSpace(), path_, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"));
  }
  Pegasus::Array<Pegasus::CIMObject> AskOrThrow() {
    return session_.AssociatorsOrThrow(NameSpace(), path_, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"));
  }
  Pegasus::Array<CIMObjectPath> AskNames() {
    return session_.AssociatorNames(NameSpace(), path_, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"));
  }
  Pegasus::Array<CIMObjectPath> AskNamesOrThrow() {
    return session_.AssociatorNamesOrThrow(NameSpace(), path_, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"));
  }
  void Script(CimAnswer answer) {
    server_.OnAssociators("CIM_Package.Tag=\"p\"", "CIM_PackageInSlot", "CIM_Slot", answer);
    server_.OnAssociatorNames("CIM_Package.Tag=\"p\"", "CIM_PackageInSlot", "CIM_Slot", answer);
  }

  CIMObjectPath path_ = Path("CIM_Package.Tag=\"p\"");
};

TEST_F(SessionAssociators, GiveTheObjectsInTheServersOrder) {
  Script(Objects({Slot("b", 2), Slot("a", 1)}));

  const Instances slots = PegClientOpt::ObjectsToInstances(Ask());

  EXPECT_THAT(Texts(slots, "Number"), ElementsAre("2", "1"));
  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionAssociators, NamesGiveThePathsInTheServersOrder) {
  Script(Objects({Slot("b", 2), Slot("a", 1)}));

  const Pegasus::Array<CIMObjectPath> paths = AskNames();

  ASSERT_EQ(paths.size(), 2u);
  EXPECT_THAT(ToStdString(paths[0].toString()), HasSubstr("CIM_Slot.Tag=\"b\""));
  EXPECT_THAT(ToStdString(paths[1].toString()), HasSubstr("CIM_Slot.Tag=\"a\""));
  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionAssociators, SendObjectAndClassesOnly) {
  Ask();
  AskOrThrow();
  AskNames();
  AskNamesOrThrow();

  ASSERT_EQ(server_.Requests().size(), 4u);
  for (const CimRequest& request : server_.Requests()) {
    EXPECT_EQ(request.nameSpace, "root/cimv2");
    EXPECT_EQ(request.objectText, "CIM_Package.Tag=\"p\"");
    EXPECT_EQ(request.assocClass, "CIM_PackageInSlot");
    EXPECT_EQ(request.resultClass, "CIM_Slot");
    EXPECT_THAT(Parameters(request), ElementsAre("ObjectName", "AssocClass", "ResultClass"));
  }
  EXPECT_EQ(server_.Requests()[0].operation, "Associators");
  EXPECT_EQ(server_.Requests()[1].operation, "Associators");
  EXPECT_EQ(server_.Requests()[2].operation, "AssociatorNames");
  EXPECT_EQ(server_.Requests()[3].operation, "AssociatorNames");
}

TEST_F(SessionAssociators, CimErrorIsAnEmptyListAndOneLine) {
  Script(CimError(1, "failed for a reason"));

  EXPECT_EQ(Ask().size(), 0u);

  ExpectOnlyError("Pegasus Exception: failed for a reason");
}

TEST_F(SessionAssociators, HttpErrorIsAnEmptyListAndOneLine) {
  Script(HttpStatus(503, "Service Unavailable"));

  EXPECT_EQ(Ask().size(), 0u);

  ExpectOnlyError("Pegasus Exception: HTTP Error (503 Service Unavailable).");
}

TEST_F(SessionAssociators, NamesTurnACimErrorIntoAnEmptyListAndOneLine) {
  Script(CimError(1, "failed for a reason"));

  EXPECT_EQ(AskNames().size(), 0u);

  ExpectOnlyError("Pegasus Exception: failed for a reason");
}

TEST_F(SessionAssociators, NamesTurnAnHttpErrorIntoAnEmptyListAndOneLine) {
  Script(HttpStatus(503, "Service Unavailable"));

  EXPECT_EQ(AskNames().size(), 0u);

  ExpectOnlyError("Pegasus Exception: HTTP Error (503 Service Unavailable).");
}

TEST_F(SessionAssociators, ThePassingFormsThrowAndLogNothing) {
  Script(CimError(1, "failed for a reason"));

  EXPECT_THROW(AskOrThrow(), Pegasus::CIMException);
  EXPECT_THROW(AskNamesOrThrow(), Pegasus::CIMException);

  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionOperations, GetInstancesReadsEachPathInOrder) {
  server_.OnGetInstance("CIM_Slot.Tag=\"a\"", Objects({Slot("a", 1)}));
  server_.OnGetInstance("CIM_Slot.Tag=\"b\"", Objects({Slot("b", 2)}));
  Pegasus::Array<CIMObjectPath> paths;
  for (const char* text : {"CIM_Slot.Tag=\"b\"", "CIM_Slot.Tag=\"a\"", "CIM_Slot.Tag=\"b\""}) paths.append(Path(text));

  const Instances slots = session_.GetInstances(NameSpace(), paths);

  EXPECT_THAT(Texts(slots, "Number"), ElementsAre("2", "1", "2"));
  EXPECT_THAT(server_.Summaries(), ElementsAre("GetInstance CIM_Slot.Tag=\"b\"", "GetInstance CIM_Slot.Tag=\"a\"",
                                               "GetInstance CIM_Slot.Tag=\"b\""));
}

TEST_F(SessionOperations, GetInstancesAsksForInheritedPropertiesToo) {
  server_.OnGetInstance("", Objects({Slot("a", 1)}));

  session_.GetInstances(NameSpace(), Pegasus::Array<CIMObjectPath>(1, Path("CIM_Slot.Tag=\"a\"")));

  ASSERT_EQ(server_.Requests().size(), 1u);
  EXPECT_THAT(Parameters(server_.Requests()[0]), ElementsAre("InstanceName", "LocalOnly"));
  const std::string body = server_.Requests()[0].body;
  const std::size_t localOnly = body.find("NAME=\"LocalOnly\"");
  ASSERT_NE(localOnly, std::string::npos);
  EXPECT_THAT(body.substr(localOnly), HasSubstr("<VALUE>FALSE</VALUE>"));
}

TEST_F(SessionOperations, GetInstancesOfNoPathSendsNothing) {
  EXPECT_EQ(session_.GetInstances(NameSpace(), Pegasus::Array<CIMObjectPath>()).size(), 0u);

  EXPECT_THAT(server_.Requests(), IsEmpty());
}

TEST_F(SessionOperations, GetInstancesLetsExceptionsPass) {
  server_.OnGetInstance("", CimError(6, "not found"));

  EXPECT_THROW(session_.GetInstances(NameSpace(), Pegasus::Array<CIMObjectPath>(1, Path("CIM_Slot.Tag=\"a\""))),
               Pegasus::CIMException);

  EXPECT_THAT(log_.Records(), IsEmpty());
}

TEST_F(SessionOperations, InvokeMethodGivesReturnValueAndOutParameters) {
  server_.OnInvoke("InstallFromURI", MethodResult(CimTyped("uint32", "4096"), {{"Job", CimString("job 1")}}));
  Pegasus::Array<Pegasus::CIMParamValue> in;
  in.append(Pegasus::CIMParamValue("URI", Pegasus::CIMValue(Pegasus::String("http://10.0.0.1/p.bin"))));
  Pegasus::Array<Pegasus::CIMParamValue> out;

  const Pegasus::CIMValue value =
      session_.InvokeMethod(NameSpace(), Path("CIM_Service.Name=\"s\""), CIMName("InstallFromURI"), in, out);

  EXPECT_EQ(ToStdString(value.toString()), "4096");
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(ToStdString(out[0].getParameterName()), "Job");
  EXPECT_EQ(ToStdString(out[0].getValue().toString()), "job 1");
  ASSERT_EQ(server_.Requests().size(), 1u);
  const CimRequest request = server_.Requests()[0];
  EXPECT_EQ(request.method, "InstallFromURI");
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  EXPECT_EQ(request.objectText, "CIM_Service.Name=\"s\"");
  ASSERT_EQ(request.arguments.size(), 1u);
  EXPECT_EQ(request.arguments[0].name, "URI");
  EXPECT_THAT(request.arguments[0].values, ElementsAre("http://10.0.0.1/p.bin"));
  EXPECT_THAT(log_.Texts(3), ElementsAre("Invoke Cim Method"));
  EXPECT_EQ(log_.Records().size(), 1u);
}

class SessionInvokeFailure : public SessionOperations {
 protected:
  Pegasus::CIMValue Invoke() {
    return session_.InvokeMethod(NameSpace(), Path("CIM_Service.Name=\"s\""), CIMName("Reset"), {}, out_);
  }
  Pegasus::CIMValue InvokeOrThrow() {
    return session_.InvokeMethodOrThrow(NameSpace(), Path("CIM_Service.Name=\"s\""), CIMName("Reset"), {}, out_);
  }

  Pegasus::Array<Pegasus::CIMParamValue> out_;
};

TEST_F(SessionInvokeFailure, CimErrorIsANullValueAndOneLine) {
  server_.OnInvoke("Reset", CimError(2, "access denied"));

  EXPECT_TRUE(Invoke().isNull());

  EXPECT_THAT(log_.Texts(1), ElementsAre("Pegasus CIMException: access denied"));
  EXPECT_THAT(log_.Texts(3), ElementsAre("Invoke Cim Method"));
}

TEST_F(SessionInvokeFailure, AnyOtherExceptionIsANullValueAndOneLine) {
  server_.OnInvoke("Reset", HttpStatus(500, "Internal Server Error"), Close());

  EXPECT_TRUE(Invoke().isNull());
  EXPECT_TRUE(Invoke().isNull());

  EXPECT_THAT(log_.Texts(1), ElementsAre("Pegasus Exception: HTTP Error (500 Internal Server Error).",
                                         "Pegasus Exception: Connection closed by CIM Server."));
}

TEST_F(SessionInvokeFailure, ThePassingFormThrowsAndLogsNoError) {
  server_.OnInvoke("Reset", CimError(2, "access denied"));

  EXPECT_THROW(InvokeOrThrow(), Pegasus::CIMException);

  EXPECT_THAT(log_.Texts(1), IsEmpty());
  EXPECT_THAT(log_.Texts(3), ElementsAre("Invoke Cim Method"));
}

// The operations below work on instances and send nothing.

Pegasus::CIMValue Dedicated(Pegasus::Uint16 purpose) {
  return Pegasus::CIMValue(Pegasus::Array<Pegasus::Uint16>(1, purpose));
}

Pegasus::CIMInstance System(const char* name, const Pegasus::CIMValue& dedicated) {
  Pegasus::CIMInstance instance{CIMName("CIM_ComputerSystem")};
  instance.addProperty(Pegasus::CIMProperty(CIMName("Name"), Pegasus::CIMValue(Pegasus::String(name))));
  instance.addProperty(Pegasus::CIMProperty(CIMName("Dedicated"), dedicated));
  return instance;
}

TEST(SessionFilter, KeepsTheMatchesInOrder) {
  Instances systems;
  systems.append(System("c", Dedicated(29)));
  systems.append(System("a", Dedicated(12)));
  systems.append(System("b", Dedicated(29)));

  EXPECT_THAT(Texts(PegClientOpt::FilterInstancesByProperty(systems, CIMName("Dedicated"), Dedicated(29)), "Name"),
              ElementsAre("c", "b"));
}

TEST(SessionFilter, IgnoresTheCaseOfTheName) {
  const Instances systems(1, System("a", Dedicated(29)));

  EXPECT_EQ(PegClientOpt::FilterInstancesByProperty(systems, CIMName("dEDICATED"), Dedicated(29)).size(), 1u);
}

TEST(SessionFilter, TwoValuesInAnArrayDoNotMatchOne) {
  Pegasus::Array<Pegasus::Uint16> both(1, 29);
  both.append(12);
  const Instances systems(1, System("a", Pegasus::CIMValue(both)));

  EXPECT_EQ(PegClientOpt::FilterInstancesByProperty(systems, CIMName("Dedicated"), Dedicated(29)).size(), 0u);
}

TEST(SessionFilter, ComparesTextsAcrossTypes) {
  const Instances systems(1, System("a", Pegasus::CIMValue(Pegasus::Uint16(2))));

  EXPECT_EQ(
      PegClientOpt::FilterInstancesByProperty(systems, CIMName("Dedicated"), Pegasus::CIMValue(Pegasus::String("2")))
          .size(),
      1u);
}

TEST(SessionFilter, ComparesTextsExactly) {
  const Instances systems(1, System("Cmm", Dedicated(29)));

  for (const char* text : {"cmm", "Cmm ", "Cm", ""}) {
    EXPECT_EQ(
        PegClientOpt::FilterInstancesByProperty(systems, CIMName("Name"), Pegasus::CIMValue(Pegasus::String(text)))
            .size(),
        0u)
        << text;
  }
}

TEST(SessionFilter, SkipsInstancesWithoutTheProperty) {
  const Instances systems(1, Pegasus::CIMInstance(CIMName("CIM_ComputerSystem")));

  EXPECT_EQ(PegClientOpt::FilterInstancesByProperty(systems, CIMName("Dedicated"), Dedicated(29)).size(), 0u);
}

TEST(SessionFilter, LogsAnExceptionAndReturns) {
  const ScopedLog log;
  const Instances systems(1, Pegasus::CIMInstance());

  EXPECT_EQ(PegClientOpt::FilterInstancesByProperty(systems, CIMName("Dedicated"), Dedicated(29)).size(), 0u);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: uninitialized object"));
}

TEST(SessionFilter, ThePassingFormThrowsAndLogsNothing) {
  const ScopedLog log;
  const Instances systems(1, Pegasus::CIMInstance());

  EXPECT_THROW(PegClientOpt::FilterInstancesByPropertyOrThrow(systems, CIMName("Dedicated"), Dedicated(29)),
               Pegasus::UninitializedObjectException);

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(SessionGetPropertyValue, IsAlwaysAString) {
  const Pegasus::CIMInstance system = System("a", Dedicated(29));

  const Pegasus::CIMValue value = PegClientOpt::GetPropertyValue(system, CIMName("Dedicated"));

  EXPECT_EQ(value.getType(), Pegasus::CIMTYPE_STRING);
  EXPECT_FALSE(value.isArray());
  EXPECT_EQ(ToStdString(value.toString()), "29 ");
}

TEST(SessionGetPropertyValue, GivesABooleanAsItsCimText) {
  const Pegasus::CIMInstance system = System("a", Pegasus::CIMValue(true));

  EXPECT_EQ(ToStdString(PegClientOpt::GetPropertyValue(system, CIMName("DEDICATED")).toString()), "TRUE");
}

TEST(SessionGetPropertyValue, IsNullWithoutTheProperty) {
  const ScopedLog log;

  EXPECT_TRUE(PegClientOpt::GetPropertyValue(System("a", Dedicated(29)), CIMName("EnabledState")).isNull());

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(SessionGetPropertyValue, OfANullPropertyIsAnEmptyText) {
  const Pegasus::CIMInstance system = System("a", Pegasus::CIMValue(Pegasus::CIMTYPE_UINT16, true));

  const Pegasus::CIMValue value = PegClientOpt::GetPropertyValue(system, CIMName("Dedicated"));

  EXPECT_FALSE(value.isNull());
  EXPECT_EQ(ToStdString(value.toString()), "");
}

TEST(SessionGetPropertyValue, LogsAnExceptionAndIsNull) {
  const ScopedLog log;

  EXPECT_TRUE(PegClientOpt::GetPropertyValue(Pegasus::CIMInstance(), CIMName("Name")).isNull());

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: uninitialized object"));
}

TEST(SessionGetPropertyValue, ThePassingFormThrowsAndLogsNothing) {
  const ScopedLog log;

  EXPECT_THROW(PegClientOpt::GetPropertyValueOrThrow(Pegasus::CIMInstance(), CIMName("Name")),
               Pegasus::UninitializedObjectException);

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(SessionGetInstancePath, GivesThePath) {
  Pegasus::CIMInstance system = System("a", Dedicated(29));
  system.setPath(Path("CIM_ComputerSystem.Name=\"a\""));

  EXPECT_EQ(ToStdString(PegClientOpt::GetInstancePath(system).toString()), "CIM_ComputerSystem.Name=\"a\"");
}

TEST(SessionGetInstancePath, LogsAnExceptionAndIsEmpty) {
  const ScopedLog log;

  EXPECT_EQ(ToStdString(PegClientOpt::GetInstancePath(Pegasus::CIMInstance()).toString()), "");

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus Exception: uninitialized object"));
}

TEST(SessionObjectsToInstances, GivesOneInstancePerObjectInOrder) {
  Pegasus::Array<Pegasus::CIMObject> objects;
  objects.append(Pegasus::CIMObject(System("b", Dedicated(29))));
  objects.append(Pegasus::CIMObject(System("a", Dedicated(12))));

  EXPECT_THAT(Texts(PegClientOpt::ObjectsToInstances(objects), "Name"), ElementsAre("b", "a"));
}

TEST(SessionObjectsToInstances, ThrowsForAClass) {
  Pegasus::Array<Pegasus::CIMObject> objects;
  objects.append(Pegasus::CIMObject(Pegasus::CIMClass(CIMName("CIM_Slot"))));

  EXPECT_THROW(PegClientOpt::ObjectsToInstances(objects), Pegasus::DynamicCastFailedException);
}

TEST(Session, IsPolymorphicAndNotCopyable) {
  EXPECT_TRUE(std::has_virtual_destructor_v<PegClientOpt>);
  EXPECT_FALSE(std::is_copy_constructible_v<PegClientOpt>);
  EXPECT_FALSE(std::is_copy_assignable_v<PegClientOpt>);
}

}  // namespace
}  // namespace Orvane
