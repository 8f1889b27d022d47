// Memory as a test sees and limits it: what the calling thread takes with operator new is counted, and one of its
// allocations can be refused. A program that calls this gets operator new and delete replaced.
#pragma once

#include <cstddef>

namespace Orvane::testing {

/// Of the calling thread's allocations by operator new, of at least `size` bytes each, `spared` (not negative) succeed
/// and the next fails; what comes after it succeeds again. Smaller ones and other threads are left alone.
void RefuseMemory(std::size_t size, int spared);

/// Ends what the calling thread's RefuseMemory began. True when an allocation has been refused since.
bool StopRefusingMemory();

/// As std::malloc, but counted and refused as allocations by operator new are: for libraries that can be told what to
/// allocate with. Memory from it goes back through GiveBack.
void* Take(std::size_t size);
void GiveBack(void* memory);

/// Begins to count anew for the calling thread.
void RestartMemoryCount();
/// Allocations of the calling thread since it began to count.
std::size_t Allocations();
/// The most bytes by which what the calling thread holds has exceeded what it held when it began to count. Memory that
/// another thread frees stays counted.
std::size_t PeakBytes();
/// By how many bytes what the calling thread holds exceeds what it held when it began to count; not negative unless it
/// has freed more than it took.
std::ptrdiff_t HeldBytes();

}  // namespace Orvane::testing
