// Parameters in the definition of a method. Handles: copies share one body, clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstParameter;
class CIMConstQualifier;
class CIMParameter;
class CIMQualifier;

namespace objects {
struct Access;
struct ParameterBody;
}  // namespace objects

/// Handle to a parameter definition. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMParameter {
 public:
  /// An uninitialised handle.
  CIMParameter() = default;
  /// UninitializedObjectException for a null name; TypeMismatchException for an `arraySize` on a scalar and for a
  /// class given for something else than a reference.
  CIMParameter(const CIMName& name, CIMType type, Boolean isArray = false, Uint32 arraySize = 0,
               const CIMName& referenceClassName = CIMName());

  /// UninitializedObjectException for a null name; Exception while the parameter is part of a method.
  void setName(const CIMName& name);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMParameter& addQualifier(const CIMQualifier& qualifier);
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
  /// The type of the parameter, of its elements when it is an array.
  CIMType getType() const;
  /// True when the parameter is an array.
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  /// The class that a reference is declared to lead to; null when none is.
  const CIMName& getReferenceClassName() const;
  /// An independent copy, all parts included.
  CIMParameter clone() const;
  /// Same name (ignoring ASCII case), type and qualifiers.
  Boolean identical(const CIMConstParameter& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParameterBody& Body() const;

  internal::SharedPointer<objects::ParameterBody> body_;
};

/// The reading half of CIMParameter, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstParameter {
 public:
  /// An uninitialised handle.
  CIMConstParameter() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstParameter(const CIMParameter& x);
  /// Shares the body of `x` from now on.
  CIMConstParameter& operator=(const CIMParameter& x);

  /// Never null.
  const CIMName& getName() const;
  /// The type of the parameter, of its elements when it is an array.
  CIMType getType() const;
  /// True when the parameter is an array.
  Boolean isArray() const;
  /// The declared size of a fixed-size array; 0 for other arrays and scalars.
  Uint32 getArraySize() const;
  /// The class that a reference is declared to lead to; null when none is.
  const CIMName& getReferenceClassName() const;
  /// Index of the qualifier of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount().
  CIMConstQualifier getQualifier(Uint32 index) const;
  /// Number of qualifiers.
  Uint32 getQualifierCount() const;
  /// An independent copy, all parts included.
  CIMParameter clone() const;
  /// Same name (ignoring ASCII case), type and qualifiers.
  Boolean identical(const CIMConstParameter& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParameterBody& Body() const;

  internal::SharedPointer<objects::ParameterBody> body_;
};

}  // namespace Pegasus
