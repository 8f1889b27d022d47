// CIM values: construction, assignment and reading, the same way for every type a value can have.
#include <Pegasus/Common/CIMValue.h>

#include <utility>

#include "objects/internal.h"
#include "objects/value_content.h"

namespace Pegasus {

using objects::Access;
using objects::Independent;
using objects::Kind;

namespace {

template <typename T>
void Get(const CIMValue& value, T& x) {
  if (value.getType() != Kind<T>::kType || value.isArray() != Kind<T>::kIsArray) {
    throw TypeMismatchException();
  }
  if (const T* const content = Access::Peek<T>(value)) {
    x = Independent(*content);
  }
}

}  // namespace

CIMValue::CIMValue(CIMType type, Boolean isArray, Uint32 arraySize)
    : nullArraySize_(isArray ? arraySize : 0), type_(type), isArray_(isArray) {}

#define PEGASUS_VALUE_MEMBERS(Argument, T)                                     \
  CIMValue::CIMValue(Argument x) { objects::Store(*this, Independent<T>(x)); } \
  void CIMValue::set(Argument x) { objects::Store(*this, Independent<T>(x)); } \
  void CIMValue::get(T& x) const { Get(*this, x); }
#define PEGASUS_VALUE_MEMBERS_OF(Argument, T) \
  PEGASUS_VALUE_MEMBERS(Argument, T)          \
  PEGASUS_VALUE_MEMBERS(const Array<T>&, Array<T>)
PEGASUS_VALUE_MEMBERS_OF(Boolean, Boolean)
PEGASUS_VALUE_MEMBERS_OF(Uint8, Uint8)
PEGASUS_VALUE_MEMBERS_OF(Sint8, Sint8)
PEGASUS_VALUE_MEMBERS_OF(Uint16, Uint16)
PEGASUS_VALUE_MEMBERS_OF(Sint16, Sint16)
PEGASUS_VALUE_MEMBERS_OF(Uint32, Uint32)
PEGASUS_VALUE_MEMBERS_OF(Sint32, Sint32)
PEGASUS_VALUE_MEMBERS_OF(Uint64, Uint64)
PEGASUS_VALUE_MEMBERS_OF(Sint64, Sint64)
PEGASUS_VALUE_MEMBERS_OF(Real32, Real32)
PEGASUS_VALUE_MEMBERS_OF(Real64, Real64)
PEGASUS_VALUE_MEMBERS_OF(const Char16&, Char16)
PEGASUS_VALUE_MEMBERS_OF(const String&, String)
PEGASUS_VALUE_MEMBERS_OF(const CIMDateTime&, CIMDateTime)
PEGASUS_VALUE_MEMBERS_OF(const CIMObjectPath&, CIMObjectPath)
PEGASUS_VALUE_MEMBERS_OF(const CIMObject&, CIMObject)
PEGASUS_VALUE_MEMBERS_OF(const CIMInstance&, CIMInstance)
#undef PEGASUS_VALUE_MEMBERS_OF
#undef PEGASUS_VALUE_MEMBERS

void CIMValue::assign(const CIMValue& x) { *this = x; }

void CIMValue::clear() { *this = CIMValue(); }

Boolean CIMValue::typeCompatible(const CIMValue& x) const { return type_ == x.type_ && isArray_ == x.isArray_; }

Boolean CIMValue::isArray() const { return isArray_; }

Boolean CIMValue::isNull() const { return std::holds_alternative<std::monostate>(content_); }

Uint32 CIMValue::getArraySize() const {
  if (!isArray_) {
    return 0;
  }
  if (isNull()) {
    return nullArraySize_;
  }
  return objects::VisitType(
      type_, [this](auto* tag) { return Access::Peek<Array<std::remove_pointer_t<decltype(tag)>>>(*this)->size(); });
}

CIMType CIMValue::getType() const { return type_; }

void CIMValue::setNullValue(CIMType type, Boolean isArray, Uint32 arraySize) {
  *this = CIMValue(type, isArray, arraySize);
}

namespace objects {

CIMValue Access::MakeStringValue(String&& text) {
  CIMValue value;
  Store(value, std::move(text));
  return value;
}

CIMValue Access::MakeReferenceValue(CIMObjectPath&& path, internal::Pool* pool) {
  CIMValue value;
  Store(value, std::move(path), pool);
  return value;
}

CIMValue Access::MakeInstanceValue(CIMInstance&& instance) {
  CIMValue value;
  Store(value, std::move(instance));
  return value;
}

CIMValue Access::MakeObjectValue(CIMObject&& object) {
  CIMValue value;
  Store(value, std::move(object));
  return value;
}

}  // namespace objects
}  // namespace Pegasus
