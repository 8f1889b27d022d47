// The part of the object decoder that reads instances, classes and what they consist of.
#include "wire/object_decoder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Pegasus/Common/Exception.h"
#include "objects/internal.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

/// How many qualifiers one element and how many parameters and methods one class or method may have.
constexpr std::size_t kMaxMembers = 4096;
/// For how many properties room is made ahead; bounds what a small instance behind a large one can take.
constexpr Uint32 kMaxReserved = 32;

}  // namespace

/// The attributes of a property; data() is null for those that are missing.
struct ObjectDecoder::PropertyAttributes {
  std::string_view name;
  std::string_view type;
  std::string_view classOrigin;
  std::string_view referenceClass;
  std::string_view arraySize;
  Embedded embedded = Embedded::kNone;
  bool propagated = false;
};

Embedded ObjectDecoder::ToEmbedded(std::string_view text) const {
  if (EqualNoCase(text, "instance")) return Embedded::kInstance;
  if (EqualNoCase(text, "object")) return Embedded::kObject;
  reader_.FailAttribute("Illegal value for EmbeddedObject attribute");
}

Embedded ObjectDecoder::FindEmbedded() const {
  for (const XmlScanner::Attribute& attribute : reader_.Attributes()) {
    if (attribute.name == "EmbeddedObject" || attribute.name == "EMBEDDEDOBJECT") return ToEmbedded(attribute.value);
  }
  return Embedded::kNone;
}

ObjectDecoder::PropertyAttributes ObjectDecoder::ReadPropertyAttributes(std::string_view element) const {
  PropertyAttributes result;
  for (const auto& [name, value] : reader_.Attributes()) {
    if (Equals(name, "NAME")) {
      result.name = value;
    } else if (Equals(name, "TYPE")) {
      result.type = value;
    } else if (Equals(name, "CLASSORIGIN")) {
      result.classOrigin = value;
    } else if (Equals(name, "PROPAGATED")) {
      result.propagated = reader_.BooleanAttribute(element, name, false);
    } else if (Equals(name, "ARRAYSIZE")) {
      result.arraySize = value;
    } else if (Equals(name, "REFERENCECLASS")) {
      result.referenceClass = value;
    } else if (Equals(name, "EmbeddedObject") || Equals(name, "EMBEDDEDOBJECT")) {
      result.embedded = ToEmbedded(value);
    }
  }
  if (result.name.data() == nullptr) {
    reader_.FailValidation(std::string("missing ").append(element).append(".NAME attribute"));
  }
  return result;
}

ValueType ObjectDecoder::NeedPropertyType(const PropertyAttributes& attributes, std::string_view element) const {
  if (attributes.type.data() == nullptr) {
    reader_.FailValidation(std::string("missing ").append(element).append(".TYPE attribute"));
  }
  const auto type = ParseType(attributes.type);
  if (!type || *type == CIMTYPE_REFERENCE || (attributes.embedded != Embedded::kNone && *type != CIMTYPE_STRING)) {
    reader_.FailAttribute(std::string("Illegal value for ").append(element).append(".TYPE attribute"));
  }
  return {*type, attributes.embedded};
}

Uint32 ObjectDecoder::ToArraySize(std::string_view text) const {
  if (text.data() == nullptr) return 0;
  const auto size = ParseUnsigned(text);
  if (!size || *size > std::numeric_limits<Uint32>::max()) {
    reader_.FailAttribute("Illegal value for ARRAYSIZE attribute");
  }
  return static_cast<Uint32>(*size);
}

template <typename Owner>
void ObjectDecoder::AddQualifiers(Owner& owner, const std::vector<CIMQualifier>& qualifiers) const {
  try {
    for (const CIMQualifier& qualifier : qualifiers) owner.addQualifier(qualifier);
  } catch (const AlreadyExistsException&) {
    reader_.FailSemantic("duplicate qualifier");
  }
}

CIMProperty ObjectDecoder::MakeProperty(const PropertyAttributes& attributes, std::string_view element, CIMName&& name,
                                        CIMValue&& value, Uint32 arraySize) {
  CIMName referenceClass;
  if (attributes.referenceClass.data() != nullptr) {
    referenceClass = paths_.ToName(element, "REFERENCECLASS", attributes.referenceClass);
  }
  CIMName classOrigin;
  if (attributes.classOrigin.data() != nullptr) {
    classOrigin = paths_.ToName(element, "CLASSORIGIN", attributes.classOrigin);
  }
  return objects::Access::MakePropertyUnchecked(std::move(name), std::move(value), arraySize, std::move(referenceClass),
                                                std::move(classOrigin), attributes.propagated);
}

CIMProperty ObjectDecoder::ReadScalarProperty() {
  constexpr std::string_view kElement = "PROPERTY";
  PropertyAttributes attributes = ReadPropertyAttributes(kElement);
  attributes.referenceClass = {};
  CIMName name = paths_.ToName(kElement, "NAME", attributes.name);
  const ValueType type = NeedPropertyType(attributes, kElement);
  reader_.Next();
  const std::vector<CIMQualifier> qualifiers = ReadQualifiers();
  CIMValue value = reader_.AtStart("VALUE") ? ReadValue(type) : CIMValue(type.Visible(), false);
  reader_.NeedClose(kElement);
  CIMProperty property = MakeProperty(attributes, kElement, std::move(name), std::move(value), 0);
  AddQualifiers(property, qualifiers);
  reader_.Leave(kElement);
  return property;
}

CIMProperty ObjectDecoder::ReadArrayProperty() {
  constexpr std::string_view kElement = "PROPERTY.ARRAY";
  PropertyAttributes attributes = ReadPropertyAttributes(kElement);
  attributes.referenceClass = {};
  CIMName name = paths_.ToName(kElement, "NAME", attributes.name);
  const ValueType type = NeedPropertyType(attributes, kElement);
  const Uint32 arraySize = ToArraySize(attributes.arraySize);
  reader_.Next();
  const std::vector<CIMQualifier> qualifiers = ReadQualifiers();
  CIMValue value(type.Visible(), true, arraySize);
  if (reader_.AtStart("VALUE.ARRAY")) {
    value = ReadValueArray(type);
    if (arraySize != 0 && arraySize != value.getArraySize()) {
      reader_.FailSemantic("ARRAYSIZE attribute and value-array size are different");
    }
  }
  reader_.NeedClose(kElement);
  CIMProperty property = MakeProperty(attributes, kElement, std::move(name), std::move(value), arraySize);
  AddQualifiers(property, qualifiers);
  reader_.Leave(kElement);
  return property;
}

CIMProperty ObjectDecoder::ReadReferenceProperty() {
  constexpr std::string_view kElement = "PROPERTY.REFERENCE";
  const PropertyAttributes attributes = ReadPropertyAttributes(kElement);
  CIMName name = paths_.ToName(kElement, "NAME", attributes.name);
  reader_.Next();
  const std::vector<CIMQualifier> qualifiers = ReadQualifiers();
  CIMValue value(CIMTYPE_REFERENCE, false);
  if (reader_.AtStart("VALUE.REFERENCE")) value = objects::Access::MakeReferenceValue(paths_.ReadReference());
  reader_.NeedClose(kElement);
  CIMProperty property = MakeProperty(attributes, kElement, std::move(name), std::move(value), 0);
  AddQualifiers(property, qualifiers);
  reader_.Leave(kElement);
  return property;
}

bool ObjectDecoder::ReadProperty(CIMProperty& property) {
  if (reader_.AtStart("PROPERTY")) {
    property = ReadScalarProperty();
  } else if (reader_.AtStart("PROPERTY.ARRAY")) {
    property = ReadArrayProperty();
  } else if (reader_.AtStart("PROPERTY.REFERENCE")) {
    property = ReadReferenceProperty();
  } else {
    return false;
  }
  return true;
}

template <typename Owner>
void ObjectDecoder::ReadProperties(Owner& owner) {
  for (CIMProperty property; ReadProperty(property);) {
    if (!objects::Access::TryAddProperty(owner, std::move(property))) reader_.FailSemantic("duplicate property");
  }
}

CIMInstance ObjectDecoder::ReadInstance(const char* message) {
  if (!reader_.AtStart("INSTANCE")) reader_.FailValidation(message);
  CIMInstance instance = objects::Access::MakeInstanceUnchecked(CIMName(paths_.NeedName("INSTANCE", "CLASSNAME")));
  reader_.Next();
  AddQualifiers(instance, ReadQualifiers());
  objects::Access::ReserveProperties(instance, std::min(lastPropertyCount_, kMaxReserved));
  ReadProperties(instance);
  lastPropertyCount_ = instance.getPropertyCount();
  reader_.Leave("INSTANCE");
  return instance;
}

CIMClass ObjectDecoder::ReadClass() {
  if (!reader_.AtStart("CLASS")) reader_.FailValidation("expected CLASS element");
  const CIMName className = paths_.NeedName("CLASS", "NAME");
  CIMName superClassName;
  if (const auto text = reader_.FindAttribute("SUPERCLASS")) {
    superClassName = paths_.ToName("CLASS", "SUPERCLASS", *text);
  }
  CIMClass cimClass(className, superClassName);
  reader_.Next();
  AddQualifiers(cimClass, ReadQualifiers());
  ReadProperties(cimClass);
  try {
    while (reader_.AtStart("METHOD")) {
      if (cimClass.getMethodCount() == kMaxMembers) reader_.FailValidation("too many METHOD elements");
      cimClass.addMethod(ReadMethod());
    }
  } catch (const AlreadyExistsException&) {
    reader_.FailSemantic("duplicate method");
  }
  reader_.Leave("CLASS");
  return cimClass;
}

CIMMethod ObjectDecoder::ReadMethod() {
  constexpr std::string_view kElement = "METHOD";
  const PropertyAttributes attributes = ReadPropertyAttributes(kElement);
  const CIMName name = paths_.ToName(kElement, "NAME", attributes.name);
  const ValueType type = NeedPropertyType(attributes, kElement);
  CIMName classOrigin;
  if (attributes.classOrigin.data() != nullptr) {
    classOrigin = paths_.ToName(kElement, "CLASSORIGIN", attributes.classOrigin);
  }
  CIMMethod method(name, type.Visible(), classOrigin, attributes.propagated);
  reader_.Next();
  AddQualifiers(method, ReadQualifiers());
  try {
    while (ReadParameter(method)) {
      if (method.getParameterCount() == kMaxMembers) reader_.FailValidation("too many PARAMETER elements");
    }
  } catch (const AlreadyExistsException&) {
    reader_.FailSemantic("duplicate parameter");
  }
  reader_.Leave(kElement);
  return method;
}

bool ObjectDecoder::ReadParameter(CIMMethod& method) {
  struct Form {
    std::string_view element;
    bool isReference;
    bool isArray;
  };
  constexpr Form kForms[] = {{"PARAMETER", false, false},
                             {"PARAMETER.ARRAY", false, true},
                             {"PARAMETER.REFERENCE", true, false},
                             {"PARAMETER.REFARRAY", true, true}};
  for (const Form& form : kForms) {
    if (!reader_.AtStart(form.element)) continue;
    const PropertyAttributes attributes = ReadPropertyAttributes(form.element);
    const CIMName name = paths_.ToName(form.element, "NAME", attributes.name);
    const ValueType type =
        form.isReference ? ValueType{CIMTYPE_REFERENCE, Embedded::kNone} : NeedPropertyType(attributes, form.element);
    CIMName referenceClass;
    if (form.isReference && attributes.referenceClass.data() != nullptr) {
      referenceClass = paths_.ToName(form.element, "REFERENCECLASS", attributes.referenceClass);
    }
    const Uint32 arraySize = form.isArray ? ToArraySize(attributes.arraySize) : 0;
    CIMParameter parameter(name, type.Visible(), form.isArray, arraySize, referenceClass);
    reader_.Next();
    AddQualifiers(parameter, ReadQualifiers());
    reader_.Leave(form.element);
    method.addParameter(parameter);
    return true;
  }
  return false;
}

std::vector<CIMQualifier> ObjectDecoder::ReadQualifiers() {
  std::vector<CIMQualifier> qualifiers;
  while (reader_.AtStart("QUALIFIER")) {
    if (qualifiers.size() == kMaxMembers) reader_.FailValidation("too many QUALIFIER elements");
    qualifiers.push_back(ReadQualifier());
  }
  return qualifiers;
}

CIMQualifier ObjectDecoder::ReadQualifier() {
  constexpr std::string_view kElement = "QUALIFIER";
  const PropertyAttributes attributes = ReadPropertyAttributes(kElement);
  const CIMName name = paths_.ToName(kElement, "NAME", attributes.name);
  const ValueType type = NeedPropertyType(attributes, kElement);
  struct Flag {
    std::string_view attribute;
    const CIMFlavor& flavor;
    bool isDefault;
  };
  const Flag flags[] = {{"OVERRIDABLE", CIMFlavor::OVERRIDABLE, true},
                        {"TOSUBCLASS", CIMFlavor::TOSUBCLASS, true},
                        {"TOINSTANCE", CIMFlavor::TOINSTANCE, false},
                        {"TRANSLATABLE", CIMFlavor::TRANSLATABLE, false}};
  CIMFlavor flavor;
  for (const Flag& flag : flags) {
    if (reader_.BooleanAttribute(kElement, flag.attribute, flag.isDefault)) flavor.addFlavor(flag.flavor);
  }
  reader_.Next();
  CIMValue value(type.type, false);
  if (reader_.AtStart("VALUE.ARRAY")) {
    value = ReadValueArray({type.type, Embedded::kNone});
  } else if (reader_.AtStart("VALUE")) {
    value = ReadValue({type.type, Embedded::kNone});
  }
  reader_.Leave(kElement);
  return CIMQualifier(name, value, flavor, attributes.propagated);
}

}  // namespace Pegasus::wire
