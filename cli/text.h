// Text as a terminal shows it: how many columns it takes, how it is cut, and how text from a server is made harmless.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::cli {

/// Makes text from a server safe to print: control characters (C0, DEL, C1) and direction overrides become visible
/// escapes such as `\n`, `\x1B` or `\u202E`; bytes that are no UTF-8 become U+FFFD. The result is valid UTF-8.
std::string Neutralise(std::string_view text);

/// Columns that valid UTF-8 without control characters takes on a terminal: 0 for combining marks, 2 for wide ones.
std::size_t DisplayWidth(std::string_view text);

/// @p text as it is when it fits in @p width columns, else its beginning and an ellipsis. @p width is at least 1.
std::string Truncate(const std::string& text, std::size_t width);

/// Without blanks at either end (CIM arrays end in one).
std::string Trim(std::string_view text);

/// The parts between runs of blanks.
std::vector<std::string> SplitBlanks(std::string_view text);

}  // namespace Orvane::cli
