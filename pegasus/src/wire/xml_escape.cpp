// Escapes text for CIM-XML. Control characters and the blanks that a reader would trim or fold are written as
// character references so that a text comes back exactly as it was sent.
#include <string>
#include <string_view>

#include "wire/xml_writer.h"

namespace Pegasus::wire {
namespace {

/// Tells whether `c` can be copied without looking at its neighbours.
bool IsPlain(unsigned char c) {
  switch (c) {
    case '&':
    case '<':
    case '>':
    case '"':
    case '\'':
    case ' ':
    case 0x7F:
      return false;
    default:
      return c >= 0x20;
  }
}

void AppendCharacterReference(std::string& out, unsigned char c) {
  switch (c) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '"':
      out += "&quot;";
      return;
    case '\'':
      out += "&apos;";
      return;
    default:
      out += "&#";
      out += std::to_string(static_cast<unsigned>(c));
      out += ';';
  }
}

}  // namespace

void AppendEscaped(std::string& out, std::string_view text) {
  // U+FFFE and U+FFFF are characters of no XML document; U+FFFD takes their place.
  constexpr std::string_view kNonCharacterStart = "\xEF\xBF";
  // A blank stays raw only between two other characters, or after a blank that was escaped.
  bool afterRawBlank = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == ' ') {
      const bool escape = afterRawBlank || i == 0 || i + 1 == text.size();
      if (escape) {
        AppendCharacterReference(out, c);
      } else {
        out += ' ';
      }
      afterRawBlank = !escape;
      continue;
    }
    afterRawBlank = false;
    const bool isNonCharacter =
        (c == 0xBE || c == 0xBF) && i >= 2 && text.substr(i - 2, kNonCharacterStart.size()) == kNonCharacterStart;
    if (isNonCharacter) {
      out += '\xBD';
    } else if (IsPlain(c)) {
      out += static_cast<char>(c);
    } else {
      AppendCharacterReference(out, c);
    }
  }
}

void AppendEscaped(std::string& out, const String& text) {
  const CString utf8 = text.getCString();
  AppendEscaped(out, std::string_view(static_cast<const char*>(utf8)));
}

void AppendUtf8(std::string& out, const String& text) { out += static_cast<const char*>(text.getCString()); }

}  // namespace Pegasus::wire
