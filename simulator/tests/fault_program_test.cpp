// The option --faults of the program orvane-simulator: a good plan takes effect, with a bad one nothing is started.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>

#include "child_process.h"
#include "loopback_client.h"

namespace Orvane::simulator {
namespace {

using std::chrono::seconds;
using testing::StartsWith;
using tests::ChildProcess;
using tests::PlainClient;

constexpr auto kBound = seconds(30);  // of any one step, generous for instrumented builds

class FaultsOption : public testing::Test {
 protected:
  FaultsOption() {
    std::string pattern = testing::TempDir() + "orvane-faults-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
  }
  ~FaultsOption() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string File(const std::string& text) const {
    std::string path = (folder_ / "plan.json").string();
    std::ofstream(path) << text;
    return path;
  }

  // The program says why on standard error and nothing on standard output, where its ports would stand.
  static void ExpectRefusal(const std::string& plan, const std::string& reason) {
    ChildProcess child({ORVANE_SIMULATOR_PROGRAM, "--no-authentication", "--http", "0", "--faults", plan});
    EXPECT_EQ(child.Wait(kBound), 2);
    EXPECT_EQ(child.Output().ReadAll(seconds(1)), "");
    EXPECT_EQ(child.Error().ReadAll(seconds(1)), "orvane-simulator: " + plan + ": " + reason + "\n");
  }

  std::filesystem::path folder_;
};

TEST_F(FaultsOption, LetsRequestsRunIntoThePlan) {
  const std::string plan = File(R"({"formatVersion":1,"faults":[
      {"request":{"operation":"EnumerateInstanceNames","class":"CIM_Chassis"},
       "effect":{"kind":"httpStatus","status":503,"reason":"On Demand"}}]})");
  ChildProcess child({ORVANE_SIMULATOR_PROGRAM, "--no-authentication", "--http", "0", "--faults", plan});
  const auto ports = nlohmann::json::parse(child.Output().ReadLine(kBound), nullptr, false);
  ASSERT_TRUE(ports.is_object());
  const std::string body =
      "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
      "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
      "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\"><CLASSNAME "
      "NAME=\"CIM_Chassis\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
  PlainClient client(ports.at("http").get<std::uint16_t>());
  client.Send(
      "POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Type: application/xml\r\nCIMOperation: MethodCall\r\n"
      "CIMMethod: EnumerateInstanceNames\r\nCIMObject: root%2Fcimv2\r\nContent-Length: " +
      std::to_string(body.size()) + "\r\n\r\n" + body);
  EXPECT_THAT(client.ReadUntil("\r\n\r\n"), StartsWith("HTTP/1.1 503 On Demand\r\n"));
}

TEST_F(FaultsOption, RefusesABadPlan) {
  ExpectRefusal(File(R"({"formatVersion":1,"faults":[{"request":{"class":"CIM_Chasis"},"effect":{}}]})"),
                "/faults/0/request/class: the class 'CIM_Chasis' is not known");
}

TEST_F(FaultsOption, RefusesAPlanThatCannotBeRead) {
  ExpectRefusal((folder_ / "absent.json").string(), "cannot be read: No such file or directory");
  ExpectRefusal(folder_.string(), "cannot be read: Is a directory");
  ExpectRefusal(File(""), "holds no text");
}

}  // namespace
}  // namespace Orvane::simulator
