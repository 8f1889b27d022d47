// An independent CIM client (wbemcli of the distribution) against a running simulator, over HTTP and HTTPS. The user
// and password are throw-away ones: wbemcli takes them in the URL only.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kCmm2 = R"(VORTA_CMMComputerSystem.CreationClassName="VORTA_CMMComputerSystem",Name="cmm02")";

class Wbemcli : public testing::TestWithParam<bool> {
 protected:
  Wbemcli() : simulator_(BuiltInModel(), SimulatorOptions()) {}

  static Options SimulatorOptions() {
    Options options;
    options.password = "throwaway";
    return options;
  }

  // Standard output and error of one call; a missing program shows as its shell message and fails the expectations.
  std::string Run(const std::string& operation, const std::string& object, const std::string& password = "throwaway") {
    const bool tls = GetParam();
    const std::string url = std::string(tls ? "https" : "http") + "://USERID:" + password +
                            "@127.0.0.1:" + std::to_string(tls ? simulator_.HttpsPort() : simulator_.HttpPort()) +
                            "/root/cimv2:" + object;
    const std::string command = "timeout 20 /usr/bin/wbemcli -noverify " + operation + " '" + url + "' 2>&1";
    std::string output;
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return "popen failed";
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
      output.append(buffer.data(), count);
    ::pclose(pipe);
    return output;
  }

  Simulator simulator_;
};

TEST_P(Wbemcli, EnumeratesNamesOfSubclasses) {
  const std::string output = Run("ein", "CIM_ComputerSystem");
  EXPECT_THAT(output, HasSubstr(kCmm2));
  EXPECT_THAT(output, HasSubstr("VORTA_IOModuleComputerSystem"));
  EXPECT_THAT(output, HasSubstr("Name=\"node16\""));
}

TEST_P(Wbemcli, EnumeratesInstances) { EXPECT_THAT(Run("ei", "CIM_Chassis"), HasSubstr("SerialNumber=\"KS06PHZ40\"")); }

TEST_P(Wbemcli, GetsAnInstance) { EXPECT_THAT(Run("gi", kCmm2), HasSubstr("EnabledState=6")); }

TEST_P(Wbemcli, FollowsAssociations) {
  const std::string output = Run("ai -ac CIM_HostedAccessPoint -arc CIM_IPProtocolEndpoint", kCmm2);
  EXPECT_THAT(output, HasSubstr("IPv4Address=\"192.168.70.102\""));
  EXPECT_THAT(output, HasSubstr("IPv6Address=\"fd00:70::102\""));
}

TEST_P(Wbemcli, FollowsAssociationsToNames) {
  const std::string output = Run("ain -ac CIM_IsSpare", kCmm2);
  EXPECT_THAT(output, HasSubstr("CIM_RedundancySet.InstanceID=\"VORTA:RedundancySet:cmm\""));
  EXPECT_THAT(output, Not(HasSubstr("IPProtocolEndpoint")));
}

TEST_P(Wbemcli, InvokesAMethod) {
  const std::string module =
      R"(VORTA_IOModuleComputerSystem.CreationClassName="VORTA_IOModuleComputerSystem",Name="iomodule01")";
  const auto request = [&](const std::string& state) {
    return Run("cm", module + "' 'RequestStateChange.RequestedState=" + state);
  };
  EXPECT_THAT(request("3"), HasSubstr("RequestStateChange: 4097"));
  EXPECT_THAT(request("11"), HasSubstr("RequestStateChange: 0"));
  EXPECT_THAT(request("11"), HasSubstr("RequestStateChange: 4099"));
  EXPECT_THAT(Run("gi", module), HasSubstr("PostStatusDescription=\"Module is running POST.\""));
}

TEST_P(Wbemcli, IsToldAMissingParameter) {
  const std::string output =
      Run("cm", R"(VORTA_SoftwareInstallationService.CreationClassName="VORTA_SoftwareInstallationService",)"
                R"(Name="FirmwareUpdate",SystemCreationClassName="CIM_System",SystemName="chassis1")"
                "' 'InstallFromURI.URI=x");
  EXPECT_THAT(output, HasSubstr("CIM_ERR_INVALID_PARAMETER: The parameter 'Target' is missing"));
}

TEST_P(Wbemcli, IsToldAnUnknownClass) { EXPECT_THAT(Run("ein", "CIM_Nonsense"), HasSubstr("CIM_ERR_INVALID_CLASS")); }

TEST_P(Wbemcli, IsRefusedWithAWrongPassword) {
  const std::string output = Run("ein", "CIM_Chassis", "wrong");
  EXPECT_THAT(output, HasSubstr("Invalid username/password"));
  EXPECT_THAT(output, Not(HasSubstr("chassis1")));
}

INSTANTIATE_TEST_SUITE_P(Protocols, Wbemcli, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& tls) { return tls.param ? "Https" : "Http"; });

}  // namespace
}  // namespace Orvane::simulator
