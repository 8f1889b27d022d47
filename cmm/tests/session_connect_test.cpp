// Connecting a session: HTTPS before HTTP, the default ports, the code and line of each failure, and what the session
// can do after each outcome. The default ports are taken on a loopback address of their own, so that no other program
// is in the way; a test that cannot have them fails.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "cmm/inventory_update/cmm_peg_client.h"
#include "testing/certificate.h"
#include "testing/cim_server.h"
#include "testing/http_listener.h"
#include "testing/scoped_log.h"

namespace Orvane {
namespace {

using testing::CimServer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::ScopedLog;

constexpr char kHost[] = "127.0.0.1";
constexpr char kDefaultPortsHost[] = "127.0.0.2";
constexpr char kUser[] = "USERID";
constexpr char kPassword[] = "s3cret-word";
constexpr std::uint16_t kHttpsPort = 5989;
constexpr std::uint16_t kHttpPort = 5988;

CimServer::Options On(const char* address, std::uint16_t port, bool tls) {
  CimServer::Options options;
  options.address = address;
  options.port = port;
  options.tls = tls;
  return options;
}

// A port on which nothing listens and nobody else can: it is bound, so a connection is refused.
class RefusedPort {
 public:
  explicit RefusedPort(const char* address = kHost, std::uint16_t port = 0) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    const int reuse = 1;
    setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    if (inet_pton(AF_INET, address, &name.sin_addr) != 1 ||
        bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
      close(socket_);
      throw std::runtime_error(std::string("cannot bind ") + address + ":" + std::to_string(port));
    }
    socklen_t size = sizeof name;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&name), &size);
    port_ = ntohs(name.sin_port);
  }
  ~RefusedPort() { close(socket_); }
  RefusedPort(const RefusedPort&) = delete;
  RefusedPort& operator=(const RefusedPort&) = delete;

  std::uint16_t Port() const { return port_; }

 private:
  int socket_;
  std::uint16_t port_ = 0;
};

std::string CannotConnect(const std::string& host, unsigned port) {
  return "Pegasus CannotConnectException:Cannot connect to " + host + ":" + std::to_string(port) +
         ". Connection failed.";
}

std::size_t OpenedConnections(const CimServer& server) {
  const std::vector<CimServer::Event> events = server.Events();
  return static_cast<std::size_t>(std::count_if(events.begin(), events.end(), [](const CimServer::Event& event) {
    return event.kind == CimServer::EventKind::kOpened;
  }));
}

// Whether the session's connection answers a request.
bool Answers(PegClientOpt& session) {
  Pegasus::Array<Pegasus::CIMInstance> instances;
  return session.EnumerateInstancesStatus("root/cimv2", "CIM_Chassis", instances) == 0;
}

TEST(SessionConnectOnce, SecureSpeaksTls) {
  CimServer server(On(kHost, 0, true));
  PegClientOpt session;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, true), 0);

  EXPECT_TRUE(Answers(session));
  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_TRUE(server.Requests()[0].tls);
}

TEST(SessionConnectOnce, PlainSpeaksHttp) {
  CimServer server;
  PegClientOpt session;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false), 0);

  EXPECT_TRUE(Answers(session));
  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_FALSE(server.Requests()[0].tls);
}

TEST(SessionConnectOnce, SendsNoRequest) {
  CimServer server;
  PegClientOpt session;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false), 0);
  session.Disconnect();

  EXPECT_TRUE(server.WaitUntilAllClosed());
  EXPECT_THAT(server.Requests(), IsEmpty());
}

TEST(SessionConnectOnce, WritesNoLineOnSuccess) {
  CimServer server;
  PegClientOpt session;
  const ScopedLog log;

  session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false);

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(SessionConnectOnce, RefusedIsMinusFour) {
  const RefusedPort port;
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.ConnectOnce(kHost, port.Port(), kUser, kPassword, true), -4);
  EXPECT_EQ(session.ConnectOnce(kHost, port.Port(), kUser, kPassword, false), -4);

  EXPECT_THAT(log.Texts(1), ElementsAre(CannotConnect(kHost, port.Port()), CannotConnect(kHost, port.Port())));
  EXPECT_EQ(log.Records().size(), 2u);
}

TEST(SessionConnectOnce, TlsToAPlainPortIsMinusFour) {
  CimServer server;
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, true), -4);

  EXPECT_THAT(log.Texts(1), ElementsAre(CannotConnect(kHost, server.Port())));
}

TEST(SessionConnectOnce, AHostWithoutAddressIsMinusTwo) {
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.ConnectOnce("127.0.0.300", kHttpPort, kUser, kPassword, false), -2);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus InvalidLocatorException: Invalid locator: 127.0.0.300:5988"));
}

TEST(SessionConnectOnce, ConnectedAlreadyIsMinusOne) {
  CimServer server;
  PegClientOpt session;
  ASSERT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false), 0);
  const ScopedLog log;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false), -1);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus AlreadyConnectedException: already connected"));
}

TEST(SessionConnectOnce, ATextThatIsNoUtf8IsMinusSix) {
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.ConnectOnce("\xff\xfe", kHttpPort, kUser, kPassword, false), -6);

  ASSERT_EQ(log.Texts(1).size(), 1u);
  EXPECT_EQ(log.Texts(1)[0].rfind("Unknown Exception: ", 0), 0u) << log.Texts(1)[0];
}

// No descriptor is left for a socket.
class DescriptorLimit {
 public:
  DescriptorLimit() {
    getrlimit(RLIMIT_NOFILE, &previous_);
    const int next = dup(0);
    close(next);
    rlimit limit = previous_;
    limit.rlim_cur = static_cast<rlim_t>(next);
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &previous_); }
  DescriptorLimit(const DescriptorLimit&) = delete;
  DescriptorLimit& operator=(const DescriptorLimit&) = delete;

 private:
  rlimit previous_{};
};

TEST(SessionConnectOnce, NoSocketIsMinusThree) {
  CimServer server;
  PegClientOpt session;
  const ScopedLog log;
  int code = 0;

  {
    const DescriptorLimit limit;
    code = session.ConnectOnce(kHost, server.Port(), kUser, kPassword, false);
  }

  EXPECT_EQ(code, -3);
  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus CannotCreateSocketException:Cannot create socket"));
}

TEST(SessionConnectOnce, ReachesAnIPv6Address) {
  CimServer server(On("::1", 0, true));
  PegClientOpt session;

  EXPECT_EQ(session.ConnectOnce("::1", server.Port(), kUser, kPassword, true), 0);

  EXPECT_TRUE(Answers(session));
}

TEST(SessionConnectOnce, AcceptsAnExpiredCertificate) {
  testing::HttpListener::Options options;
  testing::CertificateOptions expired;
  expired.commonName = "another-host";
  expired.notBeforeDays = -20;
  expired.notAfterDays = -10;
  options.certificate = testing::MakeSelfSignedCertificate(expired);
  testing::HttpListener server(
      options,
      [](const testing::HttpExchange&) {
        return testing::HttpReply{"", testing::HttpReply::After::kClose};
      },
      [](testing::HttpListener::Change, unsigned) {});
  PegClientOpt session;

  EXPECT_EQ(session.ConnectOnce(kHost, server.Port(), kUser, kPassword, true), 0);
}

TEST(AcceptAnyCertificate, IsTrueWhateverTheErrorIs) {
  for (const int error : {Pegasus::SSLCertificateInfo::V_OK, Pegasus::SSLCertificateInfo::V_ERR_CERT_HAS_EXPIRED,
                          Pegasus::SSLCertificateInfo::V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT}) {
    Pegasus::SSLCertificateInfo certificate("/CN=cmm", "/CN=issuer", 0, error, 0);
    EXPECT_TRUE(AcceptAnyCertificate(certificate)) << error;
  }
}

TEST(SessionConnect, PrefersTls) {
  CimServer server(On(kHost, 0, true));
  PegClientOpt session;

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));
  EXPECT_EQ(OpenedConnections(server), 1u);
}

TEST(SessionConnect, FallsBackToHttpOnTheSamePort) {
  CimServer server;
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));
  EXPECT_THAT(log.Texts(1), ElementsAre(CannotConnect(kHost, server.Port())));
  EXPECT_TRUE(log.Has(3, "Connect CIMOM . H:127.0.0.1 P:" + std::to_string(server.Port()) + " U:USERID RC: 0"));
}

TEST(SessionConnect, RefusedTriesTwiceOnThePortAndGivesTheLastCode) {
  const RefusedPort port;
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kHost, port.Port(), kUser, kPassword), -4);

  EXPECT_THAT(log.Texts(1), ElementsAre(CannotConnect(kHost, port.Port()), CannotConnect(kHost, port.Port())));
  EXPECT_THAT(log.Texts(3),
              ElementsAre("Connect CIMOM . H:127.0.0.1 P:" + std::to_string(port.Port()) + " U:USERID RC: -4"));
}

TEST(SessionConnect, PortZeroIsHttpsOnItsStandardPort) {
  CimServer https(On(kDefaultPortsHost, kHttpsPort, true));
  CimServer http(On(kDefaultPortsHost, kHttpPort, false));
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kDefaultPortsHost, 0, kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));
  EXPECT_EQ(OpenedConnections(https), 1u);
  EXPECT_EQ(OpenedConnections(http), 0u);
  EXPECT_THAT(log.Texts(1), IsEmpty());
  EXPECT_THAT(log.Texts(3), ElementsAre("Connect CIMOM . H:127.0.0.2 P:0 U:USERID RC: 0"));
}

TEST(SessionConnect, PortZeroFallsBackToHttpOnItsStandardPort) {
  const RefusedPort https(kDefaultPortsHost, kHttpsPort);
  CimServer http(On(kDefaultPortsHost, kHttpPort, false));
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kDefaultPortsHost, 0, kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));
  EXPECT_THAT(log.Texts(1), ElementsAre(CannotConnect(kDefaultPortsHost, kHttpsPort)));
  EXPECT_THAT(log.Texts(3), ElementsAre("Connect CIMOM . H:127.0.0.2 P:0 U:USERID RC: 0"));
}

TEST(SessionConnect, PortZeroWithNothingThereGivesTheCodeOfHttp) {
  const RefusedPort https(kDefaultPortsHost, kHttpsPort);
  const RefusedPort http(kDefaultPortsHost, kHttpPort);
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kDefaultPortsHost, 0, kUser, kPassword), -4);

  EXPECT_THAT(log.Texts(1),
              ElementsAre(CannotConnect(kDefaultPortsHost, kHttpsPort), CannotConnect(kDefaultPortsHost, kHttpPort)));
  EXPECT_THAT(log.Texts(3), ElementsAre("Connect CIMOM . H:127.0.0.2 P:0 U:USERID RC: -4"));
}

TEST(SessionConnect, OnAConnectedSessionFailsTwiceAndKeepsTheConnection) {
  CimServer server(On(kHost, 0, true));
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), -1);

  EXPECT_THAT(log.Texts(1), ElementsAre("Pegasus AlreadyConnectedException: already connected",
                                        "Pegasus AlreadyConnectedException: already connected"));
  EXPECT_TRUE(Answers(session));
  EXPECT_EQ(OpenedConnections(server), 1u);
}

TEST(SessionConnect, AFailureLeavesTheSessionUsable) {
  const RefusedPort port;
  CimServer server;
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, port.Port(), kUser, kPassword), -4);

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));
}

TEST(SessionConnect, WrongCredentialsDoNotShow) {
  CimServer::Options options = On(kHost, 0, true);
  options.user = kUser;
  options.password = "another";
  CimServer server(options);
  PegClientOpt session;
  const ScopedLog log;

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_THAT(log.Texts(1), IsEmpty());
}

TEST(SessionConnect, SendsTheCredentialsThatTheServerAsksFor) {
  CimServer::Options options = On(kHost, 0, true);
  options.user = kUser;
  options.password = kPassword;
  CimServer server(options);
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_TRUE(Answers(session));

  ASSERT_FALSE(server.Requests().empty());
  EXPECT_TRUE(server.Requests().back().authorized);
}

TEST(SessionConnect, WritesItsLineAtLevelThreeOnly) {
  const RefusedPort port;
  PegClientOpt session;
  const ScopedLog log(2);

  session.Connect(kHost, port.Port(), kUser, kPassword);

  EXPECT_EQ(log.Records().size(), 2u);
  EXPECT_EQ(log.Texts(1).size(), 2u);
}

TEST(SessionConnect, WritesNothingAtLevelZero) {
  const RefusedPort port;
  PegClientOpt session;
  const ScopedLog log(0);

  session.Connect(kHost, port.Port(), kUser, kPassword);

  EXPECT_THAT(log.Records(), IsEmpty());
}

TEST(SessionConnect, NeverLogsThePassword) {
  const RefusedPort port;
  CimServer server;
  PegClientOpt session;
  const ScopedLog log;

  session.Connect("127.0.0.300", port.Port(), kUser, kPassword);
  session.Connect(kHost, port.Port(), kUser, kPassword);
  session.Connect(kHost, server.Port(), kUser, kPassword);
  session.Connect(kHost, server.Port(), kUser, kPassword);

  ASSERT_FALSE(log.Records().empty());
  for (const Log::Record& record : log.Records()) EXPECT_THAT(record.text, Not(HasSubstr(kPassword)));
}

TEST(SessionConnect, LinesNameTheSource) {
  const RefusedPort port;
  PegClientOpt session;
  const ScopedLog log;

  session.Connect(kHost, port.Port(), kUser, kPassword);

  ASSERT_EQ(log.Records().size(), 3u);
  for (const Log::Record& record : log.Records()) {
    EXPECT_EQ(record.file, "cmm/inventory_update/cmm_peg_client");
    EXPECT_GT(record.line, 0);
  }
}

TEST(Session, WaitsFiveMinutesForConnectsAndRequests) {
  CimServer server;
  PegClientOpt session;

  EXPECT_EQ(session.Timeout(), 300000u);
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);
  EXPECT_EQ(session.Timeout(), 300000u);
}

TEST(SessionDisconnect, WithoutAConnectionIsTrue) {
  PegClientOpt session;

  EXPECT_TRUE(session.Disconnect());
}

TEST(SessionDisconnect, EndsTheConnection) {
  CimServer server;
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_TRUE(session.Disconnect());

  EXPECT_TRUE(server.WaitUntilAllClosed());
  EXPECT_FALSE(session.EnumerateInstances("root/cimv2", "CIM_Chassis").size() > 0);
  EXPECT_THAT(server.Requests(), IsEmpty());
}

TEST(SessionDisconnect, AllowsTheNextConnect) {
  CimServer server(On(kHost, 0, true));
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);
  session.Disconnect();

  EXPECT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_EQ(OpenedConnections(server), 2u);
}

TEST(SessionDestructor, EndsTheConnection) {
  CimServer server(On(kHost, 0, true));
  {
    PegClientOpt session;
    ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);
  }

  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST(SessionCloser, DisconnectsWhenAnExceptionPasses) {
  CimServer server;
  PegClientOpt session;
  ASSERT_EQ(session.Connect(kHost, server.Port(), kUser, kPassword), 0);

  EXPECT_THROW(
      {
        const SessionCloser closer(session);
        throw std::runtime_error("anything");
      },
      std::runtime_error);

  EXPECT_TRUE(server.WaitUntilAllClosed());
}

}  // namespace
}  // namespace Orvane
