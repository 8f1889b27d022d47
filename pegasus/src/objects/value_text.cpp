// The text form of CIM values. Arrays are their elements' texts with one blank behind each, NULL is the empty text.
#include <Pegasus/Common/CIMValue.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <string>
#include <type_traits>

#include "objects/value_content.h"
#include "wire/xml_writer.h"

namespace Pegasus {
namespace {

using objects::Access;

/// Units that most elements of arrays have at most, the blank included.
constexpr Uint32 kUsualElement = 12;

String TextOf(Boolean x) { return x ? "TRUE" : "FALSE"; }

template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
String TextOf(Integer x) {
  std::array<char, 24> buffer;  // 64 bits have at most 20 digits
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), x).ptr;
  return {buffer.data(), static_cast<Uint32>(end - buffer.data())};
}

String TextOf(Real64 x) {
  std::array<char, 32> buffer;  // sign, 17 digits, point and an exponent of 3 digits take 24
  const int size = std::snprintf(buffer.data(), buffer.size(), "%.16e", x);
  return {buffer.data(), static_cast<Uint32>(size)};
}

String TextOf(Real32 x) { return TextOf(static_cast<Real64>(x)); }

/// The first half of a surrogate pair has no text of its own; a second half is kept, as strings keep it.
String TextOf(const Char16& x) {
  constexpr Uint16 kPairMask = 0xFC00;
  constexpr Uint16 kFirstHalf = 0xD800;
  return {&x, (static_cast<Uint16>(x) & kPairMask) == kFirstHalf ? 0U : 1U};
}

const String& TextOf(const String& x) { return x; }

String TextOf(const CIMDateTime& x) { return x.toString(); }

String TextOf(const CIMObjectPath& x) { return x.toString(); }

String TextOf(const CIMObject& x) { return x.toString(); }

String TextOf(const CIMInstance& x) {
  std::string text;
  wire::AppendInstance(text, x);
  return {text.data(), static_cast<Uint32>(text.size())};
}

}  // namespace

String CIMValue::toString() const {
  if (isNull()) {
    return String();
  }
  return objects::VisitType(type_, [this](auto* tag) -> String {
    using T = std::remove_pointer_t<decltype(tag)>;
    if (!isArray_) {
      return TextOf(*Access::Peek<T>(*this));
    }
    const Array<T>& elements = *Access::Peek<Array<T>>(*this);
    String text;
    text.reserveCapacity(elements.size() * kUsualElement);
    for (Uint32 i = 0; i < elements.size(); ++i) {
      const auto& element = TextOf(elements[i]);
      text.append(element.getChar16Data(), element.size());
      text.append(Char16(' '));
    }
    return text;
  });
}

}  // namespace Pegasus
