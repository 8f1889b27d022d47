// Properties: a named, typed value with its origin and qualifiers.
#include <Pegasus/Common/CIMProperty.h>

#include <utility>

#include "objects/handle_members.h"

namespace Pegasus {
namespace {

/// A fixed-size array has exactly as many elements, unless it is NULL.
bool FitsArraySize(const CIMValue& value, Uint32 arraySize) {
  return arraySize == 0 || (value.isArray() && (value.getArraySize() == arraySize || value.isNull()));
}

bool Identical(const objects::PropertyBody& a, const objects::PropertyBody& b) {
  return a.name.equal(b.name) && a.value == b.value && a.referenceClassName.equal(b.referenceClassName) &&
         a.classOrigin.equal(b.classOrigin) && a.arraySize == b.arraySize && a.propagated == b.propagated &&
         a.qualifiers.Identical(b.qualifiers);
}

}  // namespace

CIMProperty::CIMProperty(const CIMName& name, const CIMValue& value, Uint32 arraySize,
                         const CIMName& referenceClassName, const CIMName& classOrigin, Boolean propagated) {
  objects::RequireName(name);
  const bool isReference = value.getType() == CIMTYPE_REFERENCE;
  if (!FitsArraySize(value, arraySize) || (isReference ? value.isArray() : !referenceClassName.isNull())) {
    throw TypeMismatchException();
  }
  *this = objects::Access::MakePropertyUnchecked(name, CIMValue(value), arraySize, referenceClassName, classOrigin,
                                                 propagated);
}

#define PEGASUS_PROPERTY_MEMBERS(Handle)                                                     \
  PEGASUS_HANDLE_BODY(Handle, PropertyBody)                                                  \
  PEGASUS_QUALIFIER_READERS(Handle)                                                          \
  const CIMName& Handle::getName() const { return Body().name; }                             \
  const CIMValue& Handle::getValue() const { return Body().value; }                          \
  CIMType Handle::getType() const { return Body().value.getType(); }                         \
  Boolean Handle::isArray() const { return Body().value.isArray(); }                         \
  Uint32 Handle::getArraySize() const { return Body().arraySize; }                           \
  const CIMName& Handle::getReferenceClassName() const { return Body().referenceClassName; } \
  const CIMName& Handle::getClassOrigin() const { return Body().classOrigin; }               \
  Boolean Handle::getPropagated() const { return Body().propagated; }                        \
  CIMProperty Handle::clone() const { return objects::Access::Clone(Body()); }               \
  Boolean Handle::identical(const CIMConstProperty& x) const { return Identical(Body(), objects::RequireBody(x)); }
PEGASUS_PROPERTY_MEMBERS(CIMProperty)
PEGASUS_PROPERTY_MEMBERS(CIMConstProperty)
#undef PEGASUS_PROPERTY_MEMBERS
PEGASUS_QUALIFIER_WRITERS(CIMProperty)

void CIMProperty::setName(const CIMName& name) { objects::Rename(Body(), name, "property"); }

void CIMProperty::setValue(const CIMValue& value) {
  objects::PropertyBody& body = Body();
  if (!body.value.typeCompatible(value) || !FitsArraySize(value, body.arraySize)) {
    throw TypeMismatchException();
  }
  body.value = value;
}

void CIMProperty::setClassOrigin(const CIMName& classOrigin) { Body().classOrigin = classOrigin; }

void CIMProperty::setPropagated(Boolean propagated) { Body().propagated = propagated; }

CIMConstProperty::CIMConstProperty(const CIMProperty& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstProperty& CIMConstProperty::operator=(const CIMProperty& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

namespace objects {

CIMProperty Access::MakePropertyUnchecked(const CIMName& name, CIMValue&& value, Uint32 arraySize,
                                          const CIMName& referenceClassName, const CIMName& classOrigin,
                                          Boolean propagated, internal::Pool* pool) {
  CIMProperty property;
  property.body_ = internal::MakeBody<PropertyBody>(pool, name, std::move(value), arraySize, referenceClassName,
                                                    classOrigin, propagated);
  return property;
}

CIMProperty Access::Clone(const PropertyBody& body) {
  CIMProperty copy = MakePropertyUnchecked(body.name, CIMValue(body.value), body.arraySize, body.referenceClassName,
                                           body.classOrigin, body.propagated);
  copy.body_->qualifiers.CloneFrom(body.qualifiers);
  return copy;
}

}  // namespace objects
}  // namespace Pegasus
