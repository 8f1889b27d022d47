// A real nginx between a client and a chassis: a process of its own with a generated configuration in a temporary
// folder, on a loopback port. It needs no rights, starts no service and ends with its object.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/process.h"

namespace Orvane::tests {

/// One answer, as nginx's own log tells of it.
struct ProxiedAnswer {
  std::string connection;        ///< number of the client's connection
  unsigned requestOfConnection;  ///< from 1
  unsigned status;               ///< HTTP status that the client got
  std::string tlsVersion;        ///< "TLSv1.3"; "-" for plain connections
  bool resumed;                  ///< the connection resumed a TLS session
  std::string transferEncoding;  ///< of the answer, "-" without
  std::uint64_t bytes;           ///< of the answer's body
  std::uint64_t milliseconds;    ///< from the first byte of the request to the last byte of the answer
  std::string upstreamStatus;    ///< what the chassis answered; "-" when it was not asked
};

class Nginx {
 public:
  struct Options {
    std::string upstream;  ///< URL of the chassis: "http://127.0.0.1:1234"
    std::string server;    ///< further directives of the server
    bool tls = false;      ///< HTTPS with a self-signed certificate
    std::string tlsVersions = "TLSv1.2 TLSv1.3";
  };

  /// Accepts connections when it returns.
  /// @throws std::runtime_error  there is no nginx on this machine, or it does not take the configuration.
  explicit Nginx(const Options& options);
  ~Nginx();
  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  std::uint16_t Port() const { return port_; }

  /// Waits until nginx keeps no connection but the one that asks. @return false after ten seconds.
  bool WaitUntilIdle() const;

  /// Ends nginx, once it has answered all requests, and reads its log. Connections that are still open are cut.
  std::vector<ProxiedAnswer> StopAndReadLog();

 private:
  void Start(const std::string& program);
  bool IsUp();
  /// nginx's own page that counts its connections.
  template <typename Client>
  std::string PageOf() const;
  bool WaitForPage(const std::string& text) const;
  void Stop();

  Folder folder_;
  bool tls_;
  std::uint16_t port_ = 0;
  pid_t id_ = -1;
};

}  // namespace Orvane::tests
