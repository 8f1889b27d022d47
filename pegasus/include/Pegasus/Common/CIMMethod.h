// Methods in the definition of a class: return type, parameters, qualifiers. Handles: copies share one body, clone()
// makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMParameter.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstMethod;
class CIMConstParameter;
class CIMConstQualifier;
class CIMMethod;
class CIMParameter;
class CIMQualifier;

namespace objects {
struct Access;
struct MethodBody;
}  // namespace objects

/// Handle to a method definition. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMMethod {
 public:
  CIMMethod() = default;
  /// UninitializedObjectException for a null name.
  CIMMethod(const CIMName& name, CIMType type, const CIMName& classOrigin = CIMName(), Boolean propagated = false);

  void setName(const CIMName& name);
  void setType(CIMType type);
  void setClassOrigin(const CIMName& classOrigin);
  void setPropagated(Boolean propagated);
  /// AlreadyExistsException when a parameter of that name is there; keeps the handle.
  CIMMethod& addParameter(const CIMParameter& parameter);
  CIMParameter getParameter(Uint32 index);
  CIMConstParameter getParameter(Uint32 index) const;
  void removeParameter(Uint32 index);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMMethod& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  const CIMName& getName() const;
  CIMType getType() const;
  const CIMName& getClassOrigin() const;
  Boolean getPropagated() const;
  Uint32 findParameter(const CIMName& name) const;
  Uint32 getParameterCount() const;
  /// An independent copy, all parts included.
  CIMMethod clone() const;
  Boolean identical(const CIMConstMethod& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::MethodBody& Body() const;

  internal::SharedPointer<objects::MethodBody> body_;
};

/// The reading half of CIMMethod, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstMethod {
 public:
  CIMConstMethod() = default;
  CIMConstMethod(const CIMMethod& x);
  CIMConstMethod& operator=(const CIMMethod& x);

  const CIMName& getName() const;
  CIMType getType() const;
  const CIMName& getClassOrigin() const;
  Boolean getPropagated() const;
  Uint32 findParameter(const CIMName& name) const;
  Uint32 getParameterCount() const;
  CIMConstParameter getParameter(Uint32 index) const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  CIMMethod clone() const;
  Boolean identical(const CIMConstMethod& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::MethodBody& Body() const;

  internal::SharedPointer<objects::MethodBody> body_;
};

}  // namespace Pegasus
