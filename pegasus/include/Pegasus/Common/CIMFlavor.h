// How a qualifier propagates: a small set of flags that comes with qualifiers and their declarations.
#pragma once

#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A set of qualifier flavors. Threads: copies are independent and may be used on several threads at a time; one object
/// may be read by several.
class PEGASUS_COMMON_LINKAGE CIMFlavor {
 public:
  /// No flag.
  static const CIMFlavor NONE;
  /// Subclasses may give it another value.
  static const CIMFlavor OVERRIDABLE;
  /// The same as OVERRIDABLE.
  static const CIMFlavor ENABLEOVERRIDE;
  /// Subclasses may not give it another value.
  static const CIMFlavor DISABLEOVERRIDE;
  /// Handed on to subclasses.
  static const CIMFlavor TOSUBCLASS;
  /// Not handed on to subclasses.
  static const CIMFlavor RESTRICTED;
  /// Handed on to instances.
  static const CIMFlavor TOINSTANCE;
  /// There may be forms of it in several languages.
  static const CIMFlavor TRANSLATABLE;
  /// What a qualifier has when nothing is said: overridable and handed on to subclasses.
  static const CIMFlavor DEFAULTS;

  /// The same as NONE.
  constexpr CIMFlavor() noexcept = default;

  /// Sets every flag of `flavor`.
  void addFlavor(const CIMFlavor& flavor);
  /// Takes every flag of `flavor` away.
  void removeFlavor(const CIMFlavor& flavor);
  /// True when every flag of `flavor` is set.
  Boolean hasFlavor(const CIMFlavor& flavor) const;
  /// True when the same flags are set.
  Boolean equal(const CIMFlavor& flavor) const;
  /// The names of the flags, separated by blanks.
  String toString() const;

 private:
  explicit constexpr CIMFlavor(Uint32 flags) noexcept : flags_(flags) {}

  Uint32 flags_ = 0;
};

/// True when the same flags are set.
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMFlavor& x, const CIMFlavor& y);
/// True when other flags are set.
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMFlavor& x, const CIMFlavor& y);

}  // namespace Pegasus
