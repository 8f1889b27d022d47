// Property lists: names an operation is limited to.
#include <Pegasus/Common/CIMPropertyList.h>

namespace Pegasus {

CIMPropertyList::CIMPropertyList(const Array<CIMName>& propertyNames) { set(propertyNames); }

void CIMPropertyList::set(const Array<CIMName>& propertyNames) {
  for (Uint32 i = 0; i < propertyNames.size(); ++i) {
    if (propertyNames[i].isNull()) {
      throw UninitializedObjectException();
    }
  }
  names_ = propertyNames;
  isNull_ = false;
}

void CIMPropertyList::clear() { *this = CIMPropertyList(); }

Boolean CIMPropertyList::isNull() const { return isNull_; }

Uint32 CIMPropertyList::size() const { return names_.size(); }

const CIMName& CIMPropertyList::operator[](Uint32 index) const { return names_[index]; }

Array<CIMName> CIMPropertyList::getPropertyNameArray() const { return names_; }

Boolean CIMPropertyList::contains(const CIMName& name) const {
  for (Uint32 i = 0; i < names_.size(); ++i) {
    if (names_[i].equal(name)) {
      return true;
    }
  }
  return false;
}

String CIMPropertyList::toString() const {
  if (isNull_) {
    return "NULL";
  }
  if (names_.size() == 0) {
    return "EMPTY";
  }
  String text("[");
  for (Uint32 i = 0; i < names_.size(); ++i) {
    if (i > 0) {
      text.append(", ");
    }
    text.append(names_[i].getString());
  }
  text.append(Char16(']'));
  return text;
}

}  // namespace Pegasus
