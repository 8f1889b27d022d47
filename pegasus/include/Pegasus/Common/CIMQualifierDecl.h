// Declarations of qualifiers: type, default value, scope and flavor under a name. Handles: copies share one body,
// clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMScope.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace objects {
struct Access;
struct QualifierDeclBody;
}  // namespace objects

/// Handle to a qualifier declaration. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMQualifierDecl {
 public:
  /// An uninitialised handle.
  CIMQualifierDecl() = default;
  /// UninitializedObjectException for a null name.
  CIMQualifierDecl(const CIMName& name, const CIMValue& value, const CIMScope& scope,
                   const CIMFlavor& flavor = CIMFlavor::DEFAULTS, Uint32 arraySize = 0);

  /// UninitializedObjectException for a null name.
  void setName(const CIMName& name);
  /// TypeMismatchException when type or array-ness differ from the present value's.
  void setValue(const CIMValue& value);
  /// Never null.
  const CIMName& getName() const;
  /// The type of the value.
  CIMType getType() const;
  /// True when the value is an array.
  Boolean isArray() const;
  /// The value; it may be NULL.
  const CIMValue& getValue() const;
  /// What the qualifier may stand on.
  const CIMScope& getScope() const;
  /// How the qualifier propagates.
  const CIMFlavor& getFlavor() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  /// An independent copy.
  CIMQualifierDecl clone() const;
  /// Same name (ignoring ASCII case), value, scope, flavor and array size.
  Boolean identical(const CIMQualifierDecl& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierDeclBody& Body() const;

  internal::SharedPointer<objects::QualifierDeclBody> body_;
};

}  // namespace Pegasus
