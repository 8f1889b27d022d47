// Which kinds of definitions a qualifier may stand on: a small set of flags that comes with qualifier declarations.
#pragma once

#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A set of qualifier scopes. Threads: copies are independent and may be used on several threads at a time; one object
/// may be read by several.
class PEGASUS_COMMON_LINKAGE CIMScope {
 public:
  /// No flag.
  static const CIMScope NONE;
  /// Classes.
  static const CIMScope CLASS;
  /// Association classes.
  static const CIMScope ASSOCIATION;
  /// Indication classes.
  static const CIMScope INDICATION;
  /// Properties.
  static const CIMScope PROPERTY;
  /// Reference properties.
  static const CIMScope REFERENCE;
  /// Methods.
  static const CIMScope METHOD;
  /// Parameters of methods.
  static const CIMScope PARAMETER;
  /// All of the above.
  static const CIMScope ANY;

  /// The same as NONE.
  constexpr CIMScope() noexcept = default;

  /// Sets every flag of `scope`.
  void addScope(const CIMScope& scope);
  /// True when every flag of `scope` is set.
  Boolean hasScope(const CIMScope& scope) const;
  /// True when the same flags are set.
  Boolean equal(const CIMScope& scope) const;
  /// The names of the flags, separated by blanks.
  String toString() const;

 private:
  explicit constexpr CIMScope(Uint32 flags) noexcept : flags_(flags) {}

  Uint32 flags_ = 0;
};

/// True when the same flags are set.
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMScope& x, const CIMScope& y);
/// True when other flags are set.
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMScope& x, const CIMScope& y);

}  // namespace Pegasus
