// A hash that differs from process to process, so that no server can choose names that all have the same one and make
// every search for a name a search through all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Pegasus::internal {

class SeededHash {
 public:
  /// @param count how many words or characters will be mixed in
  explicit SeededHash(std::uint64_t count) : seed_(OfProcess()), state_(seed_.start ^ count) {}

  void Mix(std::uint64_t word) {
    const Product product = static_cast<Product>(state_ ^ word) * seed_.factor;
    state_ = static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
  }
  std::uint64_t Result() const { return state_; }

 private:
  __extension__ using Product = unsigned __int128;

  struct Seed {
    std::uint64_t start;
    std::uint64_t factor;
  };
  static Seed MakeSeed();
  static const Seed& OfProcess() {
    static const Seed seed = MakeSeed();
    return seed;
  }

  const Seed& seed_;
  std::uint64_t state_;
};

/// The hash of a text.
inline std::uint64_t HashText(std::string_view text) {
  SeededHash hash(text.size());
  std::uint64_t word = 0;
  for (; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
    std::memcpy(&word, text.data(), sizeof word);
    hash.Mix(word);
  }
  word = 0;
  std::memcpy(&word, text.data(), text.size());
  hash.Mix(word);
  return hash.Result();
}

}  // namespace Pegasus::internal
