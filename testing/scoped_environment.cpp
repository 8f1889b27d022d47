// See scoped_environment.h.
#include "testing/scoped_environment.h"

#include <cstdlib>
#include <utility>

namespace Orvane::testing {
namespace {

void Set(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    ::setenv(name.c_str(), value->c_str(), 1);
  } else {
    ::unsetenv(name.c_str());
  }
}

}  // namespace

ScopedEnvironment::ScopedEnvironment(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
  if (const char* const old = std::getenv(name_.c_str())) previous_ = old;
  Set(name_, value);
}

ScopedEnvironment::~ScopedEnvironment() { Set(name_, previous_); }

}  // namespace Orvane::testing
