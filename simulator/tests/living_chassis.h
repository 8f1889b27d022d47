// What the tests of a chassis's behaviour share: a simulator of the built-in chassis on a clock that the test moves,
// packages, and a short way to ask and to act.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "cim_client.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator::tests {

/// Text of a good package.
/// @param more  further members, each with a comma before it
std::string MakePackage(const std::string& target, const std::string& version, const std::string& more = "");

/// A file that is there as long as the test runs; its name differs in each call.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& text);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  std::string Uri() const { return "file://" + path_; }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

class LivingChassis : public testing::Test {
 protected:
  LivingChassis() : LivingChassis(BuiltInModel()) {}
  explicit LivingChassis(Model model, Options options = Options());

  void Pass(int seconds) { clock_->Advance(std::chrono::seconds(seconds)); }

  /// A client with a connection of its own, opened when first used and again after Reconnect.
  CimClient& Client();
  void Reconnect() { client_.reset(); }

  CimInstance Cmm(const std::string& name = "cmm01") { return Client().Find("VORTA_CMMComputerSystem", "Name", name); }
  CimInstance Switch(int bay);
  CimInstance PassThru(int bay);

  /// InstallFromURI with the usual parameters.
  CimOutcome Install(const CimInstance& target, const std::string& uri);
  CimOutcome InstallWith(const std::vector<CimParameter>& parameters);
  /// JobState, a blank, ErrorDescription; empty when there is no such job.
  std::string Job(const std::string& id, const std::string& className = "CIM_ConcreteJob");

  /// RequestStateChange; the return value, or "error" and the code.
  std::string Request(const CimInstance& target, const std::string& state);

  /// "<VersionString> <status>" of each image of a switch or pass-through module, in order; status without brackets.
  std::vector<std::string> Images(const std::string& idStart);
  std::string Version(const std::string& instanceId);

  std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  std::unique_ptr<Simulator> simulator_;

 private:
  std::unique_ptr<CimClient> client_;
};

}  // namespace Orvane::simulator::tests
