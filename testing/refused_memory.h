// Memory that runs out: one allocation of the calling thread is refused. A program that calls this gets operator new
// and delete replaced.
#pragma once

#include <cstddef>

namespace Orvane::testing {

/// Of the calling thread's allocations by operator new, of at least `size` bytes each, `spared` (not negative) succeed
/// and the next fails; what comes after it succeeds again. Smaller ones and other threads are left alone.
void RefuseMemory(std::size_t size, int spared);

/// Ends what the calling thread's RefuseMemory began. True when an allocation has been refused since.
bool StopRefusingMemory();

}  // namespace Orvane::testing
