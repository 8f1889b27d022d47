// Qualifiers: named values that describe a class, property, method or parameter. Handles: copies share one body,
// clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

class CIMConstQualifier;
class CIMQualifier;

namespace objects {
struct Access;
struct QualifierBody;
}  // namespace objects

/// Handle to a qualifier. All members but copying, assigning and isUninitialized() throw UninitializedObjectException
/// on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMQualifier {
 public:
  CIMQualifier() = default;
  /// UninitializedObjectException for a null name.
  CIMQualifier(const CIMName& name, const CIMValue& value, const CIMFlavor& flavor = CIMFlavor::NONE,
               Boolean propagated = false);

  /// UninitializedObjectException for a null name; Exception while the qualifier is part of a definition.
  void setName(const CIMName& name);
  void setValue(const CIMValue& value);
  void setFlavor(const CIMFlavor& flavor);
  /// Removes the flags of `flavor`.
  void unsetFlavor(const CIMFlavor& flavor);
  void setPropagated(Boolean propagated);
  const CIMName& getName() const;
  CIMType getType() const;
  Boolean isArray() const;
  const CIMValue& getValue() const;
  const CIMFlavor& getFlavor() const;
  Boolean getPropagated() const;
  /// An independent copy, all parts included.
  CIMQualifier clone() const;
  Boolean identical(const CIMConstQualifier& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierBody& Body() const;

  internal::SharedPointer<objects::QualifierBody> body_;
};

/// The reading half of CIMQualifier, sharing its body.
class PEGASUS_COMMON_LINKAGE CIMConstQualifier {
 public:
  CIMConstQualifier() = default;
  CIMConstQualifier(const CIMQualifier& x);
  CIMConstQualifier& operator=(const CIMQualifier& x);

  const CIMName& getName() const;
  CIMType getType() const;
  Boolean isArray() const;
  const CIMValue& getValue() const;
  const CIMFlavor& getFlavor() const;
  Boolean getPropagated() const;
  CIMQualifier clone() const;
  Boolean identical(const CIMConstQualifier& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierBody& Body() const;

  internal::SharedPointer<objects::QualifierBody> body_;
};

}  // namespace Pegasus
