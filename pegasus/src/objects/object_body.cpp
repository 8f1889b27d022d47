// What instances, classes and objects do alike with the body they share.
#include "objects/object_body.h"

namespace Pegasus::objects {

internal::SharedPointer<ObjectBody> NewObjectBody(bool isClass, const CIMName& className) {
  RequireName(className);
  auto body = internal::MakeBody<ObjectBody>(nullptr, isClass);
  body->path.setClassName(className);
  return body;
}

internal::SharedPointer<ObjectBody> CloneObjectBody(const ObjectBody& body) {
  auto copy = internal::MakeBody<ObjectBody>(nullptr, body.isClass);
  copy->path = body.path;
  copy->superClassName = body.superClassName;
  copy->qualifiers.CloneFrom(body.qualifiers);
  copy->properties.CloneFrom(body.properties);
  copy->methods.CloneFrom(body.methods);
  return copy;
}

bool IdenticalObjectBodies(const ObjectBody& a, const ObjectBody& b) {
  return &a == &b || (a.isClass == b.isClass && a.path.identical(b.path) && a.superClassName.equal(b.superClassName) &&
                      a.qualifiers.Identical(b.qualifiers) && a.properties.Identical(b.properties) &&
                      a.methods.Identical(b.methods));
}

void SetObjectPath(ObjectBody& body, const CIMObjectPath& path) {
  if (!body.path.getClassName().equal(path.getClassName())) {
    throw TypeMismatchException();
  }
  body.path = path;
}

internal::SharedPointer<ObjectBody> CastObject(const CIMObject& object, bool toClass) {
  const auto& body = Access::BodyPointer(object);
  if (!body || body->isClass != toClass) {
    throw DynamicCastFailedException();
  }
  return body;
}

bool IsKey(const CIMProperty& property) {
  const QualifierSet& qualifiers = RequireBody(property).qualifiers;
  const Uint32 index = qualifiers.Find(CIMName("Key"));
  return index != PEG_NOT_FOUND && qualifiers.At(index).getValue() == CIMValue(true);
}

}  // namespace Pegasus::objects
