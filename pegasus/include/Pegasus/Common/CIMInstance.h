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
/// on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMInstance {
 public:
  CIMInstance() = default;
  /// Shares the body of the object; DynamicCastFailedException when it is a class or uninitialised.
  explicit CIMInstance(const CIMObject& x);
  /// An instance without properties whose path is the class name; UninitializedObjectException for a null name.
  CIMInstance(const CIMName& className);

  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMInstance& addProperty(const CIMProperty& property);
  /// Index of the property, PEG_NOT_FOUND when there is none.
  Uint32 findProperty(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getPropertyCount(); removeProperty likewise.
  CIMProperty getProperty(Uint32 index);
  CIMConstProperty getProperty(Uint32 index) const;
  void removeProperty(Uint32 index);
  Uint32 getPropertyCount() const;
  /// AlreadyExistsException when a qualifier of that name is there; keeps the handle.
  CIMInstance& addQualifier(const CIMQualifier& qualifier);
  /// Index of the qualifier, PEG_NOT_FOUND when there is none.
  Uint32 findQualifier(const CIMName& name) const;
  /// IndexOutOfBoundsException when `index` is not below getQualifierCount(); removeQualifier likewise.
  CIMQualifier getQualifier(Uint32 index);
  CIMConstQualifier getQualifier(Uint32 index) const;
  void removeQualifier(Uint32 index);
  Uint32 getQualifierCount() const;
  /// The path made of the class name and the values of the properties that are keys of `cimClass`.
  CIMObjectPath buildPath(const CIMConstClass& cimClass) const;
  /// An independent copy, all parts included.
  CIMInstance clone() const;
  Boolean identical(const CIMConstInstance& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMInstance, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstInstance {
 public:
  CIMConstInstance() = default;
  CIMConstInstance(const CIMInstance& x);
  /// DynamicCastFailedException when the object is a class or uninitialised.
  explicit CIMConstInstance(const CIMObject& x);
  CIMConstInstance& operator=(const CIMInstance& x);

  const CIMName& getClassName() const;
  const CIMObjectPath& getPath() const;
  Uint32 findProperty(const CIMName& name) const;
  CIMConstProperty getProperty(Uint32 index) const;
  Uint32 getPropertyCount() const;
  Uint32 findQualifier(const CIMName& name) const;
  CIMConstQualifier getQualifier(Uint32 index) const;
  Uint32 getQualifierCount() const;
  CIMObjectPath buildPath(const CIMConstClass& cimClass) const;
  CIMInstance clone() const;
  Boolean identical(const CIMConstInstance& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
