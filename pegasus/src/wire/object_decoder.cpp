// The part of the object decoder that reads instances, classes and what they consist of.
#include "wire/object_decoder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Pegasus/Common/Exception.h"
#include "base/limits.h"
#include "objects/bodies.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

/// For how many properties room is made ahead; bounds what a small instance behind a large one can take.
constexpr Uint32 kMaxReserved = 32;
/// How many forms of properties are kept; bounds what a large object can take beside its properties.
constexpr std::size_t kMaxForms = 256;
/// What mostly stands behind the opening tag of a property.
constexpr XmlScanner::StartTag kValueTag{"<VALUE>", "VALUE"};
constexpr XmlScanner::StartTag kValueArrayTag{"<VALUE.ARRAY>", "VALUE.ARRAY"};

}  // namespace

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

bool ObjectDecoder::ReadPropertyForm(PropertyForm& form) {
  form = PropertyForm();
  if (reader_.AtStart("PROPERTY")) {
    form.shape = PropertyShape::kScalar;
    form.element = "PROPERTY";
  } else if (reader_.AtStart("PROPERTY.ARRAY")) {
    form.shape = PropertyShape::kArray;
    form.element = "PROPERTY.ARRAY";
  } else if (reader_.AtStart("PROPERTY.REFERENCE")) {
    form.shape = PropertyShape::kReference;
    form.element = "PROPERTY.REFERENCE";
  } else {
    return false;
  }
  form.tag = reader_.Tag();
  form.attributes = ReadPropertyAttributes(form.element);
  form.name = paths_.ToName(form.element, "NAME", form.attributes.name);
  form.nameHash = objects::HashName(form.name.getString());
  form.type = form.shape == PropertyShape::kReference ? ValueType{CIMTYPE_REFERENCE, Embedded::kNone}
                                                      : NeedPropertyType(form.attributes, form.element);
  if (form.shape == PropertyShape::kArray) form.arraySize = ToArraySize(form.attributes.arraySize);
  return true;
}

CIMValue ObjectDecoder::ReadPropertyValue(const PropertyForm& form) {
  switch (form.shape) {
    case PropertyShape::kScalar:
      return reader_.AtStart("VALUE") ? ReadValue(form.type) : CIMValue(form.type.Visible(), false);
    case PropertyShape::kReference:
      return reader_.AtStart("VALUE.REFERENCE") ? objects::Access::MakeReferenceValue(paths_.ReadReference(), &pool_)
                                                : CIMValue(CIMTYPE_REFERENCE, false);
    case PropertyShape::kArray:
      break;
  }
  if (!reader_.AtStart("VALUE.ARRAY")) return {form.type.Visible(), true, form.arraySize};
  CIMValue value = ReadValueArray(form.type);
  if (form.arraySize != 0 && form.arraySize != value.getArraySize()) {
    reader_.FailSemantic("ARRAYSIZE attribute and value-array size are different");
  }
  return value;
}

void ObjectDecoder::CompleteForm(PropertyForm& form) {
  if (form.shape == PropertyShape::kReference && form.attributes.referenceClass.data() != nullptr) {
    form.referenceClass = paths_.ToName(form.element, "REFERENCECLASS", form.attributes.referenceClass);
  }
  if (form.attributes.classOrigin.data() != nullptr) {
    form.classOrigin = paths_.ToName(form.element, "CLASSORIGIN", form.attributes.classOrigin);
  }
}

XmlScanner::StartTag ObjectDecoder::ExpectedTag(std::size_t index) const {
  return index < forms_.size() ? forms_[index].tag : XmlScanner::StartTag();
}

void ObjectDecoder::ReadProperties(objects::PropertySet& properties, bool isExpected) {
  // As long as each form is that of the object before, whose names all differ, no name can be there already.
  bool areNamesNew = true;
  if (forms_.empty()) forms_.reserve(kMaxReserved);
  std::size_t count = 0;
  for (;; ++count) {
    const std::size_t place = std::min(count, kMaxForms);
    if (place == forms_.size()) forms_.emplace_back();
    PropertyForm& form = forms_[place];
    if (!isExpected && !ReadPropertyForm(form)) break;
    reader_.NextIs(form.shape == PropertyShape::kArray ? kValueArrayTag : kValueTag);
    const std::vector<CIMQualifier> qualifiers = ReadQualifiers();
    CIMValue value = ReadPropertyValue(form);
    reader_.NeedClose(form.element);
    if (!isExpected) CompleteForm(form);
    // The last place is that of all further properties, so it tells nothing about any of them.
    if (place == kMaxForms) form.tag = {};
    CIMProperty property =
        objects::Access::MakePropertyUnchecked(form.name, std::move(value), form.arraySize, form.referenceClass,
                                               form.classOrigin, form.attributes.propagated, &pool_);
    AddQualifiers(property, qualifiers);
    areNamesNew = areNamesNew && isExpected;
    isExpected = reader_.LeaveTo(form.element, ExpectedTag(count + 1));
    if (areNamesNew) {
      properties.AddNew(std::move(property), form.nameHash);
    } else if (!properties.TryAdd(std::move(property), form.nameHash)) {
      reader_.FailSemantic("duplicate property");
    }
  }
  forms_.resize(std::min(count, kMaxForms));
}

CIMInstance ObjectDecoder::ReadInstance(const char* message) {
  if (!reader_.AtStart("INSTANCE")) reader_.FailValidation(message);
  CIMInstance instance =
      objects::Access::MakeInstanceUnchecked(CIMName(paths_.NeedName("INSTANCE", "CLASSNAME")), &pool_);
  const bool isExpected = reader_.NextIs(ExpectedTag(0));
  if (!isExpected) AddQualifiers(instance, ReadQualifiers());
  objects::PropertySet& properties = objects::RequireBody(instance).properties;
  properties.Reserve(std::min(static_cast<Uint32>(forms_.size()), kMaxReserved), &pool_);
  ReadProperties(properties, isExpected);
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
  ReadProperties(objects::RequireBody(cimClass).properties, false);
  try {
    while (reader_.AtStart("METHOD")) {
      if (cimClass.getMethodCount() == limits::kMembers) reader_.FailValidation("too many METHOD elements");
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
      if (method.getParameterCount() == limits::kMembers) reader_.FailValidation("too many PARAMETER elements");
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
    if (qualifiers.size() == limits::kMembers) reader_.FailValidation("too many QUALIFIER elements");
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
