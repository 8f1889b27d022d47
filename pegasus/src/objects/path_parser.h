// Reads the text form of object paths into its parts.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/String.h>

#include <optional>

namespace Pegasus::objects {

struct ParsedPath {
  String host;
  CIMNamespaceName nameSpace;
  CIMName className;
  Array<CIMKeyBinding> keys;  // in the order of the text
};

/// Reads `text` into `path`. Returns what is wrong with it, or nothing when it is a path.
std::optional<String> ParsePath(const String& text, ParsedPath& path);

/// The whole number written as `0`, `[-]` decimal without leading zeros or `[-]0x` hexadecimal.
struct KeyNumber {
  bool negative;
  Uint64 magnitude;
};

/// Nothing when the text has another form or does not fit 64 bits (signed ones when it has a minus).
std::optional<KeyNumber> ParseKeyNumber(const String& text);

}  // namespace Pegasus::objects
