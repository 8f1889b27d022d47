// What texts, lists and the bodies behind handles have in common: they are shared by counting, and their memory is
// their own or part of a piece that many of them lie in. Not for use outside the CIM client.
//
// The ownership model, all of it:
// - Whatever is shared begins with a SharedHead. The one who drops the last reference destroys it. Counting is atomic,
//   so copies may be made and destroyed in different threads; the content has no protection of its own.
// - An object made by a user has an allocation of its own. The objects of one answer are many, are made in one go and
//   mostly die together, so the reader takes their memory from a Pool: pieces of some kilobytes, each cut up from front
//   to back. A piece counts the objects in it that live and is freed with the last of them; the Pool may be gone by
//   then. What is kept of an answer thus keeps its piece, that is a few neighbours' worth of memory, never the answer.
// - A SharedHead knows the distance to the beginning of its piece, 0 standing for an allocation of its own. That is all
//   that tells pooled objects from others: both are copied, changed, cloned and dropped alike.
#pragma once

#include <Pegasus/Common/Linkage.h>

#include <atomic>
#include <utility>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace Pegasus::internal {

/// Adds to a count, modulo its range, and returns what it was. In a process that never had a second thread it does
/// without an atomic operation, which is most of what a copy costs.
inline Uint32 FetchAdd(std::atomic<Uint32>& count, Uint32 step, std::memory_order order) noexcept {
#if __has_include(<sys/single_threaded.h>)
  if (__libc_single_threaded != 0) {
    const Uint32 before = count.load(std::memory_order_relaxed);
    count.store(before + step, std::memory_order_relaxed);
    return before;
  }
#endif
  return count.fetch_add(step, order);
}

/// Gives back the memory of an object that lay `pieceOffset` bytes behind the beginning of its piece.
PEGASUS_COMMON_LINKAGE void FreeShared(void* memory, Uint32 pieceOffset) noexcept;

/// The count and the origin of a shared object. A copy of the object is another one, shared by nobody.
struct SharedHead {
  SharedHead() noexcept = default;
  SharedHead(const SharedHead& /*other*/) noexcept {}
  SharedHead& operator=(const SharedHead& /*other*/) noexcept { return *this; }
  ~SharedHead() = default;

  void Retain() noexcept { FetchAdd(references, 1, std::memory_order_relaxed); }
  /// Tells the only owner that there is no other one; nobody else can become one then.
  bool IsSole() const noexcept { return references.load(std::memory_order_acquire) == 1; }
  /// Gives one reference up; true when it was the last one, so that the caller has to destroy the object.
  bool Drop() noexcept { return IsSole() || FetchAdd(references, Uint32(-1), std::memory_order_acq_rel) == 1; }

  std::atomic<Uint32> references{1};
  Uint32 pieceOffset = 0;
};

/// Base of the bodies behind handles and values.
class PEGASUS_COMMON_LINKAGE SharedBody {
 public:
  SharedBody() noexcept = default;
  SharedBody(const SharedBody&) noexcept = default;
  SharedBody& operator=(const SharedBody&) noexcept = default;
  virtual ~SharedBody();

  SharedHead head;
};

/// A reference to a Body, a class derived from SharedBody which is complete where the body is used.
template <typename Body>
class SharedPointer {
 public:
  SharedPointer() noexcept = default;
  /// Takes the first reference over.
  explicit SharedPointer(SharedBody* body) noexcept : body_(body) {}
  SharedPointer(const SharedPointer& other) noexcept : body_(other.body_) {
    if (body_ != nullptr) body_->head.Retain();
  }
  SharedPointer(SharedPointer&& other) noexcept : body_(std::exchange(other.body_, nullptr)) {}
  SharedPointer& operator=(const SharedPointer& other) noexcept {
    SharedPointer copy(other);
    std::swap(body_, copy.body_);
    return *this;
  }
  SharedPointer& operator=(SharedPointer&& other) noexcept {
    SharedPointer taken(std::move(other));
    std::swap(body_, taken.body_);
    return *this;
  }
  ~SharedPointer() { Release(FreeShared); }

  /// Gives the reference up. If it was the last one the body is destroyed and its memory goes to `free`, which is
  /// called as FreeShared is.
  template <typename Free>
  void Release(Free free) noexcept {
    SharedBody* const body = std::exchange(body_, nullptr);
    if (body == nullptr || !body->head.Drop()) return;
    const Uint32 pieceOffset = body->head.pieceOffset;
    body->~SharedBody();
    free(body, pieceOffset);
  }

  explicit operator bool() const noexcept { return body_ != nullptr; }
  Body* get() const noexcept { return static_cast<Body*>(body_); }
  Body& operator*() const noexcept { return *get(); }
  Body* operator->() const noexcept { return get(); }
  bool IsSole() const noexcept { return body_->head.IsSole(); }

 private:
  SharedBody* body_ = nullptr;
};

}  // namespace Pegasus::internal
