// Names of CIM elements and of namespaces. A name is either null or checked to be legal; names compare without regard
// to the case of ASCII letters.
#pragma once

#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace internal {
struct NameAccess;
}

/// Name of a class, property, method, key or qualifier.
class PEGASUS_COMMON_LINKAGE CIMName {
 public:
  /// The null name; its text is empty.
  CIMName() noexcept = default;
  /// Throws InvalidNameException when the text is not legal.
  CIMName(const String& name);  // NOLINT(google-explicit-constructor)
  CIMName(const char* name);    // NOLINT(google-explicit-constructor)
  CIMName(const CIMName&) noexcept = default;
  CIMName(CIMName&&) noexcept = default;
  ~CIMName() = default;

  CIMName& operator=(const CIMName&) noexcept = default;
  CIMName& operator=(CIMName&&) noexcept = default;
  CIMName& operator=(const String& name);

  const String& getString() const noexcept { return name_; }
  Boolean isNull() const noexcept { return name_.size() == 0; }
  void clear() noexcept { name_.clear(); }
  Boolean equal(const CIMName& other) const noexcept { return String::equalNoCase(name_, other.name_); }

  /// A letter, `_` or a character at or above U+0080 first; digits as well after it.
  static Boolean legal(const String& name) noexcept;

 private:
  friend struct internal::NameAccess;

  String name_;
};

inline Boolean operator==(const CIMName& a, const CIMName& b) noexcept { return a.equal(b); }
inline Boolean operator!=(const CIMName& a, const CIMName& b) noexcept { return !a.equal(b); }

/// Name of a namespace: legal names joined by `/`. One leading `/` is accepted and dropped.
class PEGASUS_COMMON_LINKAGE CIMNamespaceName {
 public:
  /// The null name; its text is empty.
  CIMNamespaceName() noexcept = default;
  /// Throws InvalidNamespaceNameException when the text is not legal.
  CIMNamespaceName(const String& name);  // NOLINT(google-explicit-constructor)
  CIMNamespaceName(const char* name);    // NOLINT(google-explicit-constructor)
  CIMNamespaceName(const CIMNamespaceName&) noexcept = default;
  CIMNamespaceName(CIMNamespaceName&&) noexcept = default;
  ~CIMNamespaceName() = default;

  CIMNamespaceName& operator=(const CIMNamespaceName&) noexcept = default;
  CIMNamespaceName& operator=(CIMNamespaceName&&) noexcept = default;
  CIMNamespaceName& operator=(const String& name);

  const String& getString() const noexcept { return name_; }
  Boolean isNull() const noexcept { return name_.size() == 0; }
  void clear() noexcept { name_.clear(); }
  Boolean equal(const CIMNamespaceName& other) const noexcept { return String::equalNoCase(name_, other.name_); }

  static Boolean legal(const String& name) noexcept;

 private:
  friend struct internal::NameAccess;

  String name_;
};

inline Boolean operator==(const CIMNamespaceName& a, const CIMNamespaceName& b) noexcept { return a.equal(b); }
inline Boolean operator!=(const CIMNamespaceName& a, const CIMNamespaceName& b) noexcept { return !a.equal(b); }

}  // namespace Pegasus
