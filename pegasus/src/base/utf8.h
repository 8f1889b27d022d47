// Conversions between UTF-8 and UTF-16. ASCII, which most CIM texts are, takes a fast path of whole words.
#pragma once

#include <Pegasus/Common/Char16.h>

namespace Pegasus::internal {

/// Widens the leading bytes below 0x80 and returns how many they are. `out` has room for `n` units.
Uint32 WidenAscii(const char* text, Uint32 n, Char16* out) noexcept;
/// Narrows `n` units if all are below 0x80; otherwise the result is false and `out` holds nothing of use.
bool NarrowAscii(const Char16* units, Uint32 n, char* out) noexcept;
/// Decodes the `n` bytes from `begin` on into `out`, which has room for one unit per byte, and returns the units
/// written. An encoded surrogate becomes U+FFFD. Throws Exception for invalid bytes, which names their index.
Uint32 DecodeUtf8(const char* text, Uint32 begin, Uint32 n, Char16* out);

/// UTF-8 size of the units in bytes; an unpaired surrogate counts as U+FFFD.
Uint32 Utf8Size(const Char16* units, Uint32 n) noexcept;
/// Writes Utf8Size() bytes.
void EncodeUtf8(const Char16* units, Uint32 n, char* out) noexcept;

}  // namespace Pegasus::internal
