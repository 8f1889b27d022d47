// Decodes values, properties, qualifiers, instances and classes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Pegasus/Common/CIMClass.h"
#include "Pegasus/Common/CIMInstance.h"
#include "Pegasus/Common/CIMMethod.h"
#include "Pegasus/Common/CIMObject.h"
#include "Pegasus/Common/CIMParameter.h"
#include "Pegasus/Common/CIMProperty.h"
#include "Pegasus/Common/CIMQualifier.h"
#include "Pegasus/Common/CIMValue.h"
#include "base/pool.h"
#include "objects/bodies.h"
#include "wire/name_cache.h"
#include "wire/path_decoder.h"
#include "wire/xml_reader.h"

namespace Pegasus::wire {

/// What the text of a string value stands for.
enum class Embedded { kNone, kInstance, kObject };

/// The type of a value as it is declared in a response.
struct ValueType {
  CIMType type = CIMTYPE_STRING;
  Embedded embedded = Embedded::kNone;

  /// The type as users see it: an embedded instance is no string.
  CIMType Visible() const;
};

/// Decoder of a response's objects; every Read function expects its element in view and takes it.
class ObjectDecoder {
 public:
  /// The objects go into the pool.
  ObjectDecoder(XmlReader& reader, internal::Pool& pool, unsigned embeddingDepth = 0)
      : reader_(reader), pool_(pool), paths_(reader, names_, pool), embeddingDepth_(embeddingDepth) {}

  PathDecoder& Paths() { return paths_; }

  /// `message` is for anything but an INSTANCE.
  CIMInstance ReadInstance(const char* message = "expected INSTANCE element");
  CIMClass ReadClass();
  /// A VALUE element.
  CIMValue ReadValue(ValueType type);
  /// A VALUE.ARRAY element.
  CIMValue ReadValueArray(ValueType type);
  /// A VALUE.REFARRAY element.
  CIMValue ReadReferenceArray();

  /// The meaning of an EmbeddedObject attribute.
  Embedded ToEmbedded(std::string_view text) const;
  /// The embedding that the attributes of the element in view declare.
  Embedded FindEmbedded() const;

 private:
  /// The attributes of a property; data() is null for those that are missing.
  struct PropertyAttributes {
    std::string_view name;
    std::string_view type;
    std::string_view classOrigin;
    std::string_view referenceClass;
    std::string_view arraySize;
    Embedded embedded = Embedded::kNone;
    bool propagated = false;
  };

  enum class PropertyShape { kScalar, kArray, kReference };

  /// All that the start tag of a property says. The instances of an answer mostly have the same properties in the same
  /// order, so a tag with the bytes of the one that stood in its place the last time is not read again.
  struct PropertyForm {
    XmlScanner::StartTag tag;
    std::string_view element;
    PropertyShape shape = PropertyShape::kScalar;
    PropertyAttributes attributes;
    CIMName name;
    Uint32 nameHash = 0;
    ValueType type;
    Uint32 arraySize = 0;
    CIMName referenceClass;
    CIMName classOrigin;
  };

  PropertyAttributes ReadPropertyAttributes(std::string_view element) const;
  /// The form of the PROPERTY, PROPERTY.ARRAY or PROPERTY.REFERENCE in view; false when there is none.
  bool ReadPropertyForm(PropertyForm& form);
  CIMValue ReadPropertyValue(const PropertyForm& form);
  /// The names which are looked at when the rest of the property has been read.
  void CompleteForm(PropertyForm& form);
  ValueType NeedPropertyType(const PropertyAttributes& attributes, std::string_view element) const;
  Uint32 ToArraySize(std::string_view text) const;

  CIMQualifier ReadQualifier();
  std::vector<CIMQualifier> ReadQualifiers();
  template <typename Owner>
  void AddQualifiers(Owner& owner, const std::vector<CIMQualifier>& qualifiers) const;
  /// The tag that the property number `index` had in the object before; empty when there is none.
  XmlScanner::StartTag ExpectedTag(std::size_t index) const;
  /// The properties in view, the first of which has the expected form when `isExpected`.
  void ReadProperties(objects::PropertySet& properties, bool isExpected);
  CIMMethod ReadMethod();
  bool ReadParameter(CIMMethod& method);

  template <typename T>
  T ParseInteger(std::string_view text) const;
  template <typename T>
  T ParseRealNumber(std::string_view text) const;
  bool ParseTruth(std::string_view text) const;
  Char16 ParseChar16(std::string_view text) const;
  CIMDateTime ParseDateTime(std::string_view text) const;
  CIMValue ParseScalar(CIMType type, std::string_view text);
  CIMObject ParseEmbedded(Embedded embedded, std::string_view text) const;
  template <typename T, typename Parse>
  CIMValue ReadArray(Parse parse);

  XmlReader& reader_;
  internal::Pool& pool_;
  NameCache names_;
  PathDecoder paths_;
  unsigned embeddingDepth_;
  /// Of the properties of the object read last, in their order; those of the object being read replace them.
  std::vector<PropertyForm> forms_;
};

}  // namespace Pegasus::wire
