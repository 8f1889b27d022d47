// The wait for a CIM server to come back, as the reboot of a chassis manager uses it.
#pragma once

#include <cstdint>
#include <string>

namespace Orvane {

/// Connects until it succeeds, with a session of its own, and disconnects.
/// @param rounds   how often to try at most; 0 and less make no attempt
/// @param pauseMs  sleep before every attempt, the first included
/// @return 0 when the last attempt connected, else 3
int WaitForCIMServer(const std::string& host, std::uint16_t port, const std::string& user, const std::string& password,
                     int rounds, std::uint32_t pauseMs);

}  // namespace Orvane
