// Class definitions: superclass, properties, methods and qualifiers.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMObject.h>

#include <algorithm>
#include <utility>

#include "objects/handle_members.h"
#include "objects/object_body.h"

namespace Pegasus {
namespace {

CIMClass Clone(const objects::ObjectBody& body) {
  CIMClass copy;
  objects::Access::BodyPointer(copy) = objects::CloneObjectBody(body);
  return copy;
}

bool HasTrueQualifier(const objects::ObjectBody& body, const char* name) {
  const Uint32 index = body.qualifiers.Find(CIMName(name));
  return index != PEG_NOT_FOUND && body.qualifiers.At(index).getValue() == CIMValue(true);
}

void KeyNames(const objects::ObjectBody& body, Array<CIMName>& names) {
  names.clear();
  for (const CIMProperty& property : body.properties) {
    if (objects::IsKey(property)) {
      names.append(property.getName());
    }
  }
}

bool HasKeys(const objects::ObjectBody& body) {
  return std::any_of(body.properties.begin(), body.properties.end(), objects::IsKey);
}

}  // namespace

#define PEGASUS_CLASS_MEMBERS(Handle)                                                        \
  PEGASUS_HANDLE_BODY(Handle, ObjectBody)                                                    \
  PEGASUS_PATH_READERS(Handle)                                                               \
  PEGASUS_PROPERTY_READERS(Handle)                                                           \
  PEGASUS_QUALIFIER_READERS(Handle)                                                          \
  Boolean Handle::isAssociation() const { return HasTrueQualifier(Body(), "Association"); }  \
  Boolean Handle::isAbstract() const { return HasTrueQualifier(Body(), "Abstract"); }        \
  const CIMName& Handle::getSuperClassName() const { return Body().superClassName; }         \
  Uint32 Handle::findMethod(const CIMName& name) const { return Body().methods.Find(name); } \
  CIMConstMethod Handle::getMethod(Uint32 index) const { return Body().methods.At(index); }  \
  Uint32 Handle::getMethodCount() const { return Body().methods.Size(); }                    \
  void Handle::getKeyNames(Array<CIMName>& keyNames) const { KeyNames(Body(), keyNames); }   \
  Boolean Handle::hasKeys() const { return HasKeys(Body()); }                                \
  CIMClass Handle::clone() const { return Clone(Body()); }                                   \
  Boolean Handle::identical(const CIMConstClass& x) const {                                  \
    return objects::IdenticalObjectBodies(Body(), objects::RequireBody(x));                  \
  }
PEGASUS_CLASS_MEMBERS(CIMClass)
PEGASUS_CLASS_MEMBERS(CIMConstClass)
#undef PEGASUS_CLASS_MEMBERS
PEGASUS_PROPERTY_WRITERS(CIMClass)
PEGASUS_QUALIFIER_WRITERS(CIMClass)

CIMClass::CIMClass(const CIMObject& x) : body_(objects::CastObject(x, true)) {}

CIMClass::CIMClass(const CIMName& className, const CIMName& superClassName)
    : body_(objects::NewObjectBody(true, className)) {
  body_->superClassName = superClassName;
}

void CIMClass::setPath(const CIMObjectPath& path) { objects::SetObjectPath(Body(), path); }

void CIMClass::setSuperClassName(const CIMName& superClassName) { Body().superClassName = superClassName; }

CIMClass& CIMClass::addMethod(const CIMMethod& method) {
  objects::AddMember(Body().methods, method, "method");
  return *this;
}

CIMMethod CIMClass::getMethod(Uint32 index) { return Body().methods.At(index); }

void CIMClass::removeMethod(Uint32 index) { Body().methods.Remove(index); }

CIMConstClass::CIMConstClass(const CIMObject& x) : body_(objects::CastObject(x, true)) {}

CIMConstClass::CIMConstClass(const CIMName& className, const CIMName& superClassName)
    : body_(objects::NewObjectBody(true, className)) {
  body_->superClassName = superClassName;
}

CIMConstClass::CIMConstClass(const CIMClass& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstClass& CIMConstClass::operator=(const CIMClass& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

}  // namespace Pegasus
