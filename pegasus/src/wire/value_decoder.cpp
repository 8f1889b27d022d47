// The part of the object decoder that reads values.
#include <algorithm>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "Pegasus/Common/Exception.h"
#include "base/limits.h"
#include "objects/value_content.h"
#include "wire/object_decoder.h"
#include "wire/scalar_text.h"

namespace Pegasus::wire {
namespace {

/// For how many elements of an array room is made ahead.
constexpr Uint32 kReservedItems = 2;

/// The message for a number that the type cannot hold.
template <typename T>
constexpr const char* OutOfRange() {
  if constexpr (std::is_same_v<T, Uint8>) return "Uint8 value out of range";
  if constexpr (std::is_same_v<T, Sint8>) return "Sint8 value out of range";
  if constexpr (std::is_same_v<T, Uint16>) return "Uint16 value out of range";
  if constexpr (std::is_same_v<T, Sint16>) return "Sint16 value out of range";
  if constexpr (std::is_same_v<T, Uint32>) return "Uint32 value out of range";
  if constexpr (std::is_same_v<T, Sint32>) return "Sint32 value out of range";
  if constexpr (std::is_same_v<T, Uint64>) return "Uint64 value out of range";
  return "Sint64 value out of range";
}

}  // namespace

CIMType ValueType::Visible() const {
  switch (embedded) {
    case Embedded::kInstance:
      return CIMTYPE_INSTANCE;
    case Embedded::kObject:
      return CIMTYPE_OBJECT;
    default:
      return type;
  }
}

template <typename T>
T ObjectDecoder::ParseInteger(std::string_view text) const {
  if constexpr (std::is_unsigned_v<T>) {
    const auto value = ParseUnsigned(text);
    if (!value) reader_.FailSemantic("Invalid unsigned integer value");
    if (*value > std::numeric_limits<T>::max()) reader_.FailSemantic(OutOfRange<T>());
    return static_cast<T>(*value);
  } else {
    const auto value = ParseSigned(text);
    if (!value) reader_.FailSemantic("Invalid signed integer value");
    if (*value > std::numeric_limits<T>::max() || *value < std::numeric_limits<T>::min()) {
      reader_.FailSemantic(OutOfRange<T>());
    }
    return static_cast<T>(*value);
  }
}

template <typename T>
T ObjectDecoder::ParseRealNumber(std::string_view text) const {
  const auto value = ParseReal(text);
  constexpr auto kMax = static_cast<double>(std::numeric_limits<T>::max());
  // The greatest Real32, written in nine digits, comes out a little greater than it is; what rounds to it is it.
  constexpr double kMaxRounded = std::is_same_v<T, Real32> ? 0x1.fffffefffffffp127 : kMax;
  if (!value || *value > kMaxRounded || *value < -kMaxRounded) reader_.FailSemantic("Invalid real number value");
  return static_cast<T>(std::clamp(*value, -kMax, kMax));
}

bool ObjectDecoder::ParseTruth(std::string_view text) const {
  const auto value = ParseBoolean(text);
  if (!value) reader_.FailSemantic("Invalid boolean value");
  return *value;
}

Char16 ObjectDecoder::ParseChar16(std::string_view text) const {
  const String units = ToString(text);
  if (units.size() != 1) reader_.FailSemantic("Invalid char16 value");
  return units[0];
}

CIMDateTime ObjectDecoder::ParseDateTime(std::string_view text) const {
  if (text.empty()) return {};
  try {
    return CIMDateTime(ToString(text));
  } catch (const InvalidDateTimeFormatException&) {
    reader_.FailSemantic("Invalid datetime value");
  }
}

CIMValue ObjectDecoder::ParseScalar(CIMType type, std::string_view text) {
  switch (type) {
    case CIMTYPE_STRING:
      return objects::Access::MakeStringValue(internal::PoolAccess::MakeString(pool_, text));
    case CIMTYPE_BOOLEAN:
      return CIMValue(static_cast<Boolean>(ParseTruth(text)));
    case CIMTYPE_UINT8:
      return CIMValue(ParseInteger<Uint8>(text));
    case CIMTYPE_SINT8:
      return CIMValue(ParseInteger<Sint8>(text));
    case CIMTYPE_UINT16:
      return CIMValue(ParseInteger<Uint16>(text));
    case CIMTYPE_SINT16:
      return CIMValue(ParseInteger<Sint16>(text));
    case CIMTYPE_UINT32:
      return CIMValue(ParseInteger<Uint32>(text));
    case CIMTYPE_SINT32:
      return CIMValue(ParseInteger<Sint32>(text));
    case CIMTYPE_UINT64:
      return CIMValue(ParseInteger<Uint64>(text));
    case CIMTYPE_SINT64:
      return CIMValue(ParseInteger<Sint64>(text));
    case CIMTYPE_REAL32:
      return CIMValue(ParseRealNumber<Real32>(text));
    case CIMTYPE_REAL64:
      return CIMValue(ParseRealNumber<Real64>(text));
    case CIMTYPE_CHAR16:
      return CIMValue(ParseChar16(text));
    case CIMTYPE_DATETIME:
      return CIMValue(ParseDateTime(text));
    default:
      reader_.FailSemantic("A reference cannot be given as text");
  }
}

CIMObject ObjectDecoder::ParseEmbedded(Embedded embedded, std::string_view text) const {
  if (embeddingDepth_ == limits::kEmbedding) reader_.FailSemantic("embedded objects are nested too deeply");
  XmlReader reader{std::string(text)};
  ObjectDecoder decoder(reader, pool_, embeddingDepth_ + 1);
  if (embedded == Embedded::kObject && reader.AtStart("CLASS")) return CIMObject(decoder.ReadClass());
  return CIMObject(decoder.ReadInstance());
}

CIMValue ObjectDecoder::ReadValue(ValueType type) {
  const std::string_view text = reader_.TakeTextElement("VALUE");
  if (type.embedded == Embedded::kNone) return ParseScalar(type.type, text);
  if (text.empty()) return {type.Visible(), false};
  CIMObject object = ParseEmbedded(type.embedded, text);
  if (type.embedded == Embedded::kInstance) return objects::Access::MakeInstanceValue(CIMInstance(object));
  return objects::Access::MakeObjectValue(std::move(object));
}

template <typename T, typename Parse>
CIMValue ObjectDecoder::ReadArray(Parse parse) {
  reader_.Next();
  Array<T> items = internal::PoolAccess::MakeArray<T>(pool_, kReservedItems);
  while (reader_.AtStart("VALUE")) items.append(parse(reader_.TakeTextElement("VALUE")));
  reader_.Leave("VALUE.ARRAY");
  return objects::Access::MakeArrayValue<T>(std::move(items), &pool_);
}

CIMValue ObjectDecoder::ReadValueArray(ValueType type) {
  using Text = std::string_view;
  switch (type.Visible()) {
    case CIMTYPE_STRING:
      return ReadArray<String>([this](Text text) { return internal::PoolAccess::MakeString(pool_, text); });
    case CIMTYPE_BOOLEAN:
      return ReadArray<Boolean>([this](Text text) { return ParseTruth(text); });
    case CIMTYPE_UINT8:
      return ReadArray<Uint8>([this](Text text) { return ParseInteger<Uint8>(text); });
    case CIMTYPE_SINT8:
      return ReadArray<Sint8>([this](Text text) { return ParseInteger<Sint8>(text); });
    case CIMTYPE_UINT16:
      return ReadArray<Uint16>([this](Text text) { return ParseInteger<Uint16>(text); });
    case CIMTYPE_SINT16:
      return ReadArray<Sint16>([this](Text text) { return ParseInteger<Sint16>(text); });
    case CIMTYPE_UINT32:
      return ReadArray<Uint32>([this](Text text) { return ParseInteger<Uint32>(text); });
    case CIMTYPE_SINT32:
      return ReadArray<Sint32>([this](Text text) { return ParseInteger<Sint32>(text); });
    case CIMTYPE_UINT64:
      return ReadArray<Uint64>([this](Text text) { return ParseInteger<Uint64>(text); });
    case CIMTYPE_SINT64:
      return ReadArray<Sint64>([this](Text text) { return ParseInteger<Sint64>(text); });
    case CIMTYPE_REAL32:
      return ReadArray<Real32>([this](Text text) { return ParseRealNumber<Real32>(text); });
    case CIMTYPE_REAL64:
      return ReadArray<Real64>([this](Text text) { return ParseRealNumber<Real64>(text); });
    case CIMTYPE_CHAR16:
      return ReadArray<Char16>([this](Text text) { return ParseChar16(text); });
    case CIMTYPE_DATETIME:
      return ReadArray<CIMDateTime>([this](Text text) { return ParseDateTime(text); });
    case CIMTYPE_INSTANCE:
      return ReadArray<CIMInstance>(
          [this](Text text) { return CIMInstance(ParseEmbedded(Embedded::kInstance, text)); });
    case CIMTYPE_OBJECT:
      return ReadArray<CIMObject>([this](Text text) { return ParseEmbedded(Embedded::kObject, text); });
    default:
      reader_.FailSemantic("A reference cannot be given as text");
  }
}

CIMValue ObjectDecoder::ReadReferenceArray() {
  reader_.Next();
  Array<CIMObjectPath> items;
  while (reader_.AtStart("VALUE.REFERENCE")) items.append(paths_.ReadReference());
  reader_.Leave("VALUE.REFARRAY");
  return objects::Access::MakeArrayValue<CIMObjectPath>(std::move(items), &pool_);
}

}  // namespace Pegasus::wire
