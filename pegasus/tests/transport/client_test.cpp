// What recordings cannot show of the client: signals, limits, redirects, proxies, and the parts of a certificate.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/limits.h"
#include "testing/raw_server.h"
#include "testing/scoped_environment.h"
#include "thrown.h"
#include "transport/certificates.h"
#include "transport/http_response.h"

namespace Pegasus {
namespace {

using Orvane::testing::RawAction;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using test::Catch;
using test::Thrown;

const std::string kBody =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
    "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n"
    "<IRETURNVALUE>\n</IRETURNVALUE>\n</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
const std::string kChunkedHead =
    "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nCIMOperation: MethodResponse\r\n\r\n";

std::string Hex(std::size_t number) {
  std::string digits;
  do {
    digits.insert(digits.begin(), "0123456789abcdef"[number % 16]);
    number /= 16;
  } while (number != 0);
  return digits;
}

/// An answer without instances; chunked, so that no length depends on the message id.
std::string Good() { return kChunkedHead + Hex(kBody.size()) + "\r\n" + kBody + "\r\n0\r\n\r\n"; }

RawServerOptions Script(std::vector<Orvane::testing::RawActions> script) {
  RawServerOptions options;
  options.script = std::move(script);
  return options;
}

Uint32 Enumerate(CIMClient& client) {
  return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")).size();
}

Boolean AcceptAny(SSLCertificateInfo& /*info*/) { return true; }

String& LastDescription() {
  static String text;
  return text;
}

Boolean Describe(SSLCertificateInfo& info) {
  LastDescription() = info.toString();
  return true;
}

/// Sends a request of some megabytes to a server that resets the connection under it.
Thrown SendIntoReset(bool tls) {
  RawServerOptions options;
  if (tls) options.certificate = test::MakeCmmCertificate();
  options.onConnect = {RawAction::Await(), RawAction::Reset()};
  const RawServer server(options);
  CIMClient client;
  if (tls) {
    client.connect("127.0.0.1", server.Port(), SSLContext(String(), &AcceptAny), "", "");
  } else {
    client.connect("127.0.0.1", server.Port(), "", "");
  }
  const std::string big(16U * 1024U * 1024U, 'x');
  Array<CIMParamValue> in;
  Array<CIMParamValue> out;
  in.append(CIMParamValue(String("P"), CIMValue(String(big.c_str()))));
  return Catch([&] {
    client.invokeMethod(CIMNamespaceName("root/cimv2"), CIMObjectPath("CIM_Foo.A=\"x\""), CIMName("M"), in, out);
  });
}

class Signals : public ::testing::TestWithParam<bool> {};

TEST_P(Signals, ResetDuringSendRaisesNoSigpipeAndLeavesHandlersAlone) {
  struct sigaction before {};
  sigaction(SIGPIPE, nullptr, &before);
  // With the default action a single SIGPIPE would end this program.
  ASSERT_EQ(before.sa_handler, SIG_DFL);
  EXPECT_EQ(SendIntoReset(GetParam()), (Thrown{"CIMClientMalformedHTTPException", "Connection closed by CIM Server."}));
  struct sigaction after {};
  sigaction(SIGPIPE, nullptr, &after);
  EXPECT_EQ(after.sa_handler, SIG_DFL);
}

INSTANTIATE_TEST_SUITE_P(PlainAndTls, Signals, ::testing::Bool());

TEST(Client, ErrorWithHtmlBodyKeepsTheConnection) {
  const std::string html = "<html><body>" + std::string(5000, 'y') + "</body></html>";
  const RawServer server(
      Script({{RawAction::Send("HTTP/1.1 503 Busy\r\nContent-Length: " + std::to_string(html.size()) + "\r\n\r\n"),
               RawAction::Sleep(std::chrono::milliseconds(50)), RawAction::Send(html)},
              {RawAction::Send(Good())}}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");
  EXPECT_EQ(Catch([&] { Enumerate(client); }), (Thrown{"CIMClientHTTPErrorException", "HTTP Error (503 Busy)."}));
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Client, RedirectIsNotFollowed) {
  const RawServer server(
      Script({{RawAction::Send("HTTP/1.1 302 Found\r\nLocation: /other\r\nContent-Length: 0\r\n\r\n")}}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");
  EXPECT_EQ(Catch([&] { Enumerate(client); }), (Thrown{"CIMClientHTTPErrorException", "HTTP Error (302 Found)."}));
  EXPECT_EQ(server.Requests().size(), 1U);
}

TEST(Client, ProxyVariablesAreIgnored) {
  const Orvane::testing::ScopedEnvironment proxy("http_proxy", "http://127.0.0.1:1");
  const RawServer server(Script({{RawAction::Send(Good())}}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");
  EXPECT_EQ(Enumerate(client), 0U);
}

TEST(Client, HugePromiseThenCloseEndsAtOnce) {
  const RawServer server(Script({{RawAction::Send("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999\r\n"
                                                  "CIMOperation: MethodResponse\r\n\r\n<?xml version=\"1.0\" ?><CIM"),
                                  RawAction::Close()}}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");
  EXPECT_EQ(Catch([&] { Enumerate(client); }).name, "CIMClientXmlException");
}

TEST(Client, NoMessageHoldsThePassword) {
  const RawServer server(Script({{RawAction::Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
                                                  "Content-Length: 0\r\n\r\n")},
                                 {RawAction::Send("HTTP/1.1 401 No\r\nContent-Length: 0\r\n\r\n")}}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "user", "geheim7");
  const Thrown thrown = Catch([&] { Enumerate(client); });
  EXPECT_EQ(thrown, (Thrown{"CIMClientHTTPErrorException", "HTTP Error (401 No)."}));
  EXPECT_EQ(server.Requests().at(1).Lines("Authorization").size(), 1U);
}

TEST(Client, NullNamespaceSendsNothing) {
  const RawServer server(Script({}));
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");
  EXPECT_EQ(Catch([&] { client.enumerateInstances(CIMNamespaceName(), CIMName("CIM_Foo")); }),
            (Thrown{"InvalidNamespaceNameException", "invalid CIM namespace name: "}));
  EXPECT_TRUE(server.Requests().empty());
}

TEST(Tls, DescribesTheCertificate) {
  RawServerOptions options = Script({});
  options.certificate = test::MakeCmmCertificate();
  const RawServer server(options);
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), SSLContext(String(), &Describe), "", "");
  EXPECT_EQ(test::Utf8(LastDescription()),
            "Subject Name:\n\t/C=DE/O=Example/CN=cmm.example\nIssuer Name:\n\t/C=DE/O=Example/CN=cmm.example\n"
            "Depth: 0\nError code: 18\nResponse (preverify) code: 1\nError string: self-signed certificate\n"
            "Version number: 2\nSerial number: 4660\nNot before date: 20200101000000.000000+000\n"
            "Not after date: 20491231235959.000000+000\n");
}

TEST(Tls, IdleTls13ConnectionIsKept) {
  RawServerOptions options = Script({{RawAction::Send(Good())}, {RawAction::Send(Good())}});
  options.certificate = test::MakeCmmCertificate();
  constexpr int kTls13 = 0x0304;
  options.minTls = kTls13;
  const RawServer server(options);
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), SSLContext(String(), &AcceptAny), "", "");
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Tls, UnreadableCertificateFileIsRefusedAtConstruction) {
  EXPECT_EQ(Catch([] { const SSLContext context("", "/nowhere/c.pem", "", nullptr, ""); }),
            (Thrown{"SSLException", "SSL Exception: Could not access server certificate in /nowhere/c.pem."}));
}

TEST(Tls, ContextTellsWhatItWasGiven) {
  const SSLContext context("/trust", nullptr);
  const SSLContext copy(context);  // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
  EXPECT_EQ(test::Utf8(copy.getTrustStore()), "/trust");
  EXPECT_TRUE(copy.isPeerVerificationEnabled());
  EXPECT_EQ(copy.getSSLCertificateVerifyFunction(), nullptr);
  EXPECT_EQ(copy.getCRLStore(), nullptr);
  EXPECT_FALSE(SSLContext("", nullptr).isPeerVerificationEnabled());
  EXPECT_TRUE(SSLContext("", &AcceptAny).isPeerVerificationEnabled());
}

TEST(Tls, CopyOfACertificatesDescriptionIsIndependent) {
  SSLCertificateInfo info("/CN=leaf", "/CN=root", 1, SSLCertificateInfo::V_ERR_CERT_HAS_EXPIRED, 0);
  const SSLCertificateInfo copy(info);
  info.setErrorCode(SSLCertificateInfo::V_OK);
  info.setResponseCode(1);
  EXPECT_EQ(info.getErrorCode(), 0U);
  EXPECT_EQ(info.getResponseCode(), 1U);
  EXPECT_EQ(test::Utf8(copy.getSubjectName()), "/CN=leaf");
  EXPECT_EQ(test::Utf8(copy.getIssuerName()), "/CN=root");
  EXPECT_EQ(copy.getErrorDepth(), 1U);
  EXPECT_EQ(copy.getErrorCode(), 10U);
  EXPECT_EQ(copy.getResponseCode(), 0U);
}

TEST(Client, ConnectLocalGoesToTheStandardPortOfThisHost) {
  constexpr std::uint16_t kStandardPort = 5988;
  std::optional<RawServer> server;
  RawServerOptions options = Script({{RawAction::Send(Good())}});
  options.port = kStandardPort;
  try {
    server.emplace(options);
  } catch (const std::runtime_error&) {
    // Somebody else has the port.
  }
  CIMClient client;
  const Thrown thrown = Catch([&] { client.connectLocal(); });
  if (!server.has_value()) {
    // Its owner may be gone by now.
    if (!thrown.name.empty()) {
      EXPECT_EQ(thrown, (Thrown{"CannotConnectException", "Cannot connect to localhost:5988. Connection failed."}));
    }
    return;
  }
  EXPECT_EQ(thrown, Thrown());
  EXPECT_EQ(Catch([&] { client.connectLocal(); }), (Thrown{"AlreadyConnectedException", "already connected"}));
  EXPECT_EQ(Enumerate(client), 0U);
  EXPECT_EQ(server->Requests().at(0).Lines("HOST"), std::vector<std::string>{"HOST: localhost:5988"});
}

TEST(ResponseReader, TakesBytesOneByOne) {
  transport::ResponseReader reader;
  const std::string answer = Good();
  for (std::size_t i = 0; i + 1 < answer.size(); ++i) ASSERT_FALSE(reader.Take({&answer[i], 1})) << i;
  EXPECT_TRUE(reader.Take({&answer.back(), 1}));
  EXPECT_EQ(reader.Result().body, kBody);
}

TEST(ResponseReader, RefusesTooManyHeadersAndTooLongHeads) {
  std::string many = "HTTP/1.1 200 OK\r\n";
  for (std::size_t i = 0; i <= limits::kHeaders; ++i) many += "A: b\r\n";
  const Thrown malformed{"CIMClientMalformedHTTPException", "Malformed HTTP response message."};
  EXPECT_EQ(Catch([&] { transport::ResponseReader().Take(many); }), malformed);
  const std::string longHead = "HTTP/1.1 200 OK\r\nA: " + std::string(limits::kHeadBytes, 'a');
  EXPECT_EQ(Catch([&] { transport::ResponseReader().Take(longHead); }), malformed);
}

TEST(ResponseReader, MemoryFollowsTheBytesThatCame) {
  transport::ResponseReader reader;
  EXPECT_FALSE(reader.Take("HTTP/1.1 200 OK\r\nContent-Length: 400000000\r\n\r\nabc"));
  reader.End();
  const transport::HttpResponse response = reader.Result();
  EXPECT_EQ(response.body, "abc");
  EXPECT_LT(response.body.capacity(), 1000U);
}

}  // namespace
}  // namespace Pegasus
