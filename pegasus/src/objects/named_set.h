// The ordered list of named handles (properties, qualifiers, methods, parameters) inside an object. Finds by name
// ignoring ASCII case, through precomputed hashes and, for long lists, a hash table.
#pragma once

#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/Config.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "objects/internal.h"

namespace Pegasus::objects {

/// Hash of a name that is the same for all spellings in ASCII case.
inline Uint32 HashName(const String& name) {
  constexpr Uint32 kOffset = 2166136261u;
  constexpr Uint32 kPrime = 16777619u;
  const Char16* const units = name.getChar16Data();
  const Uint32 count = name.size();
  Uint32 hash = kOffset;
  for (Uint32 i = 0; i < count; ++i) {
    Uint32 unit = static_cast<Uint16>(units[i]);
    if (unit >= 'A' && unit <= 'Z') {
      unit += 'a' - 'A';
    }
    hash = (hash ^ unit) * kPrime;
  }
  return hash;
}

/// Handle: one whose body has the members `name` and `containers`. A handle in a set counts it as a container, which
/// freezes its name.
template <typename Handle>
class NamedSet {
 public:
  NamedSet() = default;
  NamedSet(const NamedSet&) = delete;
  NamedSet& operator=(const NamedSet&) = delete;
  ~NamedSet() {
    for (const Handle& item : items_) {
      if (Access::BodyPointer(item).use_count() > 1) {
        --BodyOf(item).containers;
      }
    }
  }

  Uint32 Size() const { return static_cast<Uint32>(items_.size()); }
  /// Throws IndexOutOfBoundsException.
  const Handle& At(Uint32 index) const {
    if (index >= items_.size()) {
      throw IndexOutOfBoundsException();
    }
    return items_[index];
  }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  void Reserve(Uint32 count) {
    items_.reserve(count);
    hashes_.reserve(count);
  }

  /// Index of the name, PEG_NOT_FOUND when it is missing or null.
  Uint32 Find(const CIMName& name) const {
    return name.isNull() || items_.empty() ? PEG_NOT_FOUND : Find(name, HashName(name.getString()));
  }

  /// Appends the handle; returns false, changing nothing, when its name is there already.
  bool TryAdd(Handle&& item) {
    const Uint32 hash = HashName(BodyOf(item).name.getString());
    if (Find(BodyOf(item).name, hash) != PEG_NOT_FOUND) {
      return false;
    }
    hashes_.push_back(hash);
    items_.push_back(std::move(item));
    ++BodyOf(items_.back()).containers;
    if (items_.size() > kLinearLimit) {
      AddToTable();
    }
    return true;
  }

  /// Throws IndexOutOfBoundsException.
  void Remove(Uint32 index) {
    --BodyOf(At(index)).containers;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
    hashes_.erase(hashes_.begin() + static_cast<std::ptrdiff_t>(index));
    if (items_.size() > kLinearLimit) {
      BuildTable();
    } else {
      table_.clear();
    }
  }

  /// Appends independent copies of all of `other`'s handles.
  void CloneFrom(const NamedSet& other) {
    Reserve(other.Size());
    for (const Handle& item : other.items_) {
      TryAdd(item.clone());
    }
  }

  /// Same handles by meaning, in the same order.
  bool Identical(const NamedSet& other) const {
    if (Size() != other.Size()) {
      return false;
    }
    for (std::size_t i = 0; i < items_.size(); ++i) {
      if (!items_[i].identical(other.items_[i])) {
        return false;
      }
    }
    return true;
  }

 private:
  // Up to here, comparing all hashes in a row beats a table.
  static constexpr std::size_t kLinearLimit = 64;

  static auto& BodyOf(const Handle& item) { return *Access::BodyPointer(item); }

  bool Matches(std::size_t index, const CIMName& name, Uint32 hash) const {
    return hashes_[index] == hash && BodyOf(items_[index]).name.equal(name);
  }

  Uint32 Find(const CIMName& name, Uint32 hash) const {
    if (table_.empty()) {
      for (std::size_t i = 0; i < hashes_.size(); ++i) {
        if (Matches(i, name, hash)) {
          return static_cast<Uint32>(i);
        }
      }
      return PEG_NOT_FOUND;
    }
    for (std::size_t slot = Slot(hash); table_[slot] != 0; slot = Slot(slot + 1)) {
      if (Matches(table_[slot] - 1, name, hash)) {
        return table_[slot] - 1;
      }
    }
    return PEG_NOT_FOUND;
  }

  std::size_t Slot(std::size_t position) const { return position & (table_.size() - 1); }

  void AddToTable() {
    if (items_.size() * 2 > table_.size()) {
      BuildTable();
    } else {
      Place(Size() - 1);
    }
  }

  void Place(Uint32 index) {
    std::size_t slot = Slot(hashes_[index]);
    while (table_[slot] != 0) {
      slot = Slot(slot + 1);
    }
    table_[slot] = index + 1;
  }

  void BuildTable() {
    std::size_t size = 4 * kLinearLimit;
    while (size < 4 * items_.size()) {
      size *= 2;
    }
    table_.assign(size, 0);
    for (Uint32 i = 0; i < Size(); ++i) {
      Place(i);
    }
  }

  std::vector<Handle> items_;
  std::vector<Uint32> hashes_;
  std::vector<Uint32> table_;  // index + 1 by hash, 0 where free; a power of two long, empty for short lists
};

}  // namespace Pegasus::objects
