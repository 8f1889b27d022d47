// Responses that are broken or made to do harm: each must end in a value or in an exception of the client, in bounded
// time and stack.
#include <gtest/gtest.h>

#include <string>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/Exception.h"
#include "wire/recorded.h"
#include "wire/response_reader.h"
#include "wire/xml_scanner.h"

namespace Pegasus::wire {
namespace {

constexpr std::uint32_t kMessageId = 1000;

std::string Response(const std::string& content) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
         R"(<SIMPLERSP><IMETHODRESPONSE NAME="EnumerateInstances"><IRETURNVALUE>)" +
         content + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

std::string InstanceWith(const std::string& content) {
  return R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="CIM_Foo"/><INSTANCE CLASSNAME="CIM_Foo">)" + content +
         "</INSTANCE></VALUE.NAMEDINSTANCE>";
}

std::string PropertyWith(const std::string& value) {
  return R"(<PROPERTY NAME="S" TYPE="string"><VALUE>)" + value + "</VALUE></PROPERTY>";
}

std::string Repeated(const std::string& text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
  return text;
}

Array<CIMInstance> Read(const std::string& body) { return ReadEnumerateInstances(std::string(body), kMessageId); }

class TruncatedResponse : public testing::TestWithParam<const char*> {};

TEST_P(TruncatedResponse, GivesAValueOrAnExceptionOfTheClientAtEveryByte) {
  const std::string whole =
      Replaced(test::BodyOf(test::ReadRecorded(std::string("responses/") + GetParam() + ".http")), "@ID@", "1000");
  ASSERT_EQ(whole.substr(whole.size() - 7), "</CIM>\n");
  for (std::size_t size = 0; size < whole.size() - 7; ++size) {
    EXPECT_THROW(Read(whole.substr(0, size)), CIMClientXmlException) << "cut at byte " << size;
  }
  EXPECT_GT(Read(whole).size(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Wire, TruncatedResponse,
                         testing::Values("ei-scalars", "ei-embedded", "ei-arrays", "ei-reference", "ei-qualifiers",
                                         "ei-cdata-only", "ei-comment", "ei-refkey"));

TEST(HostileResponse, EveryByteChangedGivesAValueOrAnExceptionOfTheClient) {
  const std::string whole = Replaced(test::BodyOf(test::ReadRecorded("responses/ei-scalars.http")), "@ID@", "1000");
  std::size_t refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char c : {'<', '>', '&', '"', '\0', '\x80', '\xFF', ' '}) {
      std::string body = whole;
      body[at] = c;
      try {
        Read(body);
      } catch (const Exception&) {
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, whole.size());
}

TEST(HostileResponse, DeepNestingIsRefused) {
  constexpr std::size_t kDepth = 100000;
  for (const char* tag : {"A", "VALUE.REFERENCE", "INSTANCE", "KEYBINDING"}) {
    const std::string name(tag);
    EXPECT_THROW(Read(Response(Repeated("<" + name + ">", kDepth) + Repeated("</" + name + ">", kDepth))),
                 CIMClientXmlException);
    EXPECT_THROW(Read(Repeated("<" + name + ">", kDepth)), CIMClientXmlException);
  }
}

TEST(HostileResponse, NestedReferenceKeysAreRefusedBeforeTheirTextExplodes) {
  const std::string open = R"(<INSTANCENAME CLASSNAME="C"><KEYBINDING NAME="K"><VALUE.REFERENCE>)";
  const std::string close = "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>";
  const auto nested = [&](std::size_t depth) {
    return Response(R"(<VALUE.NAMEDINSTANCE>)" + Repeated(open, depth) +
                    R"(<INSTANCENAME CLASSNAME="C"><KEYBINDING NAME="K"><KEYVALUE>v</KEYVALUE></KEYBINDING>)"
                    "</INSTANCENAME>" +
                    Repeated(close, depth) + R"(<INSTANCE CLASSNAME="C"/></VALUE.NAMEDINSTANCE>)");
  };
  EXPECT_EQ(Read(nested(3)).size(), 1U);
  EXPECT_THROW(Read(nested(40)), CIMClientXmlException);
  EXPECT_THROW(Read(nested(100000)), CIMClientXmlException);
}

TEST(HostileResponse, EmbeddedObjectsInsideEmbeddedObjectsAreLimited) {
  const auto nested = [](int depth) {
    std::string text = R"(<INSTANCE CLASSNAME="C"/>)";
    for (int i = 0; i < depth; ++i) {
      text = Replaced(Replaced(text, "&", "&amp;"), "<", "&lt;");
      text = R"(<INSTANCE CLASSNAME="C"><PROPERTY NAME="E" TYPE="string" EmbeddedObject="object"><VALUE>)" + text +
             "</VALUE></PROPERTY></INSTANCE>";
    }
    return Response(R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="C"/>)" + text + "</VALUE.NAMEDINSTANCE>");
  };
  EXPECT_EQ(Read(nested(3)).size(), 1U);
  EXPECT_THROW(Read(nested(60)), CIMClientXmlException);
}

TEST(HostileResponse, EntitiesAreNotExpanded) {
  const std::string bomb =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE CIM [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
      "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">]>\n";
  const std::string body = Response(InstanceWith(PropertyWith("&c;")));
  EXPECT_THROW(Read(bomb + body.substr(body.find("<CIM"))), CIMClientXmlException);
  EXPECT_THROW(Read(body), CIMClientXmlException);
}

TEST(HostileResponse, InvalidUtf8IsRefused) {
  for (const char* bytes : {"\xFF", "\xC3", "\xC0\x80", "\xF8\x88\x80\x80\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_THROW(Read(Response(InstanceWith(PropertyWith(std::string("a") + bytes + "b")))),
                 CIMClientResponseException);
    EXPECT_THROW(Read(Response(InstanceWith(std::string("<PROPERTY NAME=\"a") + bytes + "\" TYPE=\"string\"/>"))),
                 CIMClientResponseException);
  }
}

TEST(HostileResponse, TheBodyEndsAtANulByte) {
  const std::string body = Response(InstanceWith(PropertyWith("v")));
  EXPECT_EQ(Read(body + std::string(1, '\0') + "<").size(), 1U);
  std::string cut = body;
  cut[cut.find("PROPERTY")] = '\0';
  EXPECT_THROW(Read(cut), CIMClientXmlException);
}

TEST(HostileResponse, LongTextInAnErrorIsCut) {
  try {
    Read(Response(std::string(1000000, 'x')));
    FAIL() << "no exception";
  } catch (const CIMClientXmlException& error) {
    EXPECT_LT(error.getMessage().size(), 500U);
  }
}

TEST(HostileResponse, AHundredThousandPropertiesOfOneInstanceAreDecoded) {
  std::string content;
  constexpr Uint32 kCount = 100000;
  for (Uint32 i = 0; i < kCount; ++i) {
    content += "<PROPERTY NAME=\"P" + std::to_string(i) + "\" TYPE=\"uint32\"><VALUE>1</VALUE></PROPERTY>";
  }
  const Array<CIMInstance> instances = Read(Response(InstanceWith(content)));
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].getPropertyCount(), kCount);
  EXPECT_THROW(Read(Response(InstanceWith(content + "<PROPERTY NAME=\"p7\" TYPE=\"uint32\"/>"))),
               CIMClientXmlException);
}

TEST(HostileResponse, TooManyQualifiersAndKeysAreRefused) {
  std::string qualifiers;
  std::string keys;
  for (int i = 0; i < 5000; ++i) {
    qualifiers += "<QUALIFIER NAME=\"Q" + std::to_string(i) + "\" TYPE=\"boolean\"/>";
    keys += "<KEYBINDING NAME=\"K" + std::to_string(i) + "\"><KEYVALUE>v</KEYVALUE></KEYBINDING>";
  }
  EXPECT_THROW(Read(Response(InstanceWith(qualifiers))), CIMClientXmlException);
  EXPECT_THROW(Read(Response("<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"C\">" + keys +
                             "</INSTANCENAME><INSTANCE CLASSNAME=\"C\"/></VALUE.NAMEDINSTANCE>")),
               CIMClientXmlException);
}

TEST(HostileResponse, AMegabyteOfReferencesIsDecoded) {
  const std::string body = Response(InstanceWith(PropertyWith(Repeated("&amp;&#10;", 100000))));
  const Array<CIMInstance> instances = Read(body);
  ASSERT_EQ(instances.size(), 1U);
  String text;
  instances[0].getProperty(0).getValue().get(text);
  EXPECT_EQ(std::string(text.getCString()), Repeated("&\n", 100000));
}

}  // namespace
}  // namespace Pegasus::wire
