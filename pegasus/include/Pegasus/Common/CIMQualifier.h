// Qualifiers: named values that describe a class, property, method or parameter. Handles: copies share one body,
// clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstQualifier;
class CIMQualifier;

namespace objects {
struct Access;
struct QualifierBody;
}  // namespace objects

/// Handle to a qualifier. All members but copying, assigning and isUninitialized() throw UninitializedObjectException
/// on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMQualifier {
 public:
  /// An uninitialised handle.
  CIMQualifier() = default;
  /// UninitializedObjectException for a null name.
  CIMQualifier(const CIMName& name, const CIMValue& value, const CIMFlavor& flavor = CIMFlavor::NONE,
               Boolean propagated = false);

  /// UninitializedObjectException for a null name; Exception while the qualifier is part of a definition.
  void setName(const CIMName& name);
  /// TypeMismatchException when type or array-ness differ from the present value's.
  void setValue(const CIMValue& value);
  /// Adds the flags of `flavor` to those that are set.
  void setFlavor(const CIMFlavor& flavor);
  /// Removes the flags of `flavor`.
  void unsetFlavor(const CIMFlavor& flavor);
  /// Says whether it comes unchanged from a superclass.
  void setPropagated(Boolean propagated);
  /// Never null.
  const CIMName& getName() const;
  /// The type of the value.
  CIMType getType() const;
  /// True when the value is an array.
  Boolean isArray() const;
  /// The value; it may be NULL.
  const CIMValue& getValue() const;
  /// How the qualifier propagates.
  const CIMFlavor& getFlavor() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// An independent copy, all parts included.
  CIMQualifier clone() const;
  /// Same name (ignoring ASCII case), value, flavor and propagation.
  Boolean identical(const CIMConstQualifier& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierBody& Body() const;

  internal::SharedPointer<objects::QualifierBody> body_;
};

/// The reading half of CIMQualifier, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstQualifier {
 public:
  /// An uninitialised handle.
  CIMConstQualifier() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstQualifier(const CIMQualifier& x);
  /// Shares the body of `x` from now on.
  CIMConstQualifier& operator=(const CIMQualifier& x);

  /// Never null.
  const CIMName& getName() const;
  /// The type of the value.
  CIMType getType() const;
  /// True when the value is an array.
  Boolean isArray() const;
  /// The value; it may be NULL.
  const CIMValue& getValue() const;
  /// How the qualifier propagates.
  const CIMFlavor& getFlavor() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// An independent copy, all parts included.
  CIMQualifier clone() const;
  /// Same name (ignoring ASCII case), value, flavor and propagation.
  Boolean identical(const CIMConstQualifier& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierBody& Body() const;

  internal::SharedPointer<objects::QualifierBody> body_;
};

}  // namespace Pegasus
