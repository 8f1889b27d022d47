// Starts the chassis simulator inside the command, for --simulate: a newcomer sees a chassis without hardware or
// set-up.
#pragma once

#include <memory>
#include <string>

#include "cli/connection.h"
#include "cli/passing_time.h"

namespace Orvane::simulator {
class ManualClock;
class Simulator;
}  // namespace Orvane::simulator

namespace Orvane::cli {

/// What the command line says about the simulator.
struct Simulation {
  std::string modelPath;   ///< A model document; empty means the built-in chassis.
  std::string faultsPath;  ///< A fault document; empty means no faults.
};

/// Serves a chassis over HTTPS on 127.0.0.1, on a free port, under a random password, as long as it lives. The chassis
/// lives in a time of its own, which passes as fast as somebody waits for it.
class EmbeddedSimulator {
 public:
  /// @throws Failure kUsage when model or faults cannot be used, kFailed when no port can be listened on.
  explicit EmbeddedSimulator(const Simulation& simulation);
  ~EmbeddedSimulator();

  /// What to connect with.
  Connection Access() const { return access_; }

  /// The chassis's time.
  std::unique_ptr<PassingTime> Time() const;

 private:
  std::shared_ptr<simulator::ManualClock> clock_;
  Connection access_;
  std::unique_ptr<simulator::Simulator> simulator_;
};

}  // namespace Orvane::cli
