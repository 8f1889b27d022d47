// How the modules of a chassis behave over time, as far as a model can say: durations and the ways of installing.
#pragma once

#include <chrono>
#include <set>
#include <string>

namespace Orvane::simulator {

/// All in simulated time.
struct Timing {
  /// From the call that creates a job until it runs.
  std::chrono::seconds cmmJobStart{5};
  std::chrono::seconds moduleJobStart{1};
  /// From the call, or from the end of the download if that is later than the start, until the image is installed.
  std::chrono::seconds cmmInstall{90};
  std::chrono::seconds moduleInstall{120};
  /// From the request until the CMM is off the network, and from then until it is back.
  std::chrono::seconds cmmShutdown{5};
  std::chrono::seconds cmmRestart{180};
  /// From the request until the self test has ended; of a reseat the first third passes without power.
  std::chrono::seconds moduleRestart{90};
  std::chrono::seconds nodeRestart{60};
  /// How long a job can be read after its end.
  std::chrono::seconds jobRemoval{3600};
};

struct ChassisSettings {
  Timing timing;
  /// Names of the switches whose new images need no activation.
  std::set<std::string> installsAsNext;
};

}  // namespace Orvane::simulator
