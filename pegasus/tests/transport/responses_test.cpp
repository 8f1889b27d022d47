// Sends every recorded response through a real socket to the client call that it was recorded for, and compares what
// the client returns or throws.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "testing/raw_server.h"
#include "thrown.h"
#include "vector_file.h"
#include "wire/recorded.h"

namespace Pegasus {
namespace {

using nlohmann::json;
using Orvane::testing::RawAction;
using Orvane::testing::RawActions;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;

/// Everything of a result that tells two answers apart from outside the reader: how many there are, and what they are
/// called. What is inside is the reader's matter and tested there.
json Names(const Array<CIMObjectPath>& paths) {
  json names = json::array();
  for (Uint32 i = 0; i < paths.size(); ++i) names.push_back(test::Utf8(paths[i].toString()));
  return names;
}

struct Caller {
  CIMClient& client;
  CIMNamespaceName nameSpace = CIMNamespaceName("root/cimv2");
  CIMObjectPath path = CIMObjectPath("CIM_Foo.A=\"x\"");

  json EnumerateInstances() const {
    const auto found = client.enumerateInstances(nameSpace, CIMName("CIM_Foo"), true, true, false, false);
    json names = json::array();
    for (Uint32 i = 0; i < found.size(); ++i) names.push_back(test::Utf8(found[i].getPath().toString()));
    return names;
  }
  json EnumerateInstanceNames() const { return Names(client.enumerateInstanceNames(nameSpace, CIMName("CIM_Foo"))); }
  json GetInstance() const {
    const CIMInstance found = client.getInstance(nameSpace, path, false, false, false);
    return json::array({test::Utf8(found.getPath().toString())});
  }
  json Associators() const {
    const auto found = client.associators(nameSpace, path, CIMName("CIM_As"), CIMName("CIM_Re"));
    json names = json::array();
    for (Uint32 i = 0; i < found.size(); ++i) names.push_back(test::Utf8(found[i].getPath().toString()));
    return names;
  }
  json AssociatorNames() const {
    return Names(client.associatorNames(nameSpace, path, CIMName("CIM_As"), CIMName("CIM_Re")));
  }
  json InvokeMethod() const {
    Array<CIMParamValue> out;
    out.append(CIMParamValue(String("stale"), CIMValue(true)));
    const CIMValue value = client.invokeMethod(nameSpace, path, CIMName("Meth"), Array<CIMParamValue>(), out);
    json names = json::array({test::Utf8(value.toString())});
    for (Uint32 i = 0; i < out.size(); ++i) names.push_back(test::Utf8(out[i].getParameterName()));
    return names;
  }
  json ModifyInstance() const {
    CIMInstance instance{CIMName("CIM_Foo")};
    instance.setPath(path);
    instance.addProperty(CIMProperty(CIMName("P"), CIMValue(String("v"))));
    client.modifyInstance(nameSpace, instance);
    return json::array();
  }
  json GetClass() const {
    return json::array({test::Utf8(client.getClass(nameSpace, CIMName("CIM_Foo")).getClassName().getString())});
  }

  json Call(const std::string& operation) const {
    static const std::map<std::string, json (Caller::*)() const> calls{
        {"EnumerateInstances", &Caller::EnumerateInstances},
        {"EnumerateInstanceNames", &Caller::EnumerateInstanceNames},
        {"GetInstance", &Caller::GetInstance},
        {"Associators", &Caller::Associators},
        {"AssociatorNames", &Caller::AssociatorNames},
        {"InvokeMethod", &Caller::InvokeMethod},
        {"ModifyInstance", &Caller::ModifyInstance},
        {"GetClass", &Caller::GetClass}};
    return (this->*calls.at(operation))();
  }
};

/// The recorded result in the form of Caller's.
json ExpectedNames(const json& result) {
  json names = json::array();
  for (const char* key : {"instances", "objects"}) {
    if (!result.contains(key)) continue;
    for (const json& item : result[key]) names.push_back(item.at("path"));
  }
  if (result.contains("paths")) {
    for (const json& item : result["paths"]) names.push_back(item.is_string() ? item : item.at("toString"));
  }
  if (result.contains("instance")) names.push_back(result["instance"].at("path"));
  if (result.contains("class")) names.push_back(result["class"]);
  if (result.contains("returnValue")) {
    names.push_back(result["returnValue"].at("value"));
    for (const json& item : result.at("out")) names.push_back(item.at("name"));
  }
  return names;
}

/// What this client does otherwise than the recording, and why.
struct Deviation {
  const char* why;
  test::Thrown thrown;
};

const std::map<std::string, Deviation>& Deviations() {
  static const std::map<std::string, Deviation> table{
      {"http-status-204.http",
       {"204 has no body, so its end is known without waiting for the time-out",
        {"CIMClientHTTPErrorException", "HTTP Error (204 No Content)."}}},
  };
  return table;
}

/// A message without what differs from run to run, or is another part's to say.
std::string Comparable(std::string message, const std::string& messageId) {
  const std::string expectedId = "expected \"" + messageId + "\"";
  const std::size_t id = message.find(expectedId);
  if (id != std::string::npos) message.replace(id, expectedId.size(), "expected \"1000\"");
  // How many of the bytes behind a fault are shown is the string's matter.
  const std::string fault = "is not valid UTF-8 encoding:";
  const std::size_t at = message.find(fault);
  return at == std::string::npos ? message : message.substr(0, at + fault.size());
}

class ResponseVectors : public ::testing::TestWithParam<test::Vector> {};

TEST_P(ResponseVectors, IsTakenAsRecorded) {
  const json& record = GetParam().record;
  const auto file = record.at("file").get<std::string>();
  const auto after = record.at("after").get<std::string>();
  RawActions actions{RawAction::Send(test::ReadRecorded("responses/" + file))};
  if (after == "close the connection") actions.push_back(RawAction::Close());
  RawServerOptions options;
  options.script.push_back(actions);
  const RawServer server(options);

  CIMClient client;
  constexpr Uint32 kShort = 300;
  if (after.find("send nothing more") != std::string::npos) client.setTimeout(kShort);
  client.connect("127.0.0.1", server.Port(), "", "");

  json names;
  const test::Thrown thrown =
      test::Catch([&] { names = Caller{client}.Call(record.at("operation").get<std::string>()); });
  ASSERT_EQ(server.Requests().size(), 1U);
  const json& result = record.at("result");
  const auto deviation = Deviations().find(file);
  const test::Thrown expected =
      deviation == Deviations().end() ? test::ExpectedThrow(result) : deviation->second.thrown;
  EXPECT_EQ(thrown.name, expected.name) << thrown.message;
  if (expected.name != "CIMClientXmlException") {
    const std::string id = server.Requests().at(0).MessageId();
    EXPECT_EQ(Comparable(thrown.message, id), Comparable(expected.message, id));
  }
  if (expected.name.empty()) {
    EXPECT_EQ(names, ExpectedNames(result));
  }
}

std::string NameOf(const ::testing::TestParamInfo<test::Vector>& vector) {
  return std::to_string(vector.param.number) + "_" + test::CaseName(vector.param.record.at("file").get<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Recorded, ResponseVectors, ::testing::ValuesIn(test::LoadVectors("responses/responses.json")),
                         NameOf);

}  // namespace
}  // namespace Pegasus
