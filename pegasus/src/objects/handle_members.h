// Definitions that several handle classes have word for word: access to qualifiers and properties, and the body check.
// Each macro is used inside namespace Pegasus, once per class.
#pragma once

#include "objects/bodies.h"

/// Body() and isUninitialized().
#define PEGASUS_HANDLE_BODY(Handle, BodyType)                                     \
  objects::BodyType& Handle::Body() const { return objects::RequireBody(*this); } \
  Boolean Handle::isUninitialized() const { return !body_; }

#define PEGASUS_QUALIFIER_READERS(Handle)                                                            \
  Uint32 Handle::findQualifier(const CIMName& name) const { return Body().qualifiers.Find(name); }   \
  CIMConstQualifier Handle::getQualifier(Uint32 index) const { return Body().qualifiers.At(index); } \
  Uint32 Handle::getQualifierCount() const { return Body().qualifiers.Size(); }

#define PEGASUS_QUALIFIER_WRITERS(Handle)                                                 \
  Handle& Handle::addQualifier(const CIMQualifier& qualifier) {                           \
    objects::AddMember(Body().qualifiers, qualifier, "qualifier");                        \
    return *this;                                                                         \
  }                                                                                       \
  CIMQualifier Handle::getQualifier(Uint32 index) { return Body().qualifiers.At(index); } \
  void Handle::removeQualifier(Uint32 index) { Body().qualifiers.Remove(index); }

#define PEGASUS_PROPERTY_READERS(Handle)                                                           \
  Uint32 Handle::findProperty(const CIMName& name) const { return Body().properties.Find(name); }  \
  CIMConstProperty Handle::getProperty(Uint32 index) const { return Body().properties.At(index); } \
  Uint32 Handle::getPropertyCount() const { return Body().properties.Size(); }

#define PEGASUS_PROPERTY_WRITERS(Handle)                                                \
  Handle& Handle::addProperty(const CIMProperty& property) {                            \
    objects::AddMember(Body().properties, property, "property");                        \
    return *this;                                                                       \
  }                                                                                     \
  CIMProperty Handle::getProperty(Uint32 index) { return Body().properties.At(index); } \
  void Handle::removeProperty(Uint32 index) { Body().properties.Remove(index); }

#define PEGASUS_PATH_READERS(Handle)                                                 \
  const CIMName& Handle::getClassName() const { return Body().path.getClassName(); } \
  const CIMObjectPath& Handle::getPath() const { return Body().path; }
