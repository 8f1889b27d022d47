// Turns the NAME attributes of a response into names. A response repeats the same few names in every instance, in the
// same order; they are checked and converted once and shared after that.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Pegasus/Common/CIMName.h"

namespace Pegasus::wire {

/// The names met so far. The texts must stay valid while the cache lives. Its size is limited; names beyond the limit
/// are converted each time.
class NameCache {
 public:
  /// The name spelt `text`, or nullptr when that is not a legal name. The result is valid until the next call. Throws
  /// Exception for invalid UTF-8.
  const CIMName* Find(std::string_view text);

 private:
  struct Entry {
    std::string_view text;
    CIMName name;
  };

  /// Slot of `text` in the table, or of the free place where it belongs.
  std::size_t FindSlot(std::string_view text) const;
  void Grow();

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> table_;  // index + 1 by hash, 0 where free
  std::size_t next_ = 0;              // the entry which followed the last one found when the names were first met
  CIMName uncached_;
};

}  // namespace Pegasus::wire
