// The replaced operators stand in a unit of their own, so that none is inlined: compilers take std::free for the wrong
// counterpart of a new expression.
#include "testing/refused_memory.h"

#include <cstdlib>
#include <new>

namespace Orvane::testing {
namespace {

thread_local bool armed = false;
thread_local std::size_t refusedSize = 0;
thread_local int bigOnesToSpare = 0;

bool Refuses(std::size_t size) {
  if (!armed || size < refusedSize || bigOnesToSpare-- > 0) return false;
  armed = false;
  return true;
}

void* Allocate(std::size_t size) { return Refuses(size) ? nullptr : std::malloc(size == 0 ? 1 : size); }

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

}  // namespace Orvane::testing

void* operator new(std::size_t size) {
  void* const memory = Orvane::testing::Allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Orvane::testing::Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
