// Class definitions in answers, and their CIM-XML text; arrays of every type and the bounds of their numbers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/CIMClass.h"
#include "Pegasus/Common/CIMObject.h"
#include "thrown.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

using test::Catch;
using test::Thrown;
using test::Utf8;

constexpr std::uint32_t kMessageId = 1000;

std::string Response(const std::string& operation, const std::string& result) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
         R"(<SIMPLERSP><IMETHODRESPONSE NAME=")" +
         operation + R"("><IRETURNVALUE>)" + result + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

CIMClass ReadClass(const std::string& content) {
  return ReadGetClass(Response("GetClass", R"(<CLASS NAME="CIM_Foo" SUPERCLASS="CIM_Base">)" + content + "</CLASS>"),
                      kMessageId);
}

CIMInstance ReadInstance(const std::string& content) {
  return ReadGetInstance(Response("GetInstance", R"(<INSTANCE CLASSNAME="CIM_Foo">)" + content + "</INSTANCE>"),
                         kMessageId);
}

/// What reading throws: the class alone, or with the detail of the message when there is one.
Thrown Fault(const std::string& content) {
  return Catch([&] { ReadClass(content); });
}

/// As the client writes it.
const char* const kDefinition =
    "<CLASS NAME=\"CIM_Foo\"  SUPERCLASS=\"CIM_Base\" >\n"
    "<QUALIFIER NAME=\"Version\" TYPE=\"string\" TOSUBCLASS=\"false\" TRANSLATABLE=\"true\">\n<VALUE>1.0</VALUE>\n"
    "</QUALIFIER>\n"
    "<QUALIFIER NAME=\"Values\" TYPE=\"string\" PROPAGATED=\"true\" OVERRIDABLE=\"false\">\n"
    "<VALUE.ARRAY>\n<VALUE>a</VALUE>\n<VALUE>b</VALUE>\n</VALUE.ARRAY>\n</QUALIFIER>\n"
    "<PROPERTY NAME=\"Id\"  CLASSORIGIN=\"CIM_Base\" PROPAGATED=\"true\" TYPE=\"uint32\">\n"
    "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\">\n<VALUE>TRUE</VALUE>\n</QUALIFIER>\n</PROPERTY>\n"
    "<METHOD NAME=\"Start\" TYPE=\"uint32\" CLASSORIGIN=\"CIM_Base\" PROPAGATED=\"true\">\n"
    "<QUALIFIER NAME=\"Static\" TYPE=\"boolean\">\n<VALUE>TRUE</VALUE>\n</QUALIFIER>\n"
    "<PARAMETER NAME=\"Force\" TYPE=\"boolean\">\n"
    "<QUALIFIER NAME=\"In\" TYPE=\"boolean\">\n<VALUE>TRUE</VALUE>\n</QUALIFIER>\n</PARAMETER>\n"
    "<PARAMETER.ARRAY NAME=\"Slots\" TYPE=\"uint8\" ARRAYSIZE=\"4\">\n</PARAMETER.ARRAY>\n"
    "<PARAMETER.REFERENCE NAME=\"Target\" REFERENCECLASS=\"CIM_Bar\">\n</PARAMETER.REFERENCE>\n"
    "<PARAMETER.REFARRAY NAME=\"Others\">\n</PARAMETER.REFARRAY>\n"
    "</METHOD>\n"
    "<METHOD NAME=\"Stop\" TYPE=\"string\">\n</METHOD>\n"
    "</CLASS>\n";

TEST(Definitions, AreReadAndWrittenAlike) {
  const CIMClass foo = ReadGetClass(Response("GetClass", kDefinition), kMessageId);
  EXPECT_EQ(Utf8(CIMObject(foo).toString()), kDefinition);
  EXPECT_EQ(Utf8(foo.getSuperClassName().getString()), "CIM_Base");
  EXPECT_TRUE(foo.hasKeys());
  ASSERT_EQ(foo.getMethodCount(), 2U);
  const CIMConstMethod start = foo.getMethod(0);
  EXPECT_EQ(Utf8(start.getClassOrigin().getString()), "CIM_Base");
  EXPECT_TRUE(start.getPropagated());
  ASSERT_EQ(start.getParameterCount(), 4U);
  EXPECT_EQ(start.getParameter(1).getArraySize(), 4U);
  EXPECT_EQ(Utf8(start.getParameter(2).getReferenceClassName().getString()), "CIM_Bar");
  EXPECT_EQ(start.getParameter(3).getType(), CIMTYPE_REFERENCE);
  EXPECT_TRUE(start.getParameter(3).isArray());
  EXPECT_TRUE(foo.getQualifier(0).getFlavor().hasFlavor(CIMFlavor::TRANSLATABLE));
}

TEST(Definitions, QualifiersMayBeNullAndSentToInstances) {
  const CIMClass foo = ReadClass(R"(<QUALIFIER NAME="Q" TYPE="uint8" TOINSTANCE="TRUE"/>)");
  EXPECT_TRUE(foo.getQualifier(0).getValue().isNull());
  EXPECT_TRUE(foo.getQualifier(0).getFlavor().hasFlavor(CIMFlavor::TOINSTANCE));
}

TEST(Definitions, FaultsInThemAreFound) {
  struct Row {
    const char* content;
    const char* detail;
  };
  const Row rows[] = {
      {R"(<METHOD NAME="M" TYPE="uint8"/><METHOD NAME="m" TYPE="uint8"/>)", "duplicate method"},
      {R"(<METHOD NAME="M" TYPE="uint8"><PARAMETER NAME="P" TYPE="uint8"/><PARAMETER NAME="p" TYPE="uint8"/></METHOD>)",
       "duplicate parameter"},
      {R"(<QUALIFIER NAME="Q" TYPE="uint8"/><QUALIFIER NAME="q" TYPE="uint8"/>)", "duplicate qualifier"},
      {R"(<METHOD NAME="M" TYPE="reference"/>)", "TYPE"},
      {R"(<METHOD NAME="M"/>)", "TYPE"},
      {R"(<METHOD TYPE="uint8"/>)", "NAME"},
      {R"(<METHOD NAME="1" TYPE="uint8"/>)", "Illegal value for METHOD.NAME attribute"},
      {R"(<METHOD NAME="M" TYPE="uint8" CLASSORIGIN="1"/>)", "Illegal value for METHOD.CLASSORIGIN attribute"},
      {R"(<METHOD NAME="M" TYPE="uint8"><PARAMETER.ARRAY NAME="P" TYPE="uint8" ARRAYSIZE="x"/></METHOD>)",
       "Illegal value for ARRAYSIZE attribute"},
      {R"(<METHOD NAME="M" TYPE="uint8"><PARAMETER.ARRAY NAME="P" TYPE="uint8" ARRAYSIZE="4294967296"/></METHOD>)",
       "Illegal value for ARRAYSIZE attribute"},
      {R"(<METHOD NAME="M" TYPE="uint8"><PARAMETER.REFERENCE NAME="P" REFERENCECLASS="1"/></METHOD>)",
       "Illegal value for PARAMETER.REFERENCE.REFERENCECLASS attribute"},
      {R"(<QUALIFIER NAME="Q" TYPE="uint8" OVERRIDABLE="maybe"/>)", "Invalid QUALIFIER.OVERRIDABLE attribute value"},
      {R"(<PROPERTY NAME="P" TYPE="string" EmbeddedObject="thing"/>)", "Illegal value for EmbeddedObject attribute"},
      {R"(<PROPERTY.REFERENCE NAME="P" REFERENCECLASS="1"/>)",
       "Illegal value for PROPERTY.REFERENCE.REFERENCECLASS attribute"},
      {"<!-- a -- b -->", "\"--\" sequence"},
      {"<![CDATA[x]]>", ""},
  };
  for (const Row& row : rows) {
    const Thrown thrown = Fault(row.content);
    EXPECT_EQ(thrown.name, "CIMClientXmlException") << row.content;
    EXPECT_NE(thrown.message.find(row.detail), std::string::npos) << row.content << ": " << thrown.message;
  }
}

/// An array property of `type` with these elements.
CIMValue ReadArray(const std::string& type, const std::vector<std::string>& elements, const std::string& more = "") {
  std::string text = "<PROPERTY.ARRAY NAME=\"A\" TYPE=\"" + type + "\"" + more + "><VALUE.ARRAY>";
  for (const std::string& element : elements) text += "<VALUE>" + element + "</VALUE>";
  return ReadInstance(text + "</VALUE.ARRAY></PROPERTY.ARRAY>").getProperty(0).getValue();
}

TEST(Arrays, HaveElementsOfEveryTypeUpToItsBounds) {
  struct Row {
    const char* type;
    std::vector<std::string> elements;
    const char* text;
    const char* beyond;    ///< the first number that does not fit, empty for none
    const char* beyondAs;  ///< how the message begins
  };
  const Row rows[] = {
      {"uint8", {"0", "255"}, "0 255 ", "256", "Uint8"},
      {"sint8", {"-128", "127", "+5"}, "-128 127 5 ", "-129", "Sint8"},
      {"uint16", {"0x10", "65535"}, "16 65535 ", "65536", "Uint16"},
      {"sint16", {"-32768", "32767"}, "-32768 32767 ", "32768", "Sint16"},
      {"uint32", {"0XfF", "4294967295"}, "255 4294967295 ", "4294967296", "Uint32"},
      {"sint32", {"-2147483648", "2147483647"}, "-2147483648 2147483647 ", "2147483648", "Sint32"},
      {"uint64", {"18446744073709551615"}, "18446744073709551615 ", "", ""},
      {"sint64", {"-9223372036854775808", "9223372036854775807"}, "-9223372036854775808 9223372036854775807 ", "", ""},
      {"real32",
       {"0.5", "-.25", "+1.0e1"},
       "5.0000000000000000e-01 -2.5000000000000000e-01 1.0000000000000000e+01 ",
       "",
       ""},
      {"real64", {"0.5"}, "5.0000000000000000e-01 ", "", ""},
      {"boolean", {"true", "FALSE"}, "TRUE FALSE ", "", ""},
      {"char16", {"A"}, "A ", "", ""},
      {"string", {"a", ""}, "a  ", "", ""},
      {"datetime", {"20240229000000.000000+000"}, "20240229000000.000000+000 ", "", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Utf8(ReadArray(row.type, row.elements).toString()), row.text) << row.type;
    EXPECT_EQ(ReadArray(row.type, {}).getArraySize(), 0U) << row.type;
    if (*row.beyond == '\0') continue;
    const Thrown thrown = Catch([&] { ReadArray(row.type, {row.beyond}); });
    EXPECT_EQ(thrown.name, "CIMClientXmlException") << row.type;
    EXPECT_NE(thrown.message.find(std::string(row.beyondAs) + " value out of range"), std::string::npos)
        << row.type << ": " << thrown.message;
  }
}

TEST(Arrays, HaveEmbeddedElementsToo) {
  const CIMValue instances =
      ReadArray("string", {"&lt;INSTANCE CLASSNAME=\"CIM_Bar\"/&gt;"}, R"( EmbeddedObject="instance")");
  EXPECT_EQ(instances.getType(), CIMTYPE_INSTANCE);
  const CIMValue objects =
      ReadArray("string", {"&lt;CLASS NAME=\"CIM_Bar\"/&gt;"}, R"( EmbeddedObject="object" ARRAYSIZE="1")");
  ASSERT_EQ(objects.getType(), CIMTYPE_OBJECT);
  Array<CIMObject> list;
  objects.get(list);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_TRUE(list[0].isClass());
}

TEST(Arrays, ElementsThatDoNotParseAreFound) {
  const std::pair<const char*, const char*> rows[] = {{"real32", "1.0e40"}, {"real64", "+-1.0"}, {"real32", "."},
                                                      {"sint8", "-"},       {"uint8", "+1"},     {"uint16", "0y1"},
                                                      {"sint8", "--1"},     {"boolean", "yes"},  {"char16", "AB"}};
  for (const auto& [type, text] : rows) {
    EXPECT_EQ(Catch([&, t = type, e = text] { ReadArray(t, {e}); }).name, "CIMClientXmlException")
        << type << ' ' << text;
  }
}

}  // namespace
}  // namespace Pegasus::wire
