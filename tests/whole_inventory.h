// All that the inventory of the library tells of a chassis, in a form that can be compared.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>

namespace Orvane::tests {

/// Whom the chassis of these tests let in.
struct ChassisUser {
  static constexpr const char* kName = "USERID";
  static constexpr const char* kPassword = "throwaway";
};

struct WholeInventory {
  nlohmann::ordered_json records;  ///< what every operation returned, and all fields of all records
  unsigned connections = 0;        ///< that the operations open
};

/// Reads everything with a CMMInventory from this port of 127.0.0.1, tried with HTTPS first.
WholeInventory ReadWholeInventory(std::uint16_t port);

}  // namespace Orvane::tests
