// What instances, classes and objects do alike with the body they share.
#pragma once

#include <Pegasus/Common/CIMObject.h>

#include "objects/bodies.h"

namespace Pegasus::objects {

/// A body for an instance or class; throws UninitializedObjectException for a null class name.
internal::SharedPointer<ObjectBody> NewObjectBody(bool isClass, const CIMName& className);

/// Independent in all its parts.
internal::SharedPointer<ObjectBody> CloneObjectBody(const ObjectBody& body);

bool IdenticalObjectBodies(const ObjectBody& a, const ObjectBody& b);

/// Throws TypeMismatchException when the class of `path` is another one.
void SetObjectPath(ObjectBody& body, const CIMObjectPath& path);

/// The body of `object`; throws DynamicCastFailedException when there is none or it is not of the kind asked for.
internal::SharedPointer<ObjectBody> CastObject(const CIMObject& object, bool toClass);

/// True when the property has the qualifier Key with the value true.
bool IsKey(const CIMProperty& property);

}  // namespace Pegasus::objects
