// Sets or removes one environment variable for the length of a test.
#pragma once

#include <optional>
#include <string>

namespace Orvane::testing {

/// Not thread-safe: use it before the test starts threads.
class ScopedEnvironment {
 public:
  /// @param value  nullopt removes the variable.
  ScopedEnvironment(std::string name, const std::optional<std::string>& value);
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

}  // namespace Orvane::testing
