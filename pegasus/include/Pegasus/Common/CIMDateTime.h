// CIM date-times: a point in time with its offset from UTC, or an interval, to the microsecond, with "*" for fields
// that are not known.
#pragma once

#include <Pegasus/Common/String.h>

namespace Pegasus {

/// A timestamp `yyyymmddHHMMSS.mmmmmmsutc` (s is + or -, utc the offset in minutes) or an interval
/// `ddddddddHHMMSS.mmmmmm:000`. Fields may be wildcards from the right: whole fields, and single digits of the
/// microseconds. A plain value: copies may be used on several threads, and one object may be read by several.
class PEGASUS_COMMON_LINKAGE CIMDateTime {
 public:
  /// The interval of length 0.
  CIMDateTime() noexcept = default;
  CIMDateTime(const CIMDateTime&) noexcept = default;
  /// Throws InvalidDateTimeFormatException for another form and DateTimeOutOfRangeException for a wrong number in it.
  CIMDateTime(const String& text);  // NOLINT(google-explicit-constructor)
  /// An interval of `microseconds`, or the UTC timestamp that many microseconds after the year 0 began. Throws
  /// DateTimeOutOfRangeException from 100 million days or from the year 10000 on.
  CIMDateTime(Uint64 microseconds, Boolean isInterval);
  ~CIMDateTime() = default;
  CIMDateTime& operator=(const CIMDateTime&) noexcept = default;

  /// The 25 characters of the form above.
  String toString() const;
  /// Throws as the constructor does; the date-time then stays as it was.
  void set(const String& text);
  /// Back to the interval of length 0.
  void clear() noexcept;

  /// The time of the system clock in local time, with its offset.
  static CIMDateTime getCurrentDateTime();
  /// `finish` - `start` in microseconds. Throws TypeMismatchException when one is an interval and the other is not.
  static Sint64 getDifference(CIMDateTime start, CIMDateTime finish);

  /// True for an interval, false for a timestamp.
  Boolean isInterval() const noexcept { return sign_ == ':'; }
  /// The same for objects that are not const.
  Boolean isInterval() noexcept { return sign_ == ':'; }
  /// Compares as the operators below do, and throws as they do.
  Boolean equal(const CIMDateTime& other) const;
  /// Length of the interval, or microseconds from the start of the year 0 to the timestamp in UTC; wildcards count as
  /// the lowest value of their field.
  Uint64 toMicroSeconds() const;

  /// @{ Timestamp + interval, interval + interval, timestamp - interval, timestamp - timestamp and interval - interval;
  /// other combinations throw TypeMismatchException, results outside the range DateTimeOutOfRangeException.
  CIMDateTime operator+(const CIMDateTime& other) const;
  CIMDateTime& operator+=(const CIMDateTime& other);
  CIMDateTime operator-(const CIMDateTime& other) const;
  CIMDateTime& operator-=(const CIMDateTime& other);
  /// @}
  /// @{ Intervals only, TypeMismatchException for timestamps. DateTimeOutOfRangeException for a product of 100 million
  /// days or more, Exception for a divisor of 0.
  CIMDateTime operator*(Uint64 factor) const;
  CIMDateTime& operator*=(Uint64 factor);
  CIMDateTime operator/(Uint64 divisor) const;
  CIMDateTime& operator/=(Uint64 divisor);
  /// @}
  /// How many times `other` fits into this; both have to be intervals. Throws as above.
  Uint64 operator/(const CIMDateTime& other) const;

  /// @{ Compares to the precision that both have. Throws TypeMismatchException for an interval and a timestamp.
  Boolean operator<(const CIMDateTime& other) const;
  Boolean operator<=(const CIMDateTime& other) const;
  Boolean operator>(const CIMDateTime& other) const;
  Boolean operator>=(const CIMDateTime& other) const;
  Boolean operator!=(const CIMDateTime& other) const;
  /// @}

 private:
  CIMDateTime(Sint64 microseconds, char sign, Uint16 offset, Uint8 wildcards);

  Sint64 SignedOffset() const;
  Sint64 UtcMicroseconds() const;
  int Compare(const CIMDateTime& other) const;

  Sint64 microseconds_ = 0;  // interval length, or local time since the start of the year 0
  Uint16 offset_ = 0;        // minutes, without its sign
  Uint8 wildcards_ = 0;      // unknown digits, from the right
  char sign_ = ':';          // '+' or '-' of the offset, ':' for an interval
};

/// Compares to the precision that both have. Throws TypeMismatchException for an interval and a timestamp.
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMDateTime& a, const CIMDateTime& b);

}  // namespace Pegasus
