// The list of property names an operation is limited to. A null list asks for everything, an empty one for nothing.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A list of property names or the null list. Threads: copies are independent and may be used on several threads at a
/// time; one object may be read by several.
class PEGASUS_COMMON_LINKAGE CIMPropertyList {
 public:
  /// The null list.
  CIMPropertyList() = default;
  /// UninitializedObjectException when a name is null; names given twice are kept twice.
  CIMPropertyList(const Array<CIMName>& propertyNames);

  /// Like the constructor; on an exception the list stays as it was.
  void set(const Array<CIMName>& propertyNames);
  /// Back to the null list.
  void clear();
  /// True for the null list; an empty list is not null.
  Boolean isNull() const;
  /// Number of names, 0 for the null list.
  Uint32 size() const;
  /// IndexOutOfBoundsException when `index` is not below size().
  const CIMName& operator[](Uint32 index) const;
  /// The names in their order; empty for the null list.
  Array<CIMName> getPropertyNameArray() const;
  /// True when the name is in the list, ignoring ASCII case.
  Boolean contains(const CIMName& name) const;
  /// `NULL`, `EMPTY` or the names as `[A, B]`.
  String toString() const;

 private:
  Array<CIMName> names_;
  Boolean isNull_ = true;
};

}  // namespace Pegasus
