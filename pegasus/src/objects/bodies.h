// What the handle classes point at: one plain structure per kind of object. Handles share these, clone() copies them.
#pragma once

#include <Pegasus/Common/CIMMethod.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMParameter.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMScope.h>
#include <Pegasus/Common/CIMValue.h>

#include <atomic>
#include <utility>

#include "base/pool.h"
#include "objects/internal.h"
#include "objects/named_set.h"

namespace Pegasus::objects {

using QualifierSet = NamedSet<CIMQualifier>;
using PropertySet = NamedSet<CIMProperty>;

/// How many objects something is part of; its name is fixed while there is one. Counts atomically: the objects may live
/// and die on several threads.
class ContainerCount {
 public:
  void Enter() noexcept { internal::FetchAdd(count_, 1, std::memory_order_relaxed); }
  void Leave() noexcept { internal::FetchAdd(count_, Uint32(-1), std::memory_order_relaxed); }
  bool IsZero() const noexcept { return count_.load(std::memory_order_relaxed) == 0; }

 private:
  std::atomic<Uint32> count_{0};
};

struct QualifierBody : internal::SharedBody {
  CIMName name;
  CIMValue value;
  CIMFlavor flavor;
  Boolean propagated = false;
  ContainerCount containers;
};

struct QualifierDeclBody : internal::SharedBody {
  CIMName name;
  CIMValue value;
  CIMScope scope;
  CIMFlavor flavor;
  Uint32 arraySize = 0;
};

struct ParamValueBody : internal::SharedBody {
  String name;
  CIMValue value;
  Boolean isTyped = true;
};

struct PropertyBody : internal::SharedBody {
  PropertyBody(const CIMName& itsName, CIMValue&& itsValue, Uint32 itsArraySize, const CIMName& itsReferenceClassName,
               const CIMName& itsClassOrigin, Boolean isPropagated) noexcept
      : name(itsName),
        value(std::move(itsValue)),
        referenceClassName(itsReferenceClassName),
        classOrigin(itsClassOrigin),
        arraySize(itsArraySize),
        propagated(isPropagated) {}

  CIMName name;
  CIMValue value;
  CIMName referenceClassName;
  CIMName classOrigin;
  Uint32 arraySize;
  ContainerCount containers;
  Boolean propagated;
  QualifierSet qualifiers;
};

struct ParameterBody : internal::SharedBody {
  CIMName name;
  CIMType type = CIMTYPE_BOOLEAN;
  Boolean isArray = false;
  Uint32 arraySize = 0;
  CIMName referenceClassName;
  ContainerCount containers;
  QualifierSet qualifiers;
};

struct MethodBody : internal::SharedBody {
  CIMName name;
  CIMType type = CIMTYPE_BOOLEAN;
  CIMName classOrigin;
  Boolean propagated = false;
  ContainerCount containers;
  QualifierSet qualifiers;
  NamedSet<CIMParameter> parameters;
};

/// An instance or, with the last two members in use, a class.
struct ObjectBody : internal::SharedBody {
  explicit ObjectBody(bool ofClass) noexcept : isClass(ofClass) {}

  const bool isClass;
  CIMObjectPath path;  // its class name is the object's
  QualifierSet qualifiers;
  PropertySet properties;
  CIMName superClassName;
  NamedSet<CIMMethod> methods;
};

/// The body of a handle; throws UninitializedObjectException when it has none.
template <typename Handle>
auto& RequireBody(const Handle& handle) {
  const auto& body = Access::BodyPointer(handle);
  if (!body) {
    throw UninitializedObjectException();
  }
  return *body;
}

/// Adds `item` to the set; throws UninitializedObjectException for an uninitialised handle and AlreadyExistsException,
/// naming the `kind` of thing, when its name is there already.
template <typename Handle>
void AddMember(NamedSet<Handle>& set, const Handle& item, const char* kind) {
  const CIMName& name = RequireBody(item).name;
  if (!set.TryAdd(Handle(item))) {
    throw AlreadyExistsException(String(kind) + " \"" + name.getString() + "\"");
  }
}

/// Changes the name of a handle's body; throws as setName() of the handles does.
template <typename Body>
void Rename(Body& body, const CIMName& name, const char* kind) {
  if (name.isNull()) {
    throw UninitializedObjectException();
  }
  if (!body.containers.IsZero()) {
    throw Exception(String("Attempted to change the name of a ") + kind + " already in a container.");
  }
  body.name = name;
}

/// Throws UninitializedObjectException for a null name.
inline void RequireName(const CIMName& name) {
  if (name.isNull()) {
    throw UninitializedObjectException();
  }
}

}  // namespace Pegasus::objects
