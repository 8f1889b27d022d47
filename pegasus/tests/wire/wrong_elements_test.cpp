// Answers that have another element where one is due: each is refused, and the message says what was expected.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/CIMInstance.h"
#include "Pegasus/Common/CIMObject.h"
#include "Pegasus/Common/CIMParamValue.h"
#include "thrown.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

using test::Catch;
using test::Thrown;
using test::Utf8;

constexpr std::uint32_t kMessageId = 1000;

std::string Message(const std::string& content) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
         "<SIMPLERSP>" +
         content + "</SIMPLERSP></MESSAGE></CIM>";
}

std::string Intrinsic(const std::string& operation, const std::string& content) {
  return Message("<IMETHODRESPONSE NAME=\"" + operation + "\">" + content + "</IMETHODRESPONSE>");
}

std::string Returned(const std::string& operation, const std::string& content) {
  return Intrinsic(operation, "<IRETURNVALUE>" + content + "</IRETURNVALUE>");
}

/// A name with one key, whose value stands in `content`.
std::string WithKey(const std::string& content) {
  return Returned("EnumerateInstanceNames", R"(<INSTANCENAME CLASSNAME="CIM_Foo"><KEYBINDING NAME="K">)" + content +
                                                "</KEYBINDING></INSTANCENAME>");
}

std::string Extrinsic(const std::string& content) {
  return Message(R"(<METHODRESPONSE NAME="Start">)" + content + "</METHODRESPONSE>");
}

Array<CIMParamValue> Invoke(const std::string& body, CIMValue* result = nullptr) {
  Array<CIMParamValue> out;
  const CIMValue value = ReadInvokeMethod(std::string(body), kMessageId, out);
  if (result != nullptr) *result = value;
  return out;
}

struct Row {
  std::string body;
  std::function<void(const std::string&)> read;
  const char* expected;  ///< part of the message
};

TEST(WrongElements, AreRefused) {
  const auto names = [](const std::string& body) { ReadEnumerateInstanceNames(std::string(body), kMessageId); };
  const auto paths = [](const std::string& body) { ReadAssociatorNames(std::string(body), kMessageId); };
  const auto objects = [](const std::string& body) { ReadAssociators(std::string(body), kMessageId); };
  const auto instance = [](const std::string& body) { ReadGetInstance(std::string(body), kMessageId); };
  const auto cimClass = [](const std::string& body) { ReadGetClass(std::string(body), kMessageId); };
  const auto modify = [](const std::string& body) { ReadModifyInstance(std::string(body), kMessageId); };
  const auto invoke = [](const std::string& body) { Invoke(body); };
  const std::string host = R"(<NAMESPACEPATH><HOST>cmm</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>)"
                           "</LOCALNAMESPACEPATH></NAMESPACEPATH>";
  const Row rows[] = {
      {Returned("EnumerateInstanceNames", R"(<CLASSNAME NAME="CIM_Foo"/>)"), names, "CLASSNAME"},
      {WithKey(""), names, "Expected KEYVALUE or VALUE.REFERENCE within KEYBINDING"},
      {WithKey(R"(<KEYVALUE VALUETYPE="date">x</KEYVALUE>)"), names, "Illegal value for KEYVALUE.VALUETYPE attribute"},
      {WithKey("<VALUE.REFERENCE></VALUE.REFERENCE>"), names, "Expected INSTANCEPATH, LOCALINSTANCEPATH"},
      {WithKey("<VALUE.REFERENCE><LOCALINSTANCEPATH/></VALUE.REFERENCE>"), names,
       "expected LOCALNAMESPACEPATH element"},
      {WithKey("<VALUE.REFERENCE><LOCALCLASSPATH><LOCALNAMESPACEPATH/></LOCALCLASSPATH></VALUE.REFERENCE>"), names,
       "Expected one or more NAMESPACE elements"},
      {WithKey(R"(<VALUE.REFERENCE><LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/></LOCALNAMESPACEPATH>)"
               "</LOCALCLASSPATH></VALUE.REFERENCE>"),
       names, "expected CLASSNAME element"},
      {Returned("AssociatorNames", R"(<OBJECTPATH><INSTANCENAME CLASSNAME="CIM_Foo"/></OBJECTPATH>)"), paths,
       "expected INSTANCEPATH or CLASSPATH element"},
      {Returned("AssociatorNames", "<OBJECTPATH><INSTANCEPATH/></OBJECTPATH>"), paths,
       "expected NAMESPACEPATH element"},
      {Returned("AssociatorNames", "<OBJECTPATH><INSTANCEPATH><NAMESPACEPATH/></INSTANCEPATH></OBJECTPATH>"), paths,
       "expected HOST element"},
      {Returned(
           "AssociatorNames",
           "<OBJECTPATH><INSTANCEPATH><NAMESPACEPATH><HOST><X/></HOST></NAMESPACEPATH></INSTANCEPATH></OBJECTPATH>"),
       paths, "expected content of HOST element"},
      {Returned("AssociatorNames", "<OBJECTPATH><INSTANCEPATH>" + host + "</INSTANCEPATH></OBJECTPATH>"), paths,
       "expected INSTANCENAME element"},
      {Returned("Associators", "<VALUE.OBJECTWITHPATH/>"), objects, "Expected INSTANCEPATH or CLASSPATH element"},
      {Returned("Associators", "<VALUE.OBJECTWITHPATH><CLASSPATH>" + host +
                                   R"(<CLASSNAME NAME="CIM_Foo"/></CLASSPATH>)" +
                                   R"(<INSTANCE CLASSNAME="CIM_Foo"/></VALUE.OBJECTWITHPATH>)"),
       objects, "expected CLASS element"},
      {Returned("Associators", "<VALUE.OBJECTWITHPATH><INSTANCEPATH>" + host +
                                   R"(<INSTANCENAME CLASSNAME="CIM_Foo"/></INSTANCEPATH></VALUE.OBJECTWITHPATH>)"),
       objects, "expected INSTANCE element"},
      {Intrinsic("GetInstance", ""), instance, "expected ERROR or IRETURNVALUE element"},
      {Returned("GetInstance", R"(<CLASS NAME="CIM_Foo"/>)"), instance, "expected INSTANCE element"},
      {Returned("GetClass", R"(<INSTANCE CLASSNAME="CIM_Foo"/>)"), cimClass, "expected CLASS element"},
      {Returned("ModifyInstance", R"(<INSTANCE CLASSNAME="CIM_Foo"/>)"), modify, "IRETURNVALUE"},
      {Message("<EXPMETHODRESPONSE/>"), modify, "expected METHODRESPONSE or IMETHODRESPONSE element"},
      {Message("<EXPMETHODRESPONSE/>"), invoke, "expected METHODRESPONSE or IMETHODRESPONSE element"},
      {Extrinsic("<RETURNVALUE></RETURNVALUE>"), invoke, "expected VALUE element"},
      {Extrinsic("<RETURNVALUE/>"), invoke, "Expected close of METHODRESPONSE element, got RETURNVALUE instead"},
      {Extrinsic(R"(<RETURNVALUE PARAMTYPE="number"><VALUE>1</VALUE></RETURNVALUE>)"), invoke,
       "Illegal value for RETURNVALUE.PARAMTYPE attribute"},
      {Extrinsic(R"(<PARAMVALUE NAME="P" PARAMTYPE="uint8" EmbeddedObject="instance"/>)"), invoke,
       "Illegal value for PARAMVALUE.PARAMTYPE attribute"},
      {Extrinsic(R"(<RETURNVALUE PARAMTYPE="reference"><VALUE>CIM_Foo</VALUE></RETURNVALUE>)"), invoke,
       "A reference cannot be given as text"},
      {Extrinsic(
           R"(<PARAMVALUE NAME="P" PARAMTYPE="reference"><VALUE.ARRAY><VALUE>x</VALUE></VALUE.ARRAY></PARAMVALUE>)"),
       invoke, "A reference cannot be given as text"},
  };
  for (const Row& row : rows) {
    const Thrown thrown = Catch([&] { row.read(row.body); });
    EXPECT_EQ(thrown.name, "CIMClientXmlException") << row.body;
    EXPECT_NE(thrown.message.find(row.expected), std::string::npos) << row.body << "\n" << thrown.message;
  }
}

TEST(RareElements, AreRead) {
  CIMValue result;
  Invoke(Extrinsic(R"(<RETURNVALUE><VALUE.REFERENCE><INSTANCENAME CLASSNAME="CIM_Job"><KEYVALUE>7</KEYVALUE>)"
                   "</INSTANCENAME></VALUE.REFERENCE></RETURNVALUE>"),
         &result);
  EXPECT_EQ(result.getType(), CIMTYPE_REFERENCE);
  Invoke(Extrinsic(R"(<RETURNVALUE EmbeddedObject="instance"><VALUE>&lt;INSTANCE CLASSNAME="CIM_Foo"/&gt;</VALUE>)"
                   "</RETURNVALUE>"),
         &result);
  EXPECT_EQ(result.getType(), CIMTYPE_INSTANCE);
  ReadModifyInstance(Returned("ModifyInstance", ""), kMessageId);

  const std::string text = Returned(
      "Associators",
      R"(<VALUE.OBJECTWITHPATH><CLASSPATH><NAMESPACEPATH><HOST>cmm</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>)"
      R"(</LOCALNAMESPACEPATH></NAMESPACEPATH><CLASSNAME NAME="CIM_Foo"/></CLASSPATH><CLASS NAME="CIM_Foo"/>)"
      "</VALUE.OBJECTWITHPATH>");
  const Array<CIMObject> objects = ReadAssociators(std::string(text), kMessageId);
  ASSERT_EQ(objects.size(), 1U);
  EXPECT_TRUE(objects[0].isClass());
  EXPECT_EQ(Utf8(objects[0].getPath().toString()), "//cmm/root:CIM_Foo");
}

}  // namespace
}  // namespace Pegasus::wire
