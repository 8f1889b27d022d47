// The table of faults, HTTP and XML: what a broken or hostile server sends, and what a client makes of it. Each row is
// two tests. One reads instances: the exception with its message, whether the connection goes on, that nothing is sent
// twice, that no credentials leak, and that time, memory and descriptors stay within bounds. The other calls a method,
// which must never be called a second time.
#include "faults/answers.h"

#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "base/limits.h"
#include "faults/row.h"
#include "testing/raw_server.h"
#include "testing/scoped_environment.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using namespace test;  // NOLINT(google-build-using-namespace): the words of the table
using Orvane::testing::RawRequest;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using std::chrono::milliseconds;

/// Slower than any of the time-outs here allows for a whole answer.
constexpr milliseconds kTrickle{kShort / 5};

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
      {"StaysSilent", {{RawAction::Hang()}}, TimedOut(), Next::kNewConnection, kShort},
      {"SendsOneByteNowAndThen", {Trickles(Answer(kEmptyResult), kTrickle)}, TimedOut(), Next::kNewConnection, kShort},
      {"HalfClosesBeforeTheAnswer", {{RawAction::HalfClose()}}, Closed(), Next::kNewConnection},
      {"HalfClosesInsideTheHead",
       {{RawAction::Send("HTTP/1.1 200 OK\r\nContent-Ty"), RawAction::HalfClose()}},
       {"CIMClientMalformedHTTPException", "Missing CIMOperation HTTP header"},
       Next::kNewConnection},
      {"HalfClosesInsideTheBody",
       {{RawAction::Send(Head("Content-Length: 1000\r\n") + kXmlStart), RawAction::HalfClose()}},
       BadXml(),
       Next::kNewConnection},
      {"HalfClosesBehindTheAnswer", {{RawAction::SendLast(Answer(kEmptyResult))}}, Nothing(), Next::kNewConnection},
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
      {"Answers401Once",
       {Sends(Error("401 Unauthorized", kChallenge + kNoBody)), Sends(Answer(kEmptyResult))},
       Nothing(),
       Next::kSameConnection,
       kLong,
       1},
      {"Answers403", {Sends(Error("403 Forbidden", kNoBody))}, Http("403 Forbidden).")},
      {"Answers500WithHtml",
       {Sends(Error("500 Internal Server Error", "Content-Length: " + std::to_string(html.size()) + "\r\n", html))},
       Http("500 Internal Server Error).")},
      {"Answers503WithoutRetryAfter",
       {Sends(Error("503 Service Unavailable", kNoBody))},
       Http("503 Service Unavailable).")},
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

/// The message id is put in afterwards, so its mark has to stay whole.
std::string ChunksOfOneByte(const std::string& body) {
  const std::size_t mark = body.find("@ID@");
  constexpr std::size_t kMarkSize = 4;
  std::string chunks;
  for (std::size_t i = 0; i < body.size(); i += i == mark ? kMarkSize : 1) {
    chunks += Chunk(body.substr(i, i == mark ? kMarkSize : 1));
  }
  return chunks;
}

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
      {"LengthTooLongThenSilence", {Sends(Counted("1000"))}, TimedOut(), Next::kNewConnection, kShort},
      {"LengthTooLongThenTheEnd", {SendsThenCloses(Counted("1000"))}, Nothing(), Next::kNewConnection},
      {"ChunksOfOneByte", {Sends(Head(kChunked) + ChunksOfOneByte(kEmptyResult) + kLastChunk)}, Nothing()},
      {"LastChunkMissingThenTheEnd",
       {SendsThenCloses(Head(kChunked) + Chunk(kEmptyResult))},
       Nothing(),
       Next::kNewConnection},
      {"Trailers", {Sends(Head(kChunked) + Chunk(kEmptyResult) + "0\r\nX-Checksum: 1\r\nA: b\r\n\r\n")}, Nothing()},
      {"TrailersWithAnError",
       {Sends(Head(kChunked) + Chunk(kEmptyResult) + "0\r\nCIMError: late\r\nPGErrorDetail: a%0D%0Ab\r\n\r\n")},
       Http("400 Bad Request): CIMError = \"late\" Detail = \"a\r\nb\".")},
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
  std::string anotherRequest = kEmptyResult;
  anotherRequest.replace(anotherRequest.find("@ID@"), 4, "1");
  static const std::vector<Row> rows{
      {"XmlEmpty", {Sends(Answer(""))}, BadXml()},
      {"XmlEmptyByItsLength", {Sends(Head(kNoBody))}, BadXml()},
      {"XmlBehindAByteOrderMark", {Sends(Answer("\xEF\xBB\xBF" + kEmptyResult))}, BadXml()},
      {"XmlEntityBomb", {Sends(Answer(withDoctype("&b;")))}, BadXml()},
      {"XmlExternalEntity", {Sends(Answer(withDoctype("&file;")))}, BadXml()},
      {"XmlNestedAHundredThousandTimes", {Sends(Answer(kXmlStart + Times(100000, "<A>")))}, BadXml()},
      {"XmlInUtf16", {Sends(Answer(utf16))}, BadXml()},
      {"XmlWithInvalidUtf8", {Sends(Answer(XmlWithValue("a\xFFz")))}, BadText()},
      {"XmlWithUtf8BeyondUnicode", {Sends(Answer(XmlWithValue("a\xF4\x90\x80\x80z")))}, BadText()},
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
      {"XmlWithControlCharactersTakesThemAsTheyAre", {Sends(Answer(XmlWithValue("a\x01\x1B[2J\x07\x7Fz")))}, Nothing()},
      {"XmlWithADuplicateAttributeTakesTheFirst",
       {Sends(Answer(Xml("<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A\" CLASSNAME=\"B\"/>"
                         "<INSTANCE CLASSNAME=\"A\"/></VALUE.NAMEDINSTANCE></IRETURNVALUE>")))},
       Nothing()},
      {"XmlWithoutAClassName",
       {Sends(Answer(Xml("<IRETURNVALUE>\n<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A\"/><INSTANCE/>"
                         "</VALUE.NAMEDINSTANCE></IRETURNVALUE>")))},
       BadXml()},
      {"XmlWithAnInstanceInsideAnError",
       {Sends(Answer(Xml("<ERROR CODE=\"4\" DESCRIPTION=\"no\">\n<INSTANCE CLASSNAME=\"CIM_Error\">\n<PROPERTY "
                         "NAME=\"Message\" TYPE=\"string\"><VALUE>m</VALUE></PROPERTY></INSTANCE></ERROR>\n")))},
       {"CIMException", "no"}},
      {"XmlWithATypeOnAKeyValue",
       {Sends(Answer(Xml("<IRETURNVALUE>\n" +
                         XmlInstance("<INSTANCENAME CLASSNAME=\"CIM_Foo\"><KEYBINDING NAME=\"A\"><KEYVALUE "
                                     "VALUETYPE=\"numeric\" TYPE=\"uint32\">5</KEYVALUE></KEYBINDING></INSTANCENAME>",
                                     "") +
                         "</IRETURNVALUE>\n")))},
       Nothing()},
      {"XmlWithAnErrorWithoutACode", {Sends(Answer(Xml("<ERROR DESCRIPTION=\"odd\"/>\n")))}, BadXml()},
      {"XmlOfAnotherRequestsMessageId", {Sends(Answer(anotherRequest))}, BadText()},
      {"XmlWithError99999",
       {Sends(Answer(Xml("<ERROR CODE=\"99999\" DESCRIPTION=\"odd\"/>\n")))},
       {"CIMException", "odd"}},
      {"XmlWithAnErrorCodePast32Bits", {Sends(Answer(Xml("<ERROR CODE=\"99999999999\"/>\n")))}, BadXml()},
  };
  return rows;
}

// ---- Playing a row -------------------------------------------------------------------------------------------------

/// Behind a good answer a server may need a moment to end the connection.
void LetEnd(const Row& row, const RawServer& server) {
  if (!row.thrown.name.empty() || row.next == Next::kSameConnection) return;
  EXPECT_TRUE(server.WaitUntilPlayed(row.script.size(), RowLimits().time));
}

class Fault : public ::testing::TestWithParam<Row> {};

TEST_P(Fault, EndsAsTheTableSays) {
  const Row& row = GetParam();
  FaultRow fault;
  RawServerOptions options;
  options.script = row.script;
  options.script.push_back(Sends(Answer(kEmptyResult)));
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  client.setTimeout(row.timeout);

  fault.Expect([&] { Enumerate(client); }, row.thrown);
  const std::vector<RawRequest> requests = server.Requests();
  // Nothing is sent again but for a challenge, which its row counts.
  EXPECT_EQ(requests.size(), row.script.size());
  std::size_t authorizations = 0;
  for (const RawRequest& request : requests) authorizations += request.Lines("Authorization").size();
  EXPECT_EQ(authorizations, row.authorizations);

  LetEnd(row, server);
  const unsigned before = requests.empty() ? 0 : requests.back().connection;
  client.setTimeout(kLong);
  EXPECT_EQ(Enumerate(client), 0U);
  ASSERT_EQ(server.Requests().size(), requests.size() + 1);
  EXPECT_EQ(server.Requests().back().connection, before + (row.next == Next::kNewConnection ? 1U : 0U));
}

/// The same faults when a method is called.
class MethodFault : public ::testing::TestWithParam<Row> {};

TEST_P(MethodFault, CallsNoMethodTwice) {
  const Row& row = GetParam();
  FaultRow fault;
  RawServerOptions options;
  options.script = row.script;
  options.script.push_back(Sends(Answer(kMethodResult)));
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  client.setTimeout(row.timeout);

  const Thrown thrown = fault.Watch([&] { Invoke(client); });
  EXPECT_FALSE(thrown.name.empty()) << "none of the rows answers the method";
  // A server that asks for credentials has refused to carry it out; nothing else makes the client repeat it.
  const std::vector<RawRequest> requests = server.Requests();
  EXPECT_EQ(requests.size(), row.script.size());
  if (requests.size() == 2) {
    EXPECT_EQ(requests.at(1).Lines("Authorization").size(), 1U);
  }
  LetEnd(row, server);
  client.setTimeout(kLong);
  EXPECT_EQ(Invoke(client).toString(), "0");
  EXPECT_EQ(server.Requests().size(), requests.size() + 1);
}

std::string NameOf(const ::testing::TestParamInfo<Row>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Connection, Fault, ::testing::ValuesIn(ConnectionRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Status, Fault, ::testing::ValuesIn(StatusRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Framing, Fault, ::testing::ValuesIn(FramingRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Headers, Fault, ::testing::ValuesIn(HeaderRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(Body, Fault, ::testing::ValuesIn(XmlRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ConnectionMethod, MethodFault, ::testing::ValuesIn(ConnectionRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(StatusMethod, MethodFault, ::testing::ValuesIn(StatusRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(FramingMethod, MethodFault, ::testing::ValuesIn(FramingRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(HeadersMethod, MethodFault, ::testing::ValuesIn(HeaderRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(BodyMethod, MethodFault, ::testing::ValuesIn(XmlRows()), NameOf);

struct SendRow {
  const char* name;
  /// What the server does while the request is on its way.
  RawActions actions;
  bool tls;
  Thrown thrown;
};

void PrintTo(const SendRow& row, std::ostream* out) { *out << row.name; }

/// A server that gets only the beginning of a request of some megabytes, which it may have understood for all the
/// client can know.
class SendFault : public ::testing::TestWithParam<SendRow> {};

TEST_P(SendFault, SendsNoRequestTwice) {
  RowLimits bounds;
  bounds.heapBytes = std::size_t{256} * 1024 * 1024;
  FaultRow fault(bounds);
  const std::string big(std::size_t{16} * 1024 * 1024, 'x');
  Array<CIMParamValue> in;
  Array<CIMParamValue> out;
  in.append(CIMParamValue(String("P"), CIMValue(String(big.c_str()))));
  RawServerOptions options;
  options.onConnect = GetParam().actions;
  if (GetParam().tls) options.certificate = Orvane::testing::MakeSelfSignedCertificate();
  const RawServer server(options);
  CIMClient client;
  if (GetParam().tls) {
    client.connect(kHost, server.Port(), SSLContext(String(), [](SSLCertificateInfo&) { return Boolean(true); }), kUser,
                   kPassword);
  } else {
    client.connect(kHost, server.Port(), kUser, kPassword);
  }
  client.setTimeout(2 * kShort);
  fault.Expect(
      [&] {
        client.invokeMethod(CIMNamespaceName("root/cimv2"), CIMObjectPath("CIM_Foo.A=\"x\""), CIMName("M"), in, out);
      },
      GetParam().thrown);
  EXPECT_EQ(server.Connections(), 1U);
  EXPECT_TRUE(server.Requests().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Sending, SendFault,
    ::testing::Values(
        SendRow{"ResetsInsideTheRequest", {RawAction::Await(), RawAction::Reset()}, false, Closed()},
        SendRow{"ResetsInsideTheRequestOverTls", {RawAction::Await(), RawAction::Reset()}, true, Closed()},
        SendRow{"ClosesInsideTheRequest", {RawAction::Await(), RawAction::Close()}, false, Closed()},
        SendRow{"ClosesInsideTheRequestOverTls", {RawAction::Await(), RawAction::Close()}, true, Closed()},
        SendRow{"StopsReadingInsideTheRequest", {RawAction::Hang()}, false, TimedOut()},
        SendRow{"StopsReadingInsideTheRequestOverTls", {RawAction::Hang()}, true, TimedOut()},
        SendRow{"AnswersInsideTheRequest",
                {RawAction::Await(), RawAction::Send(Error("413 Too Large", kNoBody)), RawAction::Hang()},
                false,
                TimedOut()}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Truncated, AtEveryByteOfTheDocumentItIsNoAnswer) {
  FaultRow fault;
  const std::string whole = XmlWithValue("v");
  // The last byte is the line end behind the document.
  const std::size_t count = whole.size() - 1;
  RawServerOptions options;
  for (std::size_t size = 0; size < count; ++size) {
    options.script.push_back(Sends(Head(kChunked + "Connection: keep-alive\r\n") +
                                   (size == 0 ? std::string() : Chunk(whole.substr(0, size))) + kLastChunk));
  }
  options.script.push_back(Sends(Answer(whole)));
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  for (std::size_t size = 0; size < count; ++size) fault.Expect([&] { Enumerate(client); }, BadXml());
  EXPECT_EQ(Enumerate(client), 1U);
  EXPECT_EQ(server.Requests().size(), count + 1);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Truncated, AtEveryByteOfTheResponseTheConnectionEnds) {
  FaultRow fault;
  const std::string head = Head("Content-Length: " + std::to_string(kEmptyResult.size()) + "\r\n");
  const std::string whole = head + kEmptyResult;
  const std::size_t count = whole.size() - 1;
  RawServerOptions options;
  for (std::size_t size = 0; size < count; ++size) options.script.push_back(SendsThenCloses(whole.substr(0, size)));
  options.script.push_back(Sends(Answer(kEmptyResult)));
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  for (std::size_t size = 0; size < count; ++size) {
    const Thrown thrown = fault.Watch([&] { Enumerate(client); });
    EXPECT_EQ(thrown.name, size < head.size() ? "CIMClientMalformedHTTPException" : "CIMClientXmlException")
        << "cut at byte " << size << ": " << thrown.message;
  }
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server.Requests().size(), count + 1);
}

struct BigRow {
  const char* name;
  std::string head;
  /// Sent over and over until the client has had enough.
  std::string bytes;
};

void PrintTo(const BigRow& row, std::ostream* out) { *out << row.name; }

/// Answers of 500 megabytes and more, which come as fast as they are taken.
class BigAnswer : public ::testing::TestWithParam<BigRow> {};

TEST_P(BigAnswer, IsGivenUpAtTheLimit) {
  RowLimits bounds;
  // Allocators that look for errors keep what was freed for a while.
  bounds.processKilobytes = 1024L * 1024;
  // The body while it grows: what there was before, and what is to be.
  bounds.heapBytes = limits::kBodyBytes * 2 + std::size_t{2} * 1024 * 1024;
  FaultRow fault(bounds);
  RawServerOptions options;
  options.script = {{RawAction::Send(GetParam().head), RawAction::Flood(GetParam().bytes)},
                    Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  fault.Expect([&] { Enumerate(client); }, {"CIMClientMalformedHTTPException", "The HTTP response body is too large."});
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server.Connections(), 2U);
}

/// What stands before a value.
const std::string kValueBegin = XmlWithValue("@").substr(0, XmlWithValue("@").find("@</VALUE>"));
constexpr std::size_t kBigPiece = std::size_t{256} * 1024;

INSTANTIATE_TEST_SUITE_P(
    Body, BigAnswer,
    ::testing::Values(
        BigRow{"ValueOf500Megabytes", Head("Content-Length: 524288700\r\n") + kValueBegin, std::string(kBigPiece, 'x')},
        BigRow{"ValueOf500MegabytesInChunks", Head(kChunked) + Chunk(kValueBegin), Chunk(std::string(kBigPiece, 'x'))},
        BigRow{"ValueWithoutEnd", Head("") + kValueBegin, std::string(kBigPiece, 'x')}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Proxy, VariablesOfTheEnvironmentAreIgnored) {
  FaultRow fault;
  const RawServer proxy{RawServerOptions()};
  const std::string place = "http://127.0.0.1:" + std::to_string(proxy.Port());
  const Orvane::testing::ScopedEnvironment a("http_proxy", place);
  const Orvane::testing::ScopedEnvironment b("HTTP_PROXY", place);
  const Orvane::testing::ScopedEnvironment c("https_proxy", place);
  const Orvane::testing::ScopedEnvironment d("HTTPS_PROXY", place);
  const Orvane::testing::ScopedEnvironment e("all_proxy", place);
  const Orvane::testing::ScopedEnvironment f("ALL_PROXY", place);
  RawServerOptions options;
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer plain(options);
  options.certificate = Orvane::testing::MakeSelfSignedCertificate();
  const RawServer tls(options);
  CIMClient client;
  client.connect(kHost, plain.Port(), kUser, kPassword);
  fault.Expect([&] { Enumerate(client); }, Nothing());
  client.disconnect();
  client.connect(kHost, tls.Port(), SSLContext(String(), [](SSLCertificateInfo&) { return Boolean(true); }), kUser,
                 kPassword);
  fault.Expect([&] { Enumerate(client); }, Nothing());
  EXPECT_EQ(proxy.Connections(), 0U);
}

TEST(Redirect, ToAnotherHostIsNotFollowedAndShowsItNoCredentials) {
  FaultRow fault;
  const RawServer other{RawServerOptions()};
  const std::string location = "Location: http://127.0.0.1:" + std::to_string(other.Port()) + "/cimom\r\n";
  RawServerOptions options;
  options.script = {Sends(Error("401 Unauthorized", kChallenge + kNoBody)),
                    Sends(Error("301 Moved Permanently", location + kChallenge + kNoBody)),
                    Sends(Error("307 Temporary Redirect", location + kNoBody))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  fault.Expect([&] { Enumerate(client); }, Http("301 Moved Permanently)."));
  fault.Expect([&] { Enumerate(client); }, Http("307 Temporary Redirect)."));
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
  FaultRow fault;
  RawServerOptions options;
  options.script = {Sends(Answer(kEmptyResult, "Set-Cookie: " + GetParam().header + "\r\n")),
                    Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  fault.Expect([&] { Enumerate(client); }, Nothing());
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

}  // namespace
}  // namespace Pegasus
