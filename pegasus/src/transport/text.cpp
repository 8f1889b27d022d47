// Small conversions between the bytes of an HTTP head and the client's strings.
#include "transport/text.h"

#include <Pegasus/Common/Exception.h>

#include <algorithm>

namespace Pegasus::transport {

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string UriDecode(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
    const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
    if (low < 0) {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return decoded;
}

String HeaderText(std::string_view bytes) {
  try {
    return String(bytes.data(), static_cast<Uint32>(bytes.size()));
  } catch (const Exception&) {
    String text;
    text.reserveCapacity(static_cast<Uint32>(bytes.size()));
    for (const char c : bytes) text.append(Char16(static_cast<Uint16>(static_cast<unsigned char>(c))));
    return text;
  }
}

std::string Utf8(const String& text) {
  const CString bytes = text.getCString();
  return std::string(static_cast<const char*>(bytes));
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

bool HasControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    constexpr unsigned char kDelete = 0x7F;
    const auto byte = static_cast<unsigned char>(c);
    return byte < static_cast<unsigned char>(' ') || byte == kDelete;
  });
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace Pegasus::transport
