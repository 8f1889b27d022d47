// Small conversions between the bytes of an HTTP head and the client's strings.
#pragma once

#include <Pegasus/Common/String.h>

#include <string>
#include <string_view>

namespace Pegasus::transport {

/// Replaces `%XX` by the byte it stands for; a percent sign without two hexadecimal digits stays as it is.
std::string UriDecode(std::string_view text);

/// The text of a header: UTF-8 when it is that, else Latin-1, so that no byte a server sends is an error here.
String HeaderText(std::string_view bytes);

/// The UTF-8 form of `text`.
std::string Utf8(const String& text);

/// Comparison without regard to the case of ASCII letters.
bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Whether an ASCII control character is in `text`.
bool HasControlCharacter(std::string_view text);

/// `text` without blanks and tabs at either end.
std::string_view Trim(std::string_view text);

}  // namespace Pegasus::transport
