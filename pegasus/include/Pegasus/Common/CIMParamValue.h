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
/// Threads: copies may be read, copied and destroyed on several threads at a time. While one is changed nobody else may
/// use any of them; clone() makes one that another thread may change.
class PEGASUS_COMMON_LINKAGE CIMParamValue {
 public:
  /// An uninitialised handle.
  CIMParamValue() = default;
  /// `isTyped` says whether the type travels with the value. UninitializedObjectException for an empty name.
  CIMParamValue(String parameterName, CIMValue value, Boolean isTyped = true);

  /// Never empty.
  String getParameterName() const;
  /// The value; it may be NULL.
  CIMValue getValue() const;
  /// Whether the type travels with the value.
  Boolean isTyped() const;
  /// UninitializedObjectException for an empty name.
  void setParameterName(String& parameterName);
  /// Replaces the value; another type is fine.
  void setValue(CIMValue& value);
  /// Says whether the type travels with the value.
  void setIsTyped(Boolean isTyped);
  /// An independent copy.
  CIMParamValue clone() const;
  /// True for a handle that was only default-constructed, or copied from such a one.
  Boolean isUninitialized() const;

 private:
  friend struct objects::Access;
  objects::ParamValueBody& Body() const;

  internal::SharedPointer<objects::ParamValueBody> body_;
};

}  // namespace Pegasus
