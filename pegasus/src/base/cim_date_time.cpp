// Date-times: parsing and printing their 25 characters, comparison and arithmetic, all on microseconds.
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/Exception.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>

namespace Pegasus {

namespace {

constexpr Uint32 kTextLength = 25;
constexpr Uint32 kPointPosition = 14;
constexpr Uint32 kSignPosition = 21;
constexpr Uint32 kOffsetDigits = 3;
constexpr Uint32 kDigits = 20;  // before the sign, without the point
constexpr Uint32 kMicrosecondDigits = 6;

constexpr Sint64 kSecond = 1'000'000;
constexpr Sint64 kMinute = 60 * kSecond;
constexpr Sint64 kHour = 60 * kMinute;
constexpr Sint64 kDay = 24 * kHour;
constexpr Sint64 kIntervalLimit = 100'000'000 * kDay;
constexpr Sint64 kYearLimit = 10'000;

// Wildcards, counted in unknown digits from the right.
constexpr Uint8 kSecondsUnknown = 8;
constexpr Uint8 kMinutesUnknown = 10;
constexpr Uint8 kHoursUnknown = 12;
constexpr Uint8 kDayUnknown = 14;    // of timestamps
constexpr Uint8 kMonthUnknown = 16;  // of timestamps
constexpr Uint8 kAllUnknown = 20;

struct Date {
  Sint64 year;
  Sint64 month;
  Sint64 day;
};

bool IsLeapYear(Sint64 year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

Sint64 DaysInMonth(Sint64 year, Sint64 month) {
  constexpr std::array<Sint64, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kDays[static_cast<std::size_t>(month - 1)] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

/// Days from the start of the year 0 to the start of `year`; the year 0 is a leap year.
Sint64 DaysBeforeYear(Sint64 year) {
  if (year == 0) {
    return 0;
  }
  const Sint64 past = year - 1;
  return year * 365 + past / 4 - past / 100 + past / 400 + 1;
}

Sint64 DaysBefore(const Date& date) {
  Sint64 days = DaysBeforeYear(date.year) + date.day - 1;
  for (Sint64 month = 1; month < date.month; ++month) {
    days += DaysInMonth(date.year, month);
  }
  return days;
}

Date DateOfDay(Sint64 days) {
  Date date{days / 366, 1, 1};
  while (DaysBeforeYear(date.year + 1) <= days) {
    ++date.year;
  }
  days -= DaysBeforeYear(date.year);
  while (days >= DaysInMonth(date.year, date.month)) {
    days -= DaysInMonth(date.year, date.month);
    ++date.month;
  }
  date.day = days + 1;
  return date;
}

Sint64 TimestampLimit() { return DaysBeforeYear(kYearLimit) * kDay; }

/// Rounds down, for negative values too.
Sint64 RoundDown(Sint64 value, Sint64 unit) {
  const Sint64 rest = value % unit;
  return value - (rest < 0 ? rest + unit : rest);
}

/// The lowest value that `microseconds` can stand for when its last `wildcards` digits are unknown. The lowest number
/// of an unknown day is 1, also in an interval.
Sint64 LowestValue(Sint64 microseconds, Uint8 wildcards, bool isInterval) {
  if (wildcards <= kMicrosecondDigits) {
    Sint64 unit = 1;
    for (Uint8 i = 0; i < wildcards; ++i) {
      unit *= 10;
    }
    return RoundDown(microseconds, unit);
  }
  switch (wildcards) {
    case kSecondsUnknown:
      return RoundDown(microseconds, kMinute);
    case kMinutesUnknown:
      return RoundDown(microseconds, kHour);
    case kHoursUnknown:
      return RoundDown(microseconds, kDay);
    case kAllUnknown:
      return isInterval ? kDay : 0;
    default:
      break;
  }
  Date date = DateOfDay(std::max<Sint64>(microseconds, 0) / kDay);
  date.day = 1;
  if (wildcards == kMonthUnknown) {
    date.month = 1;
  }
  return DaysBefore(date) * kDay;
}

[[noreturn]] void ThrowIntervalTooLong() {
  throw DateTimeOutOfRangeException("Cannot create a CIMDateTime interval greater than 100 million days");
}

[[noreturn]] void ThrowTimestampTooLate() {
  throw DateTimeOutOfRangeException("Cannot create a CIMDateTime time stamp beyond the year 10,000");
}

[[noreturn]] void ThrowNegative() {
  throw DateTimeOutOfRangeException("The result of subtracting CIMDateTime objects would be negative");
}

/// Whether a text may have this many unknown digits: single ones of the microseconds, otherwise whole fields.
bool IsFieldBoundary(Uint32 wildcards, bool isInterval) {
  return wildcards <= kMicrosecondDigits || wildcards == kSecondsUnknown || wildcards == kMinutesUnknown ||
         wildcards == kHoursUnknown || wildcards == kAllUnknown ||
         (!isInterval && (wildcards == kDayUnknown || wildcards == kMonthUnknown));
}

/// The digits of a text before its sign, unknown ones as -1.
using Digits = std::array<int, kDigits>;

Sint64 Number(const Digits& digits, Uint32 first, Uint32 n, Sint64 lowest) {
  if (digits[first] < 0) {
    return lowest;
  }
  Sint64 number = 0;
  for (Uint32 i = first; i < first + n; ++i) {
    number = number * 10 + std::max(digits[i], 0);
  }
  return number;
}

void CheckRange(Sint64 number, Sint64 lowest, Sint64 highest, const char* message) {
  if (number < lowest || number > highest) {
    throw DateTimeOutOfRangeException(message);
  }
}

int DigitOf(Uint16 unit) {
  if (unit < '0' || unit > '9') {
    throw InvalidDateTimeFormatException();
  }
  return unit - '0';
}

void CheckSameKind(const CIMDateTime& a, const CIMDateTime& b, const char* message) {
  if (a.isInterval() != b.isInterval()) {
    throw TypeMismatchException(message);
  }
}

void CheckIntervals(bool areIntervals) {
  if (!areIntervals) {
    throw TypeMismatchException("Only a CIMDateTime interval can be multiplied or divided");
  }
}

void CheckDivisor(bool isZero) {
  if (isZero) {
    throw Exception("Trying to divide a CIMDateTime object by zero");
  }
}

}  // namespace

CIMDateTime::CIMDateTime(const String& text) {
  const Char16* const units = text.getChar16Data();
  if (text.size() != kTextLength || units[kPointPosition] != '.') {
    throw InvalidDateTimeFormatException();
  }
  const Uint16 sign = units[kSignPosition];
  if (sign != '+' && sign != '-' && sign != ':') {
    throw InvalidDateTimeFormatException();
  }
  sign_ = static_cast<char>(sign);
  for (Uint32 i = 1; i <= kOffsetDigits; ++i) {
    offset_ = static_cast<Uint16>(offset_ * 10 + DigitOf(units[kSignPosition + i]));
  }
  const bool interval = sign == ':';
  if (interval && offset_ != 0) {
    throw InvalidDateTimeFormatException();
  }

  Digits digits{};
  for (Uint32 i = 0; i < kDigits; ++i) {
    const Uint16 unit = units[i < kPointPosition ? i : i + 1];
    if (unit == '*') {
      digits[i] = -1;
      ++wildcards_;
    } else if (wildcards_ != 0) {
      throw InvalidDateTimeFormatException();
    } else {
      digits[i] = DigitOf(unit);
    }
  }
  if (!IsFieldBoundary(wildcards_, interval)) {
    throw InvalidDateTimeFormatException();
  }

  Sint64 days = 0;
  if (interval) {
    days = Number(digits, 0, 8, 1);
  } else {
    const Date date{Number(digits, 0, 4, 0), Number(digits, 4, 2, 1), Number(digits, 6, 2, 1)};
    CheckRange(date.month, 1, 12, "illegal month number");
    CheckRange(date.day, 1, DaysInMonth(date.year, date.month), "illegal day number");
    days = DaysBefore(date);
  }
  const Sint64 hours = Number(digits, 8, 2, 0);
  const Sint64 minutes = Number(digits, 10, 2, 0);
  const Sint64 seconds = Number(digits, 12, 2, 0);
  CheckRange(hours, 0, 23, "illegal hours number ");
  CheckRange(minutes, 0, 59, "illegal minutes number ");
  CheckRange(seconds, 0, 59, "illegal seconds number ");
  microseconds_ =
      days * kDay + hours * kHour + minutes * kMinute + seconds * kSecond + Number(digits, 14, kMicrosecondDigits, 0);
}

CIMDateTime::CIMDateTime(Uint64 microseconds, Boolean isInterval) : sign_(isInterval ? ':' : '+') {
  if (isInterval && microseconds >= Uint64{kIntervalLimit}) {
    ThrowIntervalTooLong();
  }
  if (!isInterval && microseconds >= static_cast<Uint64>(TimestampLimit())) {
    ThrowTimestampTooLate();
  }
  microseconds_ = static_cast<Sint64>(microseconds);
}

CIMDateTime::CIMDateTime(Sint64 microseconds, char sign, Uint16 offset, Uint8 wildcards)
    : microseconds_(LowestValue(microseconds, wildcards, sign == ':')),
      offset_(offset),
      wildcards_(wildcards),
      sign_(sign) {}

String CIMDateTime::toString() const {
  char text[kTextLength + 1];
  char* out = text;
  const auto put = [&out](Sint64 number, int digits) {
    for (int i = digits - 1; i >= 0; --i) {
      out[i] = static_cast<char>('0' + number % 10);
      number /= 10;
    }
    out += digits;
  };
  const Sint64 days = microseconds_ / kDay;
  const Sint64 time = microseconds_ % kDay;
  if (isInterval()) {
    put(days, 8);
  } else {
    const Date date = DateOfDay(days);
    put(date.year, 4);
    put(date.month, 2);
    put(date.day, 2);
  }
  put(time / kHour, 2);
  put(time % kHour / kMinute, 2);
  put(time % kMinute / kSecond, 2);
  *out++ = '.';
  put(time % kSecond, kMicrosecondDigits);
  char* unknown = out;
  for (Uint8 i = 0; i < wildcards_; ++i) {
    --unknown;
    if (*unknown == '.') {
      --unknown;
    }
    *unknown = '*';
  }
  *out++ = sign_;
  put(offset_, kOffsetDigits);
  return {text, kTextLength};
}

void CIMDateTime::set(const String& text) { *this = CIMDateTime(text); }

void CIMDateTime::clear() noexcept { *this = CIMDateTime(); }

CIMDateTime CIMDateTime::getCurrentDateTime() {
  timeval now{};
  gettimeofday(&now, nullptr);
  std::tm local{};
  localtime_r(&now.tv_sec, &local);
  constexpr Sint64 kEpochDay = 719'528;  // 1970-01-01
  const Sint64 offset = local.tm_gmtoff / 60;
  const Sint64 microseconds = kEpochDay * kDay + (Sint64{now.tv_sec} + offset * 60) * kSecond + now.tv_usec;
  return {microseconds, offset < 0 ? '-' : '+', static_cast<Uint16>(std::abs(offset)), Uint8{0}};
}

Sint64 CIMDateTime::getDifference(CIMDateTime start, CIMDateTime finish) {
  CheckSameKind(start, finish, "Trying to subtract CIMDateTime objects of differing types");
  return finish.UtcMicroseconds() - start.UtcMicroseconds();
}

Boolean CIMDateTime::equal(const CIMDateTime& other) const { return Compare(other) == 0; }

Uint64 CIMDateTime::toMicroSeconds() const { return static_cast<Uint64>(std::max<Sint64>(UtcMicroseconds(), 0)); }

Sint64 CIMDateTime::SignedOffset() const {
  return sign_ == '-' ? -Sint64{offset_} * kMinute : Sint64{offset_} * kMinute;
}

Sint64 CIMDateTime::UtcMicroseconds() const { return microseconds_ - SignedOffset(); }

int CIMDateTime::Compare(const CIMDateTime& other) const {
  CheckSameKind(*this, other, "Trying to compare CIMDateTime objects of differing types");
  Sint64 a = UtcMicroseconds();
  Sint64 b = other.UtcMicroseconds();
  if (wildcards_ != other.wildcards_) {
    // The one that knows less sets the precision, in its own time zone: its unknown fields are those of that zone.
    const CIMDateTime& coarser = wildcards_ > other.wildcards_ ? *this : other;
    a = LowestValue(a + coarser.SignedOffset(), coarser.wildcards_, isInterval());
    b = LowestValue(b + coarser.SignedOffset(), coarser.wildcards_, isInterval());
  }
  return a == b ? 0 : (a < b ? -1 : 1);
}

CIMDateTime CIMDateTime::operator+(const CIMDateTime& other) const {
  if (!other.isInterval()) {
    throw TypeMismatchException("Trying to add a time stamp to a CIMDateTime object");
  }
  const auto sum = static_cast<Uint64>(microseconds_) + static_cast<Uint64>(other.microseconds_);
  const Sint64 limit = isInterval() ? kIntervalLimit : TimestampLimit();
  if (sum >= static_cast<Uint64>(limit)) {
    isInterval() ? ThrowIntervalTooLong() : ThrowTimestampTooLate();
  }
  return {static_cast<Sint64>(sum), sign_, offset_, std::max(wildcards_, other.wildcards_)};
}

CIMDateTime& CIMDateTime::operator+=(const CIMDateTime& other) { return *this = *this + other; }

CIMDateTime CIMDateTime::operator-(const CIMDateTime& other) const {
  if (isInterval() && !other.isInterval()) {
    throw TypeMismatchException("Trying to subtract a time stamp from an interval");
  }
  const bool pointFromPoint = !isInterval() && !other.isInterval();
  const Sint64 difference = pointFromPoint ? getDifference(other, *this) : microseconds_ - other.microseconds_;
  if (difference < 0) {
    ThrowNegative();
  }
  const Uint8 wildcards = std::max(wildcards_, other.wildcards_);
  if (pointFromPoint) {
    // An interval has one field for the days.
    return {difference, ':', 0, wildcards > kHoursUnknown ? kAllUnknown : wildcards};
  }
  return {difference, sign_, offset_, wildcards};
}

CIMDateTime& CIMDateTime::operator-=(const CIMDateTime& other) { return *this = *this - other; }

CIMDateTime CIMDateTime::operator*(Uint64 factor) const {
  CheckIntervals(isInterval());
  const auto length = static_cast<Uint64>(microseconds_);
  if (length != 0 && factor > Uint64{kIntervalLimit - 1} / length) {
    ThrowIntervalTooLong();
  }
  return {static_cast<Sint64>(length * factor), sign_, offset_, wildcards_};
}

CIMDateTime& CIMDateTime::operator*=(Uint64 factor) { return *this = *this * factor; }

CIMDateTime CIMDateTime::operator/(Uint64 divisor) const {
  CheckIntervals(isInterval());
  CheckDivisor(divisor == 0);
  return {static_cast<Sint64>(static_cast<Uint64>(microseconds_) / divisor), sign_, offset_, wildcards_};
}

CIMDateTime& CIMDateTime::operator/=(Uint64 divisor) { return *this = *this / divisor; }

Uint64 CIMDateTime::operator/(const CIMDateTime& other) const {
  CheckIntervals(isInterval() && other.isInterval());
  CheckDivisor(other.microseconds_ == 0);
  return static_cast<Uint64>(microseconds_ / other.microseconds_);
}

Boolean CIMDateTime::operator<(const CIMDateTime& other) const { return Compare(other) < 0; }
Boolean CIMDateTime::operator<=(const CIMDateTime& other) const { return Compare(other) <= 0; }
Boolean CIMDateTime::operator>(const CIMDateTime& other) const { return Compare(other) > 0; }
Boolean CIMDateTime::operator>=(const CIMDateTime& other) const { return Compare(other) >= 0; }
Boolean CIMDateTime::operator!=(const CIMDateTime& other) const { return Compare(other) != 0; }

Boolean operator==(const CIMDateTime& a, const CIMDateTime& b) { return a.equal(b); }

}  // namespace Pegasus
