// The table of faults, content: answers that are well made but hold what nobody expects. A client gives what is there,
// unchanged, or says that it cannot.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "faults/answers.h"
#include "faults/row.h"
#include "testing/cim_xml.h"
#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using namespace test;  // NOLINT(google-build-using-namespace): the words of the table
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using Orvane::testing::XmlEscape;

/// A server that gives these answers, and a client of it.
class Conversation {
 public:
  explicit Conversation(const std::vector<std::string>& bodies) : server(Options(bodies)) {
    client.connect(kHost, server.Port(), kUser, kPassword);
  }

  Array<CIMInstance> Read() { return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")); }

 private:
  static RawServerOptions Options(const std::vector<std::string>& bodies) {
    RawServerOptions options;
    for (const std::string& body : bodies) options.script.push_back(Sends(Answer(body)));
    return options;
  }

 public:
  RawServer server;
  CIMClient client;
};

std::string Property(const std::string& type, const std::string& value) {
  return "<PROPERTY NAME=\"P\" TYPE=\"" + type + "\"><VALUE>" + value + "</VALUE></PROPERTY>\n";
}

/// Type, kind and text of the property P.
std::string Description(const CIMInstance& instance) {
  const Uint32 at = instance.findProperty(CIMName("P"));
  if (at == PEG_NOT_FOUND) return "absent";
  const CIMValue value = instance.getProperty(at).getValue();
  const std::string kind = std::string(cimTypeToString(value.getType())) + (value.isArray() ? " array" : "");
  return kind + (value.isNull() ? " null" : " " + Utf8(value.toString()));
}

struct PropertyRow {
  const char* name;
  std::string properties;
  std::string description;
};

void PrintTo(const PropertyRow& row, std::ostream* out) { *out << row.name; }

class OddProperty : public ::testing::TestWithParam<PropertyRow> {};

TEST_P(OddProperty, IsTakenAsItIs) {
  FaultRow fault;
  Conversation talk({XmlWithInstance(GetParam().properties)});
  Array<CIMInstance> found;
  fault.Expect([&] { found = talk.Read(); }, {});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(Description(found[0]), GetParam().description);
  // Whoever asks for a number gets no other type by mistake.
  if (found[0].getPropertyCount() == 0) return;
  Uint16 number = 0;
  const CIMValue value = found[0].getProperty(0).getValue();
  if (value.getType() != CIMTYPE_UINT16 || value.isArray()) {
    EXPECT_EQ(Catch([&] { value.get(number); }), (Thrown{"TypeMismatchException", "type mismatch"}));
  } else {
    EXPECT_EQ(Catch([&] { value.get(number); }), Thrown());
  }
  fault.Saw(GetParam().description);
}

INSTANTIATE_TEST_SUITE_P(
    Content, OddProperty,
    ::testing::Values(
        PropertyRow{"PropertyAbsent", "", "absent"},
        PropertyRow{"PropertyNull", "<PROPERTY NAME=\"P\" TYPE=\"uint16\"/>", "uint16 null"},
        PropertyRow{"PropertyNullOfAnotherType", "<PROPERTY NAME=\"P\" TYPE=\"string\"></PROPERTY>", "string null"},
        PropertyRow{"PropertyOfAnotherType", Property("string", "5"), "string 5"},
        PropertyRow{"PropertyOfAWiderType", Property("uint64", "5"), "uint64 5"},
        PropertyRow{"PropertyBooleanForANumber", Property("boolean", "true"), "boolean TRUE"},
        PropertyRow{"ArrayForAScalar",
                    "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>5</VALUE><VALUE>6</VALUE>"
                    "</VALUE.ARRAY></PROPERTY.ARRAY>",
                    "uint16 array 5 6 "},
        PropertyRow{"ArrayOfNothing",
                    "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint16\"><VALUE.ARRAY></VALUE.ARRAY></PROPERTY.ARRAY>",
                    "uint16 array "},
        PropertyRow{"ArrayNull", "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint16\"/>", "uint16 array null"},
        PropertyRow{"ReferenceForANumber",
                    "<PROPERTY.REFERENCE NAME=\"P\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"CIM_Bar\"/>"
                    "</VALUE.REFERENCE></PROPERTY.REFERENCE>",
                    "reference CIM_Bar"},
        PropertyRow{"GreatestReal32InNineDigits", Property("real32", "3.4028235e+38"), "real32 3.4028234663852886e+38"},
        PropertyRow{"NumberThatFits", Property("uint16", "5"), "uint16 5"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Content, PropertyTwiceIsNoInstance) {
  FaultRow fault;
  Conversation talk({XmlWithInstance(Property("uint16", "5") + Property("string", "5"))});
  fault.Expect([&] { talk.Read(); }, {"CIMClientXmlException", "Semantic error: on line 11: duplicate property"});
}

/// One less, or one more, than a decimal number with at least two digits.
std::string Next(std::string digits, bool more) {
  const bool up = more == (digits[0] != '-');
  for (std::size_t at = digits.size(); at-- > 0;) {
    if (digits[at] == '-') break;
    if (digits[at] != (up ? '9' : '0')) {
      digits[at] = static_cast<char>(digits[at] + (up ? 1 : -1));
      return digits;
    }
    digits[at] = up ? '0' : '9';
  }
  return digits;
}

struct NumberRow {
  std::string name;
  std::string type;
  /// The least and the greatest that the type holds.
  std::string least;
  std::string greatest;
  /// Beyond them.
  std::string tooSmall;
  std::string tooGreat;
};

void PrintTo(const NumberRow& row, std::ostream* out) { *out << row.name; }

template <typename T>
NumberRow IntegerRow(const char* type) {
  const std::string least = std::to_string(std::numeric_limits<T>::min());
  const std::string greatest = std::to_string(std::numeric_limits<T>::max());
  return {type, type, least, greatest, std::is_signed_v<T> ? Next(least, false) : "-1", Next(greatest, true)};
}

class NumberBounds : public ::testing::TestWithParam<NumberRow> {};

TEST_P(NumberBounds, AreHeldAndBeyondThemThereIsNoNumber) {
  FaultRow fault;
  const NumberRow& row = GetParam();
  const auto body = [&](const std::string& value) { return XmlWithInstance(Property(row.type, value)); };
  Conversation talk({body(row.least), body(row.greatest), body(row.tooSmall), body(row.tooGreat)});
  EXPECT_EQ(Description(talk.Read()[0]), row.type + " " + row.least);
  EXPECT_EQ(Description(talk.Read()[0]), row.type + " " + row.greatest);
  fault.Expect([&] { talk.Read(); }, {"CIMClientXmlException", {}});
  fault.Expect([&] { talk.Read(); }, {"CIMClientXmlException", {}});
}

INSTANTIATE_TEST_SUITE_P(Content, NumberBounds,
                         ::testing::Values(IntegerRow<Uint8>("uint8"), IntegerRow<Sint8>("sint8"),
                                           IntegerRow<Uint16>("uint16"), IntegerRow<Sint16>("sint16"),
                                           IntegerRow<Uint32>("uint32"), IntegerRow<Sint32>("sint32"),
                                           IntegerRow<Uint64>("uint64"), IntegerRow<Sint64>("sint64"),
                                           NumberRow{"real32", "real32", "-3.4028234663852886e+38",
                                                     "3.4028234663852886e+38", "-3.4028236e+38", "3.4028236e+38"},
                                           NumberRow{"real64", "real64", "-1.7976931348623157e+308",
                                                     "1.7976931348623157e+308", "-1.8e+308", "1.8e+308"}),
                         [](const auto& row) { return row.param.name; });

struct VersionRow {
  const char* name;
  std::string text;
};

void PrintTo(const VersionRow& row, std::ostream* out) { *out << row.name; }

class VersionString : public ::testing::TestWithParam<VersionRow> {};

TEST_P(VersionString, ReachesTheCallerAsItIs) {
  FaultRow fault;
  const std::string& text = GetParam().text;
  Conversation talk({XmlWithInstance(Property("string", XmlEscape(text))),
                     Xml("<ERROR CODE=\"1\" DESCRIPTION=\"" + XmlEscape(text) + "\"/>\n")});
  Array<CIMInstance> found;
  fault.Expect([&] { found = talk.Read(); }, {});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(Description(found[0]), "string " + text);
  String read;
  found[0].getProperty(0).getValue().get(read);
  EXPECT_EQ(read.size(), text.size());
  // Neither does a message take it for anything but text.
  EXPECT_EQ(Catch([&] { talk.Read(); }), (Thrown{"CIMException", text}));
  fault.Saw(std::to_string(read.size()) + " characters");
}

INSTANTIATE_TEST_SUITE_P(Content, VersionString,
                         ::testing::Values(VersionRow{"VersionOf0Characters", ""},
                                           VersionRow{"VersionOf254Characters", std::string(254, 'v')},
                                           VersionRow{"VersionOf255Characters", std::string(255, 'v')},
                                           VersionRow{"VersionOf256Characters", std::string(256, 'v')},
                                           VersionRow{"VersionOfAMegabyte", std::string(1024 * 1024, 'v')},
                                           VersionRow{"VersionWithFormats", "%s%n%d%100$s%99999999d{}{0}%"}),
                         [](const auto& row) { return std::string(row.param.name); });

class InstanceCount : public ::testing::TestWithParam<Uint32> {};

TEST_P(InstanceCount, AllOfThemAreRead) {
  RowLimits bounds;
  bounds.heapBytes = std::size_t{32} * 1024 * 1024;
  FaultRow fault(bounds);
  std::string instances;
  for (Uint32 i = 0; i < GetParam(); ++i) {
    const std::string number = std::to_string(i);
    instances += XmlInstance("<INSTANCENAME CLASSNAME=\"CIM_Foo\"><KEYBINDING NAME=\"A\"><KEYVALUE>" + number +
                                 "</KEYVALUE></KEYBINDING></INSTANCENAME>",
                             Property("uint32", number));
  }
  Conversation talk({Xml("<IRETURNVALUE>\n" + instances + "</IRETURNVALUE>\n")});
  Array<CIMInstance> found;
  fault.Expect([&] { found = talk.Read(); }, {});
  ASSERT_EQ(found.size(), GetParam());
  for (Uint32 i = 0; i < found.size(); ++i) {
    ASSERT_EQ(Description(found[i]), "uint32 " + std::to_string(i));
    ASSERT_EQ(Utf8(found[i].getPath().toString()), "CIM_Foo.A=\"" + std::to_string(i) + "\"");
  }
  fault.Saw(std::to_string(found.size()) + " instances");
}

INSTANTIATE_TEST_SUITE_P(Content, InstanceCount, ::testing::Values(0U, 1U, 10000U),
                         [](const auto& count) { return "Instances" + std::to_string(count.param); });

struct KeyRow {
  const char* name;
  std::string text;
  /// As it stands in the text of a path.
  std::string inPath;
  /// A text that names an object is read as a reference to it, when all there is is text.
  bool isTakenForAReference = false;
};

void PrintTo(const KeyRow& row, std::ostream* out) { *out << row.name; }

class OddKey : public ::testing::TestWithParam<KeyRow> {};

TEST_P(OddKey, MakesTheRoundTrip) {
  FaultRow fault;
  const std::string& key = GetParam().text;
  const std::string name =
      "<INSTANCENAME CLASSNAME=\"CIM_Foo\"><KEYBINDING NAME=\"A\"><KEYVALUE VALUETYPE=\"string\">" + XmlEscape(key) +
      "</KEYVALUE></KEYBINDING></INSTANCENAME>";
  Conversation talk({Xml("<IRETURNVALUE>\n" + XmlInstance(name, "") + "</IRETURNVALUE>\n"), kMethodResult});
  CIMObjectPath path;
  fault.Expect([&] { path = talk.Read()[0].getPath(); }, {});
  ASSERT_EQ(path.getKeyBindings().size(), 1U);
  EXPECT_EQ(Utf8(path.getKeyBindings()[0].getValue()), key);
  const std::string text = "CIM_Foo.A=\"" + GetParam().inPath + "\"";
  EXPECT_EQ(Utf8(path.toString()), text);
  EXPECT_EQ(CIMObjectPath(path.toString()) == path, !GetParam().isTakenForAReference);
  // What goes back to the server is the key that came from it.
  Array<CIMParamValue> out;
  talk.client.invokeMethod(CIMNamespaceName("root/cimv2"), path, CIMName("M"), Array<CIMParamValue>(), out);
  const std::string request = talk.server.Requests().at(1).body;
  const std::size_t begin = request.find("<KEYVALUE VALUETYPE=\"string\">");
  ASSERT_NE(begin, std::string::npos) << request;
  const std::size_t first = request.find('>', begin) + 1;
  const std::string sent = request.substr(first, request.find("</KEYVALUE>", first) - first);
  EXPECT_EQ(sent, XmlEscape(key));
  fault.Saw(text);
}

INSTANTIATE_TEST_SUITE_P(
    Content, OddKey,
    ::testing::Values(KeyRow{"KeyWithQuotes", R"(say "x")", R"(say \"x\")"},
                      KeyRow{"KeyWithBackslashes", R"(c:\dir\)", R"(c:\\dir\\)"},
                      KeyRow{"KeyWithEqualSigns", "a=b,c=d.e", "a=b,c=d.e"},
                      KeyRow{"KeyLikeAPath", R"(CIM_Bar.B="1",C=2)", R"(CIM_Bar.B=\"1\",C=2)", true},
                      KeyRow{"KeyWithMarkup", "<a>&amp;</a>", "<a>&amp;</a>"}, KeyRow{"KeyOfAQuote", "\"", "\\\""},
                      KeyRow{"KeyOfABackslash", "\\", "\\\\"}, KeyRow{"KeyOfNothing", "", ""}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Pegasus
