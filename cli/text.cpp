// Decoding is lenient and never fails: each byte that starts no UTF-8 sequence is replaced on its own, so that a broken
// server can garble one cell but not the layout or the terminal.
#include "cli/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace Orvane::cli {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr const char* kReplacementText = "\xEF\xBF\xBD";
constexpr const char* kEllipsis = "\xE2\x80\xA6";

struct Range {
  char32_t first, last;
};

// Characters that take no column of their own: combining marks, joiners, variation selectors.
constexpr Range kZeroWidth[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
                                {0x064B, 0x065F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200D},
                                {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}};

// Unicode's East Asian Wide and Fullwidth blocks, and emoji.
constexpr Range kDoubleWidth[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0x33FF}, {0x3400, 0x4DBF},
                                  {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},  {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                                  {0xFE30, 0xFE4F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
                                  {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

// Characters that reorder or hide what stands around them.
constexpr Range kDirection[] = {{0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

template <std::size_t N>
bool In(const Range (&ranges)[N], char32_t c) {
  return std::any_of(std::begin(ranges), std::end(ranges), [c](Range r) { return c >= r.first && c <= r.last; });
}

struct Decoded {
  char32_t code;
  std::size_t length;
  bool valid;
};

Decoded DecodeAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  std::size_t length = 0;
  char32_t code = 0;
  char32_t smallest = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, code = lead & 0x1FU, smallest = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, code = lead & 0x0FU, smallest = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, code = lead & 0x07U, smallest = 0x10000;
  } else {
    return {kReplacement, 1, false};
  }
  if (text.size() - at < length) return {kReplacement, 1, false};
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return {kReplacement, 1, false};
    code = (code << 6U) | (byte(at + i) & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < smallest || surrogate || code > 0x10FFFF) return {kReplacement, 1, false};
  return {code, length, true};
}

std::string Hex(char32_t code, int digits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
    result += kDigits[(code >> static_cast<unsigned>(shift)) & 0xFU];
  }
  return result;
}

void AppendNeutral(std::string& out, char32_t code, std::string_view bytes) {
  if (code == '\n') {
    out += "\\n";
  } else if (code == '\r') {
    out += "\\r";
  } else if (code == '\t') {
    out += "\\t";
  } else if (code < 0x20 || (code >= 0x7F && code <= 0x9F)) {
    out += "\\x" + Hex(code, 2);
  } else if (In(kDirection, code)) {
    out += "\\u" + Hex(code, 4);
  } else {
    out += bytes;
  }
}

std::size_t WidthOf(char32_t code) {
  if (In(kZeroWidth, code)) return 0;
  return In(kDoubleWidth, code) ? 2 : 1;
}

}  // namespace

std::string Neutralise(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Decoded next = DecodeAt(text, at);
    AppendNeutral(out, next.code, next.valid ? text.substr(at, next.length) : std::string_view(kReplacementText));
    at += next.length;
  }
  return out;
}

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Decoded next = DecodeAt(text, at);
    width += WidthOf(next.code);
    at += next.length;
  }
  return width;
}

std::string Truncate(const std::string& text, std::size_t width) {
  if (DisplayWidth(text) <= width) return text;
  std::string out;
  std::size_t used = 1;  // the ellipsis
  for (std::size_t at = 0; at < text.size();) {
    const Decoded next = DecodeAt(text, at);
    used += WidthOf(next.code);
    if (used > width) break;
    out.append(text, at, next.length);
    at += next.length;
  }
  return out + kEllipsis;
}

std::string Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::vector<std::string> SplitBlanks(std::string_view text) {
  std::vector<std::string> parts;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(' ', at)) != std::string_view::npos) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    parts.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return parts;
}

}  // namespace Orvane::cli
