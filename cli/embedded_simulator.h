// Starts the chassis simulator inside the command, for --simulate: a newcomer sees a chassis without hardware or
// set-up.
#pragma once

#include <memory>
#include <string>

#include "cli/connection.h"

namespace Orvane::simulator {
class Simulator;
}

namespace Orvane::cli {

/// Serves a chassis over HTTPS on 127.0.0.1, on a free port, under a random password, as long as it lives.
class EmbeddedSimulator {
 public:
  /// @param modelPath  a model document; empty means the built-in chassis.
  /// @throws Failure kUsage when the model cannot be used, kFailed when no port can be listened on.
  explicit EmbeddedSimulator(const std::string& modelPath);
  ~EmbeddedSimulator();

  /// What to connect with.
  Connection Access() const { return access_; }

 private:
  Connection access_;
  std::unique_ptr<simulator::Simulator> simulator_;
};

}  // namespace Orvane::cli
