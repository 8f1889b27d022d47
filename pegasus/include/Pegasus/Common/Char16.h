// One UTF-16 code unit. A class of its own, so that a character overloads differently from a 16-bit number.
#pragma once

#include <Pegasus/Common/Linkage.h>

namespace Pegasus {

/// A UTF-16 code unit, 0 unless given. A plain number as far as threads are concerned.
class PEGASUS_COMMON_LINKAGE Char16 {
 public:
  /// The unit 0.
  constexpr Char16() noexcept = default;
  /// Any unit, halves of surrogate pairs included.
  constexpr Char16(Uint16 unit) noexcept : unit_(unit) {}  // NOLINT(google-explicit-constructor)
  constexpr Char16(const Char16&) noexcept = default;
  Char16& operator=(const Char16&) noexcept = default;
  /// Takes another unit.
  Char16& operator=(Uint16 unit) noexcept {
    unit_ = unit;
    return *this;
  }
  ~Char16() = default;

  /// The unit as a number.
  constexpr operator Uint16() const noexcept { return unit_; }  // NOLINT(google-explicit-constructor)

 private:
  Uint16 unit_ = 0;
};

/// @{ Compares numbers; a char stands for the unit of the same number, 0 to 255.
inline constexpr Boolean operator==(const Char16& a, const Char16& b) noexcept { return Uint16(a) == Uint16(b); }
inline constexpr Boolean operator==(const Char16& a, char b) noexcept {
  return Uint16(a) == static_cast<unsigned char>(b);
}
inline constexpr Boolean operator==(char a, const Char16& b) noexcept { return b == a; }
inline constexpr Boolean operator!=(const Char16& a, const Char16& b) noexcept { return !(a == b); }
inline constexpr Boolean operator!=(const Char16& a, char b) noexcept { return !(a == b); }
inline constexpr Boolean operator!=(char a, const Char16& b) noexcept { return !(b == a); }
/// @}

}  // namespace Pegasus
