// Objects: either an instance or a class.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>

#include <string>

#include "objects/handle_members.h"
#include "objects/object_body.h"
#include "wire/xml_writer.h"

namespace Pegasus {
namespace {

CIMObject ObjectOf(const internal::SharedPointer<objects::ObjectBody>& body) {
  CIMObject object;
  objects::Access::BodyPointer(object) = body;
  return object;
}

String XmlText(const CIMObject& object) {
  std::string text;
  wire::AppendObject(text, object);
  return {text.data(), static_cast<Uint32>(text.size())};
}

}  // namespace

#define PEGASUS_OBJECT_MEMBERS(Handle)                                                   \
  PEGASUS_HANDLE_BODY(Handle, ObjectBody)                                                \
  PEGASUS_PATH_READERS(Handle)                                                           \
  PEGASUS_PROPERTY_READERS(Handle)                                                       \
  PEGASUS_QUALIFIER_READERS(Handle)                                                      \
  Boolean Handle::isClass() const { return body_ && body_->isClass; }                    \
  Boolean Handle::isInstance() const { return body_ && !body_->isClass; }                \
  String Handle::toString() const {                                                      \
    objects::RequireBody(*this);                                                         \
    return XmlText(ObjectOf(body_));                                                     \
  }                                                                                      \
  CIMObject Handle::clone() const { return ObjectOf(objects::CloneObjectBody(Body())); } \
  Boolean Handle::identical(const CIMConstObject& x) const {                             \
    return objects::IdenticalObjectBodies(Body(), objects::RequireBody(x));              \
  }
PEGASUS_OBJECT_MEMBERS(CIMObject)
PEGASUS_OBJECT_MEMBERS(CIMConstObject)
#undef PEGASUS_OBJECT_MEMBERS
PEGASUS_PROPERTY_WRITERS(CIMObject)
PEGASUS_QUALIFIER_WRITERS(CIMObject)

CIMObject::CIMObject(const CIMClass& x) : body_(objects::Access::BodyPointer(x)) {}

CIMObject::CIMObject(const CIMInstance& x) : body_(objects::Access::BodyPointer(x)) {}

void CIMObject::setPath(const CIMObjectPath& path) { objects::SetObjectPath(Body(), path); }

CIMConstObject::CIMConstObject(const CIMClass& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstObject::CIMConstObject(const CIMInstance& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstObject::CIMConstObject(const CIMObject& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstObject& CIMConstObject::operator=(const CIMObject& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

}  // namespace Pegasus
