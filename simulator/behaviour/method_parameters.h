// The parameters of an extrinsic method as its declaration wants them: in any order, a name that stands twice counts
// the last time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wire/request.h"

namespace Orvane::simulator {

/// A view of the parameters; they must outlive it.
class MethodParameters {
 public:
  /// @param className  a class that declares the method
  /// @throws CimError kInvalidParameter  a parameter is unknown, missing, or of another type than declared
  MethodParameters(const std::vector<MethodParameter>& sent, std::string_view className, std::string_view method);

  /// NULL and what was not sent read as none.
  std::optional<std::string> Text(const char* name) const;
  std::optional<std::vector<std::string>> Texts(const char* name) const;
  std::optional<ObjectPath> Reference(const char* name) const;

 private:
  const Value* Find(const char* name) const;

  const std::vector<MethodParameter>& sent_;
};

}  // namespace Orvane::simulator
