// Instances: a path, properties and qualifiers.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>

#include <utility>

#include "objects/handle_members.h"
#include "objects/object_body.h"

namespace Pegasus {
namespace {

CIMInstance Clone(const objects::ObjectBody& body) {
  CIMInstance copy;
  objects::Access::BodyPointer(copy) = objects::CloneObjectBody(body);
  return copy;
}

CIMObjectPath BuildPath(const objects::ObjectBody& body, const CIMConstClass& cimClass) {
  if (!cimClass.getClassName().equal(body.path.getClassName())) {
    throw TypeMismatchException();
  }
  Array<CIMName> names;
  cimClass.getKeyNames(names);
  Array<CIMKeyBinding> keys;
  for (Uint32 i = 0; i < names.size(); ++i) {
    const CIMName& name = std::as_const(names)[i];
    const Uint32 index = body.properties.Find(name);
    if (index == PEG_NOT_FOUND) {
      throw CIMException(CIM_ERR_NO_SUCH_PROPERTY, name.getString());
    }
    keys.append(CIMKeyBinding(name, body.properties.At(index).getValue()));
  }
  return CIMObjectPath(String(), CIMNamespaceName(), body.path.getClassName(), keys);
}

}  // namespace

#define PEGASUS_INSTANCE_MEMBERS(Handle)                                                                       \
  PEGASUS_HANDLE_BODY(Handle, ObjectBody)                                                                      \
  PEGASUS_PATH_READERS(Handle)                                                                                 \
  PEGASUS_PROPERTY_READERS(Handle)                                                                             \
  PEGASUS_QUALIFIER_READERS(Handle)                                                                            \
  CIMObjectPath Handle::buildPath(const CIMConstClass& cimClass) const { return BuildPath(Body(), cimClass); } \
  CIMInstance Handle::clone() const { return Clone(Body()); }                                                  \
  Boolean Handle::identical(const CIMConstInstance& x) const {                                                 \
    return objects::IdenticalObjectBodies(Body(), objects::RequireBody(x));                                    \
  }
PEGASUS_INSTANCE_MEMBERS(CIMInstance)
PEGASUS_INSTANCE_MEMBERS(CIMConstInstance)
#undef PEGASUS_INSTANCE_MEMBERS
PEGASUS_PROPERTY_WRITERS(CIMInstance)
PEGASUS_QUALIFIER_WRITERS(CIMInstance)

CIMInstance::CIMInstance(const CIMObject& x) : body_(objects::CastObject(x, false)) {}

CIMInstance::CIMInstance(const CIMName& className) : body_(objects::NewObjectBody(false, className)) {}

void CIMInstance::setPath(const CIMObjectPath& path) { objects::SetObjectPath(Body(), path); }

CIMConstInstance::CIMConstInstance(const CIMObject& x) : body_(objects::CastObject(x, false)) {}

CIMConstInstance::CIMConstInstance(const CIMInstance& x) : body_(objects::Access::BodyPointer(x)) {}

CIMConstInstance& CIMConstInstance::operator=(const CIMInstance& x) {
  body_ = objects::Access::BodyPointer(x);
  return *this;
}

namespace objects {

CIMInstance Access::MakeInstanceUnchecked(CIMName&& className, internal::Pool* pool) {
  CIMInstance instance;
  instance.body_ = internal::MakeBody<ObjectBody>(pool, false);
  instance.body_->path.className_ = std::move(className);
  return instance;
}

}  // namespace objects
}  // namespace Pegasus
