// Class definitions: name, superclass, properties, methods and qualifiers. Handles: copies share one body, clone()
// makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMMethod.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMClass;
class CIMConstClass;
class CIMConstMethod;
class CIMConstProperty;
class CIMConstQualifier;
class CIMMethod;
class CIMObject;
class CIMProperty;
class CIMQualifier;

namespace objects {
struct Access;
struct ObjectBody;
}  // namespace objects

/// Handle to a class definition. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMClass {
 public:
  /// An uninitialised handle.
  CIMClass() = default;
  /// Shares the body of the object; DynamicCastFailedException when it is an instance or uninitialised.
  explicit CIMClass(const CIMObject& x);
  /// UninitializedObjectException for a null class name.
  CIMClass(const CIMName& className, const CIMName& superClassName = CIMName());

  /// True when the class has the qualifier Association with the value true.
  Boolean isAssociation() const;
  /// True when the class has the qualifier Abstract with the value true.
  Boolean isAbstract() const;
  /// The name of the class, in the spelling of the path.
  const CIMName& getClassName() const;
  /// The path; nothing but the class name until another one is set.
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  /// A null name stands for a class without superclass.
  void setSuperClassName(const CIMName& superClassName);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMClass& addProperty(const CIMProperty& property);
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
  CIMClass& addQualifier(const CIMQualifier& qualifier);
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
  /// Keeps the handle. AlreadyExistsException when a method of that name (ignoring ASCII case) is there.
  CIMClass& addMethod(const CIMMethod& method);
  /// IndexOutOfBoundsException when `index` is not below getMethodCount().
  CIMMethod getMethod(Uint32 index);
  /// Those behind it move up. IndexOutOfBoundsException as above.
  void removeMethod(Uint32 index);
  /// The name of the superclass, null when there is none.
  const CIMName& getSuperClassName() const;
  /// Index of the method of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findMethod(const CIMName& name) const;
  /// The same for reading only.
  CIMConstMethod getMethod(Uint32 index) const;
  /// Number of methods.
  Uint32 getMethodCount() const;
  /// The names of the key properties replace the content of `keyNames`.
  void getKeyNames(Array<CIMName>& keyNames) const;
  /// True when a property has the qualifier Key.
  Boolean hasKeys() const;
  /// An independent copy, all parts included.
  CIMClass clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstClass& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMClass, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstClass {
 public:
  /// An uninitialised handle.
  CIMConstClass() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstClass(const CIMClass& x);
  /// DynamicCastFailedException when the object is an instance or uninitialised.
  explicit CIMConstClass(const CIMObject& x);
  /// As the constructor of CIMClass. UninitializedObjectException for a null class name.
  CIMConstClass(const CIMName& className, const CIMName& superClassName = CIMName());
  /// Shares the body of `x` from now on.
  CIMConstClass& operator=(const CIMClass& x);

  /// True when the class has the qualifier Association with the value true.
  Boolean isAssociation() const;
  /// True when the class has the qualifier Abstract with the value true.
  Boolean isAbstract() const;
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
  /// The name of the superclass, null when there is none.
  const CIMName& getSuperClassName() const;
  /// Index of the method of that name (ignoring ASCII case), PEG_NOT_FOUND when there is none.
  Uint32 findMethod(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getMethodCount().
  CIMConstMethod getMethod(Uint32 index) const;
  /// Number of methods.
  Uint32 getMethodCount() const;
  /// The names of the properties that have the qualifier Key replace the content of `keyNames`.
  void getKeyNames(Array<CIMName>& keyNames) const;
  /// True when a property has the qualifier Key.
  Boolean hasKeys() const;
  /// An independent copy, all parts included.
  CIMClass clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstClass& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
