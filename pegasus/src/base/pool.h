// Memory for the objects of one answer, which are made in one go; Shared.h tells who owns what.
#pragma once

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/Shared.h>
#include <Pegasus/Common/String.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Pegasus::internal {

/// Cuts pieces of memory up. Belongs to one thread; what it gave away may be freed by any other.
class Pool {
 public:
  /// @param textBytes size of the text that the objects are made of: what is made of little takes little
  explicit Pool(std::size_t textBytes) noexcept;
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  ~Pool() { Retire(); }

  /// Memory for a shared object of `size` bytes, aligned to 8.
  /// @param pieceOffset what has to stand in its head
  void* Allocate(std::size_t size, Uint32& pieceOffset) {
    size = (size + kAlignment - 1) & ~(kAlignment - 1);
    if (size > room_) return AllocateElsewhere(size, pieceOffset);
    pieceOffset = pieceBytes_ - room_;
    room_ -= static_cast<Uint32>(size);
    ++given_;
    return reinterpret_cast<char*>(piece_) + pieceOffset;
  }

 private:
  friend class PoolSweep;
  friend void FreeShared(void* memory, Uint32 pieceOffset) noexcept;

  /// Head of a piece; the objects follow it.
  struct Piece {
    std::atomic<Uint32> living;
  };

  static constexpr std::size_t kAlignment = 8;

  void* AllocateElsewhere(std::size_t size, Uint32& pieceOffset);
  /// Takes `objects` off the count of the piece, and frees it when none are left.
  static void Leave(void* piece, Uint32 objects) noexcept;
  /// Leaves the present piece to the objects in it.
  void Retire() noexcept;

  Uint32 pieceBytes_;
  Uint32 room_ = 0;
  Piece* piece_ = nullptr;
  Uint32 given_ = 0;  // objects in the present piece, also those that are gone by now
};

/// Frees as FreeShared does, but takes leave of a piece once for many objects that lie in it.
class PoolSweep {
 public:
  PoolSweep() = default;
  PoolSweep(const PoolSweep&) = delete;
  PoolSweep& operator=(const PoolSweep&) = delete;
  ~PoolSweep() { Leave(); }

  void Free(void* memory, Uint32 pieceOffset) noexcept {
    if (pieceOffset == 0) return FreeShared(memory, 0);
    void* const piece = static_cast<char*>(memory) - pieceOffset;
    if (piece != piece_) {
      Leave();
      piece_ = piece;
    }
    ++count_;
  }

 private:
  void Leave() noexcept {
    if (count_ != 0) Pool::Leave(piece_, count_);
    count_ = 0;
  }

  void* piece_ = nullptr;
  Uint32 count_ = 0;
};

/// A body whose first reference is the caller's, in the pool or, without one, in memory of its own.
template <typename Body, typename... Arguments>
Body* NewBody(Pool* pool, Arguments&&... arguments) {
  static_assert(std::is_nothrow_constructible_v<Body, Arguments...>);
  Uint32 pieceOffset = 0;
  void* const memory = pool != nullptr ? pool->Allocate(sizeof(Body), pieceOffset) : ::operator new(sizeof(Body));
  Body* const body = new (memory) Body(std::forward<Arguments>(arguments)...);
  body->head.pieceOffset = pieceOffset;
  return body;
}

template <typename Body, typename... Arguments>
SharedPointer<Body> MakeBody(Pool* pool, Arguments&&... arguments) {
  return SharedPointer<Body>(NewBody<Body>(pool, std::forward<Arguments>(arguments)...));
}

/// The ways in which the value types use a pool.
struct PoolAccess {
  /// The UTF-8 text as a String; throws Exception for invalid bytes.
  static String MakeString(Pool& pool, std::string_view text);

  /// An empty array with room for `capacity` elements. If it grows beyond them it moves to memory of its own.
  template <typename T>
  static Array<T> MakeArray(Pool& pool, Uint32 capacity) {
    Array<T> array;
    if (capacity == 0) return array;
    Uint32 pieceOffset = 0;
    void* const memory = pool.Allocate(Array<T>::Bytes(capacity), pieceOffset);
    array.rep_ = Array<T>::NewRep(memory, capacity);
    array.rep_->head.pieceOffset = pieceOffset;
    return array;
  }
};

}  // namespace Pegasus::internal
