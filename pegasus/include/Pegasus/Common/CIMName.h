// Names of CIM elements and of namespaces. A name is either null or checked to be legal; names compare without regard
// to the case of ASCII letters.
#pragma once

#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace internal {
struct NameAccess;
}

/// Name of a class, property, method, key or qualifier. Threads: copies are independent and may be used on several
/// threads at a time; one object may be read by several.
class PEGASUS_COMMON_LINKAGE CIMName {
 public:
  /// The null name; its text is empty.
  CIMName() noexcept = default;
  /// Throws InvalidNameException when the text is not legal.
  CIMName(const String& name);  // NOLINT(google-explicit-constructor)
  /// The same from UTF-8; Exception for invalid bytes and NullPointer for a null pointer.
  CIMName(const char* name);  // NOLINT(google-explicit-constructor)
  CIMName(const CIMName&) noexcept = default;
  CIMName(CIMName&&) noexcept = default;
  ~CIMName() = default;

  CIMName& operator=(const CIMName&) noexcept = default;
  CIMName& operator=(CIMName&&) noexcept = default;
  /// Throws as the constructor does; the name then stays as it was.
  CIMName& operator=(const String& name);

  /// The name as it was given; empty for the null name.
  const String& getString() const noexcept { return name_; }
  /// True for a name that was default-constructed or cleared.
  Boolean isNull() const noexcept { return name_.size() == 0; }
  /// Back to the null name.
  void clear() noexcept { name_.clear(); }
  /// Ignores the case of ASCII letters; two null names are equal.
  Boolean equal(const CIMName& other) const noexcept { return String::equalNoCase(name_, other.name_); }

  /// A letter, `_` or a character at or above U+0080 first; digits as well after it.
  static Boolean legal(const String& name) noexcept;

 private:
  friend struct internal::NameAccess;

  String name_;
};

/// Ignores the case of ASCII letters; two null names are equal.
inline Boolean operator==(const CIMName& a, const CIMName& b) noexcept { return a.equal(b); }
/// The opposite of ==.
inline Boolean operator!=(const CIMName& a, const CIMName& b) noexcept { return !a.equal(b); }

/// Name of a namespace: legal names joined by `/`. One leading `/` is accepted and dropped. Threads: as for
/// CIMName.
class PEGASUS_COMMON_LINKAGE CIMNamespaceName {
 public:
  /// The null name; its text is empty.
  CIMNamespaceName() noexcept = default;
  /// Throws InvalidNamespaceNameException when the text is not legal.
  CIMNamespaceName(const String& name);  // NOLINT(google-explicit-constructor)
  /// The same from UTF-8; Exception for invalid bytes and NullPointer for a null pointer.
  CIMNamespaceName(const char* name);  // NOLINT(google-explicit-constructor)
  CIMNamespaceName(const CIMNamespaceName&) noexcept = default;
  CIMNamespaceName(CIMNamespaceName&&) noexcept = default;
  ~CIMNamespaceName() = default;

  CIMNamespaceName& operator=(const CIMNamespaceName&) noexcept = default;
  CIMNamespaceName& operator=(CIMNamespaceName&&) noexcept = default;
  /// Throws as the constructor does; the name then stays as it was.
  CIMNamespaceName& operator=(const String& name);

  /// The name as it was given, without a leading `/`; empty for the null name.
  const String& getString() const noexcept { return name_; }
  /// True for a name that was default-constructed or cleared.
  Boolean isNull() const noexcept { return name_.size() == 0; }
  /// Back to the null name.
  void clear() noexcept { name_.clear(); }
  /// Ignores the case of ASCII letters; two null names are equal.
  Boolean equal(const CIMNamespaceName& other) const noexcept { return String::equalNoCase(name_, other.name_); }

  /// True for what the constructor accepts.
  static Boolean legal(const String& name) noexcept;

 private:
  friend struct internal::NameAccess;

  String name_;
};

/// Ignores the case of ASCII letters; two null names are equal.
inline Boolean operator==(const CIMNamespaceName& a, const CIMNamespaceName& b) noexcept { return a.equal(b); }
/// The opposite of ==.
inline Boolean operator!=(const CIMNamespaceName& a, const CIMNamespaceName& b) noexcept { return !a.equal(b); }

}  // namespace Pegasus
