// How a C++ type is held inside a CIMValue: its CIM type, whether it is an array, and where the content is. Scalars,
// texts and date-times are held in place, all else behind a pointer to content that never changes.
#pragma once

#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMValue.h>

#include <new>
#include <type_traits>
#include <utility>
#include <variant>

#include "base/pool.h"
#include "objects/internal.h"

namespace Pegasus::objects {

template <typename T>
struct Kind;

#define PEGASUS_VALUE_KIND(T, cimType)        \
  template <>                                 \
  struct Kind<T> {                            \
    using Element = T;                        \
    static constexpr CIMType kType = cimType; \
    static constexpr bool kIsArray = false;   \
  };                                          \
  template <>                                 \
  struct Kind<Array<T>> {                     \
    using Element = T;                        \
    static constexpr CIMType kType = cimType; \
    static constexpr bool kIsArray = true;    \
  }
PEGASUS_VALUE_KIND(Boolean, CIMTYPE_BOOLEAN);
PEGASUS_VALUE_KIND(Uint8, CIMTYPE_UINT8);
PEGASUS_VALUE_KIND(Sint8, CIMTYPE_SINT8);
PEGASUS_VALUE_KIND(Uint16, CIMTYPE_UINT16);
PEGASUS_VALUE_KIND(Sint16, CIMTYPE_SINT16);
PEGASUS_VALUE_KIND(Uint32, CIMTYPE_UINT32);
PEGASUS_VALUE_KIND(Sint32, CIMTYPE_SINT32);
PEGASUS_VALUE_KIND(Uint64, CIMTYPE_UINT64);
PEGASUS_VALUE_KIND(Sint64, CIMTYPE_SINT64);
PEGASUS_VALUE_KIND(Real32, CIMTYPE_REAL32);
PEGASUS_VALUE_KIND(Real64, CIMTYPE_REAL64);
PEGASUS_VALUE_KIND(Char16, CIMTYPE_CHAR16);
PEGASUS_VALUE_KIND(String, CIMTYPE_STRING);
PEGASUS_VALUE_KIND(CIMDateTime, CIMTYPE_DATETIME);
PEGASUS_VALUE_KIND(CIMObjectPath, CIMTYPE_REFERENCE);
PEGASUS_VALUE_KIND(CIMObject, CIMTYPE_OBJECT);
PEGASUS_VALUE_KIND(CIMInstance, CIMTYPE_INSTANCE);
#undef PEGASUS_VALUE_KIND

/// Elements that are handles and therefore are cloned on the way into and out of a value.
template <typename T>
inline constexpr bool kIsHandle = Kind<T>::kType == CIMTYPE_OBJECT || Kind<T>::kType == CIMTYPE_INSTANCE;

template <typename T>
inline constexpr bool kInPlace = !Kind<T>::kIsArray && Kind<T>::kType <= CIMTYPE_DATETIME;

/// Elements without storage of their own: truth values, numbers and characters.
template <typename T>
inline constexpr bool kIsPlain = kInPlace<T>&& Kind<T>::kType < CIMTYPE_STRING;

/// An independent copy of `x`; throws UninitializedObjectException when it is or holds an uninitialised handle.
template <typename T>
T Independent(const T& x) {
  if constexpr (!kIsHandle<T>) {
    return x;
  } else if constexpr (Kind<T>::kIsArray) {
    T copy;
    copy.reserveCapacity(x.size());
    for (Uint32 i = 0; i < x.size(); ++i) {
      copy.append(x[i].clone());
    }
    return copy;
  } else {
    return x.clone();
  }
}

/// Content that is shared by the copies of a value.
template <typename T>
struct ContentBody : internal::SharedBody {
  explicit ContentBody(T&& x) noexcept : content(std::move(x)) {}

  const T content;
};

/// Makes `value` hold `x`, which nobody else may share when it is or holds a handle.
/// @param pool where content that is not held in place goes; null for memory of its own
template <typename T>
void Store(CIMValue& value, T&& x, internal::Pool* pool = nullptr) {
  using Plain = std::decay_t<T>;
  if constexpr (kIsPlain<Plain>) {
    new (Access::NewScalar(value)) Plain(x);
  } else if constexpr (kInPlace<Plain>) {
    Access::Content(value) = Plain(std::forward<T>(x));
  } else {
    Access::Content(value) =
        internal::SharedPointer<internal::SharedBody>(internal::NewBody<ContentBody<Plain>>(pool, std::forward<T>(x)));
  }
  Access::SetKind(value, Kind<Plain>::kType, Kind<Plain>::kIsArray);
}

template <typename T>
const T* Access::Peek(const CIMValue& value) {
  if constexpr (kIsPlain<T>) {
    const auto* const scalar = std::get_if<CIMValue::Scalar>(&value.content_);
    return scalar != nullptr ? std::launder(reinterpret_cast<const T*>(scalar->bytes)) : nullptr;
  } else if constexpr (kInPlace<T>) {
    return std::get_if<T>(&value.content_);
  } else {
    const auto* const shared = std::get_if<CIMValue::Shared>(&value.content_);
    return shared != nullptr ? &static_cast<const ContentBody<T>*>(shared->get())->content : nullptr;
  }
}

template <typename T>
CIMValue Access::MakeArrayValue(Array<T>&& elements, internal::Pool* pool) {
  CIMValue value;
  Store(value, std::move(elements), pool);
  return value;
}

/// Calls visitor(static_cast<T*>(nullptr)) with T the C++ type of one element of `type`.
template <typename Visitor>
auto VisitType(CIMType type, Visitor&& visitor) {
  switch (type) {
    case CIMTYPE_BOOLEAN:
      break;
    case CIMTYPE_UINT8:
      return visitor(static_cast<Uint8*>(nullptr));
    case CIMTYPE_SINT8:
      return visitor(static_cast<Sint8*>(nullptr));
    case CIMTYPE_UINT16:
      return visitor(static_cast<Uint16*>(nullptr));
    case CIMTYPE_SINT16:
      return visitor(static_cast<Sint16*>(nullptr));
    case CIMTYPE_UINT32:
      return visitor(static_cast<Uint32*>(nullptr));
    case CIMTYPE_SINT32:
      return visitor(static_cast<Sint32*>(nullptr));
    case CIMTYPE_UINT64:
      return visitor(static_cast<Uint64*>(nullptr));
    case CIMTYPE_SINT64:
      return visitor(static_cast<Sint64*>(nullptr));
    case CIMTYPE_REAL32:
      return visitor(static_cast<Real32*>(nullptr));
    case CIMTYPE_REAL64:
      return visitor(static_cast<Real64*>(nullptr));
    case CIMTYPE_CHAR16:
      return visitor(static_cast<Char16*>(nullptr));
    case CIMTYPE_STRING:
      return visitor(static_cast<String*>(nullptr));
    case CIMTYPE_DATETIME:
      return visitor(static_cast<CIMDateTime*>(nullptr));
    case CIMTYPE_REFERENCE:
      return visitor(static_cast<CIMObjectPath*>(nullptr));
    case CIMTYPE_OBJECT:
      return visitor(static_cast<CIMObject*>(nullptr));
    case CIMTYPE_INSTANCE:
      return visitor(static_cast<CIMInstance*>(nullptr));
  }
  return visitor(static_cast<Boolean*>(nullptr));
}

}  // namespace Pegasus::objects
