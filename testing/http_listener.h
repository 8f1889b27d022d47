// The socket side of the test servers: accepts, optionally speaks TLS, cuts the byte stream into HTTP requests and
// sends what a handler answers. One thread per connection; it knows nothing of CIM.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "testing/certificate.h"

namespace Orvane::testing {

/// One request as it arrived.
struct HttpExchange {
  unsigned connection = 0;  ///< number of the connection, from 1, in the order of acceptance
  bool tls = false;
  std::string head;  ///< request line and header lines, without the empty line
  std::string body;
};

/// What is done with one request.
struct HttpReply {
  enum class After {
    kKeep,   ///< the connection waits for its next request
    kClose,  ///< the server closes
    kHang,   ///< the server keeps silent until the client closes or the listener stops
  };
  std::string bytes;  ///< sent as they are; may be empty
  After after = After::kKeep;
};

/// A listening socket with its connections. Ready when the constructor returns; the destructor closes and joins
/// everything.
class HttpListener {
 public:
  struct Options {
    std::string address = "127.0.0.1";       ///< numeric IPv4 or IPv6 address
    std::uint16_t port = 0;                  ///< 0: the system picks one
    std::optional<Certificate> certificate;  ///< set: TLS, 1.2 or later
  };
  enum class Change {
    kOpened,         ///< accepted, nothing read yet
    kWrongProtocol,  ///< TLS on a plain port or the reverse; the connection is closed next
    kClosed,
  };
  using Handler = std::function<HttpReply(const HttpExchange&)>;
  /// Told of connections in the order in which the client opened and closed them. Called with an internal lock held: it
  /// must not call back.
  using Observer = std::function<void(Change, unsigned connection)>;

  /// @throws std::runtime_error  the address cannot be listened on, or the certificate is unusable.
  HttpListener(Options options, Handler handler, Observer observer);
  ~HttpListener();
  HttpListener(const HttpListener&) = delete;
  HttpListener& operator=(const HttpListener&) = delete;

  std::uint16_t Port() const { return port_; }
  /// From now on connections are refused; those that are open stay. May be called from the handler.
  void StopAccepting();

 private:
  struct Tls;
  class Connection;

  void Accept();
  void NoteClosedBefore();
  void Serve(Connection& connection);
  void Converse(Connection& connection);

  Options options_;
  Handler handler_;
  Observer observer_;
  std::unique_ptr<Tls> tls_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<bool> stopping_{false};
  std::mutex mutex_;
  std::list<std::unique_ptr<Connection>> connections_;
  std::thread acceptor_;
};

}  // namespace Orvane::testing
