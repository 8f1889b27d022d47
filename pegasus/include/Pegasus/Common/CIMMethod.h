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
/// UninitializedObjectException on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMMethod {
 public:
  /// An uninitialised handle.
  CIMMethod() = default;
  /// UninitializedObjectException for a null name.
  CIMMethod(const CIMName& name, CIMType type, const CIMName& classOrigin = CIMName(), Boolean propagated = false);

  /// UninitializedObjectException for a null name; Exception while the method is part of a class.
  void setName(const CIMName& name);
  /// Sets the type of what the method returns.
  void setType(CIMType type);
  /// A null name takes the origin away.
  void setClassOrigin(const CIMName& classOrigin);
  /// Says whether it comes unchanged from a superclass.
  void setPropagated(Boolean propagated);
  /// AlreadyExistsException when a parameter of that name is there; keeps the handle.
  CIMMethod& addParameter(const CIMParameter& parameter);
  /// IndexOutOfBoundsException when `index` is not below getParameterCount().
  CIMParameter getParameter(Uint32 index);
  /// The same for reading only.
  CIMConstParameter getParameter(Uint32 index) const;
  /// Those behind it move up. IndexOutOfBoundsException as above.
  void removeParameter(Uint32 index);
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMMethod& addQualifier(const CIMQualifier& qualifier);
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
  /// The type of what the method returns.
  CIMType getType() const;
  /// The class that defined it, null when that is not known.
  const CIMName& getClassOrigin() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// Index of the parameter of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findParameter(const CIMName& name) const;
  /// Number of parameters.
  Uint32 getParameterCount() const;
  /// An independent copy, all parts included.
  CIMMethod clone() const;
  /// Same name (ignoring ASCII case), type, origin, qualifiers and parameters.
  Boolean identical(const CIMConstMethod& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::MethodBody& Body() const;

  internal::SharedPointer<objects::MethodBody> body_;
};

/// The reading half of CIMMethod, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstMethod {
 public:
  /// An uninitialised handle.
  CIMConstMethod() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstMethod(const CIMMethod& x);
  /// Shares the body of `x` from now on.
  CIMConstMethod& operator=(const CIMMethod& x);

  /// Never null.
  const CIMName& getName() const;
  /// The type of what the method returns.
  CIMType getType() const;
  /// The class that defined it, null when that is not known.
  const CIMName& getClassOrigin() const;
  /// True when it comes unchanged from a superclass.
  Boolean getPropagated() const;
  /// Index of the parameter of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findParameter(const CIMName& name) const;
  /// Number of parameters.
  Uint32 getParameterCount() const;
  /// IndexOutOfBoundsException when `index` is not below getParameterCount().
  CIMConstParameter getParameter(Uint32 index) const;
  /// Index of the qualifier of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount().
  CIMConstQualifier getQualifier(Uint32 index) const;
  /// Number of qualifiers.
  Uint32 getQualifierCount() const;
  /// An independent copy, all parts included.
  CIMMethod clone() const;
  /// Same name (ignoring ASCII case), type, origin, qualifiers and parameters.
  Boolean identical(const CIMConstMethod& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::MethodBody& Body() const;

  internal::SharedPointer<objects::MethodBody> body_;
};

}  // namespace Pegasus
