// The store of a running chassis with its lock: requests of clients and what the chassis does by itself take turns, so
// that everybody sees one consistent chassis.
#pragma once

#include <mutex>
#include <utility>

#include "cim/object_store.h"

namespace Orvane::simulator {

/// Thread-safe.
class SharedStore {
 public:
  explicit SharedStore(ObjectStore store) : store_(std::move(store)) {}

  /// Calls @p use with the store, which stays locked until it returns; must not be called from within itself.
  template <typename Use>
  auto With(Use&& use) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::forward<Use>(use)(store_);
  }

 private:
  std::mutex mutex_;
  ObjectStore store_;
};

}  // namespace Orvane::simulator
