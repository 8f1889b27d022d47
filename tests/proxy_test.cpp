// The bundled client and the library read chassis through a real nginx, as sites do that do not let their tools reach a
// management module directly: TLS that ends in the proxy, answers in chunks, connections that the proxy ends, slow
// lines, and the proxy's own refusals.
#include <Pegasus/Client/CIMClient.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/simulator/simulator.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "simulator/tests/loopback_client.h"
#include "testing/raw_server.h"
#include "testing/scoped_log.h"
#include "tests/nginx.h"
#include "tests/whole_inventory.h"

namespace Orvane::tests {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string kInChunks = "proxy_http_version 1.1; sub_filter_types *; sub_filter 'no answer holds this' '';";

Pegasus::Boolean AcceptAny(Pegasus::SSLCertificateInfo& /*certificate*/) { return true; }

/// What an action of the client threw: HTTP status, or 0, and the message.
struct Failure {
  unsigned httpStatus = 0;
  std::string message;
};

template <typename Action>
Failure FailureOf(Action action) {
  try {
    action();
  } catch (const Pegasus::CIMClientHTTPErrorException& error) {
    return {error.getCode(), std::string(error.getMessage().getCString())};
  } catch (const Pegasus::Exception& error) {
    return {0, std::string(error.getMessage().getCString())};
  }
  return {0, "nothing was thrown"};
}

class Client {
 public:
  Client(std::uint16_t port, bool tls, const char* password = ChassisUser::kPassword) {
    if (tls) {
      client_.connect("127.0.0.1", port, Pegasus::SSLContext(Pegasus::String::EMPTY, &AcceptAny), ChassisUser::kName,
                      password);
    } else {
      client_.connect("127.0.0.1", port, ChassisUser::kName, password);
    }
  }

  void SetTimeout(Pegasus::Uint32 milliseconds) { client_.setTimeout(milliseconds); }

  /// Every instance of a class, with all that the server tells of it.
  std::string Read(const char* className) {
    const Pegasus::Array<Pegasus::CIMInstance> instances =
        client_.enumerateInstances(Pegasus::CIMNamespaceName("root/cimv2"), Pegasus::CIMName(className));
    std::string text;
    for (Pegasus::Uint32 i = 0; i < instances.size(); ++i) {
      text += std::string(instances[i].getPath().toString().getCString()) + "\n";
      for (Pegasus::Uint32 j = 0; j < instances[i].getPropertyCount(); ++j) {
        const Pegasus::CIMConstProperty property = instances[i].getProperty(j);
        text += std::string(property.getName().getString().getCString()) + "=" +
                std::string(property.getValue().toString().getCString()) + "\n";
      }
    }
    return text;
  }

  /// A method call of that many bytes and more, which no object of the chassis takes.
  void Send(std::size_t bytes) {
    const std::string big(bytes, 'x');
    Pegasus::Array<Pegasus::CIMParamValue> in;
    in.append(Pegasus::CIMParamValue("Text", Pegasus::CIMValue(Pegasus::String(big.c_str()))));
    Pegasus::Array<Pegasus::CIMParamValue> out;
    client_.invokeMethod(Pegasus::CIMNamespaceName("root/cimv2"), Pegasus::CIMObjectPath("CIM_Chassis.Tag=\"x\""),
                         Pegasus::CIMName("Nothing"), in, out);
  }

 private:
  Pegasus::CIMClient client_;
};

class Proxy : public ::testing::TestWithParam<bool> {
 protected:
  Proxy() : simulator_(std::make_unique<simulator::Simulator>(simulator::BuiltInModel(), ChassisOptions())) {}

  static simulator::Options ChassisOptions() {
    simulator::Options options;
    options.user = ChassisUser::kName;
    options.password = ChassisUser::kPassword;
    return options;
  }

  static bool Tls() { return GetParam(); }
  std::string Chassis() const { return "http://127.0.0.1:" + std::to_string(simulator_->HttpPort()); }
  Nginx Through(const std::string& directives) const { return Nginx({Chassis(), directives, Tls()}); }

  void ExpectSameInventory(std::uint16_t port) const {
    const WholeInventory direct = ReadWholeInventory(simulator_->HttpsPort());
    const WholeInventory proxied = ReadWholeInventory(port);
    EXPECT_EQ(direct.records.at("cmms").at("returned"), 0);
    EXPECT_EQ(direct.records.at("switches").at("records").size(), 4U);
    EXPECT_EQ(proxied.records, direct.records);
  }

  testing::ScopedLog log_;
  std::unique_ptr<simulator::Simulator> simulator_;
};

TEST_P(Proxy, ShowsTheSameInventory) {
  Nginx nginx = Through("");
  ExpectSameInventory(nginx.Port());
  const std::vector<ProxiedAnswer> answers = nginx.StopAndReadLog();
  EXPECT_GT(answers.size(), 50U);
  EXPECT_THAT(answers, Each(Field("tlsVersion", &ProxiedAnswer::tlsVersion, Tls() ? "TLSv1.3" : "-")));
}

TEST_P(Proxy, ShowsTheSameInventoryOfAChassisWithTls) {
  const Nginx nginx({"https://127.0.0.1:" + std::to_string(simulator_->HttpsPort()), "", Tls()});
  ExpectSameInventory(nginx.Port());
}

TEST_P(Proxy, ShowsTheClientTheSameInstances) {
  const Nginx nginx = Through("");
  Client direct(simulator_->HttpPort(), false);
  Client proxied(nginx.Port(), Tls());
  for (const char* className : {"CIM_ManagedElement", "CIM_Dependency", "CIM_ConcreteJob"}) {
    EXPECT_EQ(proxied.Read(className), direct.Read(className)) << className;
  }
  EXPECT_THAT(proxied.Read("CIM_Chassis"), HasSubstr("SerialNumber=KS06PHZ40"));
}

TEST_P(Proxy, MayAnswerInChunks) {
  Nginx nginx = Through(kInChunks);
  ExpectSameInventory(nginx.Port());
  Client direct(simulator_->HttpPort(), false);
  Client proxied(nginx.Port(), Tls());
  EXPECT_EQ(proxied.Read("CIM_ManagedElement"), direct.Read("CIM_ManagedElement"));

  std::size_t good = 0;
  for (const ProxiedAnswer& answer : nginx.StopAndReadLog()) {
    if (answer.status != 200) continue;
    ++good;
    EXPECT_EQ(answer.transferEncoding, "chunked");
  }
  EXPECT_GT(good, 50U);
}

TEST_P(Proxy, MayAskForANewConnectionWithEveryRequest) {
  Nginx nginx = Through("keepalive_requests 1;");
  ExpectSameInventory(nginx.Port());
  const std::vector<ProxiedAnswer> answers = nginx.StopAndReadLog();
  EXPECT_GT(answers.size(), 50U);
  EXPECT_THAT(answers, Each(Field("request", &ProxiedAnswer::requestOfConnection, 1U)));
}

TEST_P(Proxy, MayAskForANewConnectionWithEveryThirdRequest) {
  Nginx nginx = Through("keepalive_requests 3;");
  ExpectSameInventory(nginx.Port());
  std::vector<unsigned> numbers;
  for (const ProxiedAnswer& answer : nginx.StopAndReadLog()) numbers.push_back(answer.requestOfConnection);
  EXPECT_EQ(*std::max_element(numbers.begin(), numbers.end()), 3U);
}

// Without a challenge, whose answer might find the connection just ended.
TEST_P(Proxy, MayEndConnectionsThatAreIdle) {
  simulator::Options options = ChassisOptions();
  options.authentication = false;
  simulator_ = std::make_unique<simulator::Simulator>(simulator::BuiltInModel(), options);
  Nginx nginx = Through("keepalive_timeout 1ms;");
  Client client(nginx.Port(), Tls());
  const std::string first = client.Read("CIM_Chassis");
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(nginx.WaitUntilIdle());
    EXPECT_EQ(client.Read("CIM_Chassis"), first);
  }
  std::set<std::string> connections;
  const std::vector<ProxiedAnswer> answers = nginx.StopAndReadLog();
  for (const ProxiedAnswer& answer : answers) connections.insert(answer.connection);
  EXPECT_EQ(answers.size(), 4U);
  EXPECT_EQ(connections.size(), 4U);
}

TEST_P(Proxy, MayBeSlow) {
  Client direct(simulator_->HttpPort(), false);
  const std::string expected = direct.Read("CIM_ComputerSystem");
  // The answer has some 80 KiB, so the proxy lets the last byte go in the second second at the earliest.
  Nginx nginx = Through("limit_rate 32k;");
  Client client(nginx.Port(), Tls());
  EXPECT_EQ(client.Read("CIM_ComputerSystem"), expected);
  const std::vector<ProxiedAnswer> answers = nginx.StopAndReadLog();
  ASSERT_GE(answers.size(), 2U);
  EXPECT_GT(answers[1].bytes, 65536U);
  EXPECT_GT(answers[1].milliseconds, 900U);
}

TEST_P(Proxy, MayBeTooSlow) {
  const Nginx nginx = Through("limit_rate 1k;");
  Client client(nginx.Port(), Tls());
  client.SetTimeout(300);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(FailureOf([&] { client.Read("CIM_ManagedElement"); }).message, "connection timed out");
  const auto waited = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(waited, std::chrono::milliseconds(300));
  EXPECT_LT(waited, std::chrono::seconds(5));
  // One second's worth of an answer, whole.
  client.SetTimeout(20000);
  EXPECT_EQ(client.Read("CIM_ConcreteJob"), "");
}

TEST_P(Proxy, SaysThatTheChassisIsGone) {
  const auto port = simulator_->HttpPort();
  Nginx nginx = Through("");
  Client client(nginx.Port(), Tls());
  const std::string before = client.Read("CIM_Chassis");
  simulator_.reset();

  const Failure failure = FailureOf([&] { client.Read("CIM_Chassis"); });
  EXPECT_EQ(failure.httpStatus, 502U);
  EXPECT_THAT(failure.message, StartsWith("HTTP Error (502 Bad Gateway)"));
  const WholeInventory none = ReadWholeInventory(nginx.Port());
  EXPECT_EQ(none.records.at("is cmm").at("returned"), false);
  EXPECT_EQ(none.records.at("cmms").at("returned"), 3);
  EXPECT_EQ(none.records.at("switches").at("returned"), 3);

  simulator::Options options = ChassisOptions();
  options.httpPort = port;
  simulator_ = std::make_unique<simulator::Simulator>(simulator::BuiltInModel(), options);
  EXPECT_EQ(client.Read("CIM_Chassis"), before);
  EXPECT_EQ(simulator_->RequestCount("EnumerateInstances"), 1U);
}

TEST_P(Proxy, SaysThatTheChassisIsSilent) {
  const testing::RawServer silent{testing::RawServerOptions()};
  const Nginx nginx({"http://127.0.0.1:" + std::to_string(silent.Port()), "proxy_read_timeout 100ms;", Tls()});
  Client client(nginx.Port(), Tls());
  const Failure failure = FailureOf([&] { client.Read("CIM_Chassis"); });
  EXPECT_EQ(failure.httpStatus, 504U);
  EXPECT_THAT(failure.message, StartsWith("HTTP Error (504 Gateway Time-out)"));
  // Nor did the client ask again by itself.
  EXPECT_EQ(silent.Requests().size(), 1U);
}

TEST_P(Proxy, RefusesTooLargeARequest) {
  Nginx nginx = Through("client_max_body_size 4k;");
  Client client(nginx.Port(), Tls());
  for (const std::size_t bytes : {std::size_t{8000}, std::size_t{3} * 1024 * 1024}) {
    const Failure failure = FailureOf([&] { client.Send(bytes); });
    EXPECT_EQ(failure.httpStatus, 413U) << bytes << ": " << failure.message;
    EXPECT_THAT(failure.message, StartsWith("HTTP Error (413 Request Entity Too Large)")) << bytes;
  }
  EXPECT_EQ(simulator_->RequestCount("InvokeMethod"), 0U);
  EXPECT_THAT(client.Read("CIM_Chassis"), HasSubstr("SerialNumber=KS06PHZ40"));
}

TEST_P(Proxy, PassesTheChallengeOfTheChassis) {
  Nginx nginx = Through("");
  {
    Client client(nginx.Port(), Tls());
    client.Read("CIM_Chassis");
    client.Read("CIM_Chassis");
    Client wrong(nginx.Port(), Tls(), "wrong");
    const Failure failure = FailureOf([&] { wrong.Read("CIM_Chassis"); });
    EXPECT_EQ(failure.httpStatus, 401U) << failure.message;
    EXPECT_THAT(failure.message, Not(HasSubstr("wrong")));
  }
  EXPECT_EQ(simulator_->RequestCount("EnumerateInstances"), 2U);
  std::vector<std::string> statuses;
  for (const ProxiedAnswer& answer : nginx.StopAndReadLog()) {
    statuses.push_back(std::to_string(answer.status) + " of " + answer.upstreamStatus);
  }
  EXPECT_THAT(statuses, ElementsAre("401 of 401", "200 of 200", "200 of 200", "401 of 401", "401 of 401"));
}

INSTANTIATE_TEST_SUITE_P(Protocols, Proxy, ::testing::Bool(),
                         [](const auto& tls) { return tls.param ? "Https" : "Http"; });

// What the client of the tests above was sent: looked at byte by byte.
TEST(ProxyOnTheWire, AnswersInMoreThanOneChunk) {
  simulator::Options options;
  options.authentication = false;
  options.httpsPort = -1;
  const simulator::Simulator simulator(simulator::BuiltInModel(), options);
  const Nginx nginx({"http://127.0.0.1:" + std::to_string(simulator.HttpPort()), kInChunks});
  const std::string body =
      "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
      "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstances\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
      "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\"><CLASSNAME "
      "NAME=\"CIM_ManagedElement\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";

  simulator::tests::PlainClient client(nginx.Port());
  client.Send(
      "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
      "CIMMethod: EnumerateInstances\r\nCIMObject: root%2Fcimv2\r\nContent-Length: " +
      std::to_string(body.size()) + "\r\n\r\n" + body);
  const std::string answer = client.ReadUntil("\r\n0\r\n\r\n");

  const std::size_t head = answer.find("\r\n\r\n");
  ASSERT_NE(head, std::string::npos);
  EXPECT_THAT(answer.substr(0, head), HasSubstr("Transfer-Encoding: chunked"));
  EXPECT_THAT(answer.substr(0, head), Not(HasSubstr("Content-Length")));
  std::size_t chunks = 0;
  std::size_t bytes = 0;
  for (std::size_t at = head + 4; at < answer.size(); ++chunks) {
    const std::size_t size = std::stoul(answer.substr(at), nullptr, 16);
    if (size == 0) break;
    bytes += size;
    at = answer.find("\r\n", at) + 2 + size + 2;
  }
  EXPECT_GT(chunks, 5U);
  EXPECT_GT(bytes, 100000U);
}

}  // namespace
}  // namespace Orvane::tests
