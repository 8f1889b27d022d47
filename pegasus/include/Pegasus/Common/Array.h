// The list type of the CIM client: value semantics by copy-on-write, bounds-checked access. It exists for the element
// types listed below; with any other it does not link.
#pragma once

#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/Shared.h>

#include <memory>
#include <new>
#include <utility>

namespace Pegasus {

class CIMClass;
class CIMDateTime;
class CIMInstance;
class CIMKeyBinding;
class CIMMethod;
class CIMName;
class CIMNamespaceName;
class CIMObject;
class CIMObjectPath;
class CIMParamValue;
class CIMParameter;
class CIMProperty;
class CIMQualifier;
class CIMQualifierDecl;
class CIMValue;

namespace internal {

/// Defined for the element types only: an Array of another type lacks it when it is linked.
template <typename T>
struct ArrayElement {
  static void Require() noexcept;
};

#define PEGASUS_ARRAY_ELEMENT(T)      \
  template <>                         \
  struct ArrayElement<T> {            \
    static void Require() noexcept {} \
  }
PEGASUS_ARRAY_ELEMENT(Boolean);
PEGASUS_ARRAY_ELEMENT(Uint8);
PEGASUS_ARRAY_ELEMENT(Sint8);
PEGASUS_ARRAY_ELEMENT(Uint16);
PEGASUS_ARRAY_ELEMENT(Sint16);
PEGASUS_ARRAY_ELEMENT(Uint32);
PEGASUS_ARRAY_ELEMENT(Sint32);
PEGASUS_ARRAY_ELEMENT(Uint64);
PEGASUS_ARRAY_ELEMENT(Sint64);
PEGASUS_ARRAY_ELEMENT(Real32);
PEGASUS_ARRAY_ELEMENT(Real64);
PEGASUS_ARRAY_ELEMENT(Char16);
PEGASUS_ARRAY_ELEMENT(String);
PEGASUS_ARRAY_ELEMENT(CIMClass);
PEGASUS_ARRAY_ELEMENT(CIMDateTime);
PEGASUS_ARRAY_ELEMENT(CIMInstance);
PEGASUS_ARRAY_ELEMENT(CIMKeyBinding);
PEGASUS_ARRAY_ELEMENT(CIMMethod);
PEGASUS_ARRAY_ELEMENT(CIMName);
PEGASUS_ARRAY_ELEMENT(CIMNamespaceName);
PEGASUS_ARRAY_ELEMENT(CIMObject);
PEGASUS_ARRAY_ELEMENT(CIMObjectPath);
PEGASUS_ARRAY_ELEMENT(CIMParamValue);
PEGASUS_ARRAY_ELEMENT(CIMParameter);
PEGASUS_ARRAY_ELEMENT(CIMProperty);
PEGASUS_ARRAY_ELEMENT(CIMQualifier);
PEGASUS_ARRAY_ELEMENT(CIMQualifierDecl);
PEGASUS_ARRAY_ELEMENT(CIMValue);
#undef PEGASUS_ARRAY_ELEMENT

struct PoolAccess;

/// Head of an array's buffer; the elements follow it in the same allocation.
struct alignas(8) ArrayRep {
  SharedHead head;
  Uint32 size = 0;
  Uint32 capacity = 0;
};

}  // namespace internal

/// A list of `T`. Threads: copies are independent and may be used on several threads at a time (handles in them are
/// copies of handles, though); one object may be read by several. A reference to an element is valid until the array is
/// changed or copied.
template <typename T>
class PEGASUS_COMMON_LINKAGE Array {
 public:
  /// An empty list.
  Array() noexcept { internal::ArrayElement<T>::Require(); }
  Array(const Array& other) noexcept : rep_(other.rep_) {
    if (rep_ != nullptr) {
      rep_->head.Retain();
    }
  }
  Array(Array&& other) noexcept : rep_(other.rep_) { other.rep_ = nullptr; }
  /// `size` value-initialised elements.
  Array(Uint32 size) : Array() {  // NOLINT(google-explicit-constructor)
    MakeWritable(size);
    while (rep_ != nullptr && rep_->size < size) {
      new (Data() + rep_->size) T();
      ++rep_->size;
    }
  }
  /// `size` copies of `x`.
  Array(Uint32 size, const T& x) : Array() { grow(size, x); }
  /// Copies of `size` elements from `items` on.
  Array(const T* items, Uint32 size) : Array() { append(items, size); }
  ~Array() { Release(rep_); }

  Array& operator=(const Array& other) noexcept {
    Array copy(other);
    swap(copy);
    return *this;
  }
  Array& operator=(Array&& other) noexcept {
    Array taken(std::move(other));
    swap(taken);
    return *this;
  }

  /// Removes all elements, and the room for them.
  void clear() noexcept {
    Release(rep_);
    rep_ = nullptr;
  }
  /// Makes room for `capacity` elements; the content stays.
  void reserveCapacity(Uint32 capacity) {
    if (capacity > getCapacity()) {
      MakeWritable(capacity);
    }
  }
  /// Appends `n` copies of `x`.
  void grow(Uint32 n, const T& x) {
    const T copy(x);  // NOLINT(performance-unnecessary-copy-initialization): x may be one of the elements that move
    MakeWritable(Sum(size(), n));
    for (Uint32 i = 0; i < n; ++i) {
      new (Data() + rep_->size) T(copy);
      ++rep_->size;
    }
  }
  /// Exchanges the contents without copying them.
  void swap(Array& other) noexcept { std::swap(rep_, other.rep_); }

  /// Number of elements.
  Uint32 size() const noexcept { return rep_ != nullptr ? rep_->size : 0; }
  /// Number of elements that there is room for.
  Uint32 getCapacity() const noexcept { return rep_ != nullptr ? rep_->capacity : 0; }
  /// The elements in a row; never null.
  const T* getData() const noexcept {
    alignas(T) static const unsigned char kNothing[sizeof(T)] = {};
    return rep_ != nullptr ? Data() : reinterpret_cast<const T*>(kNothing);
  }

  /// Throws IndexOutOfBoundsException.
  T& operator[](Uint32 index) {
    CheckIndex(index);
    MakeWritable(rep_->size);
    return Data()[index];
  }
  /// Throws IndexOutOfBoundsException when `index` is not below size().
  const T& operator[](Uint32 index) const {
    CheckIndex(index);
    return Data()[index];
  }

  /// Appends one element, which may be one of this list.
  void append(const T& x) {
    if (IsWritable(size() + 1)) {
      new (Data() + rep_->size) T(x);
    } else {
      T copy(x);  // x may be one of this array's own elements
      MakeWritable(Sum(size(), 1));
      new (Data() + rep_->size) T(std::move(copy));
    }
    ++rep_->size;
  }
  /// Appends `n` elements from `items` on, which may be those of this list.
  void append(const T* items, Uint32 n) { Insert(size(), items, n); }
  /// Appends all elements of `other`, which may be this list.
  void appendArray(const Array& other) {
    const Array items(other);  // NOLINT(performance-unnecessary-copy-initialization): other may be this array
    Insert(size(), items.getData(), items.size());
  }
  /// Inserts before the first element.
  void prepend(const T& x) { Insert(0, &x, 1); }
  /// Inserts `n` elements before the first one.
  void prepend(const T* items, Uint32 n) { Insert(0, items, n); }
  /// Inserts before `index`. Throws IndexOutOfBoundsException when `index` is beyond the end.
  void insert(Uint32 index, const T& x) { Insert(index, &x, 1); }
  /// Inserts `n` elements before `index`, in their order. Throws IndexOutOfBoundsException as above.
  void insert(Uint32 index, const T* items, Uint32 n) { Insert(index, items, n); }

  /// Throws IndexOutOfBoundsException.
  void remove(Uint32 index) { remove(index, 1); }
  /// Removes `n` elements from `index` on. At the last element it removes that one, however large `n` is; otherwise it
  /// throws IndexOutOfBoundsException when there are fewer than `n`.
  void remove(Uint32 index, Uint32 n) {
    if (n == 0) {
      return;
    }
    CheckIndex(index);
    const Uint32 behind = rep_->size - index;
    if (behind == 1) {
      n = 1;
    } else if (n > behind) {
      throw IndexOutOfBoundsException();
    }
    MakeWritable(rep_->size);
    T* const elements = Data();
    std::move(elements + index + n, elements + rep_->size, elements + index);
    for (; n > 0; --n) {
      --rep_->size;
      elements[rep_->size].~T();
    }
  }

 private:
  friend struct internal::PoolAccess;

  using Rep = internal::ArrayRep;
  static_assert(sizeof(Rep) == 16, "elements must follow the head aligned");

  T* Data() const noexcept { return Data(rep_); }
  static T* Data(Rep* rep) noexcept { return reinterpret_cast<T*>(rep + 1); }

  static std::size_t Bytes(Uint32 capacity) noexcept { return sizeof(Rep) + std::size_t{capacity} * sizeof(T); }
  static Rep* NewRep(Uint32 capacity) { return NewRep(::operator new(Bytes(capacity)), capacity); }
  static Rep* NewRep(void* memory, Uint32 capacity) noexcept {
    static_assert(alignof(T) <= alignof(Rep), "element alignment");
    Rep* const rep = new (memory) Rep;
    rep->capacity = capacity;
    return rep;
  }

  static void Release(Rep* rep) noexcept {
    if (rep != nullptr && rep->head.Drop()) {
      std::destroy_n(Data(rep), rep->size);
      const Uint32 pieceOffset = rep->head.pieceOffset;
      rep->~Rep();
      internal::FreeShared(rep, pieceOffset);
    }
  }

  static Uint32 Sum(Uint32 a, Uint32 b) {
    if (a > PEG_NOT_FOUND - b) {
      throw std::bad_alloc();
    }
    return a + b;
  }

  void CheckIndex(Uint32 index) const {
    if (index >= size()) {
      throw IndexOutOfBoundsException();
    }
  }

  bool IsWritable(Uint32 capacity) const noexcept {
    return rep_ != nullptr && rep_->capacity >= capacity && rep_->head.IsSole();
  }

  /// Makes this array the only owner of a buffer for at least `capacity` elements, growing by half or more.
  void MakeWritable(Uint32 capacity) {
    if (capacity == 0 || IsWritable(capacity)) {
      return;
    }
    const Uint32 held = getCapacity();
    if (capacity > held && held <= PEG_NOT_FOUND / 2) {
      capacity = capacity > held + held / 2 ? capacity : held + held / 2;
    }
    Array fresh;
    fresh.rep_ = NewRep(capacity);
    const bool own = rep_ != nullptr && rep_->head.IsSole();
    const Uint32 count = size();
    for (Uint32 i = 0; i < count; ++i) {
      if (own) {
        new (fresh.Data() + i) T(std::move(Data()[i]));
      } else {
        new (fresh.Data() + i) T(static_cast<const T&>(Data()[i]));
      }
      ++fresh.rep_->size;
    }
    swap(fresh);
  }

  void Insert(Uint32 index, const T* items, Uint32 n) {
    if (index > size()) {
      throw IndexOutOfBoundsException();
    }
    const Uint32 total = Sum(size(), n);
    if (n == 0) {
      return;
    }
    Array fresh;  // built aside: the items may be this array's own
    fresh.rep_ = NewRep(index == size() && getCapacity() > total ? getCapacity() : total);
    fresh.CopyIn(getData(), index);
    fresh.CopyIn(items, n);
    fresh.CopyIn(getData() + index, size() - index);
    swap(fresh);
  }

  void CopyIn(const T* items, Uint32 n) {
    for (Uint32 i = 0; i < n; ++i) {
      new (Data() + rep_->size) T(items[i]);
      ++rep_->size;
    }
  }

  Rep* rep_ = nullptr;  // null: empty, without room
};

}  // namespace Pegasus
