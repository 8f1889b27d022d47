// The password is new in each run and known to nobody else: other users of the machine can reach the port too.
#include "cli/embedded_simulator.h"

#include <orvane/simulator/simulator.h>

#include <exception>
#include <random>
#include <system_error>
#include <utility>

#include "cli/failure.h"
#include "cli/simulated_time.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr int kPasswordLength = 32;
constexpr int kProtocolOff = -1;

std::string RandomPassword() {
  constexpr std::string_view kCharacters = "abcdefghijkmnpqrstuvwxyz23456789";
  std::random_device device;
  std::uniform_int_distribution<std::size_t> pick(0, kCharacters.size() - 1);
  std::string password;
  for (int i = 0; i < kPasswordLength; ++i) password += kCharacters[pick(device)];
  return password;
}

simulator::Model ModelOf(const std::string& path) {
  return path.empty() ? simulator::BuiltInModel() : simulator::LoadModel(path);
}

simulator::FaultPlan FaultsOf(const std::string& path) {
  return path.empty() ? simulator::FaultPlan() : simulator::LoadFaultPlan(path);
}

}  // namespace

EmbeddedSimulator::EmbeddedSimulator(const Simulation& simulation)
    : clock_(std::make_shared<simulator::ManualClock>()) {
  try {
    simulator::Options options;
    options.password = RandomPassword();
    options.httpPort = kProtocolOff;
    options.clock = clock_;
    options.faults = FaultsOf(simulation.faultsPath);
    simulator_ = std::make_unique<simulator::Simulator>(ModelOf(simulation.modelPath), options);
    access_ = {options.address, simulator_->HttpsPort(), options.user, options.password};
  } catch (const simulator::ModelError& error) {
    throw Failure(ExitStatus::kUsage, kNoLibraryCode, "the simulator cannot use " + Neutralise(error.what()));
  } catch (const std::system_error& error) {
    throw Failure(ExitStatus::kFailed, kNoLibraryCode, "the simulator cannot start: " + Neutralise(error.what()));
  }
}

EmbeddedSimulator::~EmbeddedSimulator() = default;

std::unique_ptr<PassingTime> EmbeddedSimulator::Time() const { return std::make_unique<SimulatedTime>(clock_); }

}  // namespace Orvane::cli
