// Conversions between the CIM client's types and those of this library.
#pragma once

#include <Pegasus/Common/String.h>

#include <string>

namespace Orvane {

/// The text of @p text as UTF-8 bytes.
std::string ToStdString(const Pegasus::String& text);

}  // namespace Orvane
