// Conversions between UTF-8 and UTF-16. ASCII, which most CIM texts are, takes a fast path of whole words.
#pragma once

#include <Pegasus/Common/Char16.h>

namespace Pegasus::internal {

/// Number of leading bytes of `text` below 0x80.
Uint32 CountAscii(const char* text, Uint32 n) noexcept;
/// Widens `n` ASCII bytes.
void WidenAscii(const char* text, Uint32 n, Char16* out) noexcept;
/// Decodes the `n` bytes from `begin` on into `out`, which has room for one unit per byte, and returns the units
/// written. An encoded surrogate becomes U+FFFD. Throws Exception for invalid bytes, which names their index.
Uint32 DecodeUtf8(const char* text, Uint32 begin, Uint32 n, Char16* out);

/// UTF-8 size of the units in bytes; an unpaired surrogate counts as U+FFFD.
Uint32 Utf8Size(const Char16* units, Uint32 n) noexcept;
/// Writes Utf8Size() bytes; `size` is that number.
void EncodeUtf8(const Char16* units, Uint32 n, char* out, Uint32 size) noexcept;

}  // namespace Pegasus::internal
