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
/// UninitializedObjectException on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMClass {
 public:
  CIMClass() = default;
  /// Shares the body of the object; DynamicCastFailedException when it is an instance or uninitialised.
  explicit CIMClass(const CIMObject& x);
  /// UninitializedObjectException for a null class name.
  CIMClass(const CIMName& className, const CIMName& superClassName = CIMName());

  Boolean isAssociation() const;
  Boolean isAbstract() const;
  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  void setSuperClassName(const CIMName& superClassName);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMClass& addProperty(const CIMProperty& property);
  /// Index of the property, PEG_NOT_FOUND when there is none.
  Uint32 findProperty(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getPropertyCount(); removeProperty likewise.
  CIMProperty getProperty(Uint32 index);
  CIMConstProperty getProperty(Uint32 index) const;
  void removeProperty(Uint32 index);
  Uint32 getPropertyCount() const;
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMClass& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  /// Keeps the handle. AlreadyExistsException when a method of that name (ignoring ASCII case) is there.
  CIMClass& addMethod(const CIMMethod& method);
  CIMMethod getMethod(Uint32 index);
  void removeMethod(Uint32 index);
  const CIMName& getSuperClassName() const;
  Uint32 findMethod(const CIMName& name) const;
  CIMConstMethod getMethod(Uint32 index) const;
  Uint32 getMethodCount() const;
  /// The names of the key properties replace the content of `keyNames`.
  void getKeyNames(Array<CIMName>& keyNames) const;
  Boolean hasKeys() const;
  /// An independent copy, all parts included.
  CIMClass clone() const;
  Boolean identical(const CIMConstClass& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMClass, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstClass {
 public:
  CIMConstClass() = default;
  CIMConstClass(const CIMClass& x);
  /// DynamicCastFailedException when the object is an instance or uninitialised.
  explicit CIMConstClass(const CIMObject& x);
  CIMConstClass(const CIMName& className, const CIMName& superClassName = CIMName());
  CIMConstClass& operator=(const CIMClass& x);

  Boolean isAssociation() const;
  Boolean isAbstract() const;
  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  Uint32 findProperty(const CIMName& name) const;
  CIMConstProperty getProperty(Uint32 index) const;
  Uint32 getPropertyCount() const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  const CIMName& getSuperClassName() const;
  Uint32 findMethod(const CIMName& name) const;
  CIMConstMethod getMethod(Uint32 index) const;
  Uint32 getMethodCount() const;
  void getKeyNames(Array<CIMName>& keyNames) const;
  Boolean hasKeys() const;
  CIMClass clone() const;
  Boolean identical(const CIMConstClass& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
