// The value of a CIM property, parameter or qualifier: one of the CIM types, scalar or array, possibly NULL.
// Values are independent of each other; embedded objects and instances are cloned on the way in and out.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/Char16.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

#include <variant>

namespace Pegasus {

class CIMObject;
class CIMInstance;

namespace objects {
struct Access;
}

/// A typed CIM value. Threads: copies are independent and may be used on several threads at a time; one object may be
/// read by several.
class PEGASUS_COMMON_LINKAGE CIMValue {
 public:
  /// A NULL boolean scalar.
  CIMValue() = default;
  /// The NULL value of `type`; `arraySize` is kept for arrays and ignored for scalars.
  CIMValue(CIMType type, Boolean isArray, Uint32 arraySize = 0);
  /// @{ A scalar, of the CIM type that belongs to the C++ type.
  CIMValue(Boolean x);
  CIMValue(Uint8 x);
  CIMValue(Sint8 x);
  CIMValue(Uint16 x);
  CIMValue(Sint16 x);
  CIMValue(Uint32 x);
  CIMValue(Sint32 x);
  CIMValue(Uint64 x);
  CIMValue(Sint64 x);
  CIMValue(Real32 x);
  CIMValue(Real64 x);
  CIMValue(const Char16& x);
  CIMValue(const String& x);
  CIMValue(const CIMDateTime& x);
  CIMValue(const CIMObjectPath& x);
  /// @}
  /// Keeps a clone; UninitializedObjectException for an uninitialised object.
  CIMValue(const CIMObject& x);
  /// Keeps a clone; UninitializedObjectException for an uninitialised instance.
  CIMValue(const CIMInstance& x);
  /// @{ An array, which may be empty. Keeps clones of objects and instances; UninitializedObjectException when one of
  /// them is uninitialised.
  CIMValue(const Array<Boolean>& x);
  CIMValue(const Array<Uint8>& x);
  CIMValue(const Array<Sint8>& x);
  CIMValue(const Array<Uint16>& x);
  CIMValue(const Array<Sint16>& x);
  CIMValue(const Array<Uint32>& x);
  CIMValue(const Array<Sint32>& x);
  CIMValue(const Array<Uint64>& x);
  CIMValue(const Array<Sint64>& x);
  CIMValue(const Array<Real32>& x);
  CIMValue(const Array<Real64>& x);
  CIMValue(const Array<Char16>& x);
  CIMValue(const Array<String>& x);
  CIMValue(const Array<CIMDateTime>& x);
  CIMValue(const Array<CIMObjectPath>& x);
  CIMValue(const Array<CIMObject>& x);
  CIMValue(const Array<CIMInstance>& x);
  /// @}

  /// The same as assignment.
  void assign(const CIMValue& x);
  /// Back to a NULL boolean scalar.
  void clear();

  /// True when type and array-ness are the same.
  Boolean typeCompatible(const CIMValue& x) const;
  /// True for arrays, NULL ones included.
  Boolean isArray() const;
  /// True when there is a type but no value; an empty array or text is a value.
  Boolean isNull() const;
  /// Number of elements; for a NULL array the size it was declared with; 0 for scalars.
  Uint32 getArraySize() const;
  /// The type of the value, of its elements when it is an array.
  CIMType getType() const;
  /// Becomes the NULL value of `type`, like the constructor of the same arguments.
  void setNullValue(CIMType type, Boolean isArray, Uint32 arraySize = 0);

  /// @{ Takes type, array-ness and value of `x`, whatever they were before, as construction from `x` does. On an
  /// exception the value stays as it was.
  void set(Boolean x);
  void set(Uint8 x);
  void set(Sint8 x);
  void set(Uint16 x);
  void set(Sint16 x);
  void set(Uint32 x);
  void set(Sint32 x);
  void set(Uint64 x);
  void set(Sint64 x);
  void set(Real32 x);
  void set(Real64 x);
  void set(const Char16& x);
  void set(const String& x);
  void set(const CIMDateTime& x);
  void set(const CIMObjectPath& x);
  void set(const CIMObject& x);
  void set(const CIMInstance& x);
  void set(const Array<Boolean>& x);
  void set(const Array<Uint8>& x);
  void set(const Array<Sint8>& x);
  void set(const Array<Uint16>& x);
  void set(const Array<Sint16>& x);
  void set(const Array<Uint32>& x);
  void set(const Array<Sint32>& x);
  void set(const Array<Uint64>& x);
  void set(const Array<Sint64>& x);
  void set(const Array<Real32>& x);
  void set(const Array<Real64>& x);
  void set(const Array<Char16>& x);
  void set(const Array<String>& x);
  void set(const Array<CIMDateTime>& x);
  void set(const Array<CIMObjectPath>& x);
  void set(const Array<CIMObject>& x);
  void set(const Array<CIMInstance>& x);
  /// @}

  /// @{ Copies the value into `x`, without any conversion; objects and instances are cloned. TypeMismatchException when
  /// type or array-ness differ; a NULL value of the right type leaves `x` as it was.
  void get(Boolean& x) const;
  void get(Uint8& x) const;
  void get(Sint8& x) const;
  void get(Uint16& x) const;
  void get(Sint16& x) const;
  void get(Uint32& x) const;
  void get(Sint32& x) const;
  void get(Uint64& x) const;
  void get(Sint64& x) const;
  void get(Real32& x) const;
  void get(Real64& x) const;
  void get(Char16& x) const;
  void get(String& x) const;
  void get(CIMDateTime& x) const;
  void get(CIMObjectPath& x) const;
  void get(CIMObject& x) const;
  void get(CIMInstance& x) const;
  void get(Array<Boolean>& x) const;
  void get(Array<Uint8>& x) const;
  void get(Array<Sint8>& x) const;
  void get(Array<Uint16>& x) const;
  void get(Array<Sint16>& x) const;
  void get(Array<Uint32>& x) const;
  void get(Array<Sint32>& x) const;
  void get(Array<Uint64>& x) const;
  void get(Array<Sint64>& x) const;
  void get(Array<Real32>& x) const;
  void get(Array<Real64>& x) const;
  void get(Array<Char16>& x) const;
  void get(Array<String>& x) const;
  void get(Array<CIMDateTime>& x) const;
  void get(Array<CIMObjectPath>& x) const;
  void get(Array<CIMObject>& x) const;
  void get(Array<CIMInstance>& x) const;
  /// @}

  /// Same type, array-ness and null-ness, and equal values.
  Boolean equal(const CIMValue& x) const;
  /// The text of the value; empty for NULL; every array element is followed by one blank.
  String toString() const;

 private:
  friend struct objects::Access;

  // Paths, objects, instances and arrays of anything are held behind a pointer to content that never changes, so
  // copies of a value may share it.
  using Shared = internal::SharedPointer<internal::SharedBody>;
  /// A truth value, number or character; type_ tells which. Few alternatives make a variant that is cheap to move.
  struct Scalar {
    alignas(8) unsigned char bytes[8];
  };
  using Content = std::variant<std::monostate, Scalar, String, CIMDateTime, Shared>;

  Content content_;
  Uint32 nullArraySize_ = 0;
  CIMType type_ = CIMTYPE_BOOLEAN;
  Boolean isArray_ = false;
};

/// The same as equal().
PEGASUS_COMMON_LINKAGE Boolean operator==(const CIMValue& x, const CIMValue& y);
/// The opposite of ==.
PEGASUS_COMMON_LINKAGE Boolean operator!=(const CIMValue& x, const CIMValue& y);

}  // namespace Pegasus

// Completes the types the constructors above take, so that a user of values needs no further include.
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
