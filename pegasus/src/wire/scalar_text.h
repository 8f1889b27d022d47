// Reads the texts of single values: numbers, truth values, characters and date-times, by the rules of CIM-XML.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Pegasus/Common/CIMType.h"
#include "Pegasus/Common/String.h"

namespace Pegasus::wire {

/// `0`, a decimal number without leading zeros, or hexadecimal after `0x`; no sign.
std::optional<std::uint64_t> ParseUnsigned(std::string_view text);
/// As ParseUnsigned with an optional `+` or `-`.
std::optional<std::int64_t> ParseSigned(std::string_view text);
/// A number with a decimal point and a digit after it; an exponent may follow.
std::optional<double> ParseReal(std::string_view text);
/// `true` or `false` in any case.
std::optional<bool> ParseBoolean(std::string_view text);

/// The type of this name as in TYPE and PARAMTYPE attributes: any but `object` and `instance`.
std::optional<CIMType> ParseType(std::string_view text);

/// The UTF-8 text as a String; throws Exception for invalid bytes.
String ToString(std::string_view text);

}  // namespace Pegasus::wire
