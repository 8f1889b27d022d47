// Text of the CIM client: UTF-16 inside, UTF-8 at the borders. Copies share one buffer until one of them is changed, so
// passing strings by value is cheap.
#pragma once

#include <Pegasus/Common/Char16.h>
#include <Pegasus/Common/Shared.h>

#include <iosfwd>

namespace Pegasus {

namespace internal {
class Pool;
struct PoolAccess;
}  // namespace internal

/// An owned, zero-terminated UTF-8 text. The pointer it converts to dies with the object. Threads: copies are
/// independent; one object may be read by several threads.
class PEGASUS_COMMON_LINKAGE CString {
 public:
  /// Holds no text: the pointer is null.
  CString() noexcept = default;
  CString(const CString& other);
  CString(CString&& other) noexcept;
  CString& operator=(const CString& other);
  CString& operator=(CString&& other) noexcept;
  ~CString();

  /// The text, null for a default-constructed object; valid as long as the object lives unchanged.
  operator const char*() const noexcept { return text_; }  // NOLINT(google-explicit-constructor)

 private:
  friend class String;

  static constexpr Uint32 kInlineBytes = 48;

  /// Makes room for `bytes` bytes and returns where they go.
  char* Allocate(Uint32 bytes);
  void Release() noexcept;
  void CopyFrom(const char* text);

  char* text_ = nullptr;
  char inline_[kInlineBytes];
};

/// A UTF-16 text. Indices and sizes count UTF-16 units. Threads: copies are independent and may be used on several
/// threads at a time; one object may be read by several.
class PEGASUS_COMMON_LINKAGE String {
 public:
  /// The empty text.
  static const String EMPTY;

  /// The empty text.
  String() noexcept = default;
  String(const String& other) noexcept : rep_(other.rep_) { Retain(rep_); }
  String(String&& other) noexcept : rep_(other.rep_) { other.rep_ = nullptr; }
  /// The first `n` units of `other`, or all of them when it has fewer.
  String(const String& other, Uint32 n);
  /// Copies units up to the terminating zero; throws NullPointer for a null pointer.
  String(const Char16* units);  // NOLINT(google-explicit-constructor)
  /// Copies exactly `n` units; throws NullPointer for a null pointer.
  String(const Char16* units, Uint32 n);
  /// Decodes UTF-8; throws Exception for invalid bytes and NullPointer for a null pointer.
  String(const char* text);  // NOLINT(google-explicit-constructor)
  /// Decodes exactly `n` bytes of UTF-8.
  String(const char* text, Uint32 n);
  ~String() { Release(rep_); }

  String& operator=(const String& other) noexcept;
  String& operator=(String&& other) noexcept;

  /// @{ Takes another text, as the constructor of the same arguments does. On an exception the text stays as it was.
  String& assign(const String& other);
  String& assign(const Char16* units, Uint32 n);
  String& assign(const Char16* units);
  String& assign(const char* text, Uint32 n);
  String& assign(const char* text);
  /// @}

  /// Becomes the empty text.
  void clear() noexcept;
  /// Makes room for `capacity` units; the text stays.
  void reserveCapacity(Uint32 capacity);

  /// The text as UTF-8; an unpaired surrogate becomes U+FFFD.
  CString getCString() const;
  /// The zero-terminated units; valid until the string is changed or destroyed.
  const Char16* getChar16Data() const noexcept;
  /// Number of units; a character above U+FFFF has two.
  Uint32 size() const noexcept { return rep_ != nullptr ? rep_->size : 0; }

  /// Unit at `index`; the terminating zero at `index` == size(). Throws IndexOutOfBoundsException beyond.
  Char16& operator[](Uint32 index);
  /// The same for reading only.
  const Char16 operator[](Uint32 index) const;  // NOLINT(readability-const-return-type)

  /// Appends one unit.
  String& append(const Char16& unit);
  /// Appends `n` units; throws NullPointer for a null pointer.
  String& append(const Char16* units, Uint32 n);
  /// Appends a text, which may be this one.
  String& append(const String& other);
  /// Appends what printf would write, read as UTF-8.
  void appendPrintf(const char* format, ...) __attribute__((format(printf, 2, 3)));

  /// Removes `size` units from `index` on, or all of them. Throws IndexOutOfBoundsException when they do not exist.
  void remove(Uint32 index, Uint32 size = PEG_NOT_FOUND);
  /// At most `n` units from `index` on; empty when `index` is at or beyond the end.
  String subString(Uint32 index, Uint32 n = PEG_NOT_FOUND) const;

  /// Index of the first match, or PEG_NOT_FOUND; an empty text is never found.
  Uint32 find(Char16 unit) const noexcept;
  /// The same from `index` on; PEG_NOT_FOUND also when `index` is beyond the end.
  Uint32 find(Uint32 index, Char16 unit) const noexcept;
  /// Index of the first place where `text` stands, or PEG_NOT_FOUND; an empty text is never found.
  Uint32 find(const String& text) const noexcept;
  /// Index of the last match, or PEG_NOT_FOUND.
  Uint32 reverseFind(Char16 unit) const noexcept;

  /// Folds A-Z only.
  void toLower();

  /// Order of the first `n` units at most, by UTF-16 unit: negative, 0 or positive.
  static int compare(const String& a, const String& b, Uint32 n) noexcept;
  /// Order of the whole texts by UTF-16 unit: negative, 0 or positive.
  static int compare(const String& a, const String& b) noexcept;
  /// The same with A-Z folded.
  static int compareNoCase(const String& a, const String& b) noexcept;
  /// True for the same units.
  static Boolean equal(const String& a, const String& b) noexcept;
  /// The same with A-Z folded.
  static Boolean equalNoCase(const String& a, const String& b) noexcept;

 private:
  friend struct internal::PoolAccess;

  /// Head of a buffer; the units and a terminating zero follow it in the same allocation.
  struct Rep {
    internal::SharedHead head;
    Uint32 size = 0;
    Uint32 capacity = 0;
    Char16* Data() noexcept { return reinterpret_cast<Char16*>(this + 1); }
  };

  /// In the pool, or in memory of its own when there is none.
  static Rep* NewRep(Uint32 capacity, internal::Pool* pool = nullptr);
  static Rep* NewRep(const Char16* units, Uint32 n);
  static Rep* DecodeUtf8(const char* text, Uint32 n, internal::Pool* pool = nullptr);
  static void Free(Rep* rep) noexcept;
  static void Retain(Rep* rep) noexcept {
    if (rep != nullptr) {
      rep->head.Retain();
    }
  }
  static void Release(Rep* rep) noexcept {
    if (rep != nullptr && rep->head.Drop()) {
      Free(rep);
    }
  }
  void Reset(Rep* rep) noexcept;
  bool IsWritable(Uint32 capacity) const noexcept;
  Char16* MakeWritable(Uint32 capacity);

  Rep* rep_ = nullptr;  // null: empty
};

/// @{ Compare by UTF-16 unit. A `const char*` is read as UTF-8, as by the constructor, which may throw.
PEGASUS_COMMON_LINKAGE Boolean operator==(const String& a, const String& b) noexcept;
PEGASUS_COMMON_LINKAGE Boolean operator==(const String& a, const char* b);
PEGASUS_COMMON_LINKAGE Boolean operator==(const char* a, const String& b);
PEGASUS_COMMON_LINKAGE Boolean operator!=(const String& a, const String& b) noexcept;
PEGASUS_COMMON_LINKAGE Boolean operator<(const String& a, const String& b) noexcept;
PEGASUS_COMMON_LINKAGE Boolean operator<=(const String& a, const String& b) noexcept;
PEGASUS_COMMON_LINKAGE Boolean operator>(const String& a, const String& b) noexcept;
PEGASUS_COMMON_LINKAGE Boolean operator>=(const String& a, const String& b) noexcept;
/// @}
/// One text behind the other.
PEGASUS_COMMON_LINKAGE String operator+(const String& a, const String& b);

/// Writes units below U+0100 as one byte each and others as `\x` and four upper-case hex digits. For UTF-8,
/// stream getCString().
PEGASUS_COMMON_LINKAGE std::ostream& operator<<(std::ostream& out, const String& text);

}  // namespace Pegasus
