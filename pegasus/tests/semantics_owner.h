// Says which test program checks a case of semantics.json: the one of the foundation (texts, lists, names, date-times,
// exceptions) or the one of values and objects. Every case belongs to exactly one, so none is left unchecked.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vector_file.h"

namespace Pegasus::test {

enum class SemanticsOwner { kBase, kObjects };

/// By what the description of the case starts with.
inline SemanticsOwner OwnerOf(std::string_view semanticsCase) {
  constexpr std::array<std::string_view, 12> kBasePrefixes = {"Array ",    "Array(",       "Array[",   "String",
                                                              "CString",   "Char16",       "CIMName",  "CIMDateTime",
                                                              "Exception", "CIMException", "catch as", "slice"};
  const bool isBase = semanticsCase == "enum CIMType first/last" ||
                      std::any_of(kBasePrefixes.begin(), kBasePrefixes.end(), [semanticsCase](std::string_view prefix) {
                        return semanticsCase.substr(0, prefix.size()) == prefix;
                      });
  return isBase ? SemanticsOwner::kBase : SemanticsOwner::kObjects;
}

/// The cases of semantics.json that `owner` checks.
inline std::vector<Vector> LoadSemantics(SemanticsOwner owner) {
  std::vector<Vector> own;
  for (Vector& vector : LoadVectors("semantics.json")) {
    if (OwnerOf(vector.record.at("case").get_ref<const std::string&>()) == owner) {
      own.push_back(std::move(vector));
    }
  }
  return own;
}

}  // namespace Pegasus::test
