// Which texts are legal names and namespace names.
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/Exception.h>

namespace Pegasus {

namespace {

constexpr Uint16 kFirstNonAscii = 0x80;

bool StartsName(Uint16 unit) {
  return (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z') || unit == '_' || unit >= kFirstNonAscii;
}

bool ContinuesName(Uint16 unit) { return StartsName(unit) || (unit >= '0' && unit <= '9'); }

bool IsLegalName(const Char16* units, Uint32 n) {
  if (n == 0 || !StartsName(units[0])) {
    return false;
  }
  for (Uint32 i = 1; i < n; ++i) {
    if (!ContinuesName(units[i])) {
      return false;
    }
  }
  return true;
}

const String& CheckedName(const String& name) {
  if (!CIMName::legal(name)) {
    throw InvalidNameException(name);
  }
  return name;
}

String CheckedNamespaceName(const String& name) {
  if (!CIMNamespaceName::legal(name)) {
    throw InvalidNamespaceNameException(name);
  }
  return name.getChar16Data()[0] == '/' ? name.subString(1) : name;
}

}  // namespace

CIMName::CIMName(const String& name) : name_(CheckedName(name)) {}

CIMName::CIMName(const char* name) : name_(name) { CheckedName(name_); }

CIMName& CIMName::operator=(const String& name) {
  name_ = CheckedName(name);
  return *this;
}

Boolean CIMName::legal(const String& name) noexcept { return IsLegalName(name.getChar16Data(), name.size()); }

CIMNamespaceName::CIMNamespaceName(const String& name) : name_(CheckedNamespaceName(name)) {}

CIMNamespaceName::CIMNamespaceName(const char* name) : CIMNamespaceName(String(name)) {}

CIMNamespaceName& CIMNamespaceName::operator=(const String& name) {
  name_ = CheckedNamespaceName(name);
  return *this;
}

Boolean CIMNamespaceName::legal(const String& name) noexcept {
  const Char16* const units = name.getChar16Data();
  const Uint32 size = name.size();
  Uint32 segment = size > 0 && units[0] == '/' ? 1 : 0;
  for (Uint32 i = segment; i < size; ++i) {
    if (units[i] == '/') {
      if (!IsLegalName(units + segment, i - segment)) {
        return false;
      }
      segment = i + 1;
    }
  }
  return IsLegalName(units + segment, size - segment);
}

}  // namespace Pegasus
