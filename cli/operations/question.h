// Asks a person whether to go on.
#pragma once

#include <string>

namespace Orvane::cli {

/// True when a person sits there: standard input and standard error are a terminal.
bool CanAsk();

/// Writes @p text and "Go on? [y/N] " to standard error and reads a line. Only "y" and "yes" are a yes.
bool Confirmed(const std::string& text);

}  // namespace Orvane::cli
