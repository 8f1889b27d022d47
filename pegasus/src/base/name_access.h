// Makes names from texts that are already known to be legal, without checking them again: for readers that checked the
// text themselves or take it from another name.
#pragma once

#include <Pegasus/Common/CIMName.h>

#include <utility>

namespace Pegasus::internal {

struct NameAccess {
  /// `name` is legal, or empty for the null name.
  static CIMName MakeName(String name) noexcept {
    CIMName result;
    result.name_ = std::move(name);
    return result;
  }

  /// `name` is legal and without a leading slash, or empty for the null name.
  static CIMNamespaceName MakeNamespaceName(String name) noexcept {
    CIMNamespaceName result;
    result.name_ = std::move(name);
    return result;
  }
};

}  // namespace Pegasus::internal
