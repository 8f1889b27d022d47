// Qualifier flavors and scopes: sets of flags with names.
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMScope.h>

namespace Pegasus {
namespace {

struct FlagName {
  Uint32 flag;
  const char* name;
};

enum : Uint32 {
  kOverridable = 1,
  kToSubclass = 2,
  kToInstance = 4,
  kTranslatable = 8,
  kDisableOverride = 16,
  kRestricted = 32
};

constexpr FlagName kFlavors[] = {{kOverridable, "OVERRIDABLE"},         {kToSubclass, "TOSUBCLASS"},
                                 {kToInstance, "TOINSTANCE"},           {kTranslatable, "TRANSLATABLE"},
                                 {kDisableOverride, "DISABLEOVERRIDE"}, {kRestricted, "RESTRICTED"}};

enum : Uint32 {
  kClass = 1,
  kAssociation = 2,
  kIndication = 4,
  kProperty = 8,
  kReference = 16,
  kMethod = 32,
  kParameter = 64,
  kAny = 127
};

constexpr FlagName kScopes[] = {{kClass, "CLASS"},        {kAssociation, "ASSOCIATION"}, {kIndication, "INDICATION"},
                                {kProperty, "PROPERTY"},  {kReference, "REFERENCE"},     {kMethod, "METHOD"},
                                {kParameter, "PARAMETER"}};

template <std::size_t n>
String Names(const FlagName (&names)[n], Uint32 flags) {
  String text;
  for (const FlagName& entry : names) {
    if ((flags & entry.flag) != 0) {
      if (text.size() != 0) {
        text.append(Char16(' '));
      }
      text.append(entry.name);
    }
  }
  return text;
}

}  // namespace

const CIMFlavor CIMFlavor::NONE{0};
const CIMFlavor CIMFlavor::OVERRIDABLE{kOverridable};
const CIMFlavor CIMFlavor::ENABLEOVERRIDE{kOverridable};
const CIMFlavor CIMFlavor::DISABLEOVERRIDE{kDisableOverride};
const CIMFlavor CIMFlavor::TOSUBCLASS{kToSubclass};
const CIMFlavor CIMFlavor::RESTRICTED{kRestricted};
const CIMFlavor CIMFlavor::TOINSTANCE{kToInstance};
const CIMFlavor CIMFlavor::TRANSLATABLE{kTranslatable};
const CIMFlavor CIMFlavor::DEFAULTS{kOverridable | kToSubclass};

void CIMFlavor::addFlavor(const CIMFlavor& flavor) { flags_ |= flavor.flags_; }

void CIMFlavor::removeFlavor(const CIMFlavor& flavor) { flags_ &= ~flavor.flags_; }

Boolean CIMFlavor::hasFlavor(const CIMFlavor& flavor) const { return (flags_ & flavor.flags_) == flavor.flags_; }

Boolean CIMFlavor::equal(const CIMFlavor& flavor) const { return flags_ == flavor.flags_; }

String CIMFlavor::toString() const { return Names(kFlavors, flags_); }

Boolean operator==(const CIMFlavor& x, const CIMFlavor& y) { return x.equal(y); }

Boolean operator!=(const CIMFlavor& x, const CIMFlavor& y) { return !x.equal(y); }

const CIMScope CIMScope::NONE{0};
const CIMScope CIMScope::CLASS{kClass};
const CIMScope CIMScope::ASSOCIATION{kAssociation};
const CIMScope CIMScope::INDICATION{kIndication};
const CIMScope CIMScope::PROPERTY{kProperty};
const CIMScope CIMScope::REFERENCE{kReference};
const CIMScope CIMScope::METHOD{kMethod};
const CIMScope CIMScope::PARAMETER{kParameter};
const CIMScope CIMScope::ANY{kAny};

void CIMScope::addScope(const CIMScope& scope) { flags_ |= scope.flags_; }

Boolean CIMScope::hasScope(const CIMScope& scope) const { return (flags_ & scope.flags_) == scope.flags_; }

Boolean CIMScope::equal(const CIMScope& scope) const { return flags_ == scope.flags_; }

String CIMScope::toString() const { return Names(kScopes, flags_); }

Boolean operator==(const CIMScope& x, const CIMScope& y) { return x.equal(y); }

Boolean operator!=(const CIMScope& x, const CIMScope& y) { return !x.equal(y); }

}  // namespace Pegasus
