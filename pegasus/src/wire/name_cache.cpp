// The cache: the names in the order in which they were met, and a hash table over them.
#include "wire/name_cache.h"

#include <utility>

#include "base/name_access.h"
#include "base/seeded_hash.h"

namespace Pegasus::wire {
namespace {

constexpr std::size_t kMaxNames = 4096;
constexpr std::size_t kFirstTableSize = 64;

}  // namespace

const CIMName* NameCache::Find(std::string_view text) {
  if (next_ < entries_.size() && entries_[next_].text == text) return &entries_[next_++].name;
  if (table_.size() < 2 * (entries_.size() + 1)) Grow();
  const std::size_t slot = FindSlot(text);
  if (table_[slot] != 0) {
    next_ = table_[slot];
    return &entries_[next_ - 1].name;
  }
  String name(text.data(), static_cast<Uint32>(text.size()));
  if (!CIMName::legal(name)) return nullptr;
  if (entries_.size() == kMaxNames) {
    uncached_ = internal::NameAccess::MakeName(std::move(name));
    return &uncached_;
  }
  entries_.push_back({text, internal::NameAccess::MakeName(std::move(name))});
  next_ = entries_.size();
  table_[slot] = static_cast<std::uint32_t>(next_);
  return &entries_.back().name;
}

std::size_t NameCache::FindSlot(std::string_view text) const {
  const std::size_t mask = table_.size() - 1;
  std::size_t slot = internal::HashText(text) & mask;
  while (table_[slot] != 0 && entries_[table_[slot] - 1].text != text) slot = (slot + 1) & mask;
  return slot;
}

void NameCache::Grow() {
  table_.assign(table_.empty() ? kFirstTableSize : 2 * table_.size(), 0);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    table_[FindSlot(entries_[i].text)] = static_cast<std::uint32_t>(i + 1);
  }
}

}  // namespace Pegasus::wire
