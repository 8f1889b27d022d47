// Bytes that no honest client sends: each is refused with a status of HTTP that blames the client, and the server goes
// on to answer others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "loopback_client.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;
using tests::PlainClient;

constexpr std::size_t kNested = 100000;
constexpr std::size_t kNineMegabytes = 9U * 1024 * 1024;
constexpr std::size_t kMegabyte = 1024UL * 1024;
constexpr const char* kStart =
    "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
    "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
    "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>";
constexpr const char* kEnd = "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";

std::string Repeat(const std::string& text, std::size_t times) {
  std::string repeated;
  repeated.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) repeated += text;
  return repeated;
}

std::string Headers(const std::string& more) {
  return "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
         "CIMMethod: EnumerateInstanceNames\r\nCIMObject: root%2Fcimv2\r\nAuthorization: Basic VTpw\r\n" +
         more + "\r\n";
}

std::string WithBody(const std::string& body) {
  return Headers("Content-Length: " + std::to_string(body.size()) + "\r\n") + body;
}

std::string ClassNamed(const std::string& name) {
  return R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" + name + R"("/></IPARAMVALUE>)";
}

std::string GoodRequest() { return WithBody(kStart + ClassNamed("CIM_Chassis") + kEnd); }

std::string EntityBomb() {
  std::string text = "<?xml version=\"1.0\"?><!DOCTYPE CIM [<!ENTITY e0 \"lol\">";
  for (int i = 1; i <= 9; ++i) {
    text += "<!ENTITY e" + std::to_string(i) + " \"" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "\">";
  }
  return text + "]><CIM>&e9;</CIM>";
}

struct Malformed {
  const char* name;
  std::function<std::string()> bytes;
  /// The first twelve characters of the answer.
  const char* status;
};

void PrintTo(const Malformed& malformed, std::ostream* out) { *out << malformed.name; }

class MalformedRequest : public testing::TestWithParam<Malformed> {
 protected:
  static Options HttpOnly() {
    Options options;
    options.user = "U";
    options.password = "p";
    options.httpsPort = -1;
    return options;
  }

  Simulator simulator_{BuiltInModel(), HttpOnly()};
};

TEST_P(MalformedRequest, IsRefusedAndTheNextClientServed) {
  PlainClient bad(simulator_.HttpPort());
  bad.Send(GetParam().bytes());
  bad.EndSending();
  const std::string answer = bad.ReadUntil("\r\n\r\n");
  EXPECT_EQ(answer.substr(0, 12), GetParam().status);
  EXPECT_THAT(answer, HasSubstr("Content-Length: 0\r\n"));

  PlainClient good(simulator_.HttpPort());
  good.Send(GoodRequest());
  EXPECT_THAT(good.ReadUntil("</CIM>"), HasSubstr("CLASSNAME=\"VORTA_Chassis\""));
  EXPECT_EQ(simulator_.RequestCount("EnumerateInstanceNames"), 1U);
}

const Malformed kMalformed[] = {
    {"EmptyBody", [] { return WithBody(""); }, "HTTP/1.1 400"},
    {"TruncatedXml", [] { return WithBody(kStart); }, "HTTP/1.1 400"},
    {"BodyOfZeros", [] { return WithBody(std::string(1000, '\0')); }, "HTTP/1.1 400"},
    {"BrokenUtf8Only", [] { return WithBody("\xFF\xFE\x80\xC0"); }, "HTTP/1.1 400"},
    {"BrokenUtf8InAName", [] { return WithBody(kStart + ClassNamed("CIM_\xFF") + kEnd); }, "HTTP/1.1 400"},
    {"OverlongUtf8", [] { return WithBody(kStart + ClassNamed("CIM_\xC0\xAF") + kEnd); }, "HTTP/1.1 400"},
    {"SurrogateInUtf8", [] { return WithBody(kStart + ClassNamed("CIM_\xED\xA0\x80") + kEnd); }, "HTTP/1.1 400"},
    {"TruncatedUtf8", [] { return WithBody(kStart + ClassNamed("CIM_Chassis") + kEnd + "\xE2\x82"); }, "HTTP/1.1 400"},
    {"ControlCharacter", [] { return WithBody(kStart + ClassNamed("CIM_\x01") + kEnd); }, "HTTP/1.1 400"},
    {"ReferenceToNul", [] { return WithBody(kStart + ClassNamed("CIM_Chassis&#0;") + kEnd); }, "HTTP/1.1 400"},
    {"ReferenceToASurrogate", [] { return WithBody(kStart + ClassNamed("&#xD800;") + kEnd); }, "HTTP/1.1 400"},
    {"ReferenceBeyondUnicode", [] { return WithBody(kStart + ClassNamed("&#x110000;") + kEnd); }, "HTTP/1.1 400"},
    {"ReferenceToNoNumber", [] { return WithBody(kStart + ClassNamed("&#;") + kEnd); }, "HTTP/1.1 400"},
    {"UnknownEntity", [] { return WithBody(kStart + ClassNamed("&chassis;") + kEnd); }, "HTTP/1.1 400"},
    {"BareAmpersand", [] { return WithBody(kStart + ClassNamed("CIM&Chassis") + kEnd); }, "HTTP/1.1 400"},
    {"UnendedReference", [] { return WithBody(kStart + ClassNamed("CIM&amp") + kEnd); }, "HTTP/1.1 400"},
    {"TwinAttribute", [] { return WithBody(kStart + ClassNamed("CIM_Chassis\" NAME=\"CIM_Slot") + kEnd); },
     "HTTP/1.1 400"},
    {"ChunkNoteWithoutEnd",
     [] { return Headers("Transfer-Encoding: chunked\r\n") + "1;note=" + std::string(kMegabyte, 'x'); },
     "HTTP/1.1 400"},
    {"TrailersWithoutEnd",
     [] { return Headers("Transfer-Encoding: chunked\r\n") + "1\r\nx\r\n0\r\n" + Repeat("A: b\r\n", 100000); },
     "HTTP/1.1 400"},
    {"NestedElements", [] { return WithBody(Repeat("<a>", kNested) + Repeat("</a>", kNested)); }, "HTTP/1.1 400"},
    {"NestedElementsNeverEnded", [] { return WithBody(Repeat("<a>", kNested)); }, "HTTP/1.1 400"},
    {"NestedReferences",
     [] {
       const std::string open =
           R"(<INSTANCENAME CLASSNAME="CIM_IsSpare"><KEYBINDING NAME="Antecedent"><VALUE.REFERENCE>)";
       const std::string close = "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>";
       return WithBody(std::string(kStart) + "<IPARAMVALUE NAME=\"ClassName\">" + Repeat(open, 20000) +
                       Repeat(close, 20000) + "</IPARAMVALUE>" + kEnd);
     },
     "HTTP/1.1 400"},
    {"EntityBomb", [] { return WithBody(EntityBomb()); }, "HTTP/1.1 400"},
    {"UnendedDoctype", [] { return WithBody("<!DOCTYPE CIM [" + Repeat("<![INCLUDE[", kNested)); }, "HTTP/1.1 400"},
    {"TwinParameter",
     [] {
       return WithBody(kStart + Repeat(R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="X"/></IPARAMVALUE>)", 2) +
                       kEnd);
     },
     "HTTP/1.1 400"},
    {"NineMegabytes", [] { return WithBody(std::string(kNineMegabytes, ' ')); }, "HTTP/1.1 413"},
    {"NineMegabytesInChunks",
     [] {
       return Headers("Transfer-Encoding: chunked\r\n") +
              Repeat("10000\r\n" + std::string(0x10000, ' ') + "\r\n", kNineMegabytes / 0x10000) + "0\r\n\r\n";
     },
     "HTTP/1.1 413"},
    {"LengthOfManyDigits", [] { return Headers("Content-Length: 99999999999999999999999\r\n"); }, "HTTP/1.1 400"},
    {"NegativeLength", [] { return Headers("Content-Length: -1\r\n"); }, "HTTP/1.1 400"},
    {"ManyHeaders", [] { return Headers(Repeat("X-Header: value\r\n", 10000)); }, "HTTP/1.1 431"},
    {"OneLongHeader", [] { return Headers("X-Header: " + std::string(1000000, 'x') + "\r\n"); }, "HTTP/1.1 431"},
    {"HeaderWithoutColon", [] { return Headers("X-Header\r\n"); }, "HTTP/1.1 400"},
    {"HeadersNeverEnded", [] { return "POST /cimom HTTP/1.1\r\n" + Repeat("X: y\r\n", 100000); }, "HTTP/1.1 431"},
    {"ChunkSizeNoNumber", [] { return Headers("Transfer-Encoding: chunked\r\n") + "zz\r\nxx\r\n0\r\n\r\n"; },
     "HTTP/1.1 400"},
    {"ChunkLongerThanItsSize", [] { return Headers("Transfer-Encoding: chunked\r\n") + "2\r\nabcdef\r\n0\r\n\r\n"; },
     "HTTP/1.1 400"},
    {"ChunkSizeTooLarge",
     [] { return Headers("Transfer-Encoding: chunked\r\n") + "fffffffffffffffffff\r\nx\r\n0\r\n\r\n"; },
     "HTTP/1.1 400"},
    {"NoHttp", [] { return std::string("\x16\x03\x01\x02 no HTTP\r\n\r\n"); }, "HTTP/1.1 400"},
    {"OtherVersionOfHttp", [] { return std::string("POST /cimom HTTP/7.3\r\n\r\n"); }, "HTTP/1.1 400"},
};

INSTANTIATE_TEST_SUITE_P(Bytes, MalformedRequest, testing::ValuesIn(kMalformed),
                         [](const testing::TestParamInfo<Malformed>& malformed) { return malformed.param.name; });

}  // namespace
}  // namespace Orvane::simulator
