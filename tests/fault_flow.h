// Runs real operations of the chassis library against a simulated chassis whose requests run into faults. Time is
// virtual on both sides: every wait of the library moves the chassis on by as much and takes no time itself, so an
// operation that ends at all ends at once, and how long it waited can be asserted to the millisecond. An operation that
// does not end is ended by the time limit of the test program.
#pragma once

#include <gtest/gtest.h>
#include <orvane/cmm.h>
#include <orvane/simulator/simulator.h>

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "testing/scoped_log.h"
#include "testing/virtual_clock.h"
#include "tests/process.h"

namespace Orvane::tests {

/// What an operation needs to know of the chassis.
struct Access {
  std::string host;
  unsigned short port = 0;
  std::string user;
  std::string password;
  /// URIs of good packages.
  std::string cmmPackage;
  std::string switchPackage;
  std::string passThruPackage;
};

/// The built-in chassis with faults, a virtual clock and a log that keeps every line.
class FaultyChassis {
 public:
  /// @param faults  the elements of "faults" in a fault plan
  explicit FaultyChassis(const std::string& faults);

  const Access& GetAccess() const { return access_; }
  simulator::ManualClock& Clock() { return *clock_; }
  const simulator::Simulator& Simulator() const { return *simulator_; }

  /// The sum of all waits of the library.
  std::chrono::milliseconds Waited() const { return sleeps_.Elapsed(); }
  /// Whether a line of exactly this level contains the text.
  bool HasLine(unsigned level, const std::string& text) const;
  /// Every line, for a failed test to show.
  std::string Lines() const;

 private:
  Folder folder_;
  std::shared_ptr<simulator::ManualClock> clock_ = std::make_shared<simulator::ManualClock>();
  testing::VirtualClock sleeps_;
  testing::ScopedLog log_;
  std::unique_ptr<simulator::Simulator> simulator_;
  Access access_;
};

using Operation = std::function<int(const Access&)>;

// Operations in their plainest form; each returns the code of the library.
int ReadChassis(const Access& access);   ///< CMMInventory::GetChassisInfo()
int ReadSwitches(const Access& access);  ///< CMMInventory::GetIOModuleData()
int AskIsCmm(const Access& access);      ///< CMMInventory::IsCMM(), 1 for true
int UpdateCmm(const Access& access);     ///< CMMUpdate::Apply() without a reboot
int UpdateAndRebootCmm(const Access& access);
int RebootCmm(const Access& access);              ///< CMMReboot(), kThrew when it throws
int UpdateSwitch(const Access& access);           ///< SwitchIOModuleUpdate::UpdateFirmware() of bay 1
int ReseatSwitch(const Access& access);           ///< SwitchIOModuleUpdate::Reseat() of bay 1
int ReseatAndVerifySwitch(const Access& access);  ///< both on bay 1; the code of the second
int VerifySwitch(const Access& access);           ///< SwitchIOModuleUpdate::CheckIfRebootSuccess() of bay 1
int UpdatePassThru(const Access& access);         ///< SwitchPassThruUpdate::StartUpdate() of bay 4
int ReseatPassThru(const Access& access);         ///< SwitchPassThruUpdate::Reseat() of bay 4
int VerifyPassThru(const Access& access);         ///< SwitchPassThruUpdate::CheckIfRebootSuccess() of bay 4
int ReseatBlade(const Access& access);            ///< Cmm_Blade_Reseat::ReseatBlade() of bay 10

/// Stands for an exception that the library lets out.
constexpr int kThrew = -1000;

/// One operation, one fault, and what comes of it.
struct Flow {
  const char* name;
  const char* faults;
  int (*operation)(const Access& access);
  int code;
  /// Level and part of a line that the library writes.
  unsigned level;
  const char* line;
  /// What the library waits in all.
  std::chrono::milliseconds waits;
};

void PrintTo(const Flow& flow, std::ostream* out);
std::string NameOf(const ::testing::TestParamInfo<Flow>& flow);

/// Runs it and expects code, line and waits.
void ExpectFlow(const Flow& flow);

}  // namespace Orvane::tests
