// The back door of the value and object classes for code inside the library: builds objects from parts that were
// already checked, without copying or checking them again, and lets the XML writer look into values without cloning.
#pragma once

#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMValue.h>

#include <utility>

namespace Pegasus::internal {
class Pool;
}

namespace Pegasus::objects {

/// Friend of every class of this folder. "Unchecked" means: the caller vouches for what the public constructor checks.
struct Access {
  // ---- values -----------------------------------------------------------------------------------------------------

  /// Takes the text over.
  static CIMValue MakeStringValue(String&& text);
  /// Takes the path over, into the pool if there is one.
  static CIMValue MakeReferenceValue(CIMObjectPath&& path, internal::Pool* pool = nullptr);
  /// Takes the handle over without cloning: nobody else may hold it. It must not be uninitialised.
  static CIMValue MakeInstanceValue(CIMInstance&& instance);
  /// Takes the handle over without cloning: nobody else may hold it. It must not be uninitialised.
  static CIMValue MakeObjectValue(CIMObject&& object);
  /// Takes an array over, into the pool if there is one; elements that are handles are not cloned and must not be
  /// uninitialised. T: any element type CIMValue has a constructor for.
  template <typename T>
  static CIMValue MakeArrayValue(Array<T>&& elements, internal::Pool* pool = nullptr);

  /// The content of a string, reference, object or instance scalar or of an array in place, without a clone; nullptr
  /// when the value is NULL. Only for a value whose type and array-ness are those of T.
  template <typename T>
  static const T* Peek(const CIMValue& value);

  // ---- paths ------------------------------------------------------------------------------------------------------

  /// `value` is kept as it is; for a REFERENCE it has to be the normalised text of a path.
  static CIMKeyBinding MakeKeyBindingUnchecked(CIMName&& name, String&& value, CIMKeyBinding::Type type);
  /// The host must be legal (see ValidHost) and reference keys normalised; the keys are sorted here.
  static CIMObjectPath MakePathUnchecked(String&& host, CIMNamespaceName&& nameSpace, CIMName&& className,
                                         Array<CIMKeyBinding>&& keyBindings);
  /// True for a host name, IPv4 or bracketed IPv6 address with an optional port. The empty text is not a host.
  static Boolean ValidHost(const String& host);

  // ---- objects ----------------------------------------------------------------------------------------------------

  /// Name, array size, reference class and type must fit together.
  static CIMProperty MakePropertyUnchecked(const CIMName& name, CIMValue&& value, Uint32 arraySize,
                                           const CIMName& referenceClassName, const CIMName& classOrigin,
                                           Boolean propagated, internal::Pool* pool = nullptr);
  /// An instance whose path is just the class; the name must not be null.
  static CIMInstance MakeInstanceUnchecked(CIMName&& className, internal::Pool* pool = nullptr);
  static CIMParamValue MakeParamValueUnchecked(String&& name, CIMValue&& value, Boolean isTyped);

  // ---- handles and bodies, for this folder ------------------------------------------------------------------------

  static CIMProperty Clone(const PropertyBody& body);

  template <typename Handle>
  static auto& BodyPointer(Handle& handle) {
    return handle.body_;
  }
  static CIMValue::Content& Content(CIMValue& value) { return value.content_; }
  static const CIMValue::Content& Content(const CIMValue& value) { return value.content_; }
  /// Makes the content a scalar and returns where its value goes.
  static void* NewScalar(CIMValue& value) { return value.content_.emplace<CIMValue::Scalar>().bytes; }
  static void SetKind(CIMValue& value, CIMType type, Boolean isArray) {
    value.type_ = type;
    value.isArray_ = isArray;
    value.nullArraySize_ = 0;
  }
};

}  // namespace Pegasus::objects
