// Either an instance or a class, as associations return them. Handles: copies share one body, clone() makes an
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

class CIMClass;
class CIMConstObject;
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

/// Handle to an object. All members but copying, assigning, isClass(), isInstance() and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMObject {
 public:
  CIMObject() = default;
  /// Shares the body of the class; uninitialised when it is.
  CIMObject(const CIMClass& x);
  /// Shares the body of the instance; uninitialised when it is.
  CIMObject(const CIMInstance& x);

  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMObject& addProperty(const CIMProperty& property);
  /// Index of the property, PEG_NOT_FOUND when there is none.
  Uint32 findProperty(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getPropertyCount(); removeProperty likewise.
  CIMProperty getProperty(Uint32 index);
  CIMConstProperty getProperty(Uint32 index) const;
  void removeProperty(Uint32 index);
  Uint32 getPropertyCount() const;
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMObject& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  /// The CIM-XML text of the instance or class, without its path.
  String toString() const;
  /// False for an uninitialised object, like isInstance().
  Boolean isClass() const;
  Boolean isInstance() const;
  /// An independent copy, all parts included.
  CIMObject clone() const;
  Boolean identical(const CIMConstObject& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMObject, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstObject {
 public:
  CIMConstObject() = default;
  CIMConstObject(const CIMObject& x);
  CIMConstObject(const CIMInstance& x);
  CIMConstObject(const CIMClass& x);
  CIMConstObject& operator=(const CIMObject& x);

  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  Uint32 findProperty(const CIMName& name) const;
  CIMConstProperty getProperty(Uint32 index) const;
  Uint32 getPropertyCount() const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  String toString() const;
  Boolean isClass() const;
  Boolean isInstance() const;
  CIMObject clone() const;
  Boolean identical(const CIMConstObject& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
