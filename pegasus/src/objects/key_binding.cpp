// Key bindings: made from text or values, and compared by meaning.
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMValue.h>

#include <optional>
#include <utility>

#include "objects/internal.h"
#include "objects/path_parser.h"

namespace Pegasus {
namespace {

/// Nothing for a type that cannot be a key.
std::optional<CIMKeyBinding::Type> KeyTypeOf(const CIMValue& value) {
  if (value.isArray()) {
    return std::nullopt;
  }
  switch (value.getType()) {
    case CIMTYPE_BOOLEAN:
      return CIMKeyBinding::BOOLEAN;
    case CIMTYPE_CHAR16:
    case CIMTYPE_STRING:
    case CIMTYPE_DATETIME:
      return CIMKeyBinding::STRING;
    case CIMTYPE_REFERENCE:
      return CIMKeyBinding::REFERENCE;
    case CIMTYPE_OBJECT:
    case CIMTYPE_INSTANCE:
      return std::nullopt;
    default:
      return CIMKeyBinding::NUMERIC;
  }
}

/// By value where both are whole numbers, by text otherwise.
bool SameNumber(const String& a, const String& b) {
  const auto left = objects::ParseKeyNumber(a);
  const auto right = objects::ParseKeyNumber(b);
  if (!left || !right) {
    return a == b;
  }
  return left->magnitude == right->magnitude && (left->negative == right->negative || left->magnitude == 0);
}

/// As paths where both are paths, by text otherwise.
bool SameReference(const String& a, const String& b) {
  if (a == b) {
    return true;
  }
  objects::ParsedPath left;
  objects::ParsedPath right;
  if (objects::ParsePath(a, left) || objects::ParsePath(b, right)) {
    return false;
  }
  return CIMObjectPath(a) == CIMObjectPath(b);
}

}  // namespace

CIMKeyBinding::CIMKeyBinding(const CIMName& name, const String& value, Type type)
    : name_(name), value_(value), type_(type) {}

CIMKeyBinding::CIMKeyBinding(const CIMName& name, const CIMValue& value) : name_(name) {
  const auto type = KeyTypeOf(value);
  if (!type) {
    throw TypeMismatchException();
  }
  type_ = *type;
  value_ = value.toString();
}

const CIMName& CIMKeyBinding::getName() const { return name_; }

void CIMKeyBinding::setName(const CIMName& name) { name_ = name; }

const String& CIMKeyBinding::getValue() const { return value_; }

void CIMKeyBinding::setValue(const String& value) { value_ = value; }

CIMKeyBinding::Type CIMKeyBinding::getType() const { return type_; }

void CIMKeyBinding::setType(Type type) { type_ = type; }

Boolean CIMKeyBinding::equal(CIMValue value) {
  return KeyTypeOf(value) && !value.isNull() && *this == CIMKeyBinding(name_, value);
}

Boolean operator==(const CIMKeyBinding& x, const CIMKeyBinding& y) {
  if (!x.getName().equal(y.getName()) || x.getType() != y.getType()) {
    return false;
  }
  switch (x.getType()) {
    case CIMKeyBinding::BOOLEAN:
      return String::equalNoCase(x.getValue(), y.getValue());
    case CIMKeyBinding::NUMERIC:
      return SameNumber(x.getValue(), y.getValue());
    case CIMKeyBinding::REFERENCE:
      return SameReference(x.getValue(), y.getValue());
    case CIMKeyBinding::STRING:
      break;
  }
  return x.getValue() == y.getValue();
}

CIMKeyBinding objects::Access::MakeKeyBindingUnchecked(CIMName&& name, String&& value, CIMKeyBinding::Type type) {
  CIMKeyBinding key;
  key.name_ = std::move(name);
  key.value_ = std::move(value);
  key.type_ = type;
  return key;
}

}  // namespace Pegasus
