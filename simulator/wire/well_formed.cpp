// Two looks at the bytes: at the characters, wherever they stand, and at the references, where they mean something.
#include "wire/well_formed.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

namespace Orvane::simulator {

namespace {

constexpr std::uint32_t kHighestCharacter = 0x10FFFF;

bool IsSurrogate(std::uint32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

bool IsAllowed(std::uint32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return !IsSurrogate(character) && character != 0xFFFE && character != 0xFFFF && character <= kHighestCharacter;
}

struct Lead {
  unsigned mask;
  unsigned bits;
  /// How many bytes follow, and the lowest character that needs as many.
  std::size_t following;
  std::uint32_t lowest;
};
constexpr Lead kLeads[] = {{0x80, 0x00, 0, 0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

// Takes one character off the front; false when the bytes are none that is allowed.
bool TakeCharacter(std::string_view& text) {
  constexpr unsigned kFollowingBits = 6;
  const unsigned first = static_cast<unsigned char>(text.front());
  const auto* const lead = std::find_if(std::begin(kLeads), std::end(kLeads),
                                        [first](const Lead& each) { return (first & each.mask) == each.bits; });
  if (lead == std::end(kLeads) || text.size() <= lead->following) return false;
  std::uint32_t character = first & ~lead->mask;
  for (const char c : text.substr(1, lead->following)) {
    const unsigned byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80U) return false;
    character = (character << kFollowingBits) | (byte & 0x3FU);
  }
  text.remove_prefix(lead->following + 1);
  return character >= lead->lowest && IsAllowed(character);
}

bool IsReference(std::string_view name) {
  for (const std::string_view known : {"lt", "gt", "amp", "quot", "apos"}) {
    if (name == known) return true;
  }
  if (name.empty() || name.front() != '#') return false;
  name.remove_prefix(1);
  constexpr int kDecimal = 10;
  constexpr int kHex = 16;
  const bool isHex = !name.empty() && name.front() == 'x';
  if (isHex) name.remove_prefix(1);
  std::uint32_t character = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), character, isHex ? kHex : kDecimal);
  return error == std::errc() && end == name.data() + name.size() && character != 0 && !IsSurrogate(character) &&
         character <= kHighestCharacter;
}

struct Markup {
  std::string_view start;
  std::string_view end;
};
// Where an ampersand is an ampersand.
constexpr Markup kPlain[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

bool HasGoodReferences(std::string_view document) {
  for (std::size_t place = document.find_first_of("<&"); place != std::string_view::npos;
       place = document.find_first_of("<&", place)) {
    const std::string_view rest = document.substr(place);
    if (rest.front() == '&') {
      const std::size_t end = rest.find(';');
      if (end == std::string_view::npos || !IsReference(rest.substr(1, end - 1))) return false;
      place += end;
      continue;
    }
    const auto* const plain = std::find_if(std::begin(kPlain), std::end(kPlain), [rest](const Markup& each) {
      return rest.substr(0, each.start.size()) == each.start;
    });
    if (plain == std::end(kPlain)) {
      ++place;
      continue;
    }
    const std::size_t end = rest.find(plain->end, plain->start.size());
    // The parser complains about what has no end.
    if (end == std::string_view::npos) return true;
    place += end;
  }
  return true;
}

}  // namespace

const char* FindIllFormedText(std::string_view document) {
  for (std::string_view rest = document; !rest.empty();) {
    if (!TakeCharacter(rest)) return "a character that XML does not have";
  }
  return HasGoodReferences(document) ? nullptr : "a reference to nothing";
}

}  // namespace Orvane::simulator
