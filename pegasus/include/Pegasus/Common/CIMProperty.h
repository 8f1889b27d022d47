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
/// on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMProperty {
 public:
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
  void setClassOrigin(const CIMName& classOrigin);
  void setPropagated(Boolean propagated);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMProperty& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  const CIMName& getName() const;
  const CIMValue& getValue() const;
  CIMType getType() const;
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  const CIMName& getReferenceClassName() const;
  const CIMName& getClassOrigin() const;
  Boolean getPropagated() const;
  /// An independent copy, all parts included.
  CIMProperty clone() const;
  Boolean identical(const CIMConstProperty& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::PropertyBody& Body() const;

  internal::SharedPointer<objects::PropertyBody> body_;
};

/// The reading half of CIMProperty, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstProperty {
 public:
  CIMConstProperty() = default;
  CIMConstProperty(const CIMProperty& x);
  CIMConstProperty& operator=(const CIMProperty& x);

  const CIMName& getName() const;
  const CIMValue& getValue() const;
  CIMType getType() const;
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  const CIMName& getReferenceClassName() const;
  const CIMName& getClassOrigin() const;
  Boolean getPropagated() const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  CIMProperty clone() const;
  Boolean identical(const CIMConstProperty& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::PropertyBody& Body() const;

  internal::SharedPointer<objects::PropertyBody> body_;
};

}  // namespace Pegasus
