// A web server of the tests, over HTTP or HTTPS, that answers every request with the same bytes, or not at all.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvane::simulator::tests {

class PackageServer {
 public:
  enum class Kind {
    kHttp,
    kHttps,
    kSilent  ///< takes connections and says nothing
  };

  /// @param answer  head and body as they go onto the wire; the connection ends after it
  PackageServer(Kind kind, std::string answer);
  ~PackageServer();
  PackageServer(const PackageServer&) = delete;
  PackageServer& operator=(const PackageServer&) = delete;

  /// A good answer with this body.
  static std::string Answer(const std::string& body);

  /// @param access  "user:password@" or empty
  std::string Uri(const std::string& access = "") const;
  /// Heads of the requests so far.
  std::vector<std::string> Requests() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Orvane::simulator::tests
