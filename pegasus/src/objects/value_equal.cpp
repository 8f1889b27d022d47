// Equality of CIM values: by type first, then by meaning (paths and date-times) or content.
#include <Pegasus/Common/CIMValue.h>

#include <type_traits>

#include "objects/value_content.h"

namespace Pegasus {
namespace {

using objects::Access;

template <typename T>
bool SameElement(const T& a, const T& b) {
  if constexpr (objects::kIsHandle<T>) {
    return a.identical(b);
  } else {
    return a == b;
  }
}

template <typename T>
bool SameContent(const CIMValue& a, const CIMValue& b) {
  if (!a.isArray()) {
    return SameElement(*Access::Peek<T>(a), *Access::Peek<T>(b));
  }
  const Array<T>& left = *Access::Peek<Array<T>>(a);
  const Array<T>& right = *Access::Peek<Array<T>>(b);
  if (left.size() != right.size()) {
    return false;
  }
  for (Uint32 i = 0; i < left.size(); ++i) {
    if (!SameElement(left[i], right[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace

Boolean CIMValue::equal(const CIMValue& x) const {
  if (!typeCompatible(x) || isNull() != x.isNull()) {
    return false;
  }
  return isNull() || objects::VisitType(type_, [this, &x](auto* tag) {
           return SameContent<std::remove_pointer_t<decltype(tag)>>(*this, x);
         });
}

Boolean operator==(const CIMValue& x, const CIMValue& y) { return x.equal(y); }

Boolean operator!=(const CIMValue& x, const CIMValue& y) { return !x.equal(y); }

}  // namespace Pegasus
