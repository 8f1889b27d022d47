// The seed of the hashes of this process.
#include "base/seeded_hash.h"

#include <sys/random.h>

#include <chrono>

namespace Pegasus::internal {

SeededHash::Seed SeededHash::MakeSeed() {
  Seed seed{};
  if (::getrandom(&seed, sizeof seed, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof seed)) {
    // Early after the start of the system there may be none; the time is hard enough to guess.
    seed.start = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    seed.factor = reinterpret_cast<std::uintptr_t>(&seed) * seed.start;
  }
  // Odd, so that no state is lost.
  seed.factor |= 1U;
  return seed;
}

}  // namespace Pegasus::internal
