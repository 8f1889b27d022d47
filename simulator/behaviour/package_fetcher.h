// Fetches firmware packages over HTTP and HTTPS or from files, on a thread of its own and within limits, as a CMM does
// that is told to install from a URI.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "behaviour/package.h"

namespace Orvane::simulator {

struct FetchLimits {
  std::uint64_t bytes = 0;
  /// Real time, of the whole download.
  std::chrono::milliseconds time{0};
};

/// The package, or the text of the failure.
using FetchResult = std::variant<Package, std::string>;

/// Thread-safe. Redirects are not followed. Certificates are not checked: like the CMM, whoever names a package is
/// trusted to name the right place, and the checksum inside it is what counts.
class PackageFetcher {
 public:
  explicit PackageFetcher(const FetchLimits& limits);

  /// Ends all downloads; those that go on get a failure first. Callbacks may run until this returns.
  ~PackageFetcher();

  PackageFetcher(const PackageFetcher&) = delete;
  PackageFetcher& operator=(const PackageFetcher&) = delete;

  /// @param uri   one that ParsePackageUri takes
  /// @param done  called once, on the fetcher's thread; must not throw
  void Fetch(const std::string& uri, std::function<void(FetchResult)> done);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Orvane::simulator
