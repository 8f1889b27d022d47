// Object paths: construction from text and from parts, the text form, comparison.
#include <Pegasus/Common/CIMObjectPath.h>

#include <algorithm>
#include <utility>

#include "objects/host_name.h"
#include "objects/internal.h"
#include "objects/named_set.h"
#include "objects/path_parser.h"

namespace Pegasus {
namespace {

void RequireHost(const String& host) {
  if (host.size() != 0 && !objects::IsValidHost(host)) {
    throw MalformedObjectNameException(host, "invalid hostname");
  }
}

objects::ParsedPath Parse(const String& text) {
  objects::ParsedPath path;
  if (const auto wrong = objects::ParsePath(text, path)) {
    throw MalformedObjectNameException(text, *wrong);
  }
  return path;
}

void RequireReferences(const Array<CIMKeyBinding>& keys) {
  for (Uint32 i = 0; i < keys.size(); ++i) {
    if (keys[i].getType() == CIMKeyBinding::REFERENCE) {
      Parse(keys[i].getValue());
    }
  }
}

bool NameBefore(const CIMKeyBinding& a, const CIMKeyBinding& b) {
  return String::compareNoCase(a.getName().getString(), b.getName().getString()) < 0;
}

/// By name, keys of one name in the order given.
void SortKeys(Array<CIMKeyBinding>& keys) {
  const CIMKeyBinding* const first = keys.getData();
  if (keys.size() < 2 || std::is_sorted(first, first + keys.size(), NameBefore)) {
    return;
  }
  CIMKeyBinding* const own = &keys[0];
  std::stable_sort(own, own + keys.size(), NameBefore);
}

void AppendQuoted(String& text, const String& value) {
  const Char16* const units = value.getChar16Data();
  const Uint32 size = value.size();
  text.append(Char16('"'));
  Uint32 done = 0;
  for (Uint32 i = 0; i < size; ++i) {
    if (units[i] == '"' || units[i] == '\\') {
      text.append(units + done, i - done);
      text.append(Char16('\\'));
      done = i;
    }
  }
  text.append(units + done, size - done);
  text.append(Char16('"'));
}

}  // namespace

CIMObjectPath::CIMObjectPath(const String& objectName) { set(objectName); }

CIMObjectPath::CIMObjectPath(const String& host, const CIMNamespaceName& nameSpace, const CIMName& className,
                             const Array<CIMKeyBinding>& keyBindings) {
  set(host, nameSpace, className, keyBindings);
}

CIMObjectPath& CIMObjectPath::operator=(const String& objectName) {
  set(objectName);
  return *this;
}

void CIMObjectPath::clear() { *this = CIMObjectPath(); }

void CIMObjectPath::set(const String& host, const CIMNamespaceName& nameSpace, const CIMName& className,
                        const Array<CIMKeyBinding>& keyBindings) {
  RequireHost(host);
  RequireReferences(keyBindings);
  *this = objects::Access::MakePathUnchecked(String(host), CIMNamespaceName(nameSpace), CIMName(className),
                                             Array<CIMKeyBinding>(keyBindings));
}

void CIMObjectPath::set(const String& objectName) {
  objects::ParsedPath path = Parse(objectName);
  *this = objects::Access::MakePathUnchecked(std::move(path.host), std::move(path.nameSpace), std::move(path.className),
                                             std::move(path.keys));
}

const String& CIMObjectPath::getHost() const { return host_; }

void CIMObjectPath::setHost(const String& host) {
  RequireHost(host);
  host_ = host;
}

const CIMNamespaceName& CIMObjectPath::getNameSpace() const { return nameSpace_; }

void CIMObjectPath::setNameSpace(const CIMNamespaceName& nameSpace) { nameSpace_ = nameSpace; }

const CIMName& CIMObjectPath::getClassName() const { return className_; }

void CIMObjectPath::setClassName(const CIMName& className) { className_ = className; }

const Array<CIMKeyBinding>& CIMObjectPath::getKeyBindings() const { return keyBindings_; }

void CIMObjectPath::setKeyBindings(const Array<CIMKeyBinding>& keyBindings) {
  RequireReferences(keyBindings);
  Array<CIMKeyBinding> keys(keyBindings);
  SortKeys(keys);
  keyBindings_ = std::move(keys);
}

String CIMObjectPath::toString() const {
  String text;
  if (host_.size() != 0) {
    text.append("//");
    text.append(host_);
    text.append(Char16('/'));
  }
  if (host_.size() != 0 || !nameSpace_.isNull()) {
    text.append(nameSpace_.getString());
    text.append(Char16(':'));
  }
  text.append(className_.getString());
  for (Uint32 i = 0; i < keyBindings_.size(); ++i) {
    const CIMKeyBinding& key = keyBindings_[i];
    text.append(Char16(i == 0 ? '.' : ','));
    text.append(key.getName().getString());
    text.append(Char16('='));
    if (key.getType() == CIMKeyBinding::STRING || key.getType() == CIMKeyBinding::REFERENCE) {
      AppendQuoted(text, key.getValue());
    } else {
      text.append(key.getValue());
    }
  }
  return text;
}

Boolean CIMObjectPath::identical(const CIMObjectPath& x) const {
  if (!String::equalNoCase(host_, x.host_) || !nameSpace_.equal(x.nameSpace_) || !className_.equal(x.className_) ||
      keyBindings_.size() != x.keyBindings_.size()) {
    return false;
  }
  for (Uint32 i = 0; i < keyBindings_.size(); ++i) {
    if (!(keyBindings_[i] == x.keyBindings_[i])) {
      return false;
    }
  }
  return true;
}

Uint32 CIMObjectPath::makeHashCode() const {
  // Values are left out but for texts: equal numbers, booleans and references may be spelled differently.
  constexpr Uint32 kFactor = 31;
  Uint32 hash = objects::HashName(host_);
  hash = hash * kFactor + objects::HashName(nameSpace_.getString());
  hash = hash * kFactor + objects::HashName(className_.getString());
  for (Uint32 i = 0; i < keyBindings_.size(); ++i) {
    const CIMKeyBinding& key = keyBindings_[i];
    hash = hash * kFactor + objects::HashName(key.getName().getString());
    if (key.getType() == CIMKeyBinding::STRING) {
      hash = hash * kFactor + objects::HashName(key.getValue());
    }
  }
  return hash;
}

Boolean operator==(const CIMObjectPath& x, const CIMObjectPath& y) { return x.identical(y); }

Boolean operator!=(const CIMObjectPath& x, const CIMObjectPath& y) { return !x.identical(y); }

namespace objects {

CIMObjectPath Access::MakePathUnchecked(String&& host, CIMNamespaceName&& nameSpace, CIMName&& className,
                                        Array<CIMKeyBinding>&& keyBindings) {
  CIMObjectPath path;
  path.host_ = std::move(host);
  path.nameSpace_ = std::move(nameSpace);
  path.className_ = std::move(className);
  path.keyBindings_ = std::move(keyBindings);
  SortKeys(path.keyBindings_);
  return path;
}

Boolean Access::ValidHost(const String& host) { return IsValidHost(host); }

}  // namespace objects
}  // namespace Pegasus
