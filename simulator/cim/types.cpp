// Names and checks of CIM types, in the forms of DSP0201 (CIM-XML) and DSP0004 (the types themselves).
#include "cim/types.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

namespace Orvane::simulator {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct IntegerRange {
  CimType type;
  std::int64_t lowest;
  std::uint64_t highest;
};

constexpr IntegerRange kIntegerRanges[] = {
    {CimType::kUint8, 0, std::numeric_limits<std::uint8_t>::max()},
    {CimType::kUint16, 0, std::numeric_limits<std::uint16_t>::max()},
    {CimType::kUint32, 0, std::numeric_limits<std::uint32_t>::max()},
    {CimType::kUint64, 0, std::numeric_limits<std::uint64_t>::max()},
    {CimType::kSint8, std::numeric_limits<std::int8_t>::min(), std::numeric_limits<std::int8_t>::max()},
    {CimType::kSint16, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()},
    {CimType::kSint32, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()},
    {CimType::kSint64, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()},
};

const IntegerRange* FindRange(CimType type) {
  const auto* found = std::find_if(std::begin(kIntegerRanges), std::end(kIntegerRanges),
                                   [type](const IntegerRange& range) { return range.type == type; });
  return found == std::end(kIntegerRanges) ? nullptr : found;
}

// The decimal spelling of an integer in range; none when the text is no such integer.
std::optional<std::string> ReadInteger(const IntegerRange& range, std::string_view text) {
  bool negative = false;
  if (range.lowest < 0 && !text.empty() && (text[0] == '-' || text[0] == '+')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && Lower(text[1]) == 'x') {
    base = 16;
    text.remove_prefix(2);
  } else if (text.size() > 1 && text[0] == '0') {
    return std::nullopt;
  }
  std::uint64_t magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  const std::uint64_t limit = negative ? std::uint64_t{0} - static_cast<std::uint64_t>(range.lowest) : range.highest;
  if (magnitude > limit) return std::nullopt;
  return (negative && magnitude != 0 ? "-" : "") + std::to_string(magnitude);
}

bool IsReal(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789+-.eE") != std::string_view::npos) return false;
  const std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  return end == copy.c_str() + copy.size() && std::isfinite(value);
}

// yyyymmddhhmmss.mmmmmm(+|-)utc for a point in time, dddddddddhhmmss.mmmmmm:000 for an interval; * for unknown digits.
bool IsDateTime(std::string_view text) {
  constexpr std::size_t kLength = 25;
  constexpr std::size_t kPoint = 14;
  constexpr std::size_t kSign = 21;
  if (text.size() != kLength || text[kPoint] != '.') return false;
  if (text[kSign] != '+' && text[kSign] != '-' && text[kSign] != ':') return false;
  if (text[kSign] == ':' && text.substr(kSign + 1) != "000") return false;
  for (std::size_t i = 0; i < kLength; ++i) {
    if (i != kPoint && i != kSign && !IsDigit(text[i]) && (text[i] != '*' || i > kSign)) return false;
  }
  return true;
}

bool IsOneCharacter(std::string_view text) {
  const auto isLead = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  // Four bytes of UTF-8 would be two units of UTF-16.
  return !text.empty() && text.size() <= 3 && std::count_if(text.begin(), text.end(), isLead) == 1;
}

}  // namespace

std::string_view TypeName(CimType type) {
  constexpr std::array<std::string_view, 15> kNames = {"boolean", "uint8",  "uint16",   "uint32", "uint64",
                                                       "sint8",   "sint16", "sint32",   "sint64", "real32",
                                                       "real64",  "char16", "datetime", "string", "reference"};
  return kNames.at(static_cast<std::size_t>(type));
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return lower;
}

bool EqualNames(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

bool LessName::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return Lower(x) < Lower(y); });
}

bool IsLegalText(CimType type, std::string_view text) {
  if (const IntegerRange* range = FindRange(type)) return ReadInteger(*range, text).has_value();
  switch (type) {
    case CimType::kBoolean:
      return EqualNames(text, "true") || EqualNames(text, "false");
    case CimType::kReal32:
    case CimType::kReal64:
      return IsReal(text);
    case CimType::kDateTime:
      return IsDateTime(text);
    case CimType::kChar16:
      return IsOneCharacter(text);
    default:
      return type == CimType::kString;
  }
}

std::string CanonicalText(CimType type, std::string_view text) {
  if (const IntegerRange* range = FindRange(type)) return ReadInteger(*range, text).value_or(std::string(text));
  if (type == CimType::kBoolean) return EqualNames(text, "true") ? "TRUE" : "FALSE";
  return std::string(text);
}

Value Value::Text(std::string text) { return Texts({std::move(text)}); }

Value Value::Texts(std::vector<std::string> texts) {
  Value value;
  value.isNull = false;
  value.texts = std::move(texts);
  return value;
}

Value Value::Reference(ObjectPath path) {
  Value value;
  value.isNull = false;
  value.references.push_back(std::move(path));
  return value;
}

}  // namespace Orvane::simulator
