// TLS sessions are resumed between the connects of a process, and only where the first judgement of the certificate
// holds for the later connect too.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include <chrono>
#include <string>

#include "testing/raw_server.h"
#include "thrown.h"
#include "transport/certificates.h"

namespace Pegasus {
namespace {

using Orvane::testing::Certificate;
using Orvane::testing::RawAction;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using Orvane::testing::SessionPolicy;
using test::Catch;
using test::Thrown;

constexpr unsigned kManyAnswers = 64;

int& Judgements() {
  static int count = 0;
  return count;
}
Boolean Accept(SSLCertificateInfo& /*info*/) {
  ++Judgements();
  return true;
}
Boolean AcceptToo(SSLCertificateInfo& info) { return Accept(info); }
bool& Trusting() {
  static bool trusting = true;
  return trusting;
}
Boolean AcceptWhileTrusting(SSLCertificateInfo& /*info*/) {
  ++Judgements();
  return Trusting();
}
Boolean Refuse(SSLCertificateInfo& /*info*/) {
  ++Judgements();
  return false;
}

RawServerOptions Server(int tlsVersion) {
  RawServerOptions options;
  options.certificate = test::MakeCmmCertificate();
  options.minTls = tlsVersion;
  options.maxTls = tlsVersion;
  options.script.assign(kManyAnswers, {RawAction::Send("HTTP/1.1 500 Busy\r\nContent-Length: 0\r\n\r\n")});
  return options;
}

/// Connects, makes one request and disconnects.
void Converse(const RawServer& server, SSLCertificateVerifyFunction* verify) {
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), SSLContext(String(), verify), "", "");
  const Thrown thrown = Catch([&] { client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")); });
  EXPECT_EQ(thrown.name, "CIMClientHTTPErrorException");
  client.disconnect();
}

class TlsResumption : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override { Judgements() = 0; }
};

TEST_P(TlsResumption, LaterConnectsResumeTheSessionOfTheFirst) {
  const RawServer server(Server(GetParam()));
  Converse(server, &Accept);
  const int judgementsOfOne = Judgements();
  for (int i = 0; i < 5; ++i) Converse(server, &Accept);

  EXPECT_GT(judgementsOfOne, 0);
  EXPECT_EQ(Judgements(), judgementsOfOne);
  EXPECT_EQ(server.FullHandshakes(), 1U);
  EXPECT_EQ(server.ResumedHandshakes(), 5U);
  EXPECT_EQ(server.Connections(), 6U);
}

TEST_P(TlsResumption, ServerThatKnowsNoSessionsShowsItsCertificateEachTime) {
  RawServerOptions options = Server(GetParam());
  options.sessions = SessionPolicy::kForget;
  const RawServer server(options);
  Converse(server, &Accept);
  const int judgementsOfOne = Judgements();
  Converse(server, &Accept);

  EXPECT_EQ(Judgements(), 2 * judgementsOfOne);
  EXPECT_EQ(server.FullHandshakes(), 2U);
  EXPECT_EQ(server.ResumedHandshakes(), 0U);
}

TEST_P(TlsResumption, AnotherCallbackJudgesTheCertificateItself) {
  const RawServer server(Server(GetParam()));
  Converse(server, &Accept);
  const int judgementsOfOne = Judgements();
  Converse(server, &AcceptToo);

  EXPECT_EQ(Judgements(), 2 * judgementsOfOne);
  EXPECT_EQ(server.FullHandshakes(), 2U);
  EXPECT_EQ(server.ResumedHandshakes(), 0U);
}

TEST_P(TlsResumption, CallbackThatRefusesIsNotGotRoundByASessionOfAnother) {
  const RawServer server(Server(GetParam()));
  Converse(server, &Accept);
  const SSLContext refusing{String(), &Refuse};
  for (int i = 0; i < 2; ++i) {
    CIMClient client;
    EXPECT_EQ(Catch([&] { client.connect("127.0.0.1", server.Port(), refusing, "", ""); }).name,
              "CannotConnectException");
  }
  EXPECT_EQ(server.FullHandshakes(), 1U);
  EXPECT_EQ(server.Connections(), 3U);
}

TEST_P(TlsResumption, ServerThatComesBackWithAnotherCertificateIsJudgedAgain) {
  RawServerOptions options = Server(GetParam());
  {
    const RawServer server(options);
    options.port = server.Port();
    Converse(server, &Accept);
  }
  const int judgementsOfOne = Judgements();
  options.certificate = test::MakeCmmCertificate();
  const RawServer returned(options);
  Converse(returned, &Accept);

  EXPECT_EQ(Judgements(), 2 * judgementsOfOne);
  EXPECT_EQ(returned.FullHandshakes(), 1U);
  EXPECT_EQ(returned.Connections(), 1U);
}

TEST_P(TlsResumption, RefusalOfTheReturnedServersCertificateIsFinal) {
  RawServerOptions options = Server(GetParam());
  Trusting() = true;
  {
    const RawServer server(options);
    options.port = server.Port();
    Converse(server, &AcceptWhileTrusting);
  }
  Trusting() = false;
  const RawServer returned(options);
  CIMClient client;
  const SSLContext context(String(), &AcceptWhileTrusting);
  EXPECT_EQ(Catch([&] { client.connect("127.0.0.1", returned.Port(), context, "", ""); }).name,
            "CannotConnectException");
  EXPECT_EQ(returned.Connections(), 1U);
}

TEST_P(TlsResumption, ServerThatBreaksOffOverASessionGetsAFullHandshake) {
  RawServerOptions options = Server(GetParam());
  {
    const RawServer server(options);
    options.port = server.Port();
    Converse(server, &Accept);
  }
  options.sessions = SessionPolicy::kBreakOff;
  const RawServer returned(options);
  Converse(returned, &Accept);

  EXPECT_EQ(returned.FullHandshakes(), 1U);
  EXPECT_EQ(returned.Connections(), 2U);

  // The session that was not liked is forgotten.
  Converse(returned, &Accept);
  EXPECT_EQ(returned.Connections(), 3U);
}

TEST_P(TlsResumption, AnotherNameOfTheHostIsAnotherServer) {
  const RawServer server(Server(GetParam()));
  Converse(server, &Accept);
  CIMClient client;
  client.connect("localhost", server.Port(), SSLContext(String(), &Accept), "", "");
  EXPECT_TRUE(server.WaitForConnections(2, std::chrono::seconds(10)));
  EXPECT_EQ(server.ResumedHandshakes(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Versions, TlsResumption, ::testing::Values(TLS1_2_VERSION, TLS1_3_VERSION),
                         [](const auto& version) { return version.param == TLS1_2_VERSION ? "Tls12" : "Tls13"; });

TEST(TlsResumptionById, WorksWithoutTicketsToo) {
  RawServerOptions options = Server(TLS1_2_VERSION);
  options.tickets = false;
  const RawServer server(options);
  Converse(server, &Accept);
  Converse(server, &Accept);

  EXPECT_EQ(server.FullHandshakes(), 1U);
  EXPECT_EQ(server.ResumedHandshakes(), 1U);
}

}  // namespace
}  // namespace Pegasus
