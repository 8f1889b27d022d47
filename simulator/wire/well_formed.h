// Rules of XML 1.0 about characters and references, which the parser of the requests leaves to others.
#pragma once

#include <string_view>

namespace Orvane::simulator {

/// What is wrong with the characters of a document; null when it is UTF-8 without control characters, and every
/// reference in it is one of the five predefined entities or stands for a character. References to control characters
/// are let through but for NUL: CIM clients write them, although XML has no place for them.
const char* FindIllFormedText(std::string_view document);

}  // namespace Orvane::simulator
