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
#include <new>
#include <utility>

#include "base/pool.h"
#include "base/seeded_hash.h"
#include "objects/internal.h"

namespace Pegasus::objects {

/// The bit in which upper and lower case differ, for each of four UTF-16 units that is ASCII.
inline std::uint64_t CaseBits(std::uint64_t units) {
  constexpr std::uint64_t kTop = 0x8000800080008000U;
  constexpr std::uint64_t kBeyondAscii = 0xFF80FF80FF80FF80U;
  constexpr unsigned kTopToCase = 10;
  const std::uint64_t beyond = units & kBeyondAscii;
  return (~(((beyond & ~kTop) + ~kTop) | beyond) & kTop) >> kTopToCase;
}

/// Hash of a name that is the same for all spellings in ASCII case. Takes four units at a time; what the case bit
/// merges beside letters stands in no name.
inline Uint32 HashName(const String& name) {
  constexpr Uint32 kStep = 4;
  const Char16* const units = name.getChar16Data();
  const Uint32 count = name.size();
  internal::SeededHash hash(count);
  Uint32 i = 0;
  for (; count - i >= kStep; i += kStep) {
    std::uint64_t word = 0;
    std::memcpy(&word, units + i, sizeof word);
    hash.Mix(word | CaseBits(word));
  }
  std::uint64_t rest = 0;
  for (; i < count; ++i) {
    rest = (rest << 16U) | static_cast<Uint16>(units[i]);
  }
  hash.Mix(rest | CaseBits(rest));
  return static_cast<Uint32>(hash.Result());
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
    internal::PoolSweep sweep;
    const auto free = [&sweep](void* memory, Uint32 pieceOffset) { sweep.Free(memory, pieceOffset); };
    for (Uint32 i = 0; i < Size(); ++i) {
      auto& body = Access::BodyPointer(lists_->Items()[i]);
      if (!body.IsSole()) {
        body->containers.Leave();
      }
      body.Release(free);
    }
    Free(lists_);
  }

  Uint32 Size() const { return lists_ != nullptr ? lists_->size : 0; }
  /// Throws IndexOutOfBoundsException.
  const Handle& At(Uint32 index) const {
    if (index >= Size()) {
      throw IndexOutOfBoundsException();
    }
    return lists_->Items()[index];
  }
  const Handle* begin() const { return lists_ != nullptr ? lists_->Items() : nullptr; }
  const Handle* end() const { return begin() + Size(); }

  /// Makes room for `count` items, in the pool if there is one.
  void Reserve(Uint32 count, internal::Pool* pool = nullptr) {
    if (count > (lists_ != nullptr ? lists_->capacity : 0)) {
      MoveTo(NewLists(count, pool));
    }
  }

  /// Index of the name, PEG_NOT_FOUND when it is missing or null.
  Uint32 Find(const CIMName& name) const {
    return name.isNull() || Size() == 0 ? PEG_NOT_FOUND : Find(name, HashName(name.getString()));
  }

  /// Appends the handle; returns false, changing nothing, when its name is there already.
  bool TryAdd(Handle&& item) { return TryAdd(std::move(item), HashName(BodyOf(item).name.getString())); }
  /// As above; `hash` is HashName of the name.
  bool TryAdd(Handle&& item, Uint32 hash) {
    if (Size() != 0 && Find(BodyOf(item).name, hash) != PEG_NOT_FOUND) {
      return false;
    }
    AddNew(std::move(item), hash);
    return true;
  }
  /// Appends a handle whose name is known not to be there.
  void AddNew(Handle&& item, Uint32 hash) {
    constexpr Uint32 kFirstCapacity = 8;
    if (lists_ == nullptr || lists_->size == lists_->capacity) {
      Reserve(std::max(kFirstCapacity, Size() + Size() / 2));
    }
    // Whatever may fail comes before the item is in.
    if (lists_->size >= kLinearLimit) {
      MakeTable(lists_->size + 1);
    }
    const Uint32 index = lists_->size++;
    lists_->Hashes()[index] = hash;
    new (lists_->Items() + index) Handle(std::move(item));
    BodyOf(lists_->Items()[index]).containers.Enter();
    if (lists_->table) {
      Place(index);
    }
  }

  /// Throws IndexOutOfBoundsException.
  void Remove(Uint32 index) {
    BodyOf(At(index)).containers.Leave();
    std::move(lists_->Items() + index + 1, lists_->Items() + lists_->size, lists_->Items() + index);
    std::copy(lists_->Hashes() + index + 1, lists_->Hashes() + lists_->size, lists_->Hashes() + index);
    --lists_->size;
    std::destroy_at(lists_->Items() + lists_->size);
    if (lists_->size <= kLinearLimit) {
      lists_->table.reset();
    } else {
      FillTable();
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
  static constexpr Uint32 kLinearLimit = 64;

  /// Head of the lists; `capacity` handles and as many hashes follow it in the same memory.
  struct Lists {
    Uint32 pieceOffset = 0;
    Uint32 size = 0;
    Uint32 capacity = 0;
    Uint32 tableSize = 0;
    std::unique_ptr<Uint32[]> table;  // index + 1 by hash, 0 where free; a power of two long, null for short lists

    Handle* Items() { return reinterpret_cast<Handle*>(this + 1); }
    Uint32* Hashes() { return reinterpret_cast<Uint32*>(Items() + capacity); }
  };

  static auto& BodyOf(const Handle& item) { return *Access::BodyPointer(item); }

  static Lists* NewLists(Uint32 capacity, internal::Pool* pool) {
    static_assert(alignof(Handle) <= alignof(Lists) && sizeof(Lists) % alignof(Handle) == 0);
    const std::size_t bytes = sizeof(Lists) + std::size_t{capacity} * (sizeof(Handle) + sizeof(Uint32));
    Uint32 pieceOffset = 0;
    void* const memory = pool != nullptr ? pool->Allocate(bytes, pieceOffset) : ::operator new(bytes);
    auto* const lists = new (memory) Lists;
    lists->pieceOffset = pieceOffset;
    lists->capacity = capacity;
    return lists;
  }

  static void Free(Lists* lists) {
    if (lists == nullptr) {
      return;
    }
    const Uint32 pieceOffset = lists->pieceOffset;
    std::destroy_n(lists->Items(), lists->size);
    std::destroy_at(lists);
    internal::FreeShared(lists, pieceOffset);
  }

  void MoveTo(Lists* fresh) {
    if (lists_ != nullptr) {
      std::uninitialized_move_n(lists_->Items(), lists_->size, fresh->Items());
      std::copy_n(lists_->Hashes(), lists_->size, fresh->Hashes());
      fresh->size = lists_->size;
      fresh->tableSize = lists_->tableSize;
      fresh->table = std::move(lists_->table);
      Free(lists_);
    }
    lists_ = fresh;
  }

  Uint32 Find(const CIMName& name, Uint32 hash) const {
    const Uint32* const hashes = lists_->Hashes();
    const auto matches = [&](Uint32 index) {
      return hashes[index] == hash && BodyOf(lists_->Items()[index]).name.equal(name);
    };
    if (!lists_->table) {
      // The common answer is "none"; a loop without a way out compares several hashes at a time.
      bool isHashKnown = false;
      for (Uint32 i = 0; i < lists_->size; ++i) {
        isHashKnown |= hashes[i] == hash;
      }
      for (Uint32 i = 0; isHashKnown && i < lists_->size; ++i) {
        if (matches(i)) {
          return i;
        }
      }
      return PEG_NOT_FOUND;
    }
    for (Uint32 slot = Slot(hash); lists_->table[slot] != 0; slot = Slot(slot + 1)) {
      if (matches(lists_->table[slot] - 1)) {
        return lists_->table[slot] - 1;
      }
    }
    return PEG_NOT_FOUND;
  }

  Uint32 Slot(Uint32 position) const { return position & (lists_->tableSize - 1); }

  void Place(Uint32 index) {
    Uint32 slot = Slot(lists_->Hashes()[index]);
    while (lists_->table[slot] != 0) {
      slot = Slot(slot + 1);
    }
    lists_->table[slot] = index + 1;
  }

  /// A table that stays half empty with `count` items.
  void MakeTable(Uint32 count) {
    if (lists_->table && count <= lists_->tableSize / 2) {
      return;
    }
    Uint32 size = 4 * kLinearLimit;
    while (size / 4 < count) {
      size *= 2;
    }
    lists_->table = std::make_unique<Uint32[]>(size);
    lists_->tableSize = size;
    FillTable();
  }

  void FillTable() {
    std::fill_n(lists_->table.get(), lists_->tableSize, 0);
    for (Uint32 i = 0; i < lists_->size; ++i) {
      Place(i);
    }
  }

  Lists* lists_ = nullptr;  // null until something is added
};

}  // namespace Pegasus::objects
