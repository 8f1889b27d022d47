// A server that plays a script of raw bytes: for tests of what a client does when a server answers slowly, wrongly,
// partly or not at all. It knows just enough HTTP to find the end of a request.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "testing/certificate.h"

namespace Orvane::testing {

/// One thing the server does on a connection.
struct RawAction {
  enum class Kind {
    kSend,        ///< sends `bytes`, `@ID@` replaced by the MESSAGE ID of the request
    kClose,       ///< closes the connection, without a TLS goodbye
    kCloseTls,    ///< closes the connection, saying goodbye first when it is a TLS connection
    kFlood,       ///< sends `bytes` over and over until the client closes or the server is stopped
    kTickets,     ///< sends TLS 1.3 session tickets in the same manner
    kSendLast,    ///< sends `bytes` and the end of what the server sends, in one piece on a plain connection
    kHalfClose,   ///< ends what the server sends, but goes on receiving
    kReset,       ///< closes the connection with a TCP reset
    kAwait,       ///< waits until bytes of the client are there to be read, or until the server is stopped
    kSleep,       ///< waits for `wait`, or until the server is stopped
    kStopListen,  ///< refuses connections from now on
    kHang,        ///< keeps the connection open, silent and unread until the server is stopped
  };

  Kind kind = Kind::kHang;
  std::string bytes;
  std::chrono::milliseconds wait{0};

  static RawAction Send(std::string bytes) { return {Kind::kSend, std::move(bytes), {}}; }
  static RawAction Flood(std::string bytes) { return {Kind::kFlood, std::move(bytes), {}}; }
  static RawAction Tickets() { return {Kind::kTickets, {}, {}}; }
  static RawAction SendLast(std::string bytes) { return {Kind::kSendLast, std::move(bytes), {}}; }
  static RawAction HalfClose() { return {Kind::kHalfClose, {}, {}}; }
  static RawAction Close() { return {Kind::kClose, {}, {}}; }
  static RawAction CloseTls() { return {Kind::kCloseTls, {}, {}}; }
  static RawAction Reset() { return {Kind::kReset, {}, {}}; }
  static RawAction Await() { return {Kind::kAwait, {}, {}}; }
  static RawAction Sleep(std::chrono::milliseconds wait) { return {Kind::kSleep, {}, wait}; }
  static RawAction StopListen() { return {Kind::kStopListen, {}, {}}; }
  static RawAction Hang() { return {Kind::kHang, {}, {}}; }
};

using RawActions = std::vector<RawAction>;

/// What a TLS server does with the session that a client offers.
enum class SessionPolicy {
  kResume,    ///< resumes it: tickets, and identifiers for TLS 1.2
  kForget,    ///< knows none and gives none
  kBreakOff,  ///< knows none and breaks off the handshake
};

struct RawServerOptions {
  /// Numeric address of the loopback interface.
  std::string address = "127.0.0.1";
  /// 0: the system picks one.
  std::uint16_t port = 0;
  /// PEM certificate chain and key; empty for a plain server.
  Certificate certificate;
  /// PEM certificate of the authority that must have issued the client's own; empty: none is asked for.
  std::string clientAuthority;
  /// 0x0303 for TLS 1.2, 0x0304 for TLS 1.3; 0 leaves the bound open.
  int minTls = 0;
  int maxTls = 0;
  SessionPolicy sessions = SessionPolicy::kResume;
  /// False: TLS 1.2 sessions are known by identifiers only.
  bool tickets = true;
  /// Done on every connection before its first request is read.
  RawActions onConnect;
  /// What is done per request received, over all connections; behind its end the server keeps silent.
  std::vector<RawActions> script;
};

/// A request as it came.
struct RawRequest {
  unsigned connection = 0;  ///< from 1, in the order of acceptance
  std::string head;         ///< request line and headers with their line ends, the empty line included
  std::string body;

  /// The lines of the head that begin with `name` and a colon.
  std::vector<std::string> Lines(const std::string& name) const;
  /// The MESSAGE ID in the body, empty when there is none.
  std::string MessageId() const;
};

/// Listens from construction on; the destructor closes everything and joins its threads.
class RawServer {
 public:
  /// @throws std::runtime_error when it cannot listen or cannot use the certificate
  explicit RawServer(RawServerOptions options);
  ~RawServer();
  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  std::uint16_t Port() const { return port_; }
  /// Connections accepted so far.
  unsigned Connections() const;
  std::vector<RawRequest> Requests() const;
  /// TLS handshakes that succeeded with a certificate shown, and those that resumed a session.
  unsigned FullHandshakes() const { return fullHandshakes_; }
  unsigned ResumedHandshakes() const { return resumedHandshakes_; }
  /// Waits until that many connections have been accepted: a client may have connected before the server has noticed.
  /// False when that takes longer than `wait`.
  bool WaitForConnections(unsigned count, std::chrono::milliseconds wait) const;
  /// Waits until everything has been done that the script says for the first `count` requests: a client may have its
  /// answer before. False when that takes longer than `wait`.
  bool WaitUntilPlayed(std::size_t count, std::chrono::milliseconds wait) const;

 private:
  struct Tls;
  class Peer;

  void Accept();
  bool StartTls(Peer& peer);
  void Serve(Peer& peer);
  bool Play(Peer& peer, const RawActions& actions, const std::string& messageId);
  bool PlayOne(Peer& peer, const RawAction& action, const std::string& messageId);
  void WaitUntilStopped(std::chrono::milliseconds atMost);

  RawServerOptions options_;
  std::unique_ptr<Tls> tls_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<bool> listening_{true};
  std::atomic<unsigned> fullHandshakes_{0};
  std::atomic<unsigned> resumedHandshakes_{0};

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool stopping_ = false;
  std::vector<RawRequest> requests_;
  std::size_t played_ = 0;
  std::vector<std::unique_ptr<Peer>> peers_;

  std::thread acceptor_;
  std::vector<std::thread> servers_;
};

}  // namespace Orvane::testing
