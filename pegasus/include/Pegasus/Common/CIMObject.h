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
/// UninitializedObjectException on a default-constructed handle.
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMObject {
 public:
  /// An uninitialised handle.
  CIMObject() = default;
  /// Shares the body of the class; uninitialised when it is.
  CIMObject(const CIMClass& x);
  /// Shares the body of the instance; uninitialised when it is.
  CIMObject(const CIMInstance& x);

  /// The name of the class, in the spelling of the path.
  const CIMName& getClassName() const;
  /// The path; nothing but the class name until another one is set.
  const CIMObjectPath& getPath() const;
  /// TypeMismatchException when the path is of another class; the class name takes the path's spelling.
  void setPath(const CIMObjectPath& path);
  /// Keeps the handle. AlreadyExistsException when a property of that name (ignoring ASCII case) is there.
  CIMObject& addProperty(const CIMProperty& property);
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
  CIMObject& addQualifier(const CIMQualifier& qualifier);
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
  /// The CIM-XML text of the instance or class, without its path.
  String toString() const;
  /// False for an uninitialised object, like isInstance().
  Boolean isClass() const;
  /// False for an uninitialised object too.
  Boolean isInstance() const;
  /// An independent copy, all parts included.
  CIMObject clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstObject& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

/// The reading half of CIMObject, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstObject {
 public:
  /// An uninitialised handle.
  CIMConstObject() = default;
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstObject(const CIMObject& x);
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstObject(const CIMInstance& x);
  /// Shares the body of `x`; uninitialised when it is.
  CIMConstObject(const CIMClass& x);
  /// Shares the body of `x` from now on.
  CIMConstObject& operator=(const CIMObject& x);

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
  /// The CIM-XML text of the instance or class, without its path.
  String toString() const;
  /// False for an uninitialised object too.
  Boolean isClass() const;
  /// False for an uninitialised object too.
  Boolean isInstance() const;
  /// An independent copy, all parts included.
  CIMObject clone() const;
  /// Same path, properties and qualifiers (of classes: superclass and methods too) by meaning, in the same order.
  Boolean identical(const CIMConstObject& x) const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ObjectBody& Body() const;

  internal::SharedPointer<objects::ObjectBody> body_;
};

}  // namespace Pegasus
