// Qualifiers and qualifier declarations.
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMQualifierDecl.h>

#include "objects/handle_members.h"

namespace Pegasus {
namespace {

void RequireSameKind(const CIMValue& present, const CIMValue& value) {
  if (!present.typeCompatible(value)) {
    throw TypeMismatchException();
  }
}

/// Handle and body of a copy of `body` that is in no container.
CIMQualifier Clone(const objects::QualifierBody& body) {
  return CIMQualifier(body.name, body.value, body.flavor, body.propagated);
}

bool Identical(const objects::QualifierBody& a, const objects::QualifierBody& b) {
  return a.name.equal(b.name) && a.value == b.value && a.flavor == b.flavor && a.propagated == b.propagated;
}

}  // namespace

CIMQualifier::CIMQualifier(const CIMName& name, const CIMValue& value, const CIMFlavor& flavor, Boolean propagated) {
  objects::RequireName(name);
  body_ = internal::MakeBody<objects::QualifierBody>(nullptr);
  body_->name = name;
  body_->value = value;
  body_->flavor = flavor;
  body_->propagated = propagated;
}

#define PEGASUS_QUALIFIER_MEMBERS(Handle)                              \
  PEGASUS_HANDLE_BODY(Handle, QualifierBody)                           \
  const CIMName& Handle::getName() const { return Body().name; }       \
  CIMType Handle::getType() const { return Body().value.getType(); }   \
  Boolean Handle::isArray() const { return Body().value.isArray(); }   \
  const CIMValue& Handle::getValue() const { return Body().value; }    \
  const CIMFlavor& Handle::getFlavor() const { return Body().flavor; } \
  Boolean Handle::getPropagated() const { return Body().propagated; }  \
  CIMQualifier Handle::clone() const { return Clone(Body()); }         \
  Boolean Handle::identical(const CIMConstQualifier& x) const { return Identical(Body(), objects::RequireBody(x)); }
PEGASUS_QUALIFIER_MEMBERS(CIMQualifier)
PEGASUS_QUALIFIER_MEMBERS(CIMConstQualifier)
#undef PEGASUS_QUALIFIER_MEMBERS

void CIMQualifier::setName(const CIMName& name) { objects::Rename(Body(), name, "qualifier"); }

void CIMQualifier::setValue(const CIMValue& value) {
  RequireSameKind(Body().value, value);
  Body().value = value;
}

void CIMQualifier::setFlavor(const CIMFlavor& flavor) { Body().flavor.addFlavor(flavor); }

void CIMQualifier::unsetFlavor(const CIMFlavor& flavor) { Body().flavor.removeFlavor(flavor); }

void CIMQualifier::setPropagated(Boolean propagated) { Body().propagated = propagated; }

CIMConstQualifier::CIMConstQualifier(const CIMQualifier& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstQualifier& CIMConstQualifier::operator=(const CIMQualifier& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

PEGASUS_HANDLE_BODY(CIMQualifierDecl, QualifierDeclBody)

CIMQualifierDecl::CIMQualifierDecl(const CIMName& name, const CIMValue& value, const CIMScope& scope,
                                   const CIMFlavor& flavor, Uint32 arraySize) {
  objects::RequireName(name);
  body_ = internal::MakeBody<objects::QualifierDeclBody>(nullptr);
  body_->name = name;
  body_->value = value;
  body_->scope = scope;
  body_->flavor = flavor;
  body_->arraySize = arraySize;
}

const CIMName& CIMQualifierDecl::getName() const { return Body().name; }

void CIMQualifierDecl::setName(const CIMName& name) {
  objects::RequireName(name);
  Body().name = name;
}

CIMType CIMQualifierDecl::getType() const { return Body().value.getType(); }

Boolean CIMQualifierDecl::isArray() const { return Body().value.isArray(); }

const CIMValue& CIMQualifierDecl::getValue() const { return Body().value; }

void CIMQualifierDecl::setValue(const CIMValue& value) {
  RequireSameKind(Body().value, value);
  Body().value = value;
}

const CIMScope& CIMQualifierDecl::getScope() const { return Body().scope; }

const CIMFlavor& CIMQualifierDecl::getFlavor() const { return Body().flavor; }

Uint32 CIMQualifierDecl::getArraySize() const { return Body().arraySize; }

CIMQualifierDecl CIMQualifierDecl::clone() const {
  CIMQualifierDecl copy;
  copy.body_ = internal::MakeBody<objects::QualifierDeclBody>(nullptr);
  *copy.body_ = Body();
  return copy;
}

Boolean CIMQualifierDecl::identical(const CIMQualifierDecl& x) const {
  const objects::QualifierDeclBody& a = Body();
  const objects::QualifierDeclBody& b = x.Body();
  return a.name.equal(b.name) && a.value == b.value && a.scope == b.scope && a.flavor == b.flavor &&
         a.arraySize == b.arraySize;
}

}  // namespace Pegasus
