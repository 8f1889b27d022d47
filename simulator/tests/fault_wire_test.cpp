// What a client meets on the wire, over HTTP and over HTTPS, when its request runs into a fault; and that the server
// goes on to serve.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "loopback_client.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using tests::PlainClient;
using tests::TlsClient;

constexpr const char* kHeadEnd = "\r\n\r\n";

std::string GoodRequest(const std::string& headers = "") {
  const std::string body =
      "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
      "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
      "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\"><CLASSNAME "
      "NAME=\"CIM_Chassis\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
  return "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
         "CIMMethod: EnumerateInstanceNames\r\nCIMObject: root%2Fcimv2\r\n" +
         headers + "Content-Length: " + std::to_string(body.size()) + kHeadEnd + body;
}

template <typename Client>
class FaultOnTheWire : public testing::Test {
 protected:
  void Serve(const std::string& faults, std::shared_ptr<Clock> clock = nullptr) {
    Options options;
    options.authentication = false;
    options.clock = clock ? std::move(clock) : clock_;
    options.faults = ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[)" + faults + "]}");
    simulator_.emplace(BuiltInModel(), options);
  }

  // The first request meets the effect, the others nothing.
  void ServeFirst(const std::string& effect, std::shared_ptr<Clock> clock = nullptr) {
    Serve(R"({"request":{"occurrence":1},"effect":)" + effect + "}", std::move(clock));
  }

  std::uint16_t Port() const {
    return std::is_same_v<Client, TlsClient> ? simulator_->HttpsPort() : simulator_->HttpPort();
  }

  bool Listens() const {
    try {
      const Client client(Port());
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  // All that the server sends to a new client until it ends the connection, or up to this text.
  std::string Answer(const std::string& end = "</CIM>", const std::string& headers = "") const {
    Client client(Port());
    EXPECT_TRUE(client.Send(GoodRequest(headers)));
    return client.ReadUntil(end);
  }

  std::uint64_t CarriedOut() const { return simulator_->RequestCount("EnumerateInstanceNames"); }

  void ExpectServed() const { EXPECT_THAT(Answer(), HasSubstr("CLASSNAME=\"VORTA_Chassis\"")); }

  std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  std::optional<Simulator> simulator_;
};

using Clients = testing::Types<PlainClient, TlsClient>;

struct ClientName {
  template <typename Client>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<Client, TlsClient> ? "Https" : "Http";
  }
};

TYPED_TEST_SUITE(FaultOnTheWire, Clients, ClientName);

TYPED_TEST(FaultOnTheWire, RefusesForItsTimeOnly) {
  this->ServeFirst(R"({"kind":"refuse","seconds":30})");
  const std::uint16_t http = this->simulator_->HttpPort();
  TypeParam other(this->Port());

  EXPECT_EQ(this->Answer(), "");
  EXPECT_FALSE(this->Listens());
  EXPECT_EQ(other.ReadUntil("x"), "");
  EXPECT_EQ(this->CarriedOut(), 0U);
  this->clock_->Advance(milliseconds(29999));
  EXPECT_FALSE(this->Listens());
  this->clock_->Advance(milliseconds(1));

  this->ExpectServed();
  EXPECT_EQ(this->simulator_->HttpPort(), http);
}

TYPED_TEST(FaultOnTheWire, RefusesAfterTheAnswer) {
  this->ServeFirst(R"({"kind":"refuse","seconds":30,"answerFirst":true})");

  EXPECT_THAT(this->Answer("never sent"), AllOf(HasSubstr("VORTA_Chassis"), EndsWith("</CIM>\n")));
  EXPECT_EQ(this->CarriedOut(), 1U);
  EXPECT_FALSE(this->Listens());
  this->clock_->Advance(seconds(30));

  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, RefusesAgainAndAgain) {
  this->Serve(R"({"request":{"occurrence":{"from":1,"to":2}},"effect":{"kind":"refuse","seconds":5}})");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(this->Answer(), "");
    EXPECT_FALSE(this->Listens());
    this->clock_->Advance(seconds(5));
  }
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, EndsWhileItRefuses) {
  this->ServeFirst(R"({"kind":"refuse","seconds":30})");
  EXPECT_EQ(this->Answer(), "");
  this->simulator_.reset();
  this->clock_->Advance(seconds(60));
}

TYPED_TEST(FaultOnTheWire, DropsBeforeTheAnswer) {
  this->ServeFirst(R"({"kind":"dropBeforeAnswer"})");

  EXPECT_EQ(this->Answer(), "");
  EXPECT_EQ(this->CarriedOut(), 1U);
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, DropsInTheAnswer) {
  this->ServeFirst(R"({"kind":"dropInAnswer","afterBytes":40})");

  const std::string cut = this->Answer("never sent");
  const std::string whole = this->Answer();

  EXPECT_EQ(cut.size(), cut.find(kHeadEnd) + 4 + 40);
  EXPECT_EQ(cut, whole.substr(0, cut.size()));
  EXPECT_EQ(this->CarriedOut(), 2U);
}

TYPED_TEST(FaultOnTheWire, DropsAfterTheHead) {
  this->ServeFirst(R"({"kind":"dropInAnswer","afterBytes":0})");
  EXPECT_THAT(this->Answer("never sent"), AllOf(StartsWith("HTTP/1.1 200 "), EndsWith(kHeadEnd)));
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, DropsOneByteBeforeTheEndAtLeast) {
  this->ServeFirst(R"({"kind":"dropInAnswer","afterBytes":16777216})");
  EXPECT_THAT(this->Answer("never sent"), EndsWith("</CIM>"));
  EXPECT_THAT(this->Answer("</CIM>\n"), EndsWith("</CIM>\n"));
}

TYPED_TEST(FaultOnTheWire, SendsTheLongestHeader) {
  const std::string longest(16384, 'x');
  this->ServeFirst(R"({"kind":"httpStatus","status":500,"reason":")" + longest + R"(","headers":{")" + longest +
                   R"(":")" + longest + R"("}})");
  const std::string answer = this->Answer(kHeadEnd);
  EXPECT_THAT(answer, StartsWith("HTTP/1.1 500 " + longest + "\r\n"));
  EXPECT_THAT(answer, HasSubstr("\r\n" + longest + ": " + longest + "\r\n"));
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, DropsBetweenChunks) {
  this->ServeFirst(R"({"kind":"dropInAnswer","afterBytes":40})");

  const std::string cut = this->Answer("never sent", "TE: trailers\r\n");

  EXPECT_THAT(cut, HasSubstr("Transfer-Encoding: chunked\r\n"));
  EXPECT_EQ(cut.size(), cut.find(kHeadEnd) + 4 + 40);
  EXPECT_THAT(this->Answer("\r\n0\r\n", "TE: trailers\r\n"), StartsWith(cut));
}

TYPED_TEST(FaultOnTheWire, Delays) {
  this->ServeFirst(R"({"kind":"delay","milliseconds":2500})");
  this->ExpectServed();
  EXPECT_EQ(this->clock_->Now(), milliseconds(2500));
  this->ExpectServed();
  EXPECT_EQ(this->clock_->Now(), milliseconds(2500));
}

TYPED_TEST(FaultOnTheWire, DelaysOnRealTime) {
  const auto clock = std::make_shared<ScaledClock>(1000.0);
  this->ServeFirst(R"({"kind":"delay","milliseconds":60000})", clock);
  const milliseconds start = clock->Now();
  TypeParam client(this->Port());
  client.Send(GoodRequest());
  // The request is carried out at once, and others are served meanwhile.
  while (this->CarriedOut() == 0) std::this_thread::yield();
  this->ExpectServed();

  EXPECT_THAT(client.ReadUntil("</CIM>"), HasSubstr("CLASSNAME=\"VORTA_Chassis\""));
  EXPECT_GE(clock->Now() - start, seconds(60));
}

TYPED_TEST(FaultOnTheWire, DelaysSeveralAtTheSameTime) {
  this->Serve(R"({"request":{},"effect":{"kind":"delay","milliseconds":100}})");
  std::vector<std::thread> clients(4);
  for (std::thread& client : clients) client = std::thread([this] { this->ExpectServed(); });
  for (std::thread& client : clients) client.join();
  EXPECT_GE(this->clock_->Now(), milliseconds(100));
  EXPECT_LE(this->clock_->Now(), milliseconds(400));
}

TYPED_TEST(FaultOnTheWire, EndsWhileItDelays) {
  this->ServeFirst(R"({"kind":"delay","milliseconds":600000})", std::make_shared<ScaledClock>(1.0));
  TypeParam client(this->Port());
  client.Send(GoodRequest());
  while (this->CarriedOut() == 0) std::this_thread::yield();
  this->simulator_.reset();
  EXPECT_EQ(client.ReadUntil("x"), "");
}

TYPED_TEST(FaultOnTheWire, AnswersAnHttpStatusWithReasonHeadersAndBody) {
  this->ServeFirst(
      R"({"kind":"httpStatus","status":503,"reason":"Very Busy","headers":{"Retry-After":"9"},"body":"<p>later</p>"})");

  EXPECT_THAT(this->Answer("</p>"), AllOf(StartsWith("HTTP/1.1 503 Very Busy\r\n"), HasSubstr("\r\nRetry-After: 9\r\n"),
                                          HasSubstr("\r\nContent-Length: 12\r\n"), EndsWith("\r\n\r\n<p>later</p>")));
  EXPECT_EQ(this->CarriedOut(), 0U);
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, KeepsTheConnectionAfterAnHttpStatus) {
  this->ServeFirst(R"({"kind":"httpStatus","status":401,"headers":{"WWW-Authenticate":"Basic realm=\"cmm\""}})");
  TypeParam client(this->Port());
  client.Send(GoodRequest());
  EXPECT_THAT(client.ReadUntil(kHeadEnd), AllOf(StartsWith("HTTP/1.1 401 Unauthorized\r\n"),
                                                HasSubstr("\r\nWWW-Authenticate: Basic realm=\"cmm\"\r\n"),
                                                HasSubstr("\r\nContent-Length: 0\r\n")));
  client.Send(GoodRequest());
  EXPECT_THAT(client.ReadUntil("</CIM>"), HasSubstr("VORTA_Chassis"));
}

TYPED_TEST(FaultOnTheWire, AnswersStatusesThatUsuallyHaveNoBody) {
  this->ServeFirst(R"({"kind":"httpStatus","status":204,"body":"all the same"})");
  EXPECT_THAT(this->Answer("all the same"), AllOf(StartsWith("HTTP/1.1 204 No Content\r\n"), EndsWith("all the same")));
}

TYPED_TEST(FaultOnTheWire, AnswersACimError) {
  this->ServeFirst(R"({"kind":"cimError","code":2,"description":"not you"})");
  EXPECT_THAT(this->Answer(),
              AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr(R"(<ERROR CODE="2" DESCRIPTION="not you"/>)")));
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, AnswersMalformedXml) {
  this->ServeFirst(R"({"kind":"malformedBody"})");
  EXPECT_THAT(this->Answer(),
              AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr("<SIMPLERSP>"), Not(HasSubstr("</SIMPLERSP>"))));
  EXPECT_EQ(this->CarriedOut(), 1U);
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, AnswersAnyOtherText) {
  this->ServeFirst(R"({"kind":"malformedBody","body":"<html><p>Internal error"})");
  EXPECT_THAT(this->Answer("error"), AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr("\r\nContent-Length: 23\r\n"),
                                           EndsWith("\r\n\r\n<html><p>Internal error")));
}

TYPED_TEST(FaultOnTheWire, AnswersTruncatedXmlInAWholeMessage) {
  this->ServeFirst(R"({"kind":"truncatedBody","bytes":21})");
  TypeParam client(this->Port());
  client.Send(GoodRequest());

  const std::string head = client.ReadUntil(kHeadEnd);
  EXPECT_THAT(head, HasSubstr("\r\nContent-Length: 21\r\n"));
  // The connection goes on after exactly these bytes.
  client.Send(GoodRequest());
  const std::string next = client.ReadUntil("</CIM>");
  const std::string both = head + next;
  EXPECT_EQ(both.substr(both.find(kHeadEnd) + 4 + 21, 15), "HTTP/1.1 200 OK");
}

TYPED_TEST(FaultOnTheWire, CountsRequestsOfAllConnections) {
  this->Serve(R"({"request":{"class":"cim_chassis","occurrence":3},"effect":{"kind":"httpStatus","status":500}})");
  this->ExpectServed();
  this->ExpectServed();
  EXPECT_THAT(this->Answer(kHeadEnd), StartsWith("HTTP/1.1 500 "));
  this->ExpectServed();
}

TYPED_TEST(FaultOnTheWire, WaitsForItsTime) {
  this->Serve(R"({"request":{},"when":{"afterSeconds":60},"effect":{"kind":"httpStatus","status":500}})");
  this->ExpectServed();
  this->clock_->Advance(seconds(60));
  EXPECT_THAT(this->Answer(kHeadEnd), StartsWith("HTTP/1.1 500 "));
}

TEST(FaultPlanOfSeveralSimulators, IsCountedByEachOnItsOwn) {
  Options options;
  options.authentication = false;
  options.httpsPort = -1;
  options.faults = ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[
      {"request":{"occurrence":1},"effect":{"kind":"httpStatus","status":500}}]})");
  const Simulator first(BuiltInModel(), options);
  const Simulator second(BuiltInModel(), options);
  for (const Simulator* simulator : {&first, &second}) {
    PlainClient client(simulator->HttpPort());
    client.Send(GoodRequest());
    EXPECT_THAT(client.ReadUntil(kHeadEnd), StartsWith("HTTP/1.1 500 "));
  }
}

TEST(RefusedUsers, MeetNoFaultAndDoNotCount) {
  Options options;
  options.user = "U";
  options.password = "p";
  options.httpsPort = -1;
  options.faults = ParseFaultPlan("f.json", R"({"formatVersion":1,"faults":[
      {"request":{"occurrence":1},"effect":{"kind":"httpStatus","status":500}}]})");
  const Simulator simulator(BuiltInModel(), options);
  PlainClient client(simulator.HttpPort());
  client.Send(GoodRequest());
  EXPECT_THAT(client.ReadUntil(kHeadEnd), StartsWith("HTTP/1.1 401 "));
  client.Send(GoodRequest("Authorization: Basic VTpw\r\n"));
  EXPECT_THAT(client.ReadUntil(kHeadEnd), StartsWith("HTTP/1.1 500 "));
}

}  // namespace
}  // namespace Orvane::simulator
