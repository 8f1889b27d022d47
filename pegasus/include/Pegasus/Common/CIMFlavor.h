// How a qualifier propagates: a small set of flags that comes with qualifiers and their declarations.
#pragma once

#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A set of qualifier flavors; a plain value.
class PEGASUS_COMMON_LINKAGE CIMFlavor {
 public:
  static const CIMFlavor NONE;
  static const CIMFlavor OVERRIDABLE;
  static const CIMFlavor ENABLEOVERRIDE;
  static const CIMFlavor DISABLEOVERRIDE;
  static const CIMFlavor TOSUBCLASS;
  static const CIMFlavor RESTRICTED;
  static const CIMFlavor TOINSTANCE;
  static const CIMFlavor TRANSLATABLE;
  /// What a qualifier has when nothing is said: overridable and handed on to subclasses.
  static const CIMFlavor DEFAULTS;

  constexpr CIMFlavor() noexcept = default;

  void addFlavor(const CIMFlavor& flavor);
  void removeFlavor(const CIMFlavor& flavor);
  /// True when every flag of `flavor` is set.
  Boolean hasFlavor(const CIMFlavor& flavor) const;
  Boolean equal(const CIMFlavor& flavor) const;
  /// The names of the flags, separated by blanks.
  String toString() const;

 private:
  explicit constexpr CIMFlavor(Uint32 flags) noexcept : flags_(flags) {}

  Uint32 flags_ = 0;
};

PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMFlavor& x, const CIMFlavor& y);
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMFlavor& x, const CIMFlavor& y);

}  // namespace Pegasus
