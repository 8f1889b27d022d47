// The server on real sockets: answers as they stand on the wire, connections kept, two clients at once, refusals that
// the HTTP side makes on its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <string>
#include <system_error>
#include <thread>

#include "loopback_client.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kBody =
    "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
    "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
    "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_Chassis\"/>"
    "</IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";

using Client = tests::PlainClient;

std::string Request(const std::string& extraHeaders) {
  const std::string body = kBody;
  return "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
         "CIMMethod: EnumerateInstanceNames\r\nCIMObject: root%2Fcimv2\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n" + extraHeaders + "\r\n" + body;
}

Options HttpOnly() {
  Options options;
  options.user = "U";
  options.password = "p";
  options.httpsPort = -1;
  return options;
}

TEST(Server, ChallengesAndThenAnswersOnOneConnection) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  Client client(simulator.HttpPort());

  client.Send(Request(""));
  const std::string challenge = client.ReadUntil("\r\n\r\n");
  client.Send(Request("Authorization: Basic VTpw\r\n"));
  const std::string answer = client.ReadUntil("</CIM>");

  EXPECT_THAT(challenge, StartsWith("HTTP/1.1 401 "));
  EXPECT_THAT(challenge, HasSubstr("WWW-Authenticate: Basic realm=\"cmm\""));
  EXPECT_THAT(challenge, HasSubstr("Content-Length: 0"));
  EXPECT_THAT(answer, HasSubstr("CLASSNAME=\"VORTA_Chassis\""));
  EXPECT_EQ(simulator.RequestCount("EnumerateInstanceNames"), 1U);
}

TEST(Server, AnswersInChunksToClientsThatTakeTrailers) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  Client client(simulator.HttpPort());

  client.Send(Request("TE: chunked, trailers\r\nAuthorization: Basic VTpw\r\n"));

  EXPECT_THAT(client.ReadUntil("\r\n0\r\n\r\n"), HasSubstr("Transfer-Encoding: chunked"));
}

TEST(Server, RefusesWhatIsNoHttp) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  Client client(simulator.HttpPort());

  client.Send("\x16\x03\x01 no HTTP\r\n\r\n");

  EXPECT_THAT(client.ReadUntil("\r\n\r\n"), StartsWith("HTTP/1.1 400 "));
}

TEST(Server, RefusesTooLargeABody) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  Client client(simulator.HttpPort());

  client.Send("POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Length: 99999999\r\n\r\n");

  EXPECT_THAT(client.ReadUntil("\r\n\r\n"), StartsWith("HTTP/1.1 413 "));
}

TEST(Server, ServesSeveralClientsAtOnce) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  constexpr unsigned kClients = 4;
  constexpr unsigned kRequests = 10;
  std::array<std::thread, kClients> threads;
  for (std::thread& thread : threads) {
    thread = std::thread([&simulator] {
      Client client(simulator.HttpPort());
      for (unsigned i = 0; i < kRequests; ++i) {
        client.Send(Request("Authorization: Basic VTpw\r\n"));
        EXPECT_THAT(client.ReadUntil("</CIM>\n"), HasSubstr("VORTA_Chassis"));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(simulator.RequestCount("EnumerateInstanceNames"), kClients * kRequests);
}

TEST(Server, AnswersOverTls) {
  Options options = HttpOnly();
  options.httpPort = -1;
  options.httpsPort = 0;
  const Simulator simulator(BuiltInModel(), options);
  tests::TlsClient client(simulator.HttpsPort());

  client.Send(Request(""));
  EXPECT_THAT(client.ReadUntil("\r\n\r\n"), StartsWith("HTTP/1.1 401 "));
  client.Send(Request("Authorization: Basic VTpw\r\n"));
  EXPECT_THAT(client.ReadUntil("</CIM>"), HasSubstr("CLASSNAME=\"VORTA_Chassis\""));
  EXPECT_EQ(simulator.HttpPort(), 0U);
}

TEST(Server, ContinuesForAClientThatWaitsForIt) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  Client client(simulator.HttpPort());
  const std::string request = Request("Expect: 100-continue\r\nAuthorization: Basic VTpw\r\n");
  const std::size_t body = request.find("\r\n\r\n") + 4;

  client.Send(request.substr(0, body));
  EXPECT_EQ(client.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
  client.Send(request.substr(body));
  EXPECT_THAT(client.ReadUntil("</CIM>"), StartsWith("HTTP/1.1 200 "));
}

TEST(Server, SaysWhichPortIsTaken) {
  const Simulator first(BuiltInModel(), HttpOnly());
  Options options = HttpOnly();
  options.httpPort = first.HttpPort();
  try {
    const Simulator second(BuiltInModel(), options);
    FAIL() << "two servers on one port";
  } catch (const std::system_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("cannot listen on 127.0.0.1 port " + std::to_string(first.HttpPort())));
  }
}

TEST(Server, RefusesSenselessOptions) {
  Options options = HttpOnly();
  options.httpPort = -1;
  EXPECT_THROW(Simulator(BuiltInModel(), options), std::invalid_argument);
  options.httpPort = 65536;
  EXPECT_THROW(Simulator(BuiltInModel(), options), std::invalid_argument);
}

// Milliseconds of processor time of this process.
long ProcessorTime() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return time.tv_sec * 1000 + time.tv_nsec / 1000000;
}

TEST(Server, PausesWhenItCannotAccept) {
  const Simulator simulator(BuiltInModel(), HttpOnly());
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const int firstFree = ::dup(0);
  ASSERT_GE(firstFree, 0);
  ::close(firstFree);
  // One descriptor is left, for the client.
  const rlimit tight{static_cast<rlim_t>(firstFree) + 1, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
  Client client(simulator.HttpPort());
  const long start = ProcessorTime();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const long used = ProcessorTime() - start;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);

  // A few tries cost next to nothing; a busy loop takes what a loaded machine gives it.
  EXPECT_LT(used, 30);
  client.Send(Request("Authorization: Basic VTpw\r\n"));
  EXPECT_THAT(client.ReadUntil("</CIM>"), HasSubstr("VORTA_Chassis"));
}

}  // namespace
}  // namespace Orvane::simulator
