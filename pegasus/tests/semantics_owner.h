// Says which test program checks a case of semantics.json: the one of the foundation (texts, lists, names, date-times,
// exceptions) or the one of values and objects. Every case belongs to exactly one.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace Pegasus::test {

enum class SemanticsOwner { kBase, kObjects };

/// By what the description of the case starts with.
inline SemanticsOwner OwnerOf(std::string_view semanticsCase) {
  constexpr std::array<std::string_view, 11> kBasePrefixes = {
      "Array",       "String",    "CString",      "Char16",   "CIMName", "CIMNamespaceName",
      "CIMDateTime", "Exception", "CIMException", "catch as", "slice"};
  const bool isBase = std::any_of(kBasePrefixes.begin(), kBasePrefixes.end(), [semanticsCase](std::string_view prefix) {
    return semanticsCase.substr(0, prefix.size()) == prefix;
  });
  return isBase ? SemanticsOwner::kBase : SemanticsOwner::kObjects;
}

}  // namespace Pegasus::test
