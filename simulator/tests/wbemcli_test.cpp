// An independent CIM client (wbemcli of the distribution) against a running simulator, over HTTP and HTTPS: every
// operation that the simulator carries out, and a proper CIM error for every one that it does not. The user and
// password are throw-away ones: wbemcli takes them in the URL only.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kCmm2 = R"(VORTA_CMMComputerSystem.CreationClassName="VORTA_CMMComputerSystem",Name="cmm02")";
constexpr const char* kSwitch2 =
    R"(VORTA_IOModuleComputerSystem.CreationClassName="VORTA_IOModuleComputerSystem",Name="iomodule02")";
constexpr const char* kImageOfSwitch2 = R"(VORTA_IOMSoftwareIdentity.InstanceID="VORTA:iom02:main2")";
constexpr const char* kInstaller =
    R"(VORTA_SoftwareInstallationService.CreationClassName="VORTA_SoftwareInstallationService",Name="FirmwareUpdate",)"
    R"(SystemCreationClassName="CIM_System",SystemName="chassis1")";
// The arguments after the object are kept apart from it by the quotes that Run puts around both.
constexpr const char* kNext = "' '";

class Wbemcli : public testing::TestWithParam<bool> {
 protected:
  Wbemcli() : simulator_(BuiltInModel(), SimulatorOptions()) {}

  static Options SimulatorOptions() {
    Options options;
    options.password = "throwaway";
    return options;
  }

  // Standard output and error of one call; a missing program shows as its shell message and fails the expectations.
  std::string Run(const std::string& operation, const std::string& object, const std::string& password = "throwaway",
                  const std::string& nameSpace = "root/cimv2") {
    const bool tls = GetParam();
    const std::string url = std::string(tls ? "https" : "http") + "://USERID:" + password +
                            "@127.0.0.1:" + std::to_string(tls ? simulator_.HttpsPort() : simulator_.HttpPort()) + "/" +
                            nameSpace + ":" + object;
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

TEST_P(Wbemcli, EnumeratesSomePropertiesOfInstances) {
  const std::string output = Run("ei", std::string("CIM_Chassis") + kNext + "SerialNumber,Tag");
  EXPECT_THAT(output, HasSubstr("SerialNumber=\"KS06PHZ40\""));
  EXPECT_THAT(output, HasSubstr("Tag=\"chassis1\""));
  EXPECT_THAT(output, Not(HasSubstr("Manufacturer")));
}

TEST_P(Wbemcli, EnumeratesAssociationsWithTheirReferences) {
  const std::string ends = std::string("Antecedent=") + kImageOfSwitch2 + ",Dependent=" + kSwitch2;
  EXPECT_THAT(Run("ein", "CIM_ElementSoftwareIdentity"), HasSubstr("VORTA_IOMElementFirmwareIdentity." + ends));
  EXPECT_THAT(Run("ei", "CIM_ElementSoftwareIdentity"), HasSubstr(ends + ",ElementSoftwareStatus=4"));
}

TEST_P(Wbemcli, GetsAnInstance) { EXPECT_THAT(Run("gi", kCmm2), HasSubstr("EnabledState=6")); }

TEST_P(Wbemcli, GetsSomePropertiesOfAnInstance) {
  const std::string output = Run("gi", std::string(kCmm2) + kNext + "ElementName,EnabledState");
  EXPECT_THAT(output, HasSubstr("ElementName=\"CMM 02\""));
  EXPECT_THAT(output, HasSubstr("EnabledState=6"));
  EXPECT_THAT(output, Not(HasSubstr("HealthState")));
}

TEST_P(Wbemcli, GetsAnAssociation) {
  const std::string association =
      std::string("VORTA_IOMElementFirmwareIdentity.Antecedent=") + kImageOfSwitch2 + ",Dependent=" + kSwitch2;
  EXPECT_THAT(Run("gi", association), HasSubstr("ElementSoftwareStatus=4"));
}

TEST_P(Wbemcli, GetsAClass) {
  EXPECT_THAT(Run("gc", "CIM_Chassis"), HasSubstr("Tag="));
  const std::string declaration = Run("gcd", "CIM_Chassis");
  EXPECT_THAT(declaration, HasSubstr("<CLASS NAME=\"CIM_Chassis\" SUPERCLASS=\"CIM_PhysicalFrame\">"));
  EXPECT_THAT(declaration, HasSubstr("<PROPERTY NAME=\"Tag\" TYPE=\"string\""));
}

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

TEST_P(Wbemcli, FollowsAssociationsInOneDirection) {
  const std::string wanted = "-ac CIM_ElementSoftwareIdentity -arc CIM_SoftwareIdentity";
  const std::string output =
      Run("ai " + wanted + " -ar Dependent -arr Antecedent", std::string(kSwitch2) + kNext + "VersionString");
  EXPECT_THAT(output, HasSubstr("VORTA:iom02:main1\" VersionString=\"7.1\""));
  EXPECT_THAT(output, HasSubstr("VORTA:iom02:main2\" VersionString=\"6.9\""));
  EXPECT_THAT(Run("ain " + wanted + " -ar Dependent -arr Antecedent", kSwitch2), HasSubstr("VORTA:iom02:boot"));
  EXPECT_EQ(Run("ain " + wanted + " -ar Antecedent", kSwitch2), "");
}

TEST_P(Wbemcli, ModifiesAnInstance) {
  EXPECT_EQ(Run("mi", std::string(kCmm2) + kNext + "EnabledState=3"), "");
  EXPECT_THAT(Run("gi", kCmm2), HasSubstr("EnabledState=3"));
  EXPECT_EQ(simulator_.RequestCount("ModifyInstance"), 1U);
}

TEST_P(Wbemcli, ModifiesAnArrayOfAnAssociation) {
  const std::string association =
      std::string("VORTA_IOMElementFirmwareIdentity.Antecedent=") + kImageOfSwitch2 + ",Dependent=" + kSwitch2;
  EXPECT_EQ(Run("mi", association + kNext + "ElementSoftwareStatus=4,6"), "");
  EXPECT_THAT(Run("gi", association), HasSubstr("ElementSoftwareStatus=4,6"));
}

TEST_P(Wbemcli, IsToldWhatCannotBeModified) {
  EXPECT_THAT(Run("mi", std::string(kCmm2) + kNext + "EnabledState=\"abc\""),
              HasSubstr("(13) CIM_ERR_TYPE_MISMATCH: The value of 'EnabledState' is no uint16"));
  EXPECT_THAT(Run("mi", std::string(kCmm2) + kNext + "Name=\"x\""),
              HasSubstr("(4) CIM_ERR_INVALID_PARAMETER: The key 'Name' cannot be modified"));
  EXPECT_THAT(Run("gi", kCmm2), HasSubstr("EnabledState=6"));
}

TEST_P(Wbemcli, InvokesAMethodWithAReference) {
  const std::string service =
      R"(VORTA_PowerManagementService.CreationClassName="VORTA_PowerManagementService",Name="PowerManagement",)"
      R"(SystemCreationClassName="VORTA_ComputerSystem",SystemName="node01")";
  const auto request = [&](const std::string& element) {
    return Run("cm", service + kNext + "RequestPowerStateChange.PowerState=5,ManagedElement=" + element);
  };
  EXPECT_THAT(request(R"(VORTA_ComputerSystem.CreationClassName="VORTA_ComputerSystem",Name="node01")"),
              HasSubstr("RequestPowerStateChange: 4097"));
  // Not the node that this service stands for.
  EXPECT_THAT(request(kCmm2), HasSubstr("RequestPowerStateChange: 5"));
}

TEST_P(Wbemcli, StartsAnInstallationAndReadsItsJob) {
  const std::string package = testing::TempDir() + "orvane-wbemcli-" + std::to_string(simulator_.HttpPort()) + ".pkg";
  std::ofstream(package) << R"({"orvane_package":1,"target":"switch","version":"7.3","payload":"ZmlybXdhcmU=",)"
                         << R"("sha256":"c3bf47ea1f4a4a605470313cacb3a44f4a461f68c6faeab07e737610cb5ac835"})";
  const std::string output =
      Run("cm", std::string(kInstaller) + kNext + "InstallFromURI.URI=\"file://" + package + "\",Target=" + kSwitch2);
  EXPECT_THAT(output, HasSubstr("InstallFromURI: 4096"));
  EXPECT_THAT(output, HasSubstr("ConcreteJob.InstanceID="));
  EXPECT_THAT(Run("ei", "CIM_ConcreteJob"), HasSubstr("JobState="));
  std::filesystem::remove(package);
}

TEST_P(Wbemcli, InvokesMethodsWithoutParameters) {
  EXPECT_THAT(Run("cm", std::string(kSwitch2) + kNext + "RequestStateChange"),
              HasSubstr("(4) CIM_ERR_INVALID_PARAMETER: The parameter 'RequestedState' is missing"));
  EXPECT_THAT(Run("cm", std::string(kInstaller) + kNext + "StartService"),
              HasSubstr("(16) CIM_ERR_METHOD_NOT_AVAILABLE: The method 'StartService' is not available"));
  EXPECT_THAT(Run("cm", std::string(kSwitch2) + kNext + "Nonsense"),
              HasSubstr("(17) CIM_ERR_METHOD_NOT_FOUND: The class VORTA_IOModuleComputerSystem has no method "));
}

TEST_P(Wbemcli, InvokesAMethodAndShowsTheAnswerAsItIs) {
  EXPECT_THAT(Run("cmx", std::string(kSwitch2) + kNext + "RequestStateChange.RequestedState=11"),
              HasSubstr("<RETURNVALUE PARAMTYPE=\"uint32\">\n<VALUE>0</VALUE>"));
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
  const std::string output = Run("cm", std::string(kInstaller) + kNext + "InstallFromURI.URI=x");
  EXPECT_THAT(output, HasSubstr("CIM_ERR_INVALID_PARAMETER: The parameter 'Target' is missing"));
}

TEST_P(Wbemcli, IsToldAnUnknownClass) {
  for (const char* operation : {"ei", "ein"}) {
    EXPECT_THAT(Run(operation, "CIM_Nonsense"),
                HasSubstr("(5) CIM_ERR_INVALID_CLASS: The class 'CIM_Nonsense' does not exist"));
  }
  EXPECT_THAT(Run("gc", "CIM_Nonsense"), HasSubstr("(6) CIM_ERR_NOT_FOUND: The class 'CIM_Nonsense' does not exist"));
}

TEST_P(Wbemcli, IsToldAMissingInstance) {
  const std::string missing = R"(VORTA_CMMComputerSystem.CreationClassName="VORTA_CMMComputerSystem",Name="cmm77")";
  for (const std::string& arguments : {missing, missing + kNext + "EnabledState=3"}) {
    EXPECT_THAT(Run(arguments == missing ? "gi" : "mi", arguments),
                HasSubstr("(6) CIM_ERR_NOT_FOUND: There is no such instance of the class VORTA_CMMComputerSystem"));
  }
}

TEST_P(Wbemcli, IsToldAnUnknownNamespace) {
  EXPECT_THAT(Run("ein", "CIM_Chassis", "throwaway", "root/nonsense"),
              HasSubstr("(3) CIM_ERR_INVALID_NAMESPACE: The namespace 'root/nonsense' does not exist"));
}

// What a chassis does not offer, and the name under which it is refused.
struct Refused {
  const char* operation;
  const char* object;
  const char* name;
};

const Refused kRefused[] = {
    {"dc", "CIM_Chassis", "DeleteClass"},
    {"ec", "CIM_Chassis", "EnumerateClasses"},
    {"ecn", "CIM_Chassis", "EnumerateClassNames"},
    {"ci", R"(CIM_Chassis.CreationClassName="CIM_Chassis",Tag="x"' 'CreationClassName="CIM_Chassis",Tag="x")",
     "CreateInstance"},
    {"di", kCmm2, "DeleteInstance"},
    {"ri", kCmm2, "References"},
    {"rin", kCmm2, "ReferenceNames"},
    {"gp", R"(CIM_Chassis.CreationClassName="CIM_Chassis",Tag="chassis1"' 'Tag)", "GetProperty"},
    {"sp", R"(CIM_Chassis.CreationClassName="CIM_Chassis",Tag="chassis1"' 'Caption="x")", "SetProperty"},
};

TEST_P(Wbemcli, IsToldWhatIsNotSupported) {
  for (const Refused& refused : kRefused) {
    EXPECT_THAT(
        Run(refused.operation, refused.object),
        HasSubstr(std::string("(7) CIM_ERR_NOT_SUPPORTED: The operation '") + refused.name + "' is not supported"))
        << refused.operation;
  }
}

TEST_P(Wbemcli, IsRefusedWithAWrongPassword) {
  const std::string output = Run("ein", "CIM_Chassis", "wrong");
  EXPECT_THAT(output, HasSubstr("Invalid username/password"));
  EXPECT_THAT(output, Not(HasSubstr("chassis1")));
}

INSTANTIATE_TEST_SUITE_P(Protocols, Wbemcli, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& tls) { return tls.param ? "Https" : "Http"; });

}  // namespace
}  // namespace Orvane::simulator
