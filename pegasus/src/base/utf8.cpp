// Conversions between UTF-8 and UTF-16, with the checks that keep invalid bytes out of strings.
#include "base/utf8.h"

#include <Pegasus/Common/Exception.h>

#include <cstring>

namespace Pegasus::internal {

namespace {

constexpr Uint32 kReplacement = 0xFFFD;
constexpr Uint32 kFirstSupplementary = 0x10000;
constexpr Uint32 kLastCodePoint = 0x10FFFF;
/// What the fast paths take at a time.
constexpr Uint32 kBlock = 8;

bool IsHighSurrogate(Uint32 unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(Uint32 unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool IsContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80; }

/// Bytes of the sequence that `lead` announces: also the 5 and 6 of forms that are no longer valid; 1 for other bytes.
Uint32 AnnouncedLength(unsigned char lead) {
  if (lead < 0xC0) {
    return 1;
  }
  if (lead < 0xE0) {
    return 2;
  }
  if (lead < 0xF0) {
    return 3;
  }
  if (lead < 0xF8) {
    return 4;
  }
  if (lead < 0xFC) {
    return 5;
  }
  return lead < 0xFE ? 6 : 1;
}

[[noreturn]] void ThrowInvalid(const char* text, Uint32 index, Uint32 end) {
  constexpr Uint32 kQuotedBefore = 32;
  String message("The byte sequence starting at index ");
  message.appendPrintf("%u is not valid UTF-8 encoding: ", index);
  // What stands before is valid; quote its end, from a character's first byte on.
  Uint32 from = index > kQuotedBefore ? index - kQuotedBefore : 0;
  while (from < index && IsContinuation(static_cast<unsigned char>(text[from]))) {
    ++from;
  }
  message.append(String(text + from, index - from));
  const Uint32 length = AnnouncedLength(static_cast<unsigned char>(text[index]));
  for (Uint32 i = index; i < end && i - index < length; ++i) {
    message.appendPrintf(" 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(text[i])));
  }
  throw Exception(message);
}

/// The next code point of the units, and its units.
struct CodePoint {
  Uint32 value;
  Uint32 units;
};

CodePoint NextCodePoint(const Char16* units, Uint32 n) {
  const Uint32 first = Uint16(units[0]);
  if (IsHighSurrogate(first) && n > 1 && IsLowSurrogate(Uint16(units[1]))) {
    return {kFirstSupplementary + ((first - 0xD800) << 10U) + (Uint16(units[1]) - 0xDC00U), 2};
  }
  return {IsHighSurrogate(first) || IsLowSurrogate(first) ? kReplacement : first, 1};
}

}  // namespace

Uint32 WidenAscii(const char* text, Uint32 n, Char16* out) noexcept {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  Uint32 i = 0;
  for (; n - i >= kBlock; i += kBlock) {
    std::uint64_t word = 0;
    std::memcpy(&word, text + i, sizeof word);
    if ((word & kHighBits) != 0) {
      break;
    }
    for (Uint32 k = 0; k < kBlock; ++k) {
      out[i + k] = Uint16(static_cast<unsigned char>(text[i + k]));
    }
  }
  for (; i < n && static_cast<unsigned char>(text[i]) < 0x80; ++i) {
    out[i] = Uint16(static_cast<unsigned char>(text[i]));
  }
  return i;
}

bool NarrowAscii(const Char16* units, Uint32 n, char* out) noexcept {
  Uint32 seen = 0;
  Uint32 i = 0;
  for (; n - i >= kBlock; i += kBlock) {
    for (Uint32 k = 0; k < kBlock; ++k) {
      seen |= Uint16(units[i + k]);
      out[i + k] = static_cast<char>(Uint16(units[i + k]));
    }
  }
  for (; i < n; ++i) {
    seen |= Uint16(units[i]);
    out[i] = static_cast<char>(Uint16(units[i]));
  }
  return seen < 0x80;
}

Uint32 DecodeUtf8(const char* text, Uint32 begin, Uint32 n, Char16* out) {
  const Uint32 end = begin + n;
  Uint32 written = 0;
  for (Uint32 i = begin; i < end;) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      out[written++] = Uint16(lead);
      ++i;
      continue;
    }
    const Uint32 length = AnnouncedLength(lead);
    if (length < 2 || length > 4 || end - i < length) {
      ThrowInvalid(text, i, end);
    }
    Uint32 value = lead & (0x7FU >> length);
    for (Uint32 k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if (!IsContinuation(next)) {
        ThrowInvalid(text, i, end);
      }
      value = (value << 6U) | (next & 0x3FU);
    }
    constexpr Uint32 kLowest[] = {0x80, 0x800, kFirstSupplementary};
    if (value < kLowest[length - 2] || value > kLastCodePoint) {
      ThrowInvalid(text, i, end);
    }
    if (value >= kFirstSupplementary) {
      value -= kFirstSupplementary;
      out[written++] = Uint16(0xD800U + (value >> 10U));
      out[written++] = Uint16(0xDC00U + (value & 0x3FFU));
    } else {
      out[written++] = Uint16(IsHighSurrogate(value) || IsLowSurrogate(value) ? kReplacement : value);
    }
    i += length;
  }
  return written;
}

Uint32 Utf8Size(const Char16* units, Uint32 n) noexcept {
  Uint32 size = n;
  for (Uint32 i = 0; i < n; ++i) {
    const Uint32 unit = Uint16(units[i]);
    size += (unit >= 0x80 ? 1U : 0U) + (unit >= 0x800 ? 1U : 0U);
  }
  for (Uint32 i = 0; i + 1 < n; ++i) {
    // A pair is four bytes together, not three for each half.
    if (IsHighSurrogate(Uint16(units[i])) && IsLowSurrogate(Uint16(units[i + 1]))) {
      size -= 2;
      ++i;
    }
  }
  return size;
}

void EncodeUtf8(const Char16* units, Uint32 n, char* out) noexcept {
  for (Uint32 i = 0; i < n;) {
    const CodePoint point = NextCodePoint(units + i, n - i);
    const Uint32 value = point.value;
    i += point.units;
    if (value < 0x80) {
      *out++ = static_cast<char>(value);
      continue;
    }
    if (value < 0x800) {
      *out++ = static_cast<char>(0xC0U | (value >> 6U));
    } else {
      if (value < kFirstSupplementary) {
        *out++ = static_cast<char>(0xE0U | (value >> 12U));
      } else {
        *out++ = static_cast<char>(0xF0U | (value >> 18U));
        *out++ = static_cast<char>(0x80U | ((value >> 12U) & 0x3FU));
      }
      *out++ = static_cast<char>(0x80U | ((value >> 6U) & 0x3FU));
    }
    *out++ = static_cast<char>(0x80U | (value & 0x3FU));
  }
}

}  // namespace Pegasus::internal
