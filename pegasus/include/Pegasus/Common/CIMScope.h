// Which kinds of definitions a qualifier may stand on: a small set of flags that comes with qualifier declarations.
#pragma once

#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A set of qualifier scopes; a plain value.
class PEGASUS_COMMON_LINKAGE CIMScope {
 public:
  static const CIMScope NONE;
  static const CIMScope CLASS;
  static const CIMScope ASSOCIATION;
  static const CIMScope INDICATION;
  static const CIMScope PROPERTY;
  static const CIMScope REFERENCE;
  static const CIMScope METHOD;
  static const CIMScope PARAMETER;
  /// All of the above.
  static const CIMScope ANY;

  constexpr CIMScope() noexcept = default;

  void addScope(const CIMScope& scope);
  /// True when every flag of `scope` is set.
  Boolean hasScope(const CIMScope& scope) const;
  Boolean equal(const CIMScope& scope) const;
  /// The names of the flags, separated by blanks.
  String toString() const;

 private:
  explicit constexpr CIMScope(Uint32 flags) noexcept : flags_(flags) {}

  Uint32 flags_ = 0;
};

PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMScope& x, const CIMScope& y);
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMScope& x, const CIMScope& y);

}  // namespace Pegasus
