// Sends every recorded request through a real socket and compares its bytes: the order and spelling of the header
// lines, their values, and the body behind them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "testing/raw_server.h"
#include "transport/connection.h"
#include "transport/text.h"
#include "vector_file.h"
#include "wire/recorded.h"

namespace Pegasus {
namespace {

using Orvane::testing::RawAction;
using Orvane::testing::RawRequest;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;

const char* const kAnswer =
    "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nCIMOperation: MethodResponse\r\n"
    "Set-Cookie: PEGASUS_SID=abc123; Secure; HttpOnly\r\n\r\n";
const char* const kChallenge =
    "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"cmm\"\r\nContent-Length: 0\r\n\r\n";

std::vector<std::string> Files() {
  std::vector<std::string> files;
  for (const test::Vector& vector : test::LoadVectors("requests/index.json")) {
    // One record is of a call that is refused before anything is sent.
    if (vector.record.at("file").is_string()) files.push_back(vector.record["file"].get<std::string>());
  }
  return files;
}

class RequestVectors : public ::testing::TestWithParam<std::string> {};

TEST_P(RequestVectors, TravelsByteForByte) {
  const std::string recorded = test::ReadRecorded("requests/" + GetParam());
  const std::size_t headEnd = recorded.find("\r\n\r\n") + 4;
  ASSERT_GT(recorded.size(), headEnd);
  RawRequest expected{1, recorded.substr(0, headEnd), recorded.substr(headEnd)};
  const auto value = [&expected](const std::string& name) {
    return transport::UriDecode(expected.Lines(name).at(0).substr(name.size() + 2));
  };
  const bool authorized = !expected.Lines("Authorization").empty();
  const bool cookie = !expected.Lines("Cookie").empty();
  const bool ipv6 = value("HOST") == "::1:5988";

  RawServerOptions options;
  options.address = ipv6 ? "::1" : "127.0.0.1";
  if (authorized) options.script.push_back({RawAction::Send(kChallenge)});
  options.script.push_back({RawAction::Send(kAnswer)});
  options.script.push_back({RawAction::Send(kAnswer)});
  const RawServer server(options);

  wire::Request request;
  request.method = value("CIMMethod");
  request.object = value("CIMObject");
  request.body = expected.body;
  transport::Connection connection;
  constexpr std::uint32_t kTimeout = 10000;
  connection.Connect({{options.address, server.Port()}, std::nullopt}, "USERID", "PASSW0RD", kTimeout);
  EXPECT_EQ(connection.Exchange(request, kTimeout), "");
  if (cookie) {
    EXPECT_EQ(connection.Exchange(request, kTimeout), "");
  }

  const std::vector<RawRequest> requests = server.Requests();
  ASSERT_EQ(requests.size(), authorized || cookie ? 2U : 1U);
  std::string head = expected.head;
  const std::string recordedPort = ":5988\r\n";
  head.replace(head.find(recordedPort), recordedPort.size(), ":" + std::to_string(server.Port()) + "\r\n");
  EXPECT_EQ(requests.back().head, head);
  EXPECT_EQ(requests.back().body, expected.body);
}

std::string NameOf(const ::testing::TestParamInfo<std::string>& file) { return test::CaseName(file.param); }

INSTANTIATE_TEST_SUITE_P(Recorded, RequestVectors, ::testing::ValuesIn(Files()), NameOf);

}  // namespace
}  // namespace Pegasus
