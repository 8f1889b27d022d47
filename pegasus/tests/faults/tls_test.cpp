// The table of faults, TLS: handshakes that fail, certificates that are odd, and servers that go on sending without
// saying anything.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "faults/answers.h"
#include "faults/row.h"
#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using namespace test;  // NOLINT(google-build-using-namespace): the words of the table
using Orvane::testing::CertificateOptions;
using Orvane::testing::MakeSelfSignedCertificate;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using std::chrono::milliseconds;

/// Slower than any of the time-outs here allows for a whole handshake.
constexpr milliseconds kTrickle{kShort / 5};

const Thrown kTimedOut{"ConnectionTimeoutException", "connection timed out"};

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
      {"StaysSilent", Plain({RawAction::Hang()}), &Accept, kShort},
      {"AlertAtHello", PlainLater({RawAction::Send(alert), RawAction::Close()})},
      {"AlertAtHelloThenSilence", PlainLater({RawAction::Send(alert), RawAction::Hang()})},
      {"ClosesAtHello", PlainLater({RawAction::Close()})},
      {"ResetsAtHello", PlainLater({RawAction::Reset()})},
      {"HalfClosesAtHello", PlainLater({RawAction::HalfClose(), RawAction::Hang()})},
      {"PlainHttpAnswerThenSilence",
       PlainLater({RawAction::Send("HTTP/1.1 400 Bad Request\r\n\r\n"), RawAction::Hang()})},
      {"RecordCutShortThenSilence",
       PlainLater({RawAction::Send(std::string("\x16\x03\x03\x10\x00\x02", 6)), RawAction::Hang()}), &Accept, kShort},
      {"OneByteNowAndThen", Plain(Trickles(HelloRequests().substr(0, 400), kTrickle)), &Accept, kShort},
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
  FaultRow fault;
  RawServerOptions options = GetParam().server();
  std::optional<RawServer> server(std::in_place, options);
  CIMClient client;
  client.setTimeout(GetParam().timeout);
  const SSLContext context(String(), GetParam().verify);
  fault.Expect([&] { client.connect(kHost, server->Port(), context, kUser, kPassword); },
               {"CannotConnectException",
                "Cannot connect to 127.0.0.1:" + std::to_string(server->Port()) + ". Connection failed."});
  EXPECT_EQ(server->Connections(), 1U);
  EXPECT_TRUE(server->Requests().empty());
  EXPECT_EQ(Catch([&] { Enumerate(client); }), (Thrown{"NotConnectedException", "not connected"}));

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
  FaultRow fault;
  LastSeen() = Seen();
  RawServerOptions options = Tls(GetParam().certificate);
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  fault.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {});
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
    ::testing::Values(CertificateRow{"SelfSigned", {}, X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT, "/CN=localhost"},
                      CertificateRow{"Expired", Valid(-30, -1), X509_V_ERR_CERT_HAS_EXPIRED, "/CN=localhost"},
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

struct VersionRow {
  const char* name;
  int version;
};

void PrintTo(const VersionRow& row, std::ostream* out) { *out << row.name; }

class OneVersion : public ::testing::TestWithParam<VersionRow> {};

TEST_P(OneVersion, IsSpokenByTheClientToo) {
  FaultRow fault;
  RawServerOptions options = Tls({}, GetParam().version, GetParam().version);
  options.script = {Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  fault.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {});
}

INSTANTIATE_TEST_SUITE_P(Tls, OneVersion,
                         ::testing::Values(VersionRow{"OnlyTls12", TLS1_2_VERSION},
                                           VersionRow{"OnlyTls13", TLS1_3_VERSION}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Tls, PlainClientOnATlsPortGetsNoAnswer) {
  FaultRow fault;
  const RawServer server(Tls({}));
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  // The server takes the request for a broken handshake: it says so in an alert, or closes only.
  const Thrown thrown = fault.Watch([&] { Enumerate(client); });
  EXPECT_EQ(thrown.name, "CIMClientMalformedHTTPException") << thrown.message;
  EXPECT_EQ(server.Connections(), 1U);
  EXPECT_TRUE(server.Requests().empty());
}

TEST(Tls, CertificateThatChangesBetweenTwoConnectsIsJudgedAgain) {
  FaultRow fault;
  RawServerOptions options = Tls(Named("first.example"));
  options.script = {Sends(Answer(kEmptyResult))};
  {
    const RawServer server(options);
    options.port = server.Port();
    CIMClient client;
    client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
    EXPECT_EQ(Enumerate(client), 0U);
  }
  options.certificate = MakeSelfSignedCertificate(Named("second.example"));
  LastSeen() = Seen();
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  fault.Expect([&] { EXPECT_EQ(Enumerate(client), 0U); }, {});
  EXPECT_EQ(LastSeen().subject, "/CN=second.example");
}

TEST(TicketFlood, InsteadOfAnAnswerRunsIntoTheTimeout) {
  FaultRow fault;
  RawServerOptions options = Tls({}, TLS1_3_VERSION);
  options.script = {{RawAction::Tickets()}, Sends(Answer(kEmptyResult))};
  const RawServer server(options);
  CIMClient client;
  client.connect(kHost, server.Port(), SSLContext(String(), &Accept), kUser, kPassword);
  client.setTimeout(kShort);
  fault.Expect([&] { Enumerate(client); }, kTimedOut);
  client.setTimeout(kLong);
  EXPECT_EQ(Enumerate(client), 0U);
}

TEST(TicketFlood, OnAnIdleConnectionLeadsToANewOne) {
  FaultRow fault;
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
