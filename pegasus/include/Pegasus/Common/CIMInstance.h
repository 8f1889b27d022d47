// Instances: a path, properties in document order and qualifiers. Handles: copies share one body, clone() makes an
// independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstClass;
class CIMConstInstance;
class CIMConstProperty;
class CIMConstQualifier;
class CIMInstance;
class CIMObject;
class CIMProperty;
class CIMQualifier;

namespace objects {
struct Access;
struct ObjectBody;
}  // namespace objects

/// Handle to an instance. All members but copying, assigning and isUninitialized() throw UninitializedObjectException
/// on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMInstance {
 public:
  /// An uninitialised handle.
  CIMInstance() = default;
  /// Shares the body of the object; DynamicCastFailedException when it is a class or uninitialised.
  explicit CIMInstance(const CIMObject& x);
  /// An instance without properties whose path is the class name; UninitializedObjectException for a null name.
  CIMInstance(const CIMName& className);

  /// The name of the class, in the spelling of the path.
  const CIMName& getClassName() const;
  /// The path; nothing but the class name until another one is set.
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMInstance& addProperty(const CIMProperty& property);
  /// Index of the property, PEG_NOT_FOUND when there is none.
  Uint32 findProperty(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getPropertyCount().
  CIMProperty getProperty(Uint32 index);
  /// The same for reading only.
  CIMConstProperty getProperty(Uint32 index) const;
  /// Those behind it move up. IndexOutOfBoundsException as above.
  void removeProperty(Uint32 index);
  /// Number of properties.
  Uint32 getPropertyCount() const;
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMInstance& addQualifier(const CIMQualifier& qualifier);
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
  /// The path made of the class name and the values of the properties that are keys of `cimClass`.
  /// TypeMismatchException when `cimClass` is another class than the instance's; CIMException with
  /// CIM_ERR_NO_SUCH_PROPERTY when the instance lacks a key.
  CIMObjectPath buildPath(const CIMConstClass& cimClass) const;
  /// An independent copy, all parts included.
  CIMInstance clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstInstance& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMInstance, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstInstance {
 public:
  /// An uninitialised handle.
  CIMConstInstance() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstInstance(const CIMInstance& x);
  /// DynamicCastFailedException when the object is a class or uninitialised.
  explicit CIMConstInstance(const CIMObject& x);
  /// Shares the body of `x` from now on.
  CIMConstInstance& operator=(const CIMInstance& x);

  /// The name of the class, in the spelling of the path.
  const CIMName& getClassName() const;
  /// The path; nothing but the class name until another one is set.
  const CIMObjectPath& getPath() const;
  /// Index of the property of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findProperty(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getPropertyCount().
  CIMConstProperty getProperty(Uint32 index) const;
  /// Number of properties.
  Uint32 getPropertyCount() const;
  /// Index of the qualifier of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount().
  CIMConstQualifier getQualifier(Uint32 index) const;
  /// Number of qualifiers.
  Uint32 getQualifierCount() const;
  /// As CIMInstance::buildPath.
  CIMObjectPath buildPath(const CIMConstClass& cimClass) const;
  /// An independent copy, all parts included.
  CIMInstance clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstInstance& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
