// Every recorded request is built again through the request builders and compared byte for byte.
#include "wire/request.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Pegasus/Common/Exception.h"
#include "vector_file.h"
#include "wire/recorded.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

using test::BodyOf;
using test::CaseName;
using test::HeaderOf;
using test::LoadVectors;
using test::ReadRecorded;
using test::Vector;

using Builder = std::function<Request(std::uint32_t messageId)>;

const char* const kSystem = R"(VORTA_ComputerSystem.CreationClassName="VORTA_ComputerSystem",Name="node03")";
const char* const kSystemElsewhere =
    R"(//otherhost:1234/root/other:VORTA_ComputerSystem.CreationClassName="VORTA_ComputerSystem",Name="node03")";
const char* const kInstallation =
    R"(CIM_SoftwareInstallationService.CreationClassName="CIM_SoftwareInstallationService",Name="swi",)"
    R"(SystemCreationClassName="VORTA_CMM",SystemName="cmm01")";
const char* const kInstallationElsewhere =
    R"(//h/root/x:CIM_SoftwareInstallationService.CreationClassName="CIM_SoftwareInstallationService",Name="swi",)"
    R"(SystemCreationClassName="VORTA_CMM",SystemName="cmm01")";
const char* const kNameSpace = "root/cimv2";

CIMPropertyList List(const std::vector<const char*>& names) {
  Array<CIMName> items;
  for (const char* name : names) items.append(CIMName(name));
  return CIMPropertyList(items);
}

template <typename T>
Array<T> ArrayOf(const std::vector<T>& items) {
  Array<T> result;
  for (const T& item : items) result.append(item);
  return result;
}

CIMInstance Embedded(const char* className, const char* property, const char* text) {
  CIMInstance instance{CIMName(className)};
  instance.addProperty(CIMProperty(CIMName(property), CIMValue(String(text))));
  return instance;
}

/// An instance of the class of `path` with that path.
CIMInstance At(const char* path) {
  const CIMObjectPath objectPath{String(path)};
  CIMInstance instance(objectPath.getClassName());
  instance.setPath(objectPath);
  return instance;
}

void Add(CIMInstance& instance, const char* name, const CIMValue& value) {
  instance.addProperty(CIMProperty(CIMName(name), value));
}

CIMValue Text(const char* text) { return CIMValue(String(text)); }
CIMValue Reference(const char* path) { return CIMValue(CIMObjectPath(String(path))); }

struct Parameter {
  const char* name;
  CIMValue value;
  bool isTyped = true;
};

Builder Method(const char* path, const char* method, const std::vector<Parameter>& parameters) {
  return [=](std::uint32_t id) {
    Array<CIMParamValue> in;
    for (const Parameter& parameter : parameters) {
      in.append(CIMParamValue(String(parameter.name), parameter.value, parameter.isTyped));
    }
    return BuildInvokeMethod(id, CIMNamespaceName(kNameSpace), CIMObjectPath(String(path)), CIMName(method), in);
  };
}

Builder Instances(const char* nameSpace, const CIMName& className) {
  return [=](std::uint32_t id) {
    return BuildEnumerateInstances(id, CIMNamespaceName(nameSpace), className, true, true, false, false,
                                   CIMPropertyList());
  };
}

Builder Instances(const char* className) { return Instances(kNameSpace, CIMName(className)); }

Builder GetInstance(const CIMObjectPath& path, bool localOnly = false) {
  return [=](std::uint32_t id) {
    return BuildGetInstance(id, CIMNamespaceName(kNameSpace), path, localOnly, false, false, CIMPropertyList());
  };
}

Builder GetInstance(const char* path, bool localOnly = false) {
  return GetInstance(CIMObjectPath(String(path)), localOnly);
}

Builder Associators(const char* path, const CIMName& assocClass, const CIMName& resultClass) {
  return [=](std::uint32_t id) {
    return BuildAssociators(id, CIMNamespaceName(kNameSpace), CIMObjectPath(String(path)), assocClass, resultClass,
                            String(), String(), false, false, CIMPropertyList());
  };
}

Builder AssociatorNames(const char* path, const CIMName& assocClass, const CIMName& resultClass, const char* role = "",
                        const char* resultRole = "") {
  return [=](std::uint32_t id) {
    return BuildAssociatorNames(id, CIMNamespaceName(kNameSpace), CIMObjectPath(String(path)), assocClass, resultClass,
                                String(role), String(resultRole));
  };
}

Builder Modify(const std::function<CIMInstance()>& make, bool includeQualifiers = true,
               const CIMPropertyList& list = CIMPropertyList()) {
  return [=](std::uint32_t id) {
    return BuildModifyInstance(id, CIMNamespaceName(kNameSpace), make(), includeQualifiers, list);
  };
}

CIMInstance AllTypes() {
  CIMInstance instance = At(R"(CIM_K.Id="x")");
  Add(instance, "Bo", CIMValue(true));
  Add(instance, "U8", CIMValue(Uint8(255)));
  Add(instance, "S8", CIMValue(Sint8(-1)));
  Add(instance, "U16", CIMValue(Uint16(65535)));
  Add(instance, "S16", CIMValue(Sint16(-2)));
  Add(instance, "U32", CIMValue(Uint32(7)));
  Add(instance, "S32", CIMValue(Sint32(-7)));
  Add(instance, "U64", CIMValue(Uint64(18446744073709551615ULL)));
  Add(instance, "S64", CIMValue(Sint64(-9)));
  Add(instance, "R32", CIMValue(Real32(0.1F)));
  Add(instance, "R64", CIMValue(Real64(0.1)));
  Add(instance, "C16", CIMValue(Char16('<')));
  Add(instance, "Str", Text("a<b>&\"c\"'d' \xC3\xA9\tt\nn"));
  Add(instance, "Dt", CIMValue(CIMDateTime(120, true)));
  Add(instance, "Ref", Reference(R"(//h2/root/x:CIM_R.K="v",N=2)"));
  Add(instance, "Ref2", Reference(R"(CIM_R.K="v")"));
  Add(instance, "Ref3", Reference(R"(root/y:CIM_R.K="v")"));
  Add(instance, "Emb", CIMValue(Embedded("CIM_E", "A", "x<")));
  Add(instance, "EmbO", CIMValue(CIMObject(Embedded("CIM_E", "A", "x"))));
  Add(instance, "NullS", CIMValue(CIMTYPE_STRING, false));
  Add(instance, "NullA", CIMValue(CIMTYPE_UINT32, true));
  Add(instance, "NullR", CIMValue(CIMTYPE_REFERENCE, false));
  return instance;
}

CIMInstance Arrays() {
  CIMInstance instance = At(R"(CIM_K.Id="x")");
  Add(instance, "Bo", CIMValue(ArrayOf<Boolean>({true, false})));
  Add(instance, "St", CIMValue(ArrayOf<String>({"", "b", "c d"})));
  Add(instance, "Em", CIMValue(Array<String>()));
  Add(instance, "R", CIMValue(ArrayOf<Real64>({1, 2.5})));
  Add(instance, "C", CIMValue(ArrayOf<Char16>({Char16('A'), Char16('B')})));
  Add(instance, "D", CIMValue(ArrayOf<CIMDateTime>({CIMDateTime(120, true)})));
  Add(instance, "I", CIMValue(ArrayOf<CIMInstance>({Embedded("CIM_E", "A", "x"), Embedded("CIM_F", "B", "y")})));
  return instance;
}

CIMInstance SoftwareStatus() {
  CIMInstance instance = At(R"(VORTA_IOMElementFirmwareIdentity.Antecedent="VORTA_SW.InstanceID=\"iom01\"",)"
                            R"(Dependent="VORTA_IOM.Tag=\"1\"")");
  Add(instance, "ElementSoftwareStatus", CIMValue(ArrayOf<Uint16>({3})));
  return instance;
}

/// The one instance in a response that holds `content`.
CIMInstance Decoded(const std::string& content) {
  return ReadEnumerateInstances(
      R"(<?xml version="1.0" encoding="utf-8" ?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
      R"(<MESSAGE ID="1000" PROTOCOLVERSION="1.0"><SIMPLERSP><IMETHODRESPONSE NAME="EnumerateInstances">)"
      R"(<IRETURNVALUE><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="CIM_F">)"
      R"(<KEYBINDING NAME="Z"><KEYVALUE VALUETYPE="numeric">5</KEYVALUE></KEYBINDING>)"
      R"(<KEYBINDING NAME="A"><KEYVALUE VALUETYPE="string">x</KEYVALUE></KEYBINDING>)"
      R"(</INSTANCENAME><INSTANCE CLASSNAME="CIM_F">)" +
          content + "</INSTANCE></VALUE.NAMEDINSTANCE></IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>",
      1000)[0];
}

CIMInstance RoundTrip() {
  CIMInstance instance = Decoded(
      R"(<PROPERTY.REFERENCE NAME="Antecedent" REFERENCECLASS="CIM_X"><VALUE.REFERENCE>)"
      R"(<INSTANCENAME CLASSNAME="CIM_X"><KEYBINDING NAME="K"><KEYVALUE>v</KEYVALUE></KEYBINDING></INSTANCENAME>)"
      R"(</VALUE.REFERENCE></PROPERTY.REFERENCE><PROPERTY NAME="S" TYPE="string"/>)"
      R"(<PROPERTY.ARRAY NAME="ElementSoftwareStatus" TYPE="uint16"><VALUE.ARRAY><VALUE>6</VALUE></VALUE.ARRAY>)"
      R"(</PROPERTY.ARRAY>)");
  instance.getProperty(instance.findProperty(CIMName("ElementSoftwareStatus")))
      .setValue(CIMValue(ArrayOf<Uint16>({3})));
  return instance;
}

CIMInstance RoundTripAttributes() {
  return Decoded(R"(<QUALIFIER NAME="Version" TYPE="string"><VALUE>1.0</VALUE></QUALIFIER>)"
                 R"(<PROPERTY NAME="P" TYPE="string" CLASSORIGIN="CIM_Base" PROPAGATED="true">)"
                 R"(<QUALIFIER NAME="Key" TYPE="boolean" OVERRIDABLE="false"><VALUE>TRUE</VALUE></QUALIFIER>)"
                 R"(<VALUE>v</VALUE></PROPERTY>)"
                 R"(<PROPERTY.ARRAY NAME="F" TYPE="uint16" ARRAYSIZE="2" CLASSORIGIN="CIM_Base">)"
                 R"(<VALUE.ARRAY><VALUE>6</VALUE><VALUE>4</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>)"
                 R"(<PROPERTY.REFERENCE NAME="R" REFERENCECLASS="CIM_X" CLASSORIGIN="CIM_Base" PROPAGATED="true"/>)");
}

/// How each recorded request is built, by file name.
const std::map<std::string, Builder>& Builders() {
  static const std::map<std::string, Builder> kBuilders = {
      {"enumerateInstances-session.http", Instances("CIM_SoftwareInstallationService")},
      {"auth-1-unauthenticated.http", Instances("CIM_Foo")},
      {"auth-2-basic.http", Instances("CIM_Foo")},
      {"cookie-2.http", Instances("CIM_Foo")},
      {"host-ipv6.http", Instances("CIM_Foo")},
      {"enumerateInstances-slash-namespace.http", Instances("/root/cimv2", CIMName("VORTA_FirmwareInstallationJob"))},
      {"enumerateInstances-nonascii.http", Instances("CIM_F\xC3\xB4o")},
      {"enumerateInstances-nullclass.http", Instances(kNameSpace, CIMName())},
      {"enumerateInstances-opposite.http",
       [](std::uint32_t id) {
         return BuildEnumerateInstances(id, CIMNamespaceName(kNameSpace), CIMName("CIM_ConcreteJob"), false, false,
                                        true, true, List({"InstanceID", "JobState"}));
       }},
      {"enumerateInstances-emptylist.http",
       [](std::uint32_t id) {
         return BuildEnumerateInstances(id, CIMNamespaceName(kNameSpace), CIMName("CIM_ConcreteJob"), true, false,
                                        false, false, List({}));
       }},
      {"enumerateInstanceNames.http",
       [](std::uint32_t id) {
         return BuildEnumerateInstanceNames(id, CIMNamespaceName(kNameSpace), CIMName("CIM_Slot"));
       }},
      {"getInstance-session.http", GetInstance(kSystem)},
      {"getInstance-defaults.http", GetInstance(kSystem, true)},
      {"getInstance-hostpath.http", GetInstance(kSystemElsewhere)},
      {"getInstance-keytypes.http", GetInstance(R"(CIM_K.S="a<b>&\"q\" 'x'",N=5,H=0x1F,B=TRUE)")},
      {"getInstance-refkey.http",
       GetInstance(R"(CIM_A.Antecedent="root/cimv2:CIM_P.Tag=\"t\"",Dependent="CIM_Q.N=1")")},
      {"getInstance-refkey-host.http", GetInstance(R"(CIM_A.Antecedent="//h:5988/root/cimv2:CIM_P.Tag=\"t\"")")},
      {"getInstance-nokeys.http", GetInstance("CIM_OnlyClass")},
      {"getInstance-ctrl-key.http", GetInstance("CIM_K.S=\" a\tb\nc \"")},
      {"associators-session.http", Associators(kSystem, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"))},
      {"associators-noclasses.http", Associators(kSystem, CIMName(), CIMName())},
      {"associators-class.http", Associators("CIM_System", CIMName(), CIMName())},
      {"associators-all.http",
       [](std::uint32_t id) {
         return BuildAssociators(id, CIMNamespaceName(kNameSpace), CIMObjectPath(String(kSystem)), CIMName("CIM_A"),
                                 CIMName("CIM_R"), String("Antecedent"), String("Dependent"), true, true,
                                 List({"Name"}));
       }},
      {"associatorNames-session.http", AssociatorNames(kSystem, CIMName("CIM_PackageInSlot"), CIMName("CIM_Slot"))},
      {"associatorNames-roles.http",
       AssociatorNames(kSystem, CIMName("CIM_A"), CIMName("CIM_R"), "Antecedent", "Dependent")},
      {"associatorNames-hostpath.http", AssociatorNames(kSystemElsewhere, CIMName("CIM_A"), CIMName())},
      {"getClass-defaults.http",
       [](std::uint32_t id) {
         return BuildGetClass(id, CIMNamespaceName(kNameSpace), CIMName("CIM_Chassis"), true, true, false,
                              CIMPropertyList());
       }},
      {"getClass-flags.http",
       [](std::uint32_t id) {
         return BuildGetClass(id, CIMNamespaceName(kNameSpace), CIMName("CIM_Chassis"), false, false, true,
                              List({"A"}));
       }},
      {"modifyInstance-uint16array.http", Modify(SoftwareStatus)},
      {"modifyInstance-alltypes.http", Modify(AllTypes, false, List({"A", "B"}))},
      {"modifyInstance-arrays.http", Modify(Arrays)},
      {"modifyInstance-roundtrip.http", Modify(RoundTrip)},
      {"modifyInstance-roundtrip-attrs.http", Modify(RoundTripAttributes)},
      {"invokeMethod-InstallFromURI.http",
       Method(kInstallation, "InstallFromURI",
              {{"URI", Text("http://10.0.0.1/p.bin?a=1&b=2")},
               {"Target", Reference(R"(VORTA_CMM.CreationClassName="VORTA_CMM",Name="cmm01")")},
               {"InstallOptions", CIMValue(ArrayOf<Uint16>({5}))},
               {"InstallOptionsValues", CIMValue(ArrayOf<String>({""}))}})},
      {"invokeMethod-target-localpath.http",
       Method(kInstallation, "InstallFromURI", {{"Target", Reference(R"(root/cimv2:VORTA_CMM.Name="cmm01")")}})},
      {"invokeMethod-target-fullpath.http",
       Method(kInstallationElsewhere, "InstallFromURI",
              {{"Target", Reference(R"(//cmm/root/cimv2:VORTA_CMM.Name="cmm01")")}})},
      {"invokeMethod-RequestStateChange.http",
       Method(kSystem, "RequestStateChange", {{"RequestedState", CIMValue(Uint16(11))}})},
      {"invokeMethod-untyped.http",
       Method(kSystem, "RequestStateChange", {{"RequestedState", CIMValue(Uint16(11)), false}})},
      {"invokeMethod-RequestPowerStateChange.http",
       Method(R"(CIM_PowerManagementService.Name="pms")", "RequestPowerStateChange",
              {{"PowerState", CIMValue(Uint16(32769))},
               {"ManagedElement", Reference(kSystem)},
               {"TimeoutPeriod", CIMValue(CIMDateTime(120, true))}})},
      {"invokeMethod-noparams.http", Method(kSystem, "Reset", {})},
      {"invokeMethod-classpath.http", Method("CIM_Service", "StaticM", {{"A", Text("x")}})},
      {"invokeMethod-nonascii.http",
       Method("CIM_K.S=\"\xC3\xA9\"", "M", {{"A", Text("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 <&>\"' \t\n\x01")}})},
      {"invokeMethod-cimobject-escapes.http", Method(R"(CIM_K.S="a b/c?d&e=f%g+h~i!j*k(l)m'n;o@p$q,r[s]t")", "M", {})},
      {"invokeMethod-whitespace.http", Method(R"(CIM_K.S="x")", "M",
                                              {{"A", Text("  two  three   end  ")},
                                               {"B", Text(" ")},
                                               {"C", Text("a\r\n b")},
                                               {"D", Text("\x7F\xC2\x85\xE2\x80\xA8\xEF\xBF\xBE")}})},
      {"invokeMethod-alltypes.http", Method(R"(CIM_K.Id="x")", "M",
                                            {{"Bo", CIMValue(false)},
                                             {"U8", CIMValue(Uint8(1))},
                                             {"S8", CIMValue(Sint8(-1))},
                                             {"U16", CIMValue(Uint16(1))},
                                             {"S16", CIMValue(Sint16(-1))},
                                             {"U32", CIMValue(Uint32(1))},
                                             {"S32", CIMValue(Sint32(-1))},
                                             {"U64", CIMValue(Uint64(1))},
                                             {"S64", CIMValue(Sint64(-1))},
                                             {"R32", CIMValue(Real32(1.5))},
                                             {"R64", CIMValue(Real64(1.5))},
                                             {"C16", CIMValue(Char16('A'))},
                                             {"Str", Text("s")},
                                             {"Dt", CIMValue(CIMDateTime("20260131235959.123456+060"))},
                                             {"Ref", Reference(R"(CIM_R.K="v")")},
                                             {"Obj", CIMValue(CIMObject(Embedded("CIM_E", "A", "x")))},
                                             {"Ins", CIMValue(Embedded("CIM_E", "A", "x"))}})},
      {"invokeMethod-arrays.http",
       Method(R"(CIM_K.Id="x")", "M",
              {{"Bo", CIMValue(ArrayOf<Boolean>({true, false}))},
               {"U16", CIMValue(Array<Uint16>())},
               {"Str", CIMValue(Array<String>())},
               {"St2", CIMValue(ArrayOf<String>({"a", ""}))},
               {"Ref", CIMValue(ArrayOf<CIMObjectPath>(
                           {CIMObjectPath(R"(CIM_R.K="v")"), CIMObjectPath(R"(root/cimv2:CIM_R.K="w")")}))},
               {"Ins", CIMValue(ArrayOf<CIMInstance>({Embedded("CIM_E", "A", "x"), Embedded("CIM_E", "A", "y")}))},
               {"Dt", CIMValue(ArrayOf<CIMDateTime>({CIMDateTime(120, true)}))}})},
      {"invokeMethod-nulls.http", Method(R"(CIM_K.Id="x")", "M",
                                         {{"S", CIMValue(CIMTYPE_UINT32, false)},
                                          {"A", CIMValue(CIMTYPE_UINT16, true)},
                                          {"U", CIMValue(CIMTYPE_STRING, false), false},
                                          {"R", CIMValue(CIMTYPE_REFERENCE, false)},
                                          {"RA", CIMValue(CIMTYPE_REFERENCE, true)}})},
  };
  return kBuilders;
}

std::uint32_t MessageIdOf(const std::string& body) {
  const std::string start = "<MESSAGE ID=\"";
  return static_cast<std::uint32_t>(std::stoul(body.substr(body.find(start) + start.size())));
}

class RecordedRequest : public testing::TestWithParam<Vector> {};

TEST_P(RecordedRequest, IsBuiltByteForByte) {
  const nlohmann::json& record = GetParam().record;
  if (record["file"].is_null()) {
    try {
      BuildEnumerateInstances(1000, CIMNamespaceName(), CIMName("CIM_Foo"), true, true, false, false,
                              CIMPropertyList());
      FAIL() << "no exception";
    } catch (const InvalidNamespaceNameException& error) {
      EXPECT_EQ(error.getMessage(), String(record["throws"]["message"].get<std::string>().c_str()));
    }
    return;
  }
  const std::string file = record["file"];
  const std::string message = ReadRecorded("requests/" + file);
  const std::string body = BodyOf(message);
  ASSERT_EQ(Builders().count(file), 1U) << file << " is built by nothing";
  const std::uint32_t id = MessageIdOf(body);
  const Request request = Builders().at(file)(id);
  EXPECT_EQ(request.body, body);
  EXPECT_EQ(EncodeUri(request.method), HeaderOf(message, "CIMMethod"));
  EXPECT_EQ(EncodeUri(request.object), HeaderOf(message, "CIMObject"));
  EXPECT_EQ(request.messageId, id);
}

std::string RequestName(const testing::TestParamInfo<Vector>& request) {
  const nlohmann::json& record = request.param.record;
  return CaseName(record["file"].is_null() ? record["name"] : record["file"]);
}

INSTANTIATE_TEST_SUITE_P(Wire, RecordedRequest, testing::ValuesIn(LoadVectors("requests/index.json")), RequestName);

TEST(Request, EveryBuilderOfTheTableHasARecording) {
  std::size_t files = 0;
  for (const Vector& vector : LoadVectors("requests/index.json")) files += vector.record["file"].is_null() ? 0U : 1U;
  EXPECT_EQ(Builders().size(), files);
}

TEST(Request, InvokeMethodNeedsANameSpace) {
  EXPECT_THROW(BuildInvokeMethod(1, CIMNamespaceName(), CIMObjectPath("CIM_Foo"), CIMName("M"), {}),
               InvalidNamespaceNameException);
}

}  // namespace
}  // namespace Pegasus::wire
