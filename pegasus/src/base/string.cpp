// The text type: shared buffers, changes, searches and comparisons.
#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/String.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>
#include <ostream>
#include <string>
#include <utility>

#include "base/null_pointer.h"
#include "base/pool.h"
#include "base/utf8.h"

namespace Pegasus {

namespace {

constexpr Char16 kTerminator;

Uint16 FoldCase(Uint16 unit) { return unit >= 'A' && unit <= 'Z' ? Uint16(unit + ('a' - 'A')) : unit; }

template <typename Pointer>
Pointer NotNull(Pointer pointer) {
  if (pointer == nullptr) {
    throw NullPointer();
  }
  return pointer;
}

Uint32 Length(const Char16* units) {
  Uint32 n = 0;
  while (NotNull(units)[n] != kTerminator) {
    ++n;
  }
  return n;
}

/// Sizes are 32 bits wide; a longer text cannot be held.
Uint32 CheckedSize(std::size_t size) {
  if (size > std::size_t{PEG_NOT_FOUND} - 1) {
    throw std::bad_alloc();
  }
  return static_cast<Uint32>(size);
}

Uint32 Length(const char* text) { return CheckedSize(std::strlen(NotNull(text))); }

int CompareUnits(const Char16* a, const Char16* b, Uint32 n) {
  for (Uint32 i = 0; i < n; ++i) {
    if (a[i] != b[i]) {
      return Uint16(a[i]) < Uint16(b[i]) ? -1 : 1;
    }
  }
  return 0;
}

int CompareSizes(Uint32 a, Uint32 b) { return a == b ? 0 : (a < b ? -1 : 1); }

bool SameUnits(const Char16* a, const Char16* b, Uint32 n) {
  return std::memcmp(a, b, std::size_t{n} * sizeof *a) == 0;
}

void CopyUnits(const Char16* from, Uint32 n, Char16* to) {
  if (n != 0) {
    std::memmove(to, from, std::size_t{n} * sizeof *to);
  }
}

}  // namespace

// CString

CString::CString(const CString& other) { CopyFrom(other.text_); }

CString::CString(CString&& other) noexcept { *this = std::move(other); }

CString& CString::operator=(const CString& other) {
  if (this != &other) {
    Release();
    CopyFrom(other.text_);
  }
  return *this;
}

CString& CString::operator=(CString&& other) noexcept {
  if (this == &other) {
    return *this;
  }
  Release();
  if (other.text_ == other.inline_) {
    std::memcpy(inline_, other.inline_, sizeof inline_);
    text_ = inline_;
  } else {
    text_ = other.text_;
  }
  other.text_ = nullptr;
  return *this;
}

CString::~CString() { Release(); }

char* CString::Allocate(Uint32 bytes) {
  text_ = bytes <= sizeof inline_ ? inline_ : static_cast<char*>(::operator new(bytes));
  return text_;
}

void CString::Release() noexcept {
  if (text_ != inline_) {
    ::operator delete(text_);
  }
  text_ = nullptr;
}

void CString::CopyFrom(const char* text) {
  if (text != nullptr) {
    const auto bytes = static_cast<Uint32>(std::strlen(text) + 1);
    std::memcpy(Allocate(bytes), text, bytes);
  }
}

// String: buffers

const String String::EMPTY;

String::Rep* String::NewRep(Uint32 capacity, internal::Pool* pool) {
  const std::size_t bytes = sizeof(Rep) + (std::size_t{capacity} + 1) * sizeof(Char16);
  Uint32 pieceOffset = 0;
  void* const memory = pool != nullptr ? pool->Allocate(bytes, pieceOffset) : ::operator new(bytes);
  Rep* const rep = new (memory) Rep;
  rep->head.pieceOffset = pieceOffset;
  rep->capacity = capacity;
  rep->Data()[0] = kTerminator;
  return rep;
}

String::Rep* String::NewRep(const Char16* units, Uint32 n) {
  if (n == 0) {
    return nullptr;
  }
  Rep* const rep = NewRep(n);
  CopyUnits(NotNull(units), n, rep->Data());
  rep->Data()[n] = kTerminator;
  rep->size = n;
  return rep;
}

String::Rep* String::DecodeUtf8(const char* text, Uint32 n, internal::Pool* pool) {
  if (n == 0) {
    return nullptr;
  }
  Rep* const rep = NewRep(n, pool);
  const Uint32 ascii = internal::WidenAscii(text, n, rep->Data());
  rep->size = ascii;
  if (ascii < n) {
    try {
      rep->size += internal::DecodeUtf8(text, ascii, n - ascii, rep->Data() + ascii);
    } catch (...) {
      Free(rep);
      throw;
    }
  }
  rep->Data()[rep->size] = kTerminator;
  return rep;
}

void String::Free(Rep* rep) noexcept {
  const Uint32 pieceOffset = rep->head.pieceOffset;
  rep->~Rep();
  internal::FreeShared(rep, pieceOffset);
}

void String::Reset(Rep* rep) noexcept {
  Release(rep_);
  rep_ = rep;
}

bool String::IsWritable(Uint32 capacity) const noexcept {
  return rep_ != nullptr && rep_->capacity >= capacity && rep_->head.IsSole();
}

Char16* String::MakeWritable(Uint32 capacity) {
  if (!IsWritable(capacity)) {
    const Uint32 n = size();
    Rep* const rep = NewRep(std::max(capacity, n));
    CopyUnits(getChar16Data(), n, rep->Data());
    rep->Data()[n] = kTerminator;
    rep->size = n;
    Reset(rep);
  }
  return rep_->Data();
}

String internal::PoolAccess::MakeString(Pool& pool, std::string_view text) {
  String string;
  string.rep_ = String::DecodeUtf8(text.data(), CheckedSize(text.size()), &pool);
  return string;
}

// String: construction and assignment

String::String(const String& other, Uint32 n) : rep_(n < other.size() ? NewRep(other.getChar16Data(), n) : other.rep_) {
  if (n >= other.size()) {
    Retain(rep_);
  }
}
String::String(const Char16* units) : rep_(NewRep(units, Length(units))) {}
String::String(const Char16* units, Uint32 n) : rep_(NewRep(NotNull(units), n)) {}
String::String(const char* text) : rep_(DecodeUtf8(text, Length(text))) {}
String::String(const char* text, Uint32 n) : rep_(DecodeUtf8(NotNull(text), n)) {}

String& String::operator=(const String& other) noexcept {
  Retain(other.rep_);
  Reset(other.rep_);
  return *this;
}

String& String::operator=(String&& other) noexcept {
  std::swap(rep_, other.rep_);
  return *this;
}

String& String::assign(const String& other) { return *this = other; }
String& String::assign(const Char16* units, Uint32 n) { return *this = String(units, n); }
String& String::assign(const Char16* units) { return *this = String(units); }
String& String::assign(const char* text, Uint32 n) { return *this = String(text, n); }
String& String::assign(const char* text) { return *this = String(text); }

void String::clear() noexcept { Reset(nullptr); }

void String::reserveCapacity(Uint32 capacity) {
  if (rep_ == nullptr || capacity > rep_->capacity) {
    MakeWritable(CheckedSize(capacity));
  }
}

// String: content

CString String::getCString() const {
  const Char16* const units = getChar16Data();
  const Uint32 n = size();
  CString text;
  char* out = text.Allocate(n + 1);
  Uint32 bytes = n;
  if (!internal::NarrowAscii(units, n, out)) {
    text.Release();
    bytes = internal::Utf8Size(units, n);
    out = text.Allocate(bytes + 1);
    internal::EncodeUtf8(units, n, out);
  }
  out[bytes] = '\0';
  return text;
}

const Char16* String::getChar16Data() const noexcept { return rep_ != nullptr ? rep_->Data() : &kTerminator; }

Char16& String::operator[](Uint32 index) {
  if (index > size()) {
    throw IndexOutOfBoundsException();
  }
  return MakeWritable(size())[index];
}

const Char16 String::operator[](Uint32 index) const {  // NOLINT(readability-const-return-type)
  if (index > size()) {
    throw IndexOutOfBoundsException();
  }
  return getChar16Data()[index];
}

String& String::append(const Char16& unit) { return append(&unit, 1); }

String& String::append(const Char16* units, Uint32 n) {
  NotNull(units);
  if (n == 0) {
    return *this;
  }
  const Uint32 held = size();
  const Uint32 total = CheckedSize(std::size_t{held} + n);
  if (IsWritable(total)) {
    CopyUnits(units, n, rep_->Data() + held);
  } else {
    Rep* const rep = NewRep(held == 0 ? total : std::max(total, CheckedSize(std::size_t{held} * 2)));
    CopyUnits(getChar16Data(), held, rep->Data());
    CopyUnits(units, n, rep->Data() + held);  // before the old buffer goes: the units may be in it
    Reset(rep);
  }
  rep_->size = total;
  rep_->Data()[total] = kTerminator;
  return *this;
}

String& String::append(const String& other) {
  if (size() == 0) {
    return *this = other;
  }
  return append(other.getChar16Data(), other.size());
}

void String::appendPrintf(const char* format, ...) {
  char buffer[256];
  std::va_list arguments;
  va_start(arguments, format);
  const int needed = std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  if (needed < 0) {
    return;
  }
  const auto length = static_cast<std::size_t>(needed);
  if (length < sizeof buffer) {
    append(String(buffer, static_cast<Uint32>(length)));
    return;
  }
  std::string text(length + 1, '\0');
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  append(String(text.data(), static_cast<Uint32>(length)));
}

void String::remove(Uint32 index, Uint32 size) {
  const Uint32 held = this->size();
  if (index > held || (size != PEG_NOT_FOUND && size > held - index)) {
    throw IndexOutOfBoundsException();
  }
  const Uint32 n = size == PEG_NOT_FOUND ? held - index : size;
  if (n == 0) {
    return;
  }
  Char16* const units = MakeWritable(held);
  CopyUnits(units + index + n, held - index - n, units + index);
  rep_->size = held - n;
  units[rep_->size] = kTerminator;
}

String String::subString(Uint32 index, Uint32 n) const {
  if (index >= size()) {
    return {};
  }
  return {getChar16Data() + index, std::min(n, size() - index)};
}

Uint32 String::find(Char16 unit) const noexcept { return find(0, unit); }

Uint32 String::find(Uint32 index, Char16 unit) const noexcept {
  const Char16* const units = getChar16Data();
  for (Uint32 i = index; i < size(); ++i) {
    if (units[i] == unit) {
      return i;
    }
  }
  return PEG_NOT_FOUND;
}

Uint32 String::find(const String& text) const noexcept {
  if (text.size() == 0) {
    return PEG_NOT_FOUND;
  }
  const Char16* const begin = getChar16Data();
  const Char16* const end = begin + size();
  const Char16* const match = std::search(begin, end, text.getChar16Data(), text.getChar16Data() + text.size(),
                                          [](const Char16& a, const Char16& b) { return a == b; });
  return match == end ? PEG_NOT_FOUND : static_cast<Uint32>(match - begin);
}

Uint32 String::reverseFind(Char16 unit) const noexcept {
  const Char16* const units = getChar16Data();
  for (Uint32 i = size(); i > 0; --i) {
    if (units[i - 1] == unit) {
      return i - 1;
    }
  }
  return PEG_NOT_FOUND;
}

void String::toLower() {
  const Uint32 n = size();
  if (n == 0) {
    return;
  }
  Char16* const units = MakeWritable(n);
  std::transform(units, units + n, units, [](Char16 unit) { return Char16(FoldCase(unit)); });
}

// String: comparison

int String::compare(const String& a, const String& b, Uint32 n) noexcept {
  const Uint32 sizeA = std::min(a.size(), n);
  const Uint32 sizeB = std::min(b.size(), n);
  const int order = CompareUnits(a.getChar16Data(), b.getChar16Data(), std::min(sizeA, sizeB));
  return order != 0 ? order : CompareSizes(sizeA, sizeB);
}

int String::compare(const String& a, const String& b) noexcept { return compare(a, b, PEG_NOT_FOUND); }

int String::compareNoCase(const String& a, const String& b) noexcept {
  const Char16* const unitsA = a.getChar16Data();
  const Char16* const unitsB = b.getChar16Data();
  const Uint32 common = std::min(a.size(), b.size());
  for (Uint32 i = 0; i < common; ++i) {
    const Uint16 unitA = FoldCase(unitsA[i]);
    const Uint16 unitB = FoldCase(unitsB[i]);
    if (unitA != unitB) {
      return unitA < unitB ? -1 : 1;
    }
  }
  return CompareSizes(a.size(), b.size());
}

Boolean String::equal(const String& a, const String& b) noexcept {
  return a.rep_ == b.rep_ || (a.size() == b.size() && SameUnits(a.getChar16Data(), b.getChar16Data(), a.size()));
}

Boolean String::equalNoCase(const String& a, const String& b) noexcept {
  return equal(a, b) || (a.size() == b.size() && compareNoCase(a, b) == 0);
}

Boolean operator==(const String& a, const String& b) noexcept { return String::equal(a, b); }
Boolean operator==(const String& a, const char* b) { return String::equal(a, String(b)); }
Boolean operator==(const char* a, const String& b) { return b == a; }
Boolean operator!=(const String& a, const String& b) noexcept { return !String::equal(a, b); }
Boolean operator<(const String& a, const String& b) noexcept { return String::compare(a, b) < 0; }
Boolean operator<=(const String& a, const String& b) noexcept { return String::compare(a, b) <= 0; }
Boolean operator>(const String& a, const String& b) noexcept { return String::compare(a, b) > 0; }
Boolean operator>=(const String& a, const String& b) noexcept { return String::compare(a, b) >= 0; }

String operator+(const String& a, const String& b) {
  String sum;
  sum.reserveCapacity(a.size() + b.size());
  sum.append(a.getChar16Data(), a.size());
  sum.append(b.getChar16Data(), b.size());
  return sum;
}

std::ostream& operator<<(std::ostream& out, const String& text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string bytes;
  bytes.reserve(text.size());
  const Char16* const units = text.getChar16Data();
  for (Uint32 i = 0; i < text.size(); ++i) {
    const Uint32 unit = Uint16(units[i]);
    if (unit < 0x100) {
      bytes.push_back(static_cast<char>(unit));
      continue;
    }
    bytes.append("\\x");
    for (const Uint32 shift : {12U, 8U, 4U, 0U}) {
      bytes.push_back(kDigits[(unit >> shift) & 0xFU]);
    }
  }
  return out << bytes;
}

}  // namespace Pegasus
