// Properties of instances and classes. Handles: copies share one body, clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstProperty;
class CIMConstQualifier;
class CIMProperty;
class CIMQualifier;

namespace objects {
struct Access;
struct PropertyBody;
}  // namespace objects

/// Handle to a property. All members but copying, assigning and isUninitialized() throw UninitializedObjectException
/// on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMProperty {
 public:
  /// An uninitialised handle.
  CIMProperty() = default;
  /// UninitializedObjectException for a null name. TypeMismatchException when `arraySize` is given and not the number
  /// of elements or for a scalar, when a class is given for something else than a reference, and for reference arrays.
  CIMProperty(const CIMName& name, const CIMValue& value, Uint32 arraySize = 0,
              const CIMName& referenceClassName = CIMName(), const CIMName& classOrigin = CIMName(),
              Boolean propagated = false);

  /// UninitializedObjectException for a null name; Exception while the property is in an instance or class.
  void setName(const CIMName& name);
  /// TypeMismatchException when type or array-ness differ from the present value's, or a fixed array size is missed.
  void setValue(const CIMValue& value);
  /// A null name takes the origin away.
  void setClassOrigin(const CIMName& classOrigin);
  /// Says whether it comes unchanged from a superclass.
  void setPropagated(Boolean propagated);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMProperty& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount().
  CIMQualifier getQualifier(Uint32 index);
  /// The same for reading only.
  CIMConstQualifier getQualifier(Uint32 index) const;
  /// Those behind it move up. IndexOutOfBoundsException as above.
  void removeQualifier(Uint32 index);
  /// Number of qualifiers.
  Uint32 getQualifierCount() const;
  /// Never null.
  const CIMName& getName() const;
  /// The value; it may be NULL.
  const CIMValue& getValue() const;
  /// The type of the value.
  CIMType getType() const;
  /// True when the value is an array.
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  /// The class that a reference is declared to lead to; null when none is.
  const CIMName& getReferenceClassName() const;
  /// The class that defined it, null when that is not known.
  const CIMName& getClassOrigin() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// An independent copy, all parts included.
  CIMProperty clone() const;
  /// Same name (ignoring ASCII case), value, origin and qualifiers.
  Boolean identical(const CIMConstProperty& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::PropertyBody& Body() const;

  internal::SharedPointer<objects::PropertyBody> body_;
};

/// The reading half of CIMProperty, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstProperty {
 public:
  /// An uninitialised handle.
  CIMConstProperty() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstProperty(const CIMProperty& x);
  /// Shares the body of `x` from now on.
  CIMConstProperty& operator=(const CIMProperty& x);

  /// Never null.
  const CIMName& getName() const;
  /// The value; it may be NULL.
  const CIMValue& getValue() const;
  /// The type of the value.
  CIMType getType() const;
  /// True when the value is an array.
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  /// The class that a reference is declared to lead to; null when none is.
  const CIMName& getReferenceClassName() const;
  /// The class that defined it, null when that is not known.
  const CIMName& getClassOrigin() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// Index of the qualifier of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount().
  CIMConstQualifier getQualifier(Uint32 index) const;
  /// Number of qualifiers.
  Uint32 getQualifierCount() const;
  /// An independent copy, all parts included.
  CIMProperty clone() const;
  /// Same name (ignoring ASCII case), value, origin and qualifiers.
  Boolean identical(const CIMConstProperty& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::PropertyBody& Body() const;

  internal::SharedPointer<objects::PropertyBody> body_;
};

}  // namespace Pegasus
