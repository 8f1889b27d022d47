// One UTF-16 code unit. A class of its own, so that a character overloads differently from a 16-bit number.
#pragma once

#include <Pegasus/Common/Linkage.h>

namespace Pegasus {

/// A UTF-16 code unit, 0 unless given.
class PEGASUS_COMMON_LINKAGE Char16 {
 public:
  constexpr Char16() noexcept = default;
  constexpr Char16(Uint16 unit) noexcept : unit_(unit) {}  // NOLINT(google-explicit-constructor)
  constexpr Char16(const Char16&) noexcept = default;
  Char16& operator=(const Char16&) noexcept = default;
  Char16& operator=(Uint16 unit) noexcept {
    unit_ = unit;
    return *this;
  }
  ~Char16() = default;

  constexpr operator Uint16() const noexcept { return unit_; }  // NOLINT(google-explicit-constructor)

 private:
  Uint16 unit_ = 0;
};

inline constexpr Boolean operator==(const Char16& a, const Char16& b) noexcept { return Uint16(a) == Uint16(b); }
inline constexpr Boolean operator==(const Char16& a, char b) noexcept {
  return Uint16(a) == static_cast<unsigned char>(b);
}
inline constexpr Boolean operator==(char a, const Char16& b) noexcept { return b == a; }
inline constexpr Boolean operator!=(const Char16& a, const Char16& b) noexcept { return !(a == b); }
inline constexpr Boolean operator!=(const Char16& a, char b) noexcept { return !(a == b); }
inline constexpr Boolean operator!=(char a, const Char16& b) noexcept { return !(b == a); }

}  // namespace Pegasus
