// Methods and their parameters in the definition of a class.
#include <Pegasus/Common/CIMMethod.h>
#include <Pegasus/Common/CIMParameter.h>

#include "objects/handle_members.h"

namespace Pegasus {
namespace {

CIMParameter Clone(const objects::ParameterBody& body) {
  CIMParameter copy(body.name, body.type, body.isArray, body.arraySize, body.referenceClassName);
  objects::RequireBody(copy).qualifiers.CloneFrom(body.qualifiers);
  return copy;
}

CIMMethod Clone(const objects::MethodBody& body) {
  CIMMethod copy(body.name, body.type, body.classOrigin, body.propagated);
  objects::RequireBody(copy).qualifiers.CloneFrom(body.qualifiers);
  objects::RequireBody(copy).parameters.CloneFrom(body.parameters);
  return copy;
}

bool Identical(const objects::ParameterBody& a, const objects::ParameterBody& b) {
  return a.name.equal(b.name) && a.type == b.type && a.isArray == b.isArray && a.arraySize == b.arraySize &&
         a.referenceClassName.equal(b.referenceClassName) && a.qualifiers.Identical(b.qualifiers);
}

bool Identical(const objects::MethodBody& a, const objects::MethodBody& b) {
  return a.name.equal(b.name) && a.type == b.type && a.classOrigin.equal(b.classOrigin) &&
         a.propagated == b.propagated && a.qualifiers.Identical(b.qualifiers) && a.parameters.Identical(b.parameters);
}

}  // namespace

CIMParameter::CIMParameter(const CIMName& name, CIMType type, Boolean isArray, Uint32 arraySize,
                           const CIMName& referenceClassName) {
  objects::RequireName(name);
  if ((arraySize != 0 && !isArray) || (!referenceClassName.isNull() && type != CIMTYPE_REFERENCE)) {
    throw TypeMismatchException();
  }
  body_ = internal::MakeBody<objects::ParameterBody>(nullptr);
  body_->name = name;
  body_->type = type;
  body_->isArray = isArray;
  body_->arraySize = arraySize;
  body_->referenceClassName = referenceClassName;
}

#define PEGASUS_PARAMETER_MEMBERS(Handle)                                                    \
  PEGASUS_HANDLE_BODY(Handle, ParameterBody)                                                 \
  PEGASUS_QUALIFIER_READERS(Handle)                                                          \
  const CIMName& Handle::getName() const { return Body().name; }                             \
  CIMType Handle::getType() const { return Body().type; }                                    \
  Boolean Handle::isArray() const { return Body().isArray; }                                 \
  Uint32 Handle::getArraySize() const { return Body().arraySize; }                           \
  const CIMName& Handle::getReferenceClassName() const { return Body().referenceClassName; } \
  CIMParameter Handle::clone() const { return Clone(Body()); }                               \
  Boolean Handle::identical(const CIMConstParameter& x) const { return Identical(Body(), objects::RequireBody(x)); }
PEGASUS_PARAMETER_MEMBERS(CIMParameter)
PEGASUS_PARAMETER_MEMBERS(CIMConstParameter)
#undef PEGASUS_PARAMETER_MEMBERS
PEGASUS_QUALIFIER_WRITERS(CIMParameter)

void CIMParameter::setName(const CIMName& name) { objects::Rename(Body(), name, "parameter"); }

CIMConstParameter::CIMConstParameter(const CIMParameter& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstParameter& CIMConstParameter::operator=(const CIMParameter& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

CIMMethod::CIMMethod(const CIMName& name, CIMType type, const CIMName& classOrigin, Boolean propagated) {
  objects::RequireName(name);
  body_ = internal::MakeBody<objects::MethodBody>(nullptr);
  body_->name = name;
  body_->type = type;
  body_->classOrigin = classOrigin;
  body_->propagated = propagated;
}

#define PEGASUS_METHOD_MEMBERS(Handle)                                                               \
  PEGASUS_HANDLE_BODY(Handle, MethodBody)                                                            \
  PEGASUS_QUALIFIER_READERS(Handle)                                                                  \
  const CIMName& Handle::getName() const { return Body().name; }                                     \
  CIMType Handle::getType() const { return Body().type; }                                            \
  const CIMName& Handle::getClassOrigin() const { return Body().classOrigin; }                       \
  Boolean Handle::getPropagated() const { return Body().propagated; }                                \
  Uint32 Handle::findParameter(const CIMName& name) const { return Body().parameters.Find(name); }   \
  Uint32 Handle::getParameterCount() const { return Body().parameters.Size(); }                      \
  CIMConstParameter Handle::getParameter(Uint32 index) const { return Body().parameters.At(index); } \
  CIMMethod Handle::clone() const { return Clone(Body()); }                                          \
  Boolean Handle::identical(const CIMConstMethod& x) const { return Identical(Body(), objects::RequireBody(x)); }
PEGASUS_METHOD_MEMBERS(CIMMethod)
PEGASUS_METHOD_MEMBERS(CIMConstMethod)
#undef PEGASUS_METHOD_MEMBERS
PEGASUS_QUALIFIER_WRITERS(CIMMethod)

void CIMMethod::setName(const CIMName& name) { objects::Rename(Body(), name, "method"); }

void CIMMethod::setType(CIMType type) { Body().type = type; }

void CIMMethod::setClassOrigin(const CIMName& classOrigin) { Body().classOrigin = classOrigin; }

void CIMMethod::setPropagated(Boolean propagated) { Body().propagated = propagated; }

CIMMethod& CIMMethod::addParameter(const CIMParameter& parameter) {
  objects::AddMember(Body().parameters, parameter, "parameter");
  return *this;
}

CIMParameter CIMMethod::getParameter(Uint32 index) { return Body().parameters.At(index); }

void CIMMethod::removeParameter(Uint32 index) { Body().parameters.Remove(index); }

CIMConstMethod::CIMConstMethod(const CIMMethod& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstMethod& CIMConstMethod::operator=(const CIMMethod& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

}  // namespace Pegasus
