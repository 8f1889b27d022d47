// The ordered list of named handles (properties, qualifiers, methods, parameters) inside an object. Finds by name
// ignoring ASCII case, through precomputed hashes and, for long lists, a hash table.
#pragma once

#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/Config.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "objects/internal.h"

namespace Pegasus::objects {

/// Hash of a name that is the same for all spellings in ASCII case. Takes four units at a time; setting the bit in
/// which upper and lower case differ also merges some other characters, which costs a comparison at worst.
inline Uint32 HashName(const String& name) {
  constexpr std::uint64_t kCaseBits = 0x0020002000200020U;
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
  constexpr Uint32 kStep = 4;
  const Char16* const units = name.getChar16Data();
  const Uint32 count = name.size();
  std::uint64_t hash = count;
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ (word | kCaseBits)) * kFactor;
    hash ^= hash >> 32U;
  };
  Uint32 i = 0;
  for (; count - i >= kStep; i += kStep) {
    std::uint64_t word = 0;
    std::memcpy(&word, units + i, sizeof word);
    mix(word);
  }
  std::uint64_t rest = 0;
  for (; i < count; ++i) {
    rest = (rest << 16U) | static_cast<Uint16>(units[i]);
  }
  mix(rest);
  return static_cast<Uint32>(hash);
}

/// Handle: one whose body has the members `name` and `containers`. A handle in a set counts it as a container, which
/// freezes its name. An empty set is one pointer: most objects have no qualifiers.
template <typename Handle>
class NamedSet {
 public:
  NamedSet() = default;
  NamedSet(const NamedSet&) = delete;
  NamedSet& operator=(const NamedSet&) = delete;
  ~NamedSet() {
    for (const Handle& item : *this) {
      if (Access::BodyPointer(item).use_count() > 1) {
        --BodyOf(item).containers;
      }
    }
  }

  Uint32 Size() const { return storage_ ? static_cast<Uint32>(storage_->items.size()) : 0; }
  /// Throws IndexOutOfBoundsException.
  const Handle& At(Uint32 index) const {
    if (index >= Size()) {
      throw IndexOutOfBoundsException();
    }
    return storage_->items[index];
  }
  const Handle* begin() const { return storage_ ? storage_->items.data() : nullptr; }
  const Handle* end() const { return begin() + Size(); }

  void Reserve(Uint32 count) {
    if (count != 0) {
      Allocated().items.reserve(count);
      Allocated().hashes.reserve(count);
    }
  }

  /// Index of the name, PEG_NOT_FOUND when it is missing or null.
  Uint32 Find(const CIMName& name) const {
    return name.isNull() || Size() == 0 ? PEG_NOT_FOUND : Find(*storage_, name, HashName(name.getString()));
  }

  /// Appends the handle; returns false, changing nothing, when its name is there already.
  bool TryAdd(Handle&& item) { return TryAdd(std::move(item), HashName(BodyOf(item).name.getString())); }
  /// As above; `hash` is HashName of the name.
  bool TryAdd(Handle&& item, Uint32 hash) {
    if (Find(Allocated(), BodyOf(item).name, hash) != PEG_NOT_FOUND) {
      return false;
    }
    AddNew(std::move(item), hash);
    return true;
  }
  /// Appends a handle whose name is known not to be there.
  void AddNew(Handle&& item, Uint32 hash) {
    Storage& lists = Allocated();
    lists.hashes.push_back(hash);
    lists.items.push_back(std::move(item));
    ++BodyOf(lists.items.back()).containers;
    if (lists.items.size() > kLinearLimit) {
      AddToTable(lists);
    }
  }

  /// Throws IndexOutOfBoundsException.
  void Remove(Uint32 index) {
    --BodyOf(At(index)).containers;
    Storage& lists = *storage_;
    lists.items.erase(lists.items.begin() + static_cast<std::ptrdiff_t>(index));
    lists.hashes.erase(lists.hashes.begin() + static_cast<std::ptrdiff_t>(index));
    if (lists.items.size() > kLinearLimit) {
      BuildTable(lists);
    } else {
      lists.table.clear();
    }
  }

  /// Appends independent copies of all of `other`'s handles.
  void CloneFrom(const NamedSet& other) {
    Reserve(other.Size());
    for (const Handle& item : other) {
      TryAdd(item.clone());
    }
  }

  /// Same handles by meaning, in the same order.
  bool Identical(const NamedSet& other) const {
    return std::equal(begin(), end(), other.begin(), other.end(),
                      [](const Handle& a, const Handle& b) { return a.identical(b); });
  }

 private:
  // Up to here, comparing all hashes in a row beats a table.
  static constexpr std::size_t kLinearLimit = 64;

  struct Storage {
    std::vector<Handle> items;
    std::vector<Uint32> hashes;
    std::vector<Uint32> table;  // index + 1 by hash, 0 where free; a power of two long, empty for short lists
  };

  static auto& BodyOf(const Handle& item) { return *Access::BodyPointer(item); }

  Storage& Allocated() {
    if (!storage_) {
      storage_ = std::make_unique<Storage>();
    }
    return *storage_;
  }

  static Uint32 Find(const Storage& lists, const CIMName& name, Uint32 hash) {
    const auto matches = [&](std::size_t index) {
      return lists.hashes[index] == hash && BodyOf(lists.items[index]).name.equal(name);
    };
    if (lists.table.empty()) {
      // The common answer is "none"; a loop without a way out compares several hashes at a time.
      bool isHashKnown = false;
      for (const Uint32 known : lists.hashes) {
        isHashKnown |= known == hash;
      }
      if (!isHashKnown) {
        return PEG_NOT_FOUND;
      }
      for (std::size_t i = 0; i < lists.hashes.size(); ++i) {
        if (matches(i)) {
          return static_cast<Uint32>(i);
        }
      }
      return PEG_NOT_FOUND;
    }
    for (std::size_t slot = Slot(lists, hash); lists.table[slot] != 0; slot = Slot(lists, slot + 1)) {
      if (matches(lists.table[slot] - 1)) {
        return lists.table[slot] - 1;
      }
    }
    return PEG_NOT_FOUND;
  }

  static std::size_t Slot(const Storage& lists, std::size_t position) { return position & (lists.table.size() - 1); }

  static void AddToTable(Storage& lists) {
    if (lists.items.size() * 2 > lists.table.size()) {
      BuildTable(lists);
    } else {
      Place(lists, static_cast<Uint32>(lists.items.size() - 1));
    }
  }

  static void Place(Storage& lists, Uint32 index) {
    std::size_t slot = Slot(lists, lists.hashes[index]);
    while (lists.table[slot] != 0) {
      slot = Slot(lists, slot + 1);
    }
    lists.table[slot] = index + 1;
  }

  static void BuildTable(Storage& lists) {
    std::size_t size = 4 * kLinearLimit;
    while (size < 4 * lists.items.size()) {
      size *= 2;
    }
    lists.table.assign(size, 0);
    for (Uint32 i = 0; i < lists.items.size(); ++i) {
      Place(lists, i);
    }
  }

  std::unique_ptr<Storage> storage_;  // null until something is added
};

}  // namespace Pegasus::objects
