// The replaced operators stand in a unit of their own, so that none is inlined: compilers take std::free for the wrong
// counterpart of a new expression.
#include "testing/refused_memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace Orvane::testing {
namespace {

thread_local bool armed = false;
thread_local std::size_t refusedSize = 0;
thread_local int bigOnesToSpare = 0;

thread_local std::size_t allocations = 0;
thread_local std::ptrdiff_t heldBytes = 0;
thread_local std::ptrdiff_t peakBytes = 0;

bool Refuses(std::size_t size) {
  if (!armed || size < refusedSize || bigOnesToSpare-- > 0) return false;
  armed = false;
  return true;
}

}  // namespace

void RefuseMemory(std::size_t size, int spared) {
  refusedSize = size;
  bigOnesToSpare = spared;
  armed = true;
}

bool StopRefusingMemory() {
  const bool refused = !armed;
  armed = false;
  return refused;
}

void* Take(std::size_t size) {
  void* const memory = Refuses(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) return nullptr;
  ++allocations;
  heldBytes += static_cast<std::ptrdiff_t>(::malloc_usable_size(memory));
  peakBytes = std::max(peakBytes, heldBytes);
  return memory;
}

void GiveBack(void* memory) {
  if (memory == nullptr) return;
  heldBytes -= static_cast<std::ptrdiff_t>(::malloc_usable_size(memory));
  std::free(memory);
}

void RestartMemoryCount() {
  allocations = 0;
  heldBytes = 0;
  peakBytes = 0;
}

std::size_t Allocations() { return allocations; }

std::size_t PeakBytes() { return static_cast<std::size_t>(peakBytes); }

std::ptrdiff_t HeldBytes() { return heldBytes; }

}  // namespace Orvane::testing

void* operator new(std::size_t size) {
  void* const memory = Orvane::testing::Take(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Orvane::testing::Take(size); }
void operator delete(void* memory) noexcept { Orvane::testing::GiveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Orvane::testing::GiveBack(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { Orvane::testing::GiveBack(memory); }
