// Pieces of memory, and where shared objects go when they die.
#include "base/pool.h"

#include <algorithm>

namespace Pegasus::internal {
namespace {

/// Large enough to make allocations rare, small enough not to keep much for a single survivor.
constexpr std::size_t kMaxPiece = std::size_t{32} * 1024;
constexpr std::size_t kMinPiece = 512;
/// What takes more than this part of a piece gets memory of its own: the rest of the present piece is lost otherwise.
constexpr std::size_t kLargePart = 8;
/// The count of the present piece is set too high by this and put right when the piece is left, so that cutting it up
/// takes no atomic operation.
constexpr Uint32 kInUse = Uint32{1} << 31U;

}  // namespace

SharedBody::~SharedBody() = default;

// A piece is about half a text at most, so that the last one cannot waste more than that.
Pool::Pool(std::size_t textBytes) noexcept
    : pieceBytes_(static_cast<Uint32>(std::clamp(textBytes / 2 / kAlignment * kAlignment, kMinPiece, kMaxPiece))) {}

void* Pool::AllocateElsewhere(std::size_t size, Uint32& pieceOffset) {
  if (size > pieceBytes_ / kLargePart) {
    pieceOffset = 0;
    return ::operator new(size);
  }
  void* const memory = ::operator new(pieceBytes_);
  Retire();
  piece_ = new (memory) Piece{kInUse};
  room_ = pieceBytes_ - static_cast<Uint32>(kAlignment);
  static_assert(sizeof(Piece) <= kAlignment);
  return Allocate(size, pieceOffset);
}

void Pool::Leave(void* piece, Uint32 objects) noexcept {
  std::atomic<Uint32>& living = static_cast<Piece*>(piece)->living;
  if (FetchAdd(living, Uint32{0} - objects, std::memory_order_acq_rel) == objects) ::operator delete(piece);
}

void Pool::Retire() noexcept {
  if (piece_ == nullptr) return;
  Leave(piece_, kInUse - given_);
  given_ = 0;
}

void FreeShared(void* memory, Uint32 pieceOffset) noexcept {
  if (pieceOffset == 0) {
    ::operator delete(memory);
    return;
  }
  void* const begin = static_cast<char*>(memory) - pieceOffset;
  Pool::Leave(begin, 1);
}

}  // namespace Pegasus::internal
