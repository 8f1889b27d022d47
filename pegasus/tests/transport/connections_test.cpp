// Plays every recorded exchange again: a scripted server on one side, a client that makes the recorded calls on the
// other. Compared are the results, the connections, and the credentials, cookies and message ids of the requests.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "testing/raw_server.h"
#include "thrown.h"
#include "transport/certificates.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using nlohmann::json;
using Orvane::testing::Certificate;
using Orvane::testing::RawAction;
using Orvane::testing::RawActions;
using Orvane::testing::RawRequest;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;

/// What this client does otherwise than the recording, and why.
struct Deviation {
  const char* why;
  json results;
  unsigned connections;
  std::size_t requests;
};

const std::map<std::string, Deviation>& Deviations() {
  static const json ok = {{"ok", true}};
  static const json none = {{"instances", json::array()}};
  static const std::map<std::string, Deviation> table{
      {"tls13-only-server", {"TLS 1.3 is offered too", json::array({ok, none}), 1, 1}},
      {"tls-reconnect",
       {"a TLS connection that was closed without a goodbye is noticed as a plain one is, before anything is sent",
        json::array({ok, none, ok, none}), 2, 2}},
      {"http-100-continue-short",
       {"interim responses are skipped, as HTTP asks for", json::array({{{"timeout", 1000}}, ok, none}), 1, 1}},
  };
  return table;
}

/// Recorded times are cut to this part where nothing but the waiting would be lost.
constexpr unsigned kTimeDivisor = 2;
/// Stands for the client's default time-out in exchanges that wait for it.
constexpr Uint32 kShortTimeout = 300;

std::chrono::milliseconds Scaled(double seconds) {
  constexpr double kMilliseconds = 1000.0;
  return std::chrono::milliseconds(static_cast<long>(seconds * kMilliseconds / kTimeDivisor));
}

/// Recorded texts of servers are Latin-1.
std::string Latin1Bytes(const std::string& utf8) {
  const String text(utf8.c_str());
  std::string bytes;
  for (Uint32 i = 0; i < text.size(); ++i) bytes += static_cast<char>(static_cast<Uint16>(text[i]));
  return bytes;
}

RawActions ActionsOf(const json& list) {
  if (list.is_string()) return {RawAction::Hang()};
  RawActions actions;
  for (const json& item : list) {
    const auto kind = item.at(0).get<std::string>();
    if (kind == "send") {
      actions.push_back(RawAction::Send(Latin1Bytes(item.at(1).get<std::string>())));
    } else if (kind == "close") {
      actions.push_back(RawAction::Close());
    } else if (kind == "rst") {
      actions.push_back(RawAction::Reset());
    } else if (kind == "sleep") {
      actions.push_back(RawAction::Sleep(Scaled(item.at(1).get<double>())));
    } else if (kind == "stoplisten") {
      actions.push_back(RawAction::StopListen());
    } else {
      throw std::runtime_error("unknown action " + kind);
    }
  }
  return actions;
}

std::string BigResponse() {
  std::string instances;
  for (int i = 0; i < 50; ++i) {
    const std::string key = std::to_string(i);
    instances +=
        "<VALUE.NAMEDINSTANCE>\n<INSTANCENAME CLASSNAME=\"CIM_Foo\"><KEYBINDING NAME=\"A\"><KEYVALUE "
        "VALUETYPE=\"string\">" +
        key +
        "</KEYVALUE></KEYBINDING></INSTANCENAME>\n"
        "<INSTANCE CLASSNAME=\"CIM_Foo\">\n<PROPERTY NAME=\"S\" TYPE=\"string\"><VALUE>" +
        std::string(1000, 'x') + "</VALUE></PROPERTY>\n</INSTANCE>\n</VALUE.NAMEDINSTANCE>\n";
  }
  const std::string body =
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
      "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n"
      "<IRETURNVALUE>\n" +
      instances + "</IRETURNVALUE>\n</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
  return "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=utf-8\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\nCIMOperation: MethodResponse\r\n\r\n" + body;
}

Certificate CertificateFor(const std::string& name) {
  if (name == "tls-chain") return test::MakeIssuedCertificate(true);
  if (name == "tls-leaf-only") return test::MakeIssuedCertificate(false);
  return test::MakeCmmCertificate();
}

RawServerOptions ServerOptions(const json& record) {
  constexpr int kTls11 = 0x0302;
  constexpr int kTls12 = 0x0303;
  constexpr int kTls13 = 0x0304;
  RawServerOptions options;
  options.address = record.value("listen", std::string("127.0.0.1"));
  const auto name = record.at("name").get<std::string>();
  if (record.value("tls", false)) options.certificate = CertificateFor(name);
  // The recorded client never offered a session, so every one of its handshakes shows the certificate.
  options.sessions = Orvane::testing::SessionPolicy::kForget;
  if (name == "tls13-only-server") options.minTls = kTls13;
  if (name == "tls12-only-server") options.maxTls = kTls12;
  if (name == "tls11-only-server") options.minTls = options.maxTls = kTls11;
  if (record.contains("onConnect")) options.onConnect = ActionsOf(record["onConnect"]);
  if (!record.contains("script")) return options;
  if (record["script"].is_string()) {
    options.script.push_back({RawAction::Send(BigResponse())});
    return options;
  }
  for (const json& item : record["script"]) options.script.push_back(ActionsOf(item));
  return options;
}

/// What the verification callback saw; the callback is a plain function, so this cannot be a test's own member.
std::vector<json>& Callbacks() {
  static std::vector<json> callbacks;
  return callbacks;
}

json Describe(SSLCertificateInfo& info) {
  return {{"subject", test::Utf8(info.getSubjectName())},
          {"issuer", test::Utf8(info.getIssuerName())},
          {"version", info.getVersionNumber()},
          {"serial", info.getSerialNumber()},
          {"depth", info.getErrorDepth()},
          {"errorCode", info.getErrorCode()},
          {"errorString", test::Utf8(info.getErrorString())},
          {"responseCode", info.getResponseCode()}};
}

Boolean Accept(SSLCertificateInfo& info) {
  Callbacks().push_back(Describe(info));
  return true;
}

Boolean Refuse(SSLCertificateInfo& info) {
  Callbacks().push_back(Describe(info));
  return false;
}

SSLContext ContextFor(const std::string& mode) {
  return SSLContext(String(), mode == "n" ? nullptr : mode == "1" ? &Accept : &Refuse);
}

/// A client that makes recorded calls.
class Player {
 public:
  explicit Player(std::uint16_t port) : port_(std::to_string(port)) {}

  json Call(const json& call) {
    Callbacks().clear();
    json result;
    try {
      result = Do(call);
    } catch (const CIMException& exception) {
      result = Thrown(exception);
      result["throws"]["cimStatus"] = static_cast<int>(exception.getCode());
    } catch (const CIMClientHTTPErrorException& exception) {
      result = Thrown(exception);
      result["httpStatus"] = exception.getCode();
      result["cimError"] = test::Utf8(exception.getCIMError());
      result["cimErrorDetail"] = test::Utf8(exception.getCIMErrorDetail());
    } catch (const Exception& exception) {
      result = Thrown(exception);
    }
    if (!Callbacks().empty()) result["certCallbacks"] = Callbacks();
    return result;
  }

  CIMClient client;

 private:
  json Thrown(const Exception& exception) const {
    std::string message = test::Utf8(exception.getMessage());
    const std::size_t at = message.find(":" + port_);
    if (at != std::string::npos) message.replace(at, port_.size() + 1, ":PORT");
    return {{"throws", {{"class", test::ClassOf(exception)}, {"message", message}}}};
  }

  json Do(const json& call) {
    std::vector<std::string> words;
    for (const json& word : call) words.push_back(word.get<std::string>());
    const std::string& what = words.at(0);
    if (what == "connect" || what == "connects") return Connect(words);
    if (what == "disconnect") client.disconnect();
    if (what == "sleep") std::this_thread::sleep_for(std::chrono::milliseconds(std::stoul(words.at(1))));
    if (what == "timeout") {
      client.setTimeout(static_cast<Uint32>(std::stoul(words.at(1))));
      json result = {{"timeout", client.getTimeout()}};
      client.setTimeout(client.getTimeout() / kTimeDivisor);
      return result;
    }
    if (what == "gettimeout") return {{"timeout", client.getTimeout()}};
    if (what == "outadd") {
      out_.append(CIMParamValue(String("stale"), CIMValue(true)));
      return {{"size", out_.size()}};
    }
    if (what == "outsize") return {{"size", out_.size()}};
    if (what == "ei") return Enumerate(words);
    if (what == "gi") {
      client.getInstance(CIMNamespaceName(words.at(1).c_str()), CIMObjectPath(words.at(2).c_str()), false, false,
                         false);
      return {{"instance", true}};
    }
    if (what == "im") return Invoke(words);
    return {{"ok", true}};
  }

  json Connect(const std::vector<std::string>& words) {
    const std::string port = words.at(2) == "PORT" ? port_ : words.at(2);
    const auto number = static_cast<Uint32>(std::stoul(port));
    if (words.at(0) == "connect") {
      client.connect(words.at(1).c_str(), number, words.at(3).c_str(), words.at(4).c_str());
    } else {
      client.connect(words.at(1).c_str(), number, ContextFor(words.at(5)), words.at(3).c_str(), words.at(4).c_str());
    }
    return {{"ok", true}};
  }

  static CIMName NameOf(const std::string& text) { return text.empty() ? CIMName() : CIMName(text.c_str()); }

  json Enumerate(const std::vector<std::string>& words) {
    const Array<CIMInstance> found =
        client.enumerateInstances(CIMNamespaceName(words.at(1).c_str()), NameOf(words.at(2)), true, true, false, false);
    if (found.size() > 0) return {{"instances", std::to_string(found.size()) + " instances"}};
    return {{"instances", json::array()}};
  }

  json Invoke(const std::vector<std::string>& words) {
    Array<CIMParamValue> in;
    constexpr std::size_t kParameter = 4;
    if (words.size() > kParameter) {
      in.append(CIMParamValue(String(words[kParameter].c_str()), CIMValue(String(words.back().c_str())),
                              words.at(kParameter + 1) == "1"));
    }
    const Uint32 before = out_.size();
    const CIMObjectPath path = words.at(2).empty() ? CIMObjectPath() : CIMObjectPath(words.at(2).c_str());
    const CIMValue value =
        client.invokeMethod(CIMNamespaceName(words.at(1).c_str()), path, NameOf(words.at(3)), in, out_);
    json out = json::array();
    for (Uint32 i = 0; i < out_.size(); ++i) {
      out.push_back({{"name", test::Utf8(out_[i].getParameterName())},
                     {"typed", out_[i].isTyped()},
                     {"value", ValueOf(out_[i].getValue())}});
    }
    return {{"returnValue", ValueOf(value)}, {"out", out}, {"outSizeBefore", before}};
  }

  static json ValueOf(const CIMValue& value) {
    return {{"type", cimTypeToString(value.getType())},
            {"array", value.isArray()},
            {"null", value.isNull()},
            {"value", test::Utf8(value.toString())}};
  }

  std::string port_;
  Array<CIMParamValue> out_;
};

/// Where XML cannot be read, the class of the exception is what counts; line numbers and wording may differ.
json Comparable(json result) {
  result.erase("seconds");
  if (result.contains("throws") && result["throws"].value("class", "") == "CIMClientXmlException") {
    result["throws"].erase("message");
  }
  return result;
}

class ConnectionVectors : public ::testing::TestWithParam<test::Vector> {};

TEST_P(ConnectionVectors, GoesAsRecorded) {
  const json& record = GetParam().record;
  const auto name = record.at("name").get<std::string>();
  if (!record.contains("client")) {
    CIMClient client;
    client.setTimeout(0);
    for (const json& result : record.at("results")) EXPECT_EQ(client.getTimeout(), result.at("timeout").get<Uint32>());
    return;
  }
  std::optional<RawServer> server(std::in_place, ServerOptions(record));
  Player player(server->Port());
  // Where nothing is to listen, the port is one that a server has just given back.
  const bool listening = record.contains("script");
  if (!listening) server.reset();

  const auto deviation = Deviations().find(name);
  const json& expected = deviation == Deviations().end() ? record.at("results") : deviation->second.results;
  const json& calls = record.at("client");
  ASSERT_EQ(calls.size(), expected.size());
  for (std::size_t i = 0; i < calls.size(); ++i) {
    // A call that was recorded to wait for the default time-out need not wait that long here.
    if (expected[i].value("seconds", 0.0) >= 20.0) player.client.setTimeout(kShortTimeout);
    json result = Comparable(player.Call(calls[i]));
    if (deviation != Deviations().end()) result.erase("certCallbacks");
    EXPECT_EQ(result, Comparable(expected[i])) << "call " << i << ": " << calls[i];
  }
  if (!listening) return;

  const unsigned connections =
      deviation == Deviations().end() ? record.at("connections").get<unsigned>() : deviation->second.connections;
  constexpr std::chrono::seconds kPatience{10};
  EXPECT_TRUE(server->WaitForConnections(connections, kPatience));
  EXPECT_EQ(server->Connections(), connections);
  const std::vector<RawRequest> requests = server->Requests();
  if (deviation != Deviations().end()) {
    EXPECT_EQ(requests.size(), deviation->second.requests);
    return;
  }
  const json& recorded = record.at("requests");
  ASSERT_EQ(requests.size(), recorded.size());
  for (std::size_t i = 0; i < requests.size(); ++i) {
    EXPECT_EQ(requests[i].connection, recorded[i].at("conn").get<unsigned>());
    std::vector<std::string> lines = requests[i].Lines("Cookie");
    const std::vector<std::string> authorization = requests[i].Lines("Authorization");
    lines.insert(lines.end(), authorization.begin(), authorization.end());
    EXPECT_EQ(json(lines), recorded[i].at("auth"));
    const auto id = [](const std::string& text) { return std::stoul(text); };
    EXPECT_EQ(id(requests[i].MessageId()) - id(requests[0].MessageId()),
              id(recorded[i].at("messageId").get<std::string>()) - id(recorded[0].at("messageId").get<std::string>()));
  }
}

INSTANTIATE_TEST_SUITE_P(Recorded, ConnectionVectors, ::testing::ValuesIn(test::LoadVectors("connections.json")),
                         test::VectorName<::testing::TestParamInfo<test::Vector>>);

}  // namespace
}  // namespace Pegasus
