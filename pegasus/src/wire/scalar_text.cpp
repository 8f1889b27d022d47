// The parsers of single values.
#include "wire/scalar_text.h"

#include <array>
#include <charconv>
#include <limits>

#include "wire/xml_reader.h"

namespace Pegasus::wire {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct TypeName {
  std::string_view name;
  CIMType type;
};

constexpr std::array<TypeName, 15> kTypeNames = {{{"string", CIMTYPE_STRING},
                                                  {"uint16", CIMTYPE_UINT16},
                                                  {"boolean", CIMTYPE_BOOLEAN},
                                                  {"uint32", CIMTYPE_UINT32},
                                                  {"uint64", CIMTYPE_UINT64},
                                                  {"datetime", CIMTYPE_DATETIME},
                                                  {"uint8", CIMTYPE_UINT8},
                                                  {"sint8", CIMTYPE_SINT8},
                                                  {"sint16", CIMTYPE_SINT16},
                                                  {"sint32", CIMTYPE_SINT32},
                                                  {"sint64", CIMTYPE_SINT64},
                                                  {"real32", CIMTYPE_REAL32},
                                                  {"real64", CIMTYPE_REAL64},
                                                  {"char16", CIMTYPE_CHAR16},
                                                  {"reference", CIMTYPE_REFERENCE}}};

}  // namespace

std::optional<std::uint64_t> ParseUnsigned(std::string_view text) {
  int base = 10;
  if (text.size() > 1 && text[0] == '0') {
    if (text[1] != 'x' && text[1] != 'X') return std::nullopt;
    base = 16;
    text.remove_prefix(2);
  }
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc() || last != end) return std::nullopt;
  return value;
}

std::optional<std::int64_t> ParseSigned(std::string_view text) {
  const bool isNegative = !text.empty() && text[0] == '-';
  if (isNegative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
  const auto magnitude = ParseUnsigned(text);
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (!magnitude || *magnitude > kMax + (isNegative ? 1U : 0U)) return std::nullopt;
  return static_cast<std::int64_t>(isNegative ? 0U - *magnitude : *magnitude);
}

std::optional<double> ParseReal(std::string_view text) {
  if (!text.empty() && text[0] == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text[0] == '-') return std::nullopt;
  }
  std::size_t i = !text.empty() && text[0] == '-' ? 1 : 0;
  while (i < text.size() && IsDigit(text[i])) ++i;
  if (i + 1 >= text.size() || text[i] != '.' || !IsDigit(text[i + 1])) return std::nullopt;
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || last != end) return std::nullopt;
  return value;
}

std::optional<bool> ParseBoolean(std::string_view text) {
  if (EqualNoCase(text, "true")) return true;
  if (EqualNoCase(text, "false")) return false;
  return std::nullopt;
}

std::optional<CIMType> ParseType(std::string_view text) {
  // The two that most properties have.
  if (Equals(text, "string")) return CIMTYPE_STRING;
  if (Equals(text, "uint16")) return CIMTYPE_UINT16;
  for (const TypeName& entry : kTypeNames) {
    if (entry.name == text) return entry.type;
  }
  return std::nullopt;
}

String ToString(std::string_view text) {
  return text.empty() ? String() : String(text.data(), static_cast<Uint32>(text.size()));
}

}  // namespace Pegasus::wire
