// The rules of CIM over HTTP and every CIM error, from the request as it comes to the reply as it goes, without a
// socket.
#include "server/http_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <stdexcept>
#include <string>

#include "orvane/simulator/simulator.h"
#include "server/operations.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;

constexpr const char* kNameSpace =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>";

std::string Name(const std::string& className, const std::string& key, const std::string& value) {
  return "<INSTANCENAME CLASSNAME=\"" + className + "\"><KEYBINDING NAME=\"CreationClassName\"><KEYVALUE>" + className +
         "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"" + key + "\"><KEYVALUE>" + value +
         "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

std::string Parameter(const std::string& name, const std::string& content) {
  return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>";
}

std::string ClassName(const std::string& name) { return "<CLASSNAME NAME=\"" + name + "\"/>"; }

std::string Frame(const std::string& call) {
  return "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
         "<SIMPLEREQ>" +
         call + "</SIMPLEREQ></MESSAGE></CIM>";
}

class CimOverHttp : public testing::Test {
 protected:
  HttpReply Send(HttpRequest request) {
    if (request.authorization.empty()) request.authorization = "Basic VTpw";  // U:p
    return AnswerHttp(request, authentication_, [this](const Request& call) {
      HttpReply reply;
      reply.body = operations_.Answer(call);
      return reply;
    });
  }

  static HttpRequest Http(std::string_view method, std::string_view object, std::string body) {
    return {"POST", "/cimom", "application/xml; charset=utf-8", "MethodCall", method, object, {}, std::move(body)};
  }

  std::string Call(const std::string& name, const std::string& parameters, const std::string& nameSpace = kNameSpace,
                   std::string_view object = "root%2Fcimv2") {
    return Send(Http(name, object,
                     Frame("<IMETHODCALL NAME=\"" + name + "\">" + nameSpace + parameters + "</IMETHODCALL>")))
        .body;
  }

  std::string Modify(const std::string& property, const std::string& cmm = "cmm01") {
    return Call("ModifyInstance",
                Parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + Name("VORTA_CMMComputerSystem", "Name", cmm) +
                                                  "<INSTANCE CLASSNAME=\"VORTA_CMMComputerSystem\">" + property +
                                                  "</INSTANCE></VALUE.NAMEDINSTANCE>"));
  }

  std::string Invoke(const std::string& method) {
    return Send(Http(method, "root/cimv2:VORTA_CMMComputerSystem",
                     Frame("<METHODCALL NAME=\"" + method + "\"><LOCALINSTANCEPATH>" + kNameSpace +
                           Name("VORTA_CMMComputerSystem", "Name", "cmm01") + "</LOCALINSTANCEPATH></METHODCALL>")))
        .body;
  }

  Authentication authentication_{true, "U", "p"};
  SharedStore store_{*BuiltInModel().Contents()};
  Operations operations_{store_, "cmm"};
};

TEST_F(CimOverHttp, ChallengesWithoutAndWithWrongCredentials) {
  for (const char* sent : {"Basic VTpx", "Basic !", "Digest x", "x"}) {
    HttpRequest request = Http("GetClass", "root/cimv2", "");
    request.authorization = sent;
    const HttpReply reply = Send(request);
    EXPECT_EQ(reply.status, 401) << sent;
    EXPECT_TRUE(reply.challenge) << sent;
  }
}

TEST_F(CimOverHttp, RefusesWhatIsNoCimRequest) {
  EXPECT_EQ(Send(Http("X", "root/cimv2", "<CIM")).cimError, "request-not-well-formed");
  EXPECT_EQ(Send(Http("X", "root/cimv2", "<X/>")).cimError, "request-not-valid");
  EXPECT_EQ(Send(Http("X", "root/cimv2", "<CIM CIMVERSION=\"3.0\" DTDVERSION=\"2.0\"/>")).cimError,
            "unsupported-cim-version");
  HttpRequest noOperation = Http("X", "root/cimv2", "");
  noOperation.cimOperation = "";
  EXPECT_EQ(Send(noOperation).cimError, "unsupported-operation");
  HttpRequest get = Http("X", "root/cimv2", "");
  get.method = "GET";
  EXPECT_EQ(Send(get).status, 405);
}

TEST_F(CimOverHttp, RefusesHeadersThatDisagreeWithTheBody) {
  const std::string body = Frame(std::string("<IMETHODCALL NAME=\"GetClass\">") + kNameSpace + "</IMETHODCALL>");
  EXPECT_EQ(Send(Http("GetInstance", "root/cimv2", body)).cimError, "header-mismatch");
  EXPECT_EQ(Send(Http("GetClass", "root/other", body)).cimError, "header-mismatch");
}

TEST_F(CimOverHttp, UnknownNamespaceIs3) {
  EXPECT_THAT(Call("EnumerateInstanceNames", Parameter("ClassName", ClassName("CIM_Chassis")),
                   "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>", "x"),
              HasSubstr("<ERROR CODE=\"3\""));
}

TEST_F(CimOverHttp, MissingOrUnknownParameterIs4) {
  EXPECT_THAT(Call("EnumerateInstances", ""), HasSubstr("<ERROR CODE=\"4\""));
  EXPECT_THAT(Call("EnumerateInstanceNames", Parameter("Odd", "")), HasSubstr("<ERROR CODE=\"4\""));
}

TEST_F(CimOverHttp, UnknownClassIs5) {
  EXPECT_THAT(Call("EnumerateInstances", Parameter("ClassName", ClassName("X"))), HasSubstr("<ERROR CODE=\"5\""));
}

TEST_F(CimOverHttp, AbsentInstanceIs6) {
  EXPECT_THAT(Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm09"))),
              HasSubstr("<ERROR CODE=\"6\""));
  EXPECT_THAT(Modify("", "cmm09"), HasSubstr("<ERROR CODE=\"6\""));
}

TEST_F(CimOverHttp, AClassInPlaceOfAnInstanceIs4WhereOnlyInstancesAreMeantAnd7WhereClassesAreNotSupported) {
  EXPECT_THAT(Call("GetInstance", Parameter("InstanceName", ClassName("CIM_Chassis"))), HasSubstr("<ERROR CODE=\"4\""));
  EXPECT_THAT(Call("Associators", Parameter("ObjectName", ClassName("CIM_Chassis"))), HasSubstr("<ERROR CODE=\"7\""));
}

TEST_F(CimOverHttp, AnInstanceOfAnotherClassThanItsPathIs4) {
  EXPECT_THAT(
      Call("ModifyInstance",
           Parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + Name("VORTA_CMMComputerSystem", "Name", "cmm01") +
                                             "<INSTANCE CLASSNAME=\"CIM_Chassis\"/></VALUE.NAMEDINSTANCE>")),
      HasSubstr("<ERROR CODE=\"4\""));
  EXPECT_THAT(
      Call("ModifyInstance",
           Parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + Name("VORTA_CMMComputerSystem", "Name", "cmm01") +
                                             "<INSTANCE CLASSNAME=\"vorta_cmmcomputersystem\"/>"
                                             "</VALUE.NAMEDINSTANCE>")),
      testing::Not(HasSubstr("ERROR")));
}

TEST_F(CimOverHttp, TakesEveryCharacterInEveryWayOfWritingIt) {
  EXPECT_THAT(Modify("<!-- & --><PROPERTY NAME=\"ElementName\" TYPE=\"string\"><VALUE>"
                     "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80&#233;&#x20ac;&#x1F600;&lt;&amp;&gt;&quot;&apos;&#1;"
                     "<![CDATA[&x;]]></VALUE></PROPERTY>"),
              testing::Not(HasSubstr("ERROR")));
  EXPECT_THAT(Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm01"))),
              HasSubstr("<VALUE>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"
                        "&lt;&amp;&gt;&quot;&apos;&#1;&amp;x;</VALUE>"));
}

TEST_F(CimOverHttp, ModifiesWhatThePropertyListNames) {
  const auto modify = [this](const std::string& names) {
    return Call("ModifyInstance", Parameter("ModifiedInstance",
                                            "<VALUE.NAMEDINSTANCE>" + Name("VORTA_CMMComputerSystem", "Name", "cmm01") +
                                                R"(<INSTANCE CLASSNAME="VORTA_CMMComputerSystem">)"
                                                R"(<PROPERTY NAME="Caption" TYPE="string"><VALUE>c</VALUE></PROPERTY>)"
                                                R"(<PROPERTY NAME="Odd" TYPE="string"><VALUE>o</VALUE></PROPERTY>)"
                                                R"(<PROPERTY NAME="Status" TYPE="string"><VALUE>s</VALUE></PROPERTY>)"
                                                "</INSTANCE></VALUE.NAMEDINSTANCE>") +
                                      Parameter("PropertyList", "<VALUE.ARRAY>" + names + "</VALUE.ARRAY>"));
  };
  const auto instance = [this] {
    return Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm01")));
  };
  EXPECT_THAT(modify(""), testing::Not(HasSubstr("ERROR")));
  EXPECT_THAT(instance(), testing::Not(HasSubstr("<VALUE>c</VALUE>")));
  EXPECT_THAT(modify("<VALUE>status</VALUE><VALUE>Status</VALUE>"), testing::Not(HasSubstr("ERROR")));
  EXPECT_THAT(instance(), testing::AllOf(HasSubstr("<VALUE>s</VALUE>"), testing::Not(HasSubstr("<VALUE>c</VALUE>"))));
  EXPECT_THAT(modify("<VALUE>Caption</VALUE><VALUE>Name</VALUE>"), HasSubstr("<ERROR CODE=\"4\""));
  EXPECT_THAT(modify("<VALUE>Caption</VALUE><VALUE>Odder</VALUE>"), HasSubstr("<ERROR CODE=\"12\""));
  EXPECT_THAT(instance(), testing::Not(HasSubstr("<VALUE>c</VALUE>")));
}

// Work that grows with the square of a request would keep all other clients waiting for minutes.
TEST_F(CimOverHttp, TenTimesTheListTakesNoMuchMoreThanTenTimesTheWork) {
  const auto cost = [this](std::size_t count) {
    std::string names;
    std::string properties;
    for (std::size_t i = 0; i < count; ++i) {
      names += "<VALUE>InstanceI" + std::to_string(i) + "</VALUE>";
      properties += "<PROPERTY NAME=\"P" + std::to_string(i) + "\" TYPE=\"string\"/>";
    }
    const std::clock_t start = std::clock();
    EXPECT_THAT(Call("EnumerateInstances", Parameter("ClassName", ClassName("CIM_ManagedElement")) +
                                               Parameter("PropertyList", "<VALUE.ARRAY>" + names + "</VALUE.ARRAY>")),
                HasSubstr("<INSTANCE CLASSNAME=\"VORTA_Chassis\">"));
    EXPECT_THAT(Modify(properties), HasSubstr("<ERROR CODE=\"12\""));
    return std::clock() - start;
  };
  const std::clock_t some = cost(3000);
  EXPECT_LT(cost(30000), 40 * some);
}

TEST_F(CimOverHttp, UnknownOperationIs7) { EXPECT_THAT(Call("ExecQuery", ""), HasSubstr("<ERROR CODE=\"7\"")); }

TEST_F(CimOverHttp, ModifiesAnInstance) {
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="EnabledState" TYPE="uint16"><VALUE>9</VALUE></PROPERTY>)"),
              testing::Not(HasSubstr("ERROR")));
  EXPECT_THAT(
      Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm01")) +
                              Parameter("PropertyList", "<VALUE.ARRAY><VALUE>EnabledState</VALUE></VALUE.ARRAY>")),
      HasSubstr("<VALUE>9</VALUE>"));
}

TEST_F(CimOverHttp, UnknownPropertyIs12AndWrongTypeIs13) {
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="Odd" TYPE="string"/>)"), HasSubstr("<ERROR CODE=\"12\""));
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="EnabledState" TYPE="string"><VALUE>2</VALUE></PROPERTY>)"),
              HasSubstr("<ERROR CODE=\"13\""));
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="EnabledState" TYPE="uint16"><VALUE>65536</VALUE></PROPERTY>)"),
              HasSubstr("<ERROR CODE=\"13\""));
}

TEST_F(CimOverHttp, ShallowEnumerationCutsInstancesToTheClass) {
  const std::string className = Parameter("ClassName", ClassName("CIM_ComputerSystem"));
  const std::string deep = Call("EnumerateInstances", className);
  const std::string shallow =
      Call("EnumerateInstances", className + Parameter("DeepInheritance", "<VALUE>FALSE</VALUE>"));

  EXPECT_THAT(deep, HasSubstr("NAME=\"EHCMState\""));
  EXPECT_THAT(shallow, testing::Not(HasSubstr("NAME=\"EHCMState\"")));
  // Instances of subclasses are there nonetheless, under their own class.
  EXPECT_THAT(shallow, HasSubstr("<INSTANCE CLASSNAME=\"VORTA_IOModuleComputerSystem\""));
  EXPECT_THAT(shallow, HasSubstr("NAME=\"Dedicated\""));
}

TEST_F(CimOverHttp, DeepInheritanceMustBeABoolean) {
  EXPECT_THAT(Call("EnumerateInstances", Parameter("ClassName", ClassName("CIM_Chassis")) +
                                             Parameter("DeepInheritance", "<VALUE>maybe</VALUE>")),
              HasSubstr("<ERROR CODE=\"4\""));
}

TEST_F(CimOverHttp, ModifyingAKeyIs4AndChangesNothing) {
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="EnabledState" TYPE="uint16"><VALUE>9</VALUE></PROPERTY>)"
                     R"(<PROPERTY NAME="Name" TYPE="string"><VALUE>cmm07</VALUE></PROPERTY>)"),
              HasSubstr("<ERROR CODE=\"4\""));
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="Name" TYPE="string"/>)"), HasSubstr("<ERROR CODE=\"4\""));
  const std::string instance =
      Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm01")) +
                              Parameter("PropertyList", "<VALUE.ARRAY><VALUE>EnabledState</VALUE></VALUE.ARRAY>"));
  EXPECT_THAT(instance, HasSubstr("<VALUE>2</VALUE>"));
  EXPECT_THAT(Call("GetInstance", Parameter("InstanceName", Name("VORTA_CMMComputerSystem", "Name", "cmm07"))),
              HasSubstr("<ERROR CODE=\"6\""));
}

TEST_F(CimOverHttp, AKeySentAsItIsMayStandBesideAChange) {
  EXPECT_THAT(Modify(R"(<PROPERTY NAME="Name" TYPE="string"><VALUE>cmm01</VALUE></PROPERTY>)"
                     R"(<PROPERTY NAME="ElementName" TYPE="string"><VALUE>x</VALUE></PROPERTY>)"),
              testing::Not(HasSubstr("ERROR")));
}

TEST_F(CimOverHttp, AMethodThatFailsUnexpectedlyIs1) {
  operations_.AddMethod("CIM_EnabledLogicalElement", "RequestStateChange",
                        [](ObjectStore&, const ObjectPath&, const std::vector<MethodParameter>&) -> MethodResult {
                          throw std::runtime_error("broken");
                        });
  EXPECT_THAT(Invoke("RequestStateChange"), HasSubstr("<ERROR CODE=\"1\" DESCRIPTION=\"broken\""));
}

TEST_F(CimOverHttp, ReferencesNestedTooDeepAre4) {
  std::string path = Name("VORTA_CMMComputerSystem", "Name", "cmm01");
  for (int i = 0; i < 12; ++i) {
    std::string keys;
    for (const char* key : {"Antecedent", "Dependent"}) {
      keys += std::string("<KEYBINDING NAME=\"") + key + "\"><VALUE.REFERENCE>" +
              (keys.empty() ? path : Name("VORTA_CMMComputerSystem", "Name", "cmm01")) +
              "</VALUE.REFERENCE></KEYBINDING>";
    }
    path = "<INSTANCENAME CLASSNAME=\"CIM_IsSpare\">" + keys + "</INSTANCENAME>";
  }
  EXPECT_THAT(Call("GetInstance", Parameter("InstanceName", path)), HasSubstr("<ERROR CODE=\"4\""));
}

TEST_F(CimOverHttp, UndeclaredMethodIs17AndUnavailableMethodIs16) {
  EXPECT_THAT(Invoke("Odd"), HasSubstr("<ERROR CODE=\"17\""));
  EXPECT_THAT(Invoke("RequestStateChange"), HasSubstr("<ERROR CODE=\"16\""));
}

TEST_F(CimOverHttp, InvokesAMethodOfASuperclass) {
  operations_.AddMethod("CIM_EnabledLogicalElement", "RequestStateChange",
                        [](ObjectStore&, const ObjectPath&, const std::vector<MethodParameter>&) {
                          return MethodResult{4096, {}};
                        });
  EXPECT_THAT(Invoke("RequestStateChange"), HasSubstr("<VALUE>4096</VALUE>"));
  EXPECT_EQ(operations_.Count("InvokeMethod"), 1U);
}

TEST_F(CimOverHttp, FiltersAssociatorsByRole) {
  const std::string source = Parameter("ObjectName", Name("VORTA_CMMComputerSystem", "Name", "cmm02")) +
                             Parameter("AssocClass", ClassName("CIM_IsSpare"));
  EXPECT_THAT(Call("AssociatorNames", source + Parameter("Role", "<VALUE>antecedent</VALUE>")),
              HasSubstr("CIM_RedundancySet"));
  EXPECT_THAT(Call("AssociatorNames", source + Parameter("Role", "<VALUE>Dependent</VALUE>")),
              testing::Not(HasSubstr("CIM_RedundancySet")));
  EXPECT_THAT(Call("AssociatorNames", source + Parameter("ResultClass", ClassName("X"))),
              HasSubstr("<ERROR CODE=\"4\""));
}

}  // namespace
}  // namespace Orvane::simulator
