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
/// UninitializedObjectException on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMParameter {
 public:
  CIMParameter() = default;
  /// UninitializedObjectException for a null name; TypeMismatchException for an `arraySize` on a scalar and for a
  /// class given for something else than a reference.
  CIMParameter(const CIMName& name, CIMType type, Boolean isArray = false, Uint32 arraySize = 0,
               const CIMName& referenceClassName = CIMName());

  void setName(const CIMName& name);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMParameter& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  const CIMName& getName() const;
  CIMType getType() const;
  Boolean isArray() const;
  Uint32 getArraySize() const;
  const CIMName& getReferenceClassName() const;
  /// An independent copy, all parts included.
  CIMParameter clone() const;
  Boolean identical(const CIMConstParameter& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParameterBody& Body() const;

  internal::SharedPointer<objects::ParameterBody> body_;
};

/// The reading half of CIMParameter, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstParameter {
 public:
  CIMConstParameter() = default;
  CIMConstParameter(const CIMParameter& x);
  CIMConstParameter& operator=(const CIMParameter& x);

  const CIMName& getName() const;
  CIMType getType() const;
  Boolean isArray() const;
  Uint32 getArraySize() const;
  const CIMName& getReferenceClassName() const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  CIMParameter clone() const;
  Boolean identical(const CIMConstParameter& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParameterBody& Body() const;

  internal::SharedPointer<objects::ParameterBody> body_;
};

}  // namespace Pegasus
