// The table of faults: what a broken or hostile server does, and what a client makes of it. Each row is one test: the
// exception with its message, whether the connection goes on, that nothing is sent twice, that no credentials leak, and
// that time, memory and descriptors stay within bounds.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using Orvane::testing::CertificateOptions;
using Orvane::testing::MakeSelfSignedCertificate;
using Orvane::testing::RawAction;
using Orvane::testing::RawActions;
using Orvane::testing::RawRequest;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using std::chrono::milliseconds;
using test::Catch;
using test::Thrown;
using Clock = std::chrono::steady_clock;

constexpr char kHost[] = "127.0.0.1";
constexpr char kUser[] = "user";
constexpr char kPassword[] = "geheim7";
/// The same as a Basic authorization carries them.
constexpr char kEncoded[] = "dXNlcjpnZWhlaW03";

/// Time-out of clients that are to run into it, and of those that are not.
constexpr Uint32 kShort = 300;
constexpr Uint32 kLong = 20000;
/// Far more than any row needs, even where every wait takes its full time-out on a busy machine.
constexpr std::chrono::seconds kWatchdog{15};
/// Far more than any row needs, and far less than what the servers here promise or send.
constexpr long kMemoryKilobytes = 400L * 1024;

// ---- Answers -------------------------------------------------------------------------------------------------------

std::string Times(std::size_t count, const std::string& text) {
  std::string result;
  result.reserve(count * text.size());
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

const std::string kXmlStart =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
    "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n";
const std::string kXmlEnd = "</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";

std::string Xml(const std::string& content) { return kXmlStart + content + kXmlEnd; }

/// An answer of one instance whose string property is `value`, as it stands in the document.
std::string XmlWithValue(const std::string& value) {
  return Xml(
      "<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE>\n<INSTANCENAME CLASSNAME=\"CIM_Foo\"/>\n<INSTANCE CLASSNAME=\"CIM_Foo\">\n"
      "<PROPERTY NAME=\"S\" TYPE=\"string\"><VALUE>" +
      value + "</VALUE></PROPERTY>\n</INSTANCE>\n</VALUE.NAMEDINSTANCE>\n</IRETURNVALUE>\n");
}

/// The head of a successful answer, with `lines` (each with its end) among its headers.
std::string Head(const std::string& lines) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=utf-8\r\n" + lines +
         "CIMOperation: MethodResponse\r\n\r\n";
}

const std::string kChunked = "Transfer-Encoding: chunked\r\n";

/// A chunk in hexadecimal length; the message id in it always has four digits here, as its mark has.
std::string Chunk(const std::string& bytes) {
  std::string digits;
  for (std::size_t rest = bytes.size(); rest != 0; rest /= 16) digits.insert(0, 1, "0123456789abcdef"[rest % 16]);
  return digits + "\r\n" + bytes + "\r\n";
}

/// A complete answer; chunked, so that no length has to be told before the message id is known.
std::string Answer(const std::string& body, const std::string& lines = {}) {
  return Head(kChunked + lines) + Chunk(body) + "0\r\n\r\n";
}

const std::string kEmptyResult = Xml("<IRETURNVALUE>\n</IRETURNVALUE>\n");

/// An answer that is an error of HTTP; `lines` are its headers, each with its end.
std::string Error(const std::string& statusAndReason, const std::string& lines, const std::string& body = {}) {
  return "HTTP/1.1 " + statusAndReason + "\r\n" + lines + "\r\n" + body;
}

const std::string kNoBody = "Content-Length: 0\r\n";
const std::string kChallenge = "WWW-Authenticate: Basic realm=\"cmm\"\r\n";

RawActions Sends(const std::string& bytes) { return {RawAction::Send(bytes)}; }

RawActions SendsThenCloses(const std::string& bytes) { return {RawAction::Send(bytes), RawAction::Close()}; }

/// What was sent has been read before the connection is reset under it.
RawActions SendsThenResets(const std::string& bytes) {
  return {RawAction::Send(bytes), RawAction::Sleep(milliseconds(100)), RawAction::Reset()};
}

/// Byte by byte, slower than any of the time-outs here allows.
RawActions Trickles(const std::string& bytes) {
  RawActions actions;
  for (const char byte : bytes) {
    actions.push_back(RawAction::Send(std::string(1, byte)));
    actions.push_back(RawAction::Sleep(milliseconds(kShort / 5)));
  }
  return actions;
}

// ---- Rows ----------------------------------------------------------------------------------------------------------

/// What becomes of the connection after the fault, as the next operation shows.
enum class Next {
  kSameConnection,  ///< it is used again
  kNewConnection,   ///< the next operation opens another one
};

Thrown Nothing() { return {}; }
Thrown Closed() { return {"CIMClientMalformedHTTPException", "Connection closed by CIM Server."}; }
Thrown Malformed() { return {"CIMClientMalformedHTTPException", "Malformed HTTP response message."}; }
Thrown TimedOut() { return {"ConnectionTimeoutException", "connection timed out"}; }
Thrown Http(const std::string& text) { return {"CIMClientHTTPErrorException", "HTTP Error (" + text}; }
/// XML that cannot be read: the class is what counts, the wording is free.
Thrown BadXml() { return {"CIMClientXmlException", {}}; }
Thrown BadText() { return {"CIMClientResponseException", {}}; }

struct Row {
  const char* name;
  /// What the server does for the request, and for its repetition where there is one.
  std::vector<RawActions> script;
  Thrown thrown;
  Next next = Next::kSameConnection;
  Uint32 timeout = kLong;
  /// Lines of the Authorization header over all requests of the row.
  std::size_t authorizations = 0;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const std::vector<Row>& ConnectionRows() {
  static const std::vector<Row> rows{
      {"SendsOneByteNowAndThen", {Trickles(Answer(kEmptyResult))}, TimedOut(), Next::kNewConnection, kShort},
      {"HalfClosesBeforeTheAnswer", {{RawAction::HalfClose()}}, Closed(), Next::kNewConnection},
      {"HalfClosesInsideTheHead",
       {{RawAction::Send("HTTP/1.1 200 OK\r\nContent-Ty"), RawAction::HalfClose()}},
       {"CIMClientMalformedHTTPException", "Missing CIMOperation HTTP header"},
       Next::kNewConnection},
      {"HalfClosesInsideTheBody",
       {{RawAction::Send(Head("Content-Length: 1000\r\n") + kXmlStart), RawAction::HalfClose()}},
       BadXml(),
       Next::kNewConnection},
      {"HalfClosesBehindTheAnswer",
       {{RawAction::Send(Answer(kEmptyResult)), RawAction::HalfClose(), RawAction::Sleep(milliseconds(50))}},
       Nothing(),
       Next::kNewConnection},
      {"ResetsInsideTheStatusLine", {SendsThenResets("HTTP/1.")}, Malformed(), Next::kNewConnection},
      {"ResetsInsideTheHead",
       {SendsThenResets("HTTP/1.1 200 OK\r\nContent-Ty")},
       {"CIMClientMalformedHTTPException", "Missing CIMOperation HTTP header"},
       Next::kNewConnection},
      {"ResetsInsideTheBody",
       {SendsThenResets(Head("Content-Length: 1000\r\n") + kXmlStart)},
       BadXml(),
       Next::kNewConnection},
      {"ResetsAfterTheRequest", {{RawAction::Reset()}}, Closed(), Next::kNewConnection},
      {"AnswersAPlainRequestWithATlsAlert",
       {SendsThenCloses("\x15\x03\x01\x02\x02\x16")},
       Malformed(),
       Next::kNewConnection},
      {"SendsBytesThatAreNoHttpAndStaysSilent",
       {Sends("\x15\x03\x01\x02\x02\x16")},
       TimedOut(),
       Next::kNewConnection,
       kShort},
      {"SendsAnEmptyLineFirst", {Sends("\r\n" + Error("500 Busy", kNoBody))}, Malformed(), Next::kNewConnection},
  };
  return rows;
}

const std::vector<Row>& StatusRows() {
  const std::string html = "<html><body>" + std::string(5000, 'y') + "</body></html>";
  static const std::vector<Row> rows{
      {"Answers401ForEver",
       {Sends(Error("401 Unauthorized", kChallenge + kNoBody)), Sends(Error("401 Unauthorized", kChallenge + kNoBody))},
       Http("401 Unauthorized)."),
       Next::kSameConnection,
       kLong,
       1},
      {"Answers401WithHtmlThenTheResult",
       {Sends(Error("401 Unauthorized", kChallenge + kChunked, Chunk(html) + "0\r\n\r\n")),
        Sends(Answer(kEmptyResult))},
       Nothing(),
       Next::kSameConnection,
       kLong,
       1},
      {"Answers401AndClosesAfterTheChallenge",
       {SendsThenCloses(Error("401 Unauthorized", kChallenge + "Connection: close\r\n" + kNoBody)),
        Sends(Answer(kEmptyResult))},
       Nothing(),
       Next::kSameConnection,
       kLong,
       1},
      {"Answers401WithAnUnknownScheme",
       {Sends(Error("401 Unauthorized", "WWW-Authenticate: Bearer realm=\"x\"\r\n" + kNoBody))},
       {"CIMClientMalformedHTTPException", "Invalid Authorization header"}},
      {"Answers401WithAnEmptyChallenge",
       {Sends(Error("401 Unauthorized", "WWW-Authenticate:\r\n" + kNoBody))},
       {"CIMClientMalformedHTTPException", "Invalid Authorization header"}},
      {"ChallengesWithTheResultItself", {Sends(Answer(kEmptyResult, kChallenge))}, Nothing()},
      {"ChallengesWith403", {Sends(Error("403 Forbidden", kChallenge + kNoBody))}, Http("403 Forbidden).")},
      {"ChallengesWith500",
       {Sends(Error("500 Internal Server Error", kChallenge + kNoBody))},
       Http("500 Internal Server Error).")},
      {"Answers404WithHtml",
       {Sends(Error("404 Not Found", "Content-Length: " + std::to_string(html.size()) + "\r\n", html))},
       Http("404 Not Found).")},
      {"Answers500WithChunkedHtml",
       {Sends(Error("500 Internal Server Error", kChunked, Chunk(html) + "0\r\n\r\n"))},
       Http("500 Internal Server Error).")},
      {"Answers500WithABadChunk",
       {Sends(Error("500 Internal Server Error", kChunked, "zz\r\n" + html))},
       Http("500 Internal Server Error)."),
       Next::kNewConnection},
      {"Answers500WithABadTrailer",
       {Sends(Error("500 Internal Server Error", kChunked, "0\r\nno colon\r\n\r\n"))},
       Http("500 Internal Server Error)."),
       Next::kNewConnection},
      {"Answers500WithABodyWithoutEnd",
       {{RawAction::Send(Error("500 Internal Server Error", "Content-Length: 99999999999\r\n")),
         RawAction::Flood(std::string(65536, 'y'))}},
       Http("500 Internal Server Error)."),
       Next::kNewConnection},
      {"Answers500WithHalfOfItsBodyAndStaysSilent",
       {Sends(Error("500 Internal Server Error", "Content-Length: 100\r\n", "half"))},
       Http("500 Internal Server Error)."),
       Next::kNewConnection,
       kShort},
      {"Answers503WithRetryAfter",
       {Sends(Error("503 Service Unavailable", "Retry-After: 3600\r\n" + kNoBody))},
       Http("503 Service Unavailable).")},
      {"Answers503WithRetryAfterThatIsNoNumber",
       {Sends(Error("503 Service Unavailable", "Retry-After: -99999999999999999999\r\n" + kNoBody))},
       Http("503 Service Unavailable).")},
      {"AnswersStatus999", {Sends(Error("999 What", kNoBody))}, Http("999 What).")},
      {"AnswersStatus000", {Sends(Error("000 None", kNoBody))}, Http("0 None).")},
      {"AnswersAStatusOfFourDigits", {Sends(Error("2000 OK", kNoBody))}, Malformed()},
      {"SendsEncodedLineEndsInErrorHeaders",
       {Sends(Error("400 Bad Request",
                    "CIMError: request%0D%0Anot-valid\r\nPGErrorDetail: line%201%0D%0Aline%202%\r\n" + kNoBody))},
       Http("400 Bad Request): CIMError = \"request%0D%0Anot-valid\" Detail = \"line 1\r\nline 2%\".")},
      {"SendsErrorHeadersThatAreNoUtf8",
       {Sends(Error("400 Bad Request", "CIMError: \xFF\xFE\r\nPGErrorDetail: %FF\r\n" + kNoBody))},
       Http("400 Bad Request): CIMError = \"\xC3\xBF\xC3\xBE\" Detail = \"\xC3\xBF\".")},
  };
  return rows;
}

/// A successful answer of that Content-Length, whose body is complete.
std::string Counted(const std::string& length) { return Head("Content-Length: " + length + "\r\n") + kEmptyResult; }

const std::vector<Row>& FramingRows() {
  const Thrown badLength = Http("400 Bad Request): Detail = \"Invalid Content-Length header detected\".");
  const Thrown badChunk = Http("400 Bad Request): Detail = \"missing chunk extension\".");
  static const std::vector<Row> rows{
      {"LengthNegative", {Sends(Counted("-1"))}, badLength, Next::kNewConnection},
      {"LengthWithAPlusSign", {Sends(Counted("+5"))}, badLength, Next::kNewConnection},
      {"LengthThatIsText", {Sends(Counted("many"))}, badLength, Next::kNewConnection},
      {"LengthEmpty", {Sends(Counted(""))}, badLength, Next::kNewConnection},
      {"LengthPast64Bits", {Sends(Counted("18446744073709551616"))}, badLength, Next::kNewConnection},
      {"LengthOf2To31Minus1ThenSilence", {Sends(Counted("2147483647"))}, TimedOut(), Next::kNewConnection, kShort},
      {"LengthOf2To31Minus1ThenTheEnd", {SendsThenCloses(Counted("2147483647"))}, Nothing(), Next::kNewConnection},
      {"LengthOf2To32ThenSilence", {Sends(Counted("4294967296"))}, TimedOut(), Next::kNewConnection, kShort},
      {"LengthOf2To32ThenTheEnd", {SendsThenCloses(Counted("4294967296"))}, Nothing(), Next::kNewConnection},
      {"LengthOf2To64Minus1ThenTheEnd",
       {SendsThenCloses(Counted("18446744073709551615"))},
       Nothing(),
       Next::kNewConnection},
      {"LengthTooShort", {Sends(Counted("60"))}, BadXml()},
      {"LengthOfAnErrorNegative",
       {Sends(Error("404 Not Found", "Content-Length: -1\r\n", "gone"))},
       Http("404 Not Found)."),
       Next::kNewConnection},
      {"ChunkSizeNegative", {Sends(Head(kChunked) + "-5\r\nhello\r\n")}, badChunk, Next::kNewConnection},
      {"ChunkSizeThatIsText", {Sends(Head(kChunked) + "size\r\nhello\r\n")}, badChunk, Next::kNewConnection},
      {"ChunkSizeEmpty", {Sends(Head(kChunked) + "\r\nhello\r\n")}, badChunk, Next::kNewConnection},
      {"ChunkSizePast64Bits",
       {Sends(Head(kChunked) + "10000000000000005\r\nhello\r\n")},
       badChunk,
       Next::kNewConnection},
      {"ChunkLongerThanItsSize",
       {Sends(Head(kChunked) + "3\r\nhello\r\n")},
       Http("400 Bad Request): Detail = \"missing chunk end\"."),
       Next::kNewConnection},
      {"ChunkOf2GigabytesThenSilence",
       {Sends(Head(kChunked) + "80000000\r\n" + kXmlStart)},
       TimedOut(),
       Next::kNewConnection,
       kShort},
      {"ChunkOf2GigabytesThenTheEnd",
       {SendsThenCloses(Head(kChunked) + "80000000\r\n" + kXmlStart)},
       BadXml(),
       Next::kNewConnection},
      {"ChunkExtensionWithoutEnd",
       {{RawAction::Send(Head(kChunked) + "5;"), RawAction::Flood(std::string(4096, 'x'))}},
       Malformed(),
       Next::kNewConnection},
      {"LastChunkMissingThenSilence",
       {Sends(Head(kChunked) + Chunk(kEmptyResult))},
       TimedOut(),
       Next::kNewConnection,
       kShort},
      {"Trailers1000",
       {Sends(Head(kChunked) + Chunk(kEmptyResult) + "0\r\n" + Times(1000, "A: b\r\n") + "\r\n")},
       Nothing()},
      {"Trailers1001",
       {Sends(Head(kChunked) + Chunk(kEmptyResult) + "0\r\n" + Times(1001, "A: b\r\n") + "\r\n")},
       Malformed(),
       Next::kNewConnection},
      {"TrailersWithoutEnd",
       {{RawAction::Send(Head(kChunked) + Chunk(kEmptyResult) + "0\r\nA: b\r\n"), RawAction::Flood(" folded\r\n")}},
       Malformed(),
       Next::kNewConnection},
  };
  return rows;
}

const std::vector<Row>& HeaderRows() {
  // Three headers belong to every answer.
  static const std::vector<Row> rows{
      {"Headers1000", {Sends(Answer(kEmptyResult, Times(997, "X-Filler: y\r\n")))}, Nothing()},
      {"Headers1001", {Sends(Answer(kEmptyResult, Times(998, "X-Filler: y\r\n")))}, Malformed(), Next::kNewConnection},
      {"HeaderLineOf200Kilobytes",
       {Sends(Answer(kEmptyResult, "X-Filler: " + std::string(200000, 'y') + "\r\n"))},
       Nothing()},
      {"HeaderLineOfAMegabyte",
       {Sends(Answer(kEmptyResult, "X-Filler: " + std::string(1000000, 'y') + "\r\n"))},
       Malformed(),
       Next::kNewConnection},
      {"HeadersWithoutEnd",
       {{RawAction::Send("HTTP/1.1 200 OK\r\n"), RawAction::Flood("A: b\r\n")}},
       Malformed(),
       Next::kNewConnection},
      {"FoldedHeaderWithoutEnd",
       {{RawAction::Send("HTTP/1.1 200 OK\r\nA: b\r\n"), RawAction::Flood(" folded\r\n")}},
       Malformed(),
       Next::kNewConnection},
      {"StatusLineWithoutEnd",
       {{RawAction::Send("HTTP/1.1 200 "), RawAction::Flood(std::string(4096, 'O'))}},
       Malformed(),
       Next::kNewConnection},
      {"HeaderWithoutColon", {Sends(Answer(kEmptyResult, "no colon here\r\n"))}, Malformed(), Next::kNewConnection},
      {"Continues100Times", {Sends(Times(100, "HTTP/1.1 100 Continue\r\n\r\n") + Answer(kEmptyResult))}, Nothing()},
      {"ContinuesWithoutEnd",
       {{RawAction::Flood(Times(100, "HTTP/1.1 100 Continue\r\n\r\n"))}},
       TimedOut(),
       Next::kNewConnection,
       kShort},
      {"ChallengesInAnInterimAnswer",
       {Sends("HTTP/1.1 100 Continue\r\n" + kChallenge + "Set-Cookie: a=b\r\n\r\n" + Answer(kEmptyResult))},
       Nothing()},
  };
  return rows;
}

const std::vector<Row>& XmlRows() {
  const std::string doctype =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE CIM [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
      "<!ENTITY file SYSTEM \"file:///etc/passwd\">]>\n";
  const auto withDoctype = [&doctype](const std::string& value) {
    const std::string body = XmlWithValue(value);
    return doctype + body.substr(body.find("<CIM"));
  };
  std::string utf16 = "\xFF\xFE";
  for (const char c : kEmptyResult) (utf16 += c) += '\0';
  static const std::vector<Row> rows{
      {"XmlEntityBomb", {Sends(Answer(withDoctype("&b;")))}, BadXml()},
      {"XmlExternalEntity", {Sends(Answer(withDoctype("&file;")))}, BadXml()},
      {"XmlNestedAHundredThousandTimes", {Sends(Answer(kXmlStart + Times(100000, "<A>")))}, BadXml()},
      {"XmlInUtf16", {Sends(Answer(utf16))}, BadXml()},
      {"XmlWithOverlongUtf8",
       {Sends(Answer(XmlWithValue("a\xC0\xAF"
                                  "b")))},
       BadText()},
      {"XmlWithASurrogateTakesAReplacement",
       {Sends(Answer(XmlWithValue("a\xED\xA0\x80"
                                  "b")))},
       Nothing()},
      {"XmlWithATruncatedCharacter", {Sends(Answer(XmlWithValue("a\xE2\x82")))}, BadText()},
      {"XmlWithANulByte", {Sends(Answer(XmlWithValue(std::string("a\0b", 3))))}, BadXml()},
      {"XmlWithADuplicateAttributeTakesTheFirst",
       {Sends(Answer(Xml("<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A\" CLASSNAME=\"B\"/>"
                         "<INSTANCE CLASSNAME=\"A\"/></VALUE.NAMEDINSTANCE></IRETURNVALUE>")))},
       Nothing()},
      {"XmlWithoutAClassName",
       {Sends(Answer(Xml("<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A\"/><INSTANCE/>"
                         "</VALUE.NAMEDINSTANCE></IRETURNVALUE>")))},
       BadXml()},
      {"XmlWithError99999",
       {Sends(Answer(Xml("<ERROR CODE=\"99999\" DESCRIPTION=\"odd\"/>\n")))},
       {"CIMException", "odd"}},
      {"XmlWithAnErrorCodePast32Bits", {Sends(Answer(Xml("<ERROR CODE=\"99999999999\"/>\n")))}, BadXml()},
  };
  return rows;
}

// ---- Playing a row -------------------------------------------------------------------------------------------------

std::ptrdiff_t Descriptors() {
  const std::filesystem::directory_iterator open("/proc/self/fd");
  return std::distance(begin(open), end(open));
}

long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

/// Checks when it ends that the test stayed within its bounds of time and memory and gave back its descriptors; has to
/// outlive everything that the test opens.
class Bounds {
 public:
  Bounds() = default;
  ~Bounds() {
    EXPECT_LT(Clock::now() - start_, kWatchdog);
    EXPECT_LT(PeakKilobytes() - peak_, kMemoryKilobytes);
    EXPECT_EQ(Descriptors(), descriptors_);
  }
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;

 private:
  Clock::time_point start_ = Clock::now();
  long peak_ = PeakKilobytes();
  std::ptrdiff_t descriptors_ = Descriptors();
};

Uint32 Enumerate(CIMClient& client) {
  return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")).size();
}

void ExpectThrown(const Thrown& actual, const Thrown& expected) {
  EXPECT_EQ(actual.name, expected.name) << actual.message;
  if (!expected.message.empty()) {
    EXPECT_EQ(actual.message, expected.message);
  }
  EXPECT_EQ(actual.message.find(kPassword), std::string::npos);
  EXPECT_EQ(actual.message.find(kEncoded), std::string::npos);
}

class Fault : public ::testing::TestWithParam<Row> {};

TEST_P(Fault, EndsAsTheTableSays) {
  const Row& row = GetParam();
  const Bounds bounds;
  RawServerOptions options;
  options.script = row.script;
  options.script.push_back(Sends(Answer(kEmptyResult)));
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  client.setTimeout(row.timeout);

  ExpectThrown(Catch([&] { Enumerate(client); }), row.thrown);
  const std::vector<RawRequest> requests = server.Requests();
  // Nothing is sent again but for a challenge, which its row counts.
  EXPECT_EQ(requests.size(), row.script.size());
  std::size_t authorizations = 0;
  for (const RawRequest& request : requests) authorizations += request.Lines("Authorization").size();
  EXPECT_EQ(authorizations, row.authorizations);

  const unsigned before = requests.empty() ? 0 : requests.back().connection;
  client.setTimeout(kLong);
  EXPECT_EQ(Enumerate(client), 0U);
  ASSERT_EQ(server.Requests().size(), requests.size() + 1);
  EXPECT_EQ(server.Requests().back().connection, before + (row.next == Next::kNewConnection ? 1U : 0U));
}

std::string NameOf(const ::testing::TestParamInfo<Row>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Connection, Fault, ::testing::ValuesIn(ConnectionRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Status, Fault, ::testing::ValuesIn(StatusRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Framing, Fault, ::testing::ValuesIn(FramingRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Headers, Fault, ::testing::ValuesIn(HeaderRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Body, Fault, ::testing::ValuesIn(XmlRows()), NameOf);

TEST(Redirect, ToAnotherHostIsNotFollowedAndShowsItNoCredentials) {
  const Bounds bounds;
  const RawServer other{RawServerOptions()};
  const std::string location = "Location: http://127.0.0.1:" + std::to_string(other.Port()) + "/cimom\r\n";
  RawServerOptions options;
  options.script = {Sends(Error("401 Unauthorized", kChallenge + kNoBody)),
                    Sends(Error("301 Moved Permanently", location + kChallenge + kNoBody)),
                    Sends(Error("307 Temporary Redirect", location + kNoBody))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  ExpectThrown(Catch([&] { Enumerate(client); }), Http("301 Moved Permanently)."));
  ExpectThrown(Catch([&] { Enumerate(client); }), Http("307 Temporary Redirect)."));
  EXPECT_EQ(server.Requests().size(), 3U);
  EXPECT_EQ(server.Connections(), 1U);
  EXPECT_EQ(other.Connections(), 0U);
}

struct CookieRow {
  const char* name;
  std::string header;
  /// Lines of the next request's Cookie header.
  std::vector<std::string> sent;
};

void PrintTo(const CookieRow& row, std::ostream* out) { *out << row.name; }

class HostileCookie : public ::testing::TestWithParam<CookieRow> {};

TEST_P(HostileCookie, ForgesNoHeaderOfTheNextRequest) {
  const Bounds bounds;
  RawServerOptions options;
  options.script = {Sends(Answer(kEmptyResult, "Set-Cookie: " + GetParam().header + "\r\n")),
                    Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(Enumerate(client), 0U);
  ASSERT_EQ(server.Requests().size(), 2U);
  EXPECT_EQ(server.Requests().at(1).Lines("Cookie"), GetParam().sent);
  EXPECT_EQ(server.Requests().at(1).head.find("Forged"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Cookies, HostileCookie,
                         ::testing::Values(CookieRow{"CarriageReturn", "a=b\rForged: yes", {}},
                                           CookieRow{"NulByte", std::string("a=b\0Forged", 10), {}},
                                           CookieRow{"Folded", "a=b;\r\n Forged: yes", {"Cookie: a=b"}},
                                           CookieRow{"Empty", "", {}},
                                           CookieRow{"OnlyAttributes", "; Secure; Forged", {}},
                                           CookieRow{"NoUtf8", "a=\xFF\xFE; HttpOnly", {"Cookie: a=\xFF\xFE"}},
                                           CookieRow{"Of100Kilobytes",
                                                     std::string(100000, 'c') + "; Path=/",
                                                     {"Cookie: " + std::string(100000, 'c')}}),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- TLS -----------------------------------------------------------------------------------------------------------

/// What the callback was told; a callback is a plain function, so this cannot be a test's own member.
struct Seen {
  std::vector<Uint32> errors;
  std::string subject;
  long serial = 0;
};
Seen& LastSeen() {
  static Seen seen;
  return seen;
}

Boolean Accept(SSLCertificateInfo& info) {
  LastSeen().errors.push_back(info.getErrorCode());
  LastSeen().subject = test::Utf8(info.getSubjectName());
  LastSeen().serial = info.getSerialNumber();
  return true;
}
Boolean Refuse(SSLCertificateInfo& info) {
  Accept(info);
  return false;
}
Boolean Fail(SSLCertificateInfo& info) {
  Accept(info);
  throw std::runtime_error("cannot judge");
}

struct HandshakeRow {
  const char* name;
  std::function<RawServerOptions()> server;
  SSLCertificateVerifyFunction* verify = &Accept;
  Uint32 timeout = kLong;
};

void PrintTo(const HandshakeRow& row, std::ostream* out) { *out << row.name; }

/// A plain server that does `actions` with whoever connects.
std::function<RawServerOptions()> Plain(RawActions actions) {
  return [actions = std::move(actions)] {
    RawServerOptions options;
    options.onConnect = actions;
    return options;
  };
}

/// The same, after the client's first message has come.
std::function<RawServerOptions()> PlainLater(RawActions actions) {
  actions.insert(actions.begin(), RawAction::Sleep(milliseconds(100)));
  return Plain(std::move(actions));
}

RawServerOptions Tls(const CertificateOptions& certificate, int minTls = 0, int maxTls = 0) {
  RawServerOptions options;
  options.certificate = MakeSelfSignedCertificate(certificate);
  options.minTls = minTls;
  options.maxTls = maxTls;
  return options;
}

/// A chain whose certificates take about a megabyte.
RawServerOptions BigChain() {
  RawServerOptions options = Tls({});
  constexpr std::size_t kCopies = 3000;
  options.certificate.certificatePem = Times(kCopies, options.certificate.certificatePem);
  return options;
}

/// A TLS record full of messages that ask the client to begin, which it has; it is to ignore them.
std::string HelloRequests() {
  constexpr std::size_t kMessages = 4000;
  const std::string size = {'\x3E', '\x80'};  // four bytes each
  return std::string("\x16\x03\x03", 3) + size + std::string(kMessages * 4, '\0');
}

const std::vector<HandshakeRow>& HandshakeRows() {
  const std::string alert("\x15\x03\x03\x00\x02\x02\x28", 7);
  static const std::vector<HandshakeRow> rows{
      {"AlertAtHello", PlainLater({RawAction::Send(alert), RawAction::Close()})},
      {"AlertAtHelloThenSilence", PlainLater({RawAction::Send(alert), RawAction::Hang()})},
      {"ClosesAtHello", PlainLater({RawAction::Close()})},
      {"ResetsAtHello", PlainLater({RawAction::Reset()})},
      {"HalfClosesAtHello", PlainLater({RawAction::HalfClose(), RawAction::Hang()})},
      {"PlainHttpAnswerThenSilence",
       PlainLater({RawAction::Send("HTTP/1.1 400 Bad Request\r\n\r\n"), RawAction::Hang()})},
      {"RecordCutShortThenSilence",
       PlainLater({RawAction::Send(std::string("\x16\x03\x03\x10\x00\x02", 6)), RawAction::Hang()}), &Accept, kShort},
      {"OneByteNowAndThen", Plain(Trickles(HelloRequests().substr(0, 400))), &Accept, kShort},
      {"HelloRequestsWithoutEnd", PlainLater({RawAction::Flood(HelloRequests())}), &Accept, kShort},
      {"OnlyTls10", [] { return Tls({}, TLS1_VERSION, TLS1_VERSION); }},
      {"ChainOfAMegabyte", &BigChain},
      {"ChainOfAMegabyteOverTls12",
       [] {
         RawServerOptions options = BigChain();
         options.maxTls = TLS1_2_VERSION;
         return options;
       }},
      {"CallbackRefuses", [] { return Tls({}); }, &Refuse},
      {"CallbackRefusesOverTls12", [] { return Tls({}, TLS1_2_VERSION, TLS1_2_VERSION); }, &Refuse},
      {"CallbackThrows", [] { return Tls({}); }, &Fail},
  };
  return rows;
}

class HandshakeFault : public ::testing::TestWithParam<HandshakeRow> {};

TEST_P(HandshakeFault, CannotConnect) {
  const Bounds bounds;
  RawServerOptions options = GetParam().server();
  std::optional<RawServer> server(std::in_place, options);
  CIMClient client;
  client.setTimeout(GetParam().timeout);
  const SSLContext context(String(), GetParam().verify);
  ExpectThrown(Catch([&] { client.connect(kHost, server->Port(), context, kUser, kPassword); }),
               {"CannotConnectException",
                "Cannot connect to 127.0.0.1:" + std::to_string(server->Port()) + ". Connection failed."});
  EXPECT_EQ(server->Connections(), 1U);
  EXPECT_TRUE(server->Requests().empty());
  ExpectThrown(Catch([&] { Enumerate(client); }), {"NotConnectedException", "not connected"});

  // The same client connects to a server that is all right.
  options = RawServerOptions();
  options.script = {Sends(Answer(kEmptyResult))};
  server.emplace(options);
  client.connect(kHost, server->Port(), kUser, kPassword);
  client.setTimeout(kLong);
  EXPECT_EQ(Enumerate(client), 0U);
}

std::string HandshakeName(const ::testing::TestParamInfo<HandshakeRow>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Tls, HandshakeFault, ::testing::ValuesIn(HandshakeRows()), HandshakeName);

struct CertificateRow {
  const char* name;
  CertificateOptions certificate;
  /// The last problem that the callback is told of.
  Uint32 error;
  std::string subject;
  long serial = 4660;
};

void PrintTo(const CertificateRow& row, std::ostream* out) { *out << row.name; }

class OddCertificate : public ::testing::TestWithParam<CertificateRow> {};

TEST_P(OddCertificate, IsTheCallbacksToJudge) {
  const Bounds bounds;
  LastSeen() = Seen();
  RawServerOptions options = Tls(GetParam().certificate);
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  EXPECT_EQ(Enumerate(client), 0U);
  ASSERT_FALSE(LastSeen().errors.empty());
  EXPECT_EQ(LastSeen().errors.back(), GetParam().error);
  EXPECT_EQ(LastSeen().subject, GetParam().subject);
  EXPECT_EQ(LastSeen().serial, GetParam().serial);
}

CertificateOptions Named(const std::string& commonName) {
  CertificateOptions options;
  options.commonName = commonName;
  return options;
}
CertificateOptions Valid(int fromDays, int toDays) {
  CertificateOptions options;
  options.notBeforeDays = fromDays;
  options.notAfterDays = toDays;
  return options;
}
CertificateOptions Numbered(const std::string& serialHex) {
  CertificateOptions options;
  options.serialHex = serialHex;
  return options;
}

INSTANTIATE_TEST_SUITE_P(
    Tls, OddCertificate,
    ::testing::Values(CertificateRow{"Expired", Valid(-30, -1), X509_V_ERR_CERT_HAS_EXPIRED, "/CN=localhost"},
                      CertificateRow{"NotYetValid", Valid(1, 30), X509_V_ERR_CERT_NOT_YET_VALID, "/CN=localhost"},
                      CertificateRow{"OfAnotherHost", Named("other.example"), X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT,
                                     "/CN=other.example"},
                      CertificateRow{"SubjectWithControlBytes", Named("a\x1B[2J\r\n\x07z"),
                                     X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT, "/CN=a\\x1B[2J\\x0D\\x0A\\x07z"},
                      CertificateRow{"SubjectThatLooksLikeAnother", Named("a/CN=cmm.example"),
                                     X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT, "/CN=a\\/CN=cmm.example"},
                      CertificateRow{"SerialNumberOf20Bytes", Numbered(std::string(40, '7')),
                                     X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT, "/CN=localhost", -1}),
    [](const auto& row) { return std::string(row.param.name); });

/// Leaves the process `free` more descriptors while it lives.
class FewDescriptors {
 public:
  explicit FewDescriptors(int free) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit few = before_;
    constexpr rlim_t kEnough = 64;
    few.rlim_cur = static_cast<rlim_t>(Descriptors()) + kEnough;
    setrlimit(RLIMIT_NOFILE, &few);
    for (int next = ::dup(STDERR_FILENO); next >= 0; next = ::dup(STDERR_FILENO)) taken_.push_back(next);
    for (; free > 0 && !taken_.empty(); --free) Release();
  }
  ~FewDescriptors() {
    while (!taken_.empty()) Release();
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  void Release() {
    ::close(taken_.back());
    taken_.pop_back();
  }

  rlimit before_{};
  std::vector<int> taken_;
};

class DescriptorsLeft : public ::testing::TestWithParam<int> {};

TEST_P(DescriptorsLeft, EndInADocumentedExceptionAndTheClientConnectsOnceThereAreMore) {
  const Bounds bounds;
  RawServerOptions options;
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  const auto connect = [&] { client.connect(kHost, server.Port(), kUser, kPassword); };
  Thrown thrown;
  {
    const FewDescriptors few(GetParam());
    thrown = Catch(connect);
  }
  const std::vector<std::string> documented{"CannotCreateSocketException", "CannotConnectException",
                                            "InvalidLocatorException"};
  EXPECT_EQ(std::count(documented.begin(), documented.end(), thrown.name), 1) << thrown.name << thrown.message;
  connect();
  EXPECT_EQ(Enumerate(client), 0U);
}

// A connection takes four: its socket and three of the loop that waits for it.
INSTANTIATE_TEST_SUITE_P(Process, DescriptorsLeft, ::testing::Range(0, 4));

TEST(TicketFlood, InsteadOfAnAnswerRunsIntoTheTimeout) {
  const Bounds bounds;
  RawServerOptions options = Tls({}, TLS1_3_VERSION);
  options.script = {{RawAction::Tickets()}, Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  client.setTimeout(kShort);
  ExpectThrown(Catch([&] { Enumerate(client); }), TimedOut());
  client.setTimeout(kLong);
  EXPECT_EQ(Enumerate(client), 0U);
}

TEST(TicketFlood, OnAnIdleConnectionLeadsToANewOne) {
  const Bounds bounds;
  RawServerOptions options = Tls({}, TLS1_3_VERSION);
  options.script = {{RawAction::Send(Answer(kEmptyResult)), RawAction::Tickets()}, Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  EXPECT_EQ(Enumerate(client), 0U);
  // Enough of them to be more than a server has reason to send.
  std::this_thread::sleep_for(milliseconds(500));
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server.Connections(), 2U);
}

}  // namespace
}  // namespace Pegasus
