// Declarations of qualifiers: type, default value, scope and flavor under a name. Handles: copies share one body,
// clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMScope.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace objects {
struct Access;
struct QualifierDeclBody;
}  // namespace objects

/// Handle to a qualifier declaration. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle. Not synchronised.
class PEGASUS_COMMON_LINKAGE CIMQualifierDecl {
 public:
  CIMQualifierDecl() = default;
  /// UninitializedObjectException for a null name.
  CIMQualifierDecl(const CIMName& name, const CIMValue& value, const CIMScope& scope,
                   const CIMFlavor& flavor = CIMFlavor::DEFAULTS, Uint32 arraySize = 0);

  void setName(const CIMName& name);
  void setValue(const CIMValue& value);
  const CIMName& getName() const;
  CIMType getType() const;
  Boolean isArray() const;
  const CIMValue& getValue() const;
  const CIMScope& getScope() const;
  const CIMFlavor& getFlavor() const;
  Uint32 getArraySize() const;
  CIMQualifierDecl clone() const;
  Boolean identical(const CIMQualifierDecl& x) const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::QualifierDeclBody& Body() const;

  internal::SharedPointer<objects::QualifierDeclBody> body_;
};

}  // namespace Pegasus
