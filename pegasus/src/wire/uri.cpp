// Percent-encoding of the header values that carry a method name or an object path.
#include <string>
#include <string_view>

#include "wire/request.h"

namespace Pegasus::wire {
namespace {

bool IsUnreserved(unsigned char c) {
  constexpr std::string_view kMarks = "-_.!~*'()";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kMarks.find(static_cast<char>(c)) != std::string_view::npos;
}

}  // namespace

std::string EncodeUri(std::string_view text) {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (const char item : text) {
    const auto c = static_cast<unsigned char>(item);
    if (IsUnreserved(c)) {
      out += item;
    } else {
      out += '%';
      out += kHexDigits[c >> 4U];
      out += kHexDigits[c & 0x0FU];
    }
  }
  return out;
}

}  // namespace Pegasus::wire
