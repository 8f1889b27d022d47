// The chassis serves HTTPS only: a refused connection is refused at once, with HTTPS and with the HTTP that follows.
#include "tests/fault_flow.h"

#include <Pegasus/Common/Exception.h>

#include <algorithm>
#include <vector>

namespace Orvane::tests {

namespace {

constexpr const char* kUser = "USERID";
constexpr const char* kPassword = "simulated pass";
constexpr int kSwitchBay = 1;
constexpr int kPassThruBay = 4;
constexpr int kNodeBay = 10;

// A package whose payload is the word "firmware".
std::string Package(const std::string& target) {
  return R"({"orvane_package":1,"target":")" + target +
         R"(","version":"9.9","payload":"ZmlybXdhcmU=","sha256":")"
         R"(c3bf47ea1f4a4a605470313cacb3a44f4a461f68c6faeab07e737610cb5ac835"})";
}

}  // namespace

FaultyChassis::FaultyChassis(const std::string& faults)
    : sleeps_([clock = clock_](std::size_t, std::uint32_t milliseconds) {
        clock->Advance(std::chrono::milliseconds(milliseconds));
      }) {
  simulator::Options options;
  options.user = kUser;
  options.password = kPassword;
  options.httpPort = -1;
  options.clock = clock_;
  options.faults = simulator::ParseFaultPlan("plan", R"({"formatVersion":1,"faults":[)" + faults + "]}");
  simulator_ = std::make_unique<simulator::Simulator>(simulator::BuiltInModel(), options);
  access_ = {"127.0.0.1", simulator_->HttpsPort(), kUser, kPassword, {}, {}, {}};
  const auto package = [this](const std::string& target) {
    return "file://" + folder_.Write(target, Package(target), 0600);
  };
  access_.cmmPackage = package("cmm");
  access_.switchPackage = package("switch");
  access_.passThruPackage = package("passthru");
}

bool FaultyChassis::HasLine(unsigned level, const std::string& text) const {
  const std::vector<std::string> lines = log_.Texts(level);
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

std::string FaultyChassis::Lines() const {
  std::string lines;
  for (const Log::Record& record : log_.Records()) lines += std::to_string(record.level) + " " + record.text + "\n";
  return lines;
}

int ReadChassis(const Access& access) {
  CMMInventory inventory(access.host, access.port, access.user, access.password);
  ChassisInfo info;
  return inventory.GetChassisInfo(info);
}

int ReadSwitches(const Access& access) {
  CMMInventory inventory(access.host, access.port, access.user, access.password);
  CIMIODataList switches;
  return inventory.GetIOModuleData(switches);
}

int AskIsCmm(const Access& access) {
  return CMMInventory(access.host, access.port, access.user, access.password).IsCMM() ? 1 : 0;
}

int UpdateCmm(const Access& access) {
  CMMUpdate update(access.host, access.port, access.user, access.password, access.cmmPackage);
  return update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT);
}

int UpdateAndRebootCmm(const Access& access) {
  CMMUpdate update(access.host, access.port, access.user, access.password, access.cmmPackage);
  return update.Apply(CMMUpdate::CMM_UPDATE_REBOOT);
}

int RebootCmm(const Access& access) {
  try {
    return CMMReboot(access.host, access.port, access.user, access.password, CMM_REBOOT_WAIT);
  } catch (const Pegasus::Exception&) {
    return kThrew;
  }
}

namespace {

SwitchIOModuleUpdate SwitchOf(const Access& access) {
  return {access.host, access.user, access.password, access.port, access.switchPackage, "", kSwitchBay};
}

SwitchPassThruUpdate PassThruOf(const Access& access) {
  return {access.host, access.user, access.password, access.port, access.passThruPackage, kPassThruBay};
}

}  // namespace

int UpdateSwitch(const Access& access) { return SwitchOf(access).UpdateFirmware(); }
int ReseatSwitch(const Access& access) { return SwitchOf(access).Reseat(kSwitchBay); }
int ReseatAndVerifySwitch(const Access& access) {
  SwitchIOModuleUpdate update = SwitchOf(access);
  update.Reseat(kSwitchBay);
  return update.CheckIfRebootSuccess(kSwitchBay);
}
int VerifySwitch(const Access& access) { return SwitchOf(access).CheckIfRebootSuccess(kSwitchBay); }
int UpdatePassThru(const Access& access) { return PassThruOf(access).StartUpdate(); }
int ReseatPassThru(const Access& access) { return PassThruOf(access).Reseat(kPassThruBay); }
int VerifyPassThru(const Access& access) { return PassThruOf(access).CheckIfRebootSuccess(kPassThruBay); }
int ReseatBlade(const Access& access) {
  return Cmm_Blade_Reseat(access.host, access.port, access.user, access.password, 0).ReseatBlade(kNodeBay);
}

void PrintTo(const Flow& flow, std::ostream* out) { *out << flow.name; }
std::string NameOf(const ::testing::TestParamInfo<Flow>& flow) { return flow.param.name; }

void ExpectFlow(const Flow& flow) {
  FaultyChassis chassis(flow.faults);
  const int code = flow.operation(chassis.GetAccess());
  EXPECT_EQ(code, flow.code) << chassis.Lines();
  EXPECT_TRUE(chassis.HasLine(flow.level, flow.line)) << flow.line << "\n" << chassis.Lines();
  EXPECT_EQ(chassis.Waited(), flow.waits);
}

}  // namespace Orvane::tests
