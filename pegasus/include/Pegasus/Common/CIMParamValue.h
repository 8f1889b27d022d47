// A method parameter with its value, as handed to and returned by method calls. A handle: copies share one body,
// clone() makes an independent one.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace objects {
struct ParamValueBody;
}

/// Handle to a named parameter value. All members but copying, assigning and isUninitialized() throw
/// UninitializedObjectException on a default-constructed handle.
class PEGASUS_COMMON_LINKAGE CIMParamValue {
 public:
  CIMParamValue() = default;
  /// `isTyped` says whether the type travels with the value. UninitializedObjectException for an empty name.
  CIMParamValue(String parameterName, CIMValue value, Boolean isTyped = true);

  String getParameterName() const;
  CIMValue getValue() const;
  Boolean isTyped() const;
  /// UninitializedObjectException for an empty name.
  void setParameterName(String& parameterName);
  void setValue(CIMValue& value);
  void setIsTyped(Boolean isTyped);
  CIMParamValue clone() const;
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParamValueBody& Body() const;

  internal::SharedPointer<objects::ParamValueBody> body_;
};

}  // namespace Pegasus
