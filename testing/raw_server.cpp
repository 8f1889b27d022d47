// A server that plays a script of raw bytes. Sockets are blocking with short polls, so that a stop is noticed soon
// wherever a thread waits.
#include "testing/raw_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <boost/algorithm/string/find.hpp>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace Orvane::testing {

namespace {

constexpr int kPollMilliseconds = 20;
constexpr std::chrono::seconds kForever{60};

[[noreturn]] void Fail(const std::string& what) { throw std::runtime_error("raw server: " + what); }

bool Readable(int socket, int milliseconds) {
  pollfd entry{socket, POLLIN, 0};
  return ::poll(&entry, 1, milliseconds) > 0;
}

int Listen(const std::string& address, std::uint16_t& port) {
  const bool ipv6 = address.find(':') != std::string::npos;
  sockaddr_in6 six{};
  sockaddr_in four{};
  six.sin6_family = AF_INET6;
  six.sin6_port = htons(port);
  four.sin_family = AF_INET;
  four.sin_port = htons(port);
  const int known = ipv6 ? ::inet_pton(AF_INET6, address.c_str(), &six.sin6_addr)
                         : ::inet_pton(AF_INET, address.c_str(), &four.sin_addr);
  if (known != 1) Fail("no address: " + address);
  auto* place = ipv6 ? reinterpret_cast<sockaddr*>(&six) : reinterpret_cast<sockaddr*>(&four);
  socklen_t length = ipv6 ? sizeof(six) : sizeof(four);
  const int listener = ::socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  constexpr int kBacklog = 128;
  const int on = 1;  // a server may come back on the port of one that has just gone
  if (listener < 0 || ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0 ||
      ::bind(listener, place, length) != 0 || ::listen(listener, kBacklog) != 0 ||
      ::getsockname(listener, place, &length) != 0) {
    const std::string reason = std::strerror(errno);
    if (listener >= 0) ::close(listener);
    Fail("cannot listen: " + reason);
  }
  port = ntohs(ipv6 ? six.sin6_port : four.sin_port);
  return listener;
}

std::string WithMessageId(std::string text, const std::string& messageId) {
  const std::string mark = "@ID@";
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + messageId.size())) {
    text.replace(at, mark.size(), messageId);
  }
  return text;
}

}  // namespace

std::vector<std::string> RawRequest::Lines(const std::string& name) const {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = head.find("\r\n"); end != std::string::npos; end = head.find("\r\n", begin)) {
    const std::string line = head.substr(begin, end - begin);
    if (line.rfind(name + ":", 0) == 0) lines.push_back(line);
    begin = end + 2;
  }
  return lines;
}

std::string RawRequest::MessageId() const {
  const std::string mark = "<MESSAGE ID=\"";
  const std::size_t begin = body.find(mark);
  if (begin == std::string::npos) return {};
  const std::size_t first = begin + mark.size();
  return body.substr(first, body.find('"', first) - first);
}

struct RawServer::Tls {
  explicit Tls(const RawServerOptions& options) : context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free) {
    if (!context) Fail("no TLS context");
    if (options.maxTls != 0 && options.maxTls < TLS1_2_VERSION) SSL_CTX_set_security_level(context.get(), 0);
    if (options.minTls != 0) SSL_CTX_set_min_proto_version(context.get(), options.minTls);
    if (options.maxTls != 0) SSL_CTX_set_max_proto_version(context.get(), options.maxTls);
    UseSessions(options);
    UseClientAuthority(options.clientAuthority);
    UseChain(options.certificate.certificatePem);
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(
        BIO_new_mem_buf(options.certificate.privateKeyPem.data(),
                        static_cast<int>(options.certificate.privateKeyPem.size())),
        &BIO_free);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        PEM_read_bio_PrivateKey(text.get(), nullptr, nullptr, nullptr), &EVP_PKEY_free);
    if (!key || SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) Fail("unusable key");
  }

  void UseSessions(const RawServerOptions& options) const {
    const bool resumes = options.sessions == SessionPolicy::kResume;
    SSL_CTX_set_session_cache_mode(context.get(), resumes ? SSL_SESS_CACHE_SERVER : SSL_SESS_CACHE_OFF);
    if (!resumes || !options.tickets) SSL_CTX_set_options(context.get(), SSL_OP_NO_TICKET);
    if (!resumes) SSL_CTX_set_num_tickets(context.get(), 0);
    if (options.sessions == SessionPolicy::kBreakOff) SSL_CTX_set_client_hello_cb(context.get(), &BreakOff, nullptr);
  }

  /// Refuses a client's first message that offers a session by a ticket, of TLS 1.2 or of 1.3.
  static int BreakOff(SSL* ssl, int* /*alert*/, void* /*unused*/) {
    const unsigned char* bytes = nullptr;
    std::size_t size = 0;
    const bool preshared = SSL_client_hello_get0_ext(ssl, TLSEXT_TYPE_psk, &bytes, &size) == 1;
    const bool ticket = SSL_client_hello_get0_ext(ssl, TLSEXT_TYPE_session_ticket, &bytes, &size) == 1 && size > 0;
    return preshared || ticket ? SSL_CLIENT_HELLO_ERROR : SSL_CLIENT_HELLO_SUCCESS;
  }

  void UseClientAuthority(const std::string& pem) const {
    if (pem.empty()) return;
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())),
                                                         &BIO_free);
    const std::unique_ptr<X509, decltype(&X509_free)> authority(
        PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr), &X509_free);
    if (!authority || X509_STORE_add_cert(SSL_CTX_get_cert_store(context.get()), authority.get()) != 1) {
      Fail("unusable authority");
    }
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  }

  void UseChain(const std::string& pem) const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())),
                                                         &BIO_free);
    std::unique_ptr<X509, decltype(&X509_free)> leaf(PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr),
                                                     &X509_free);
    if (!leaf || SSL_CTX_use_certificate(context.get(), leaf.get()) != 1) Fail("unusable certificate");
    while (X509* next = PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr)) {
      if (SSL_CTX_add_extra_chain_cert(context.get(), next) != 1) {
        X509_free(next);
        Fail("unusable certificate chain");
      }
    }
    ERR_clear_error();
  }

  std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context;
};

/// One accepted connection.
class RawServer::Peer {
 public:
  Peer(int socket, unsigned ordinal) : number(ordinal), socket_(socket), ssl_(nullptr, &SSL_free) {}
  ~Peer() { Close(); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  bool ResumedSession() const { return SSL_session_reused(ssl_.get()) == 1; }

  bool AcceptTls(SSL_CTX* context) {
    ssl_.reset(SSL_new(context));
    // The library writes through the descriptor without MSG_NOSIGNAL; a pair of memory buffers keeps SIGPIPE out.
    incoming_ = BIO_new(BIO_s_mem());
    outgoing_ = BIO_new(BIO_s_mem());
    SSL_set_bio(ssl_.get(), incoming_, outgoing_);
    for (;;) {
      ERR_clear_error();
      const int result = SSL_accept(ssl_.get());
      const int reason = SSL_get_error(ssl_.get(), result);
      const bool sent = Flush();
      if (result == 1) return sent;
      if (reason != SSL_ERROR_WANT_READ || !Fill()) return false;
    }
  }

  /// @return false when the peer has closed or the server is stopped
  bool Read(std::string& received) {
    std::array<char, 16384> buffer{};
    if (!ssl_) {
      const ssize_t count = ReadRaw(buffer.data(), buffer.size());
      if (count > 0) received.append(buffer.data(), static_cast<std::size_t>(count));
      return count > 0;
    }
    for (;;) {
      ERR_clear_error();
      const int count = SSL_read(ssl_.get(), buffer.data(), static_cast<int>(buffer.size()));
      if (count > 0) {
        received.append(buffer.data(), static_cast<std::size_t>(count));
        return true;
      }
      if (SSL_get_error(ssl_.get(), count) != SSL_ERROR_WANT_READ || !Fill()) return false;
    }
  }

  bool Write(const std::string& bytes) {
    if (!ssl_) return WriteRaw(bytes.data(), bytes.size());
    if (bytes.empty()) return true;
    ERR_clear_error();
    return SSL_write(ssl_.get(), bytes.data(), static_cast<int>(bytes.size())) > 0 && Flush();
  }

  bool WriteTicket() {
    ERR_clear_error();
    return SSL_new_session_ticket(ssl_.get()) == 1 && SSL_do_handshake(ssl_.get()) == 1 && Flush();
  }

  void Await() const {
    while (!stopped_ && !Readable(socket_, kPollMilliseconds)) {
    }
  }

  /// Makes what is written until HalfClose() leave together with it, so that no reader sees one without the other.
  void HoldBack() const {
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_CORK, &on, sizeof(on));
  }
  void HalfClose() const { ::shutdown(socket_, SHUT_WR); }

  void SayGoodbye() {
    if (!ssl_) return;
    SSL_shutdown(ssl_.get());
    Flush();
  }

  void Reset() {
    const linger now{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
    Close();
  }

  void Close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (socket_ >= 0) ::close(socket_);
    socket_ = -1;
  }

  /// Wakes a thread that reads or writes; for use from another thread.
  void Stop() {
    stopped_ = true;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (socket_ >= 0) ::shutdown(socket_, SHUT_RDWR);
  }

  const unsigned number;

 private:
  ssize_t ReadRaw(char* buffer, std::size_t size) {
    while (!stopped_) {
      if (Readable(socket_, kPollMilliseconds)) return ::recv(socket_, buffer, size, 0);
    }
    return 0;
  }

  bool WriteRaw(const char* data, std::size_t size) {
    while (size > 0 && !stopped_) {
      const ssize_t count = ::send(socket_, data, size, MSG_NOSIGNAL);
      if (count <= 0) return false;
      data += count;
      size -= static_cast<std::size_t>(count);
    }
    return size == 0;
  }

  bool Flush() {
    char* data = nullptr;
    const long size = BIO_get_mem_data(outgoing_, &data);
    const bool sent = size <= 0 || WriteRaw(data, static_cast<std::size_t>(size));
    (void)BIO_reset(outgoing_);
    return sent;
  }

  bool Fill() {
    std::array<char, 16384> buffer{};
    const ssize_t count = ReadRaw(buffer.data(), buffer.size());
    return count > 0 && BIO_write(incoming_, buffer.data(), static_cast<int>(count)) == static_cast<int>(count);
  }

  std::mutex mutex_;
  std::atomic<bool> stopped_{false};
  int socket_;
  std::unique_ptr<SSL, decltype(&SSL_free)> ssl_;
  BIO* incoming_ = nullptr;
  BIO* outgoing_ = nullptr;
};

RawServer::RawServer(RawServerOptions options) : options_(std::move(options)) {
  if (!options_.certificate.certificatePem.empty()) tls_ = std::make_unique<Tls>(options_);
  port_ = options_.port;
  listener_ = Listen(options_.address, port_);
  acceptor_ = std::thread([this] { Accept(); });
}

RawServer::~RawServer() {
  listening_ = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    for (const auto& peer : peers_) peer->Stop();
  }
  changed_.notify_all();
  acceptor_.join();
  for (std::thread& server : servers_) server.join();
}

unsigned RawServer::Connections() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<unsigned>(peers_.size());
}

std::vector<RawRequest> RawServer::Requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

bool RawServer::WaitForConnections(unsigned count, std::chrono::milliseconds wait) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, wait, [this, count] { return peers_.size() >= count; });
}

bool RawServer::WaitUntilPlayed(std::size_t count, std::chrono::milliseconds wait) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, wait, [this, count] { return played_ >= count; });
}

void RawServer::Accept() {
  while (listening_) {
    if (!Readable(listener_, kPollMilliseconds) || !listening_) continue;
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    const std::lock_guard<std::mutex> lock(mutex_);
    peers_.push_back(std::make_unique<Peer>(socket, static_cast<unsigned>(peers_.size() + 1)));
    Peer& peer = *peers_.back();
    if (stopping_) peer.Stop();
    servers_.emplace_back([this, &peer] { Serve(peer); });
    changed_.notify_all();
  }
  ::close(listener_);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    listener_ = -1;
  }
  changed_.notify_all();
}

namespace {

// The length that the request head promises; 0 without one.
std::size_t ContentLength(const std::string& head) {
  const auto field = boost::ifind_first(head, "\r\ncontent-length:");
  return field.empty() ? 0 : std::strtoul(std::string(field.end(), head.end()).c_str(), nullptr, 10);
}

}  // namespace

bool RawServer::StartTls(Peer& peer) {
  if (!tls_) return true;
  if (!peer.AcceptTls(tls_->context.get())) return false;
  ++(peer.ResumedSession() ? resumedHandshakes_ : fullHandshakes_);
  return true;
}

void RawServer::Serve(Peer& peer) {
  std::string received;
  bool open = StartTls(peer) && Play(peer, options_.onConnect, {});
  while (open) {
    std::size_t headEnd = received.find("\r\n\r\n");
    while (headEnd == std::string::npos && (open = peer.Read(received))) headEnd = received.find("\r\n\r\n");
    if (!open) break;
    constexpr std::size_t kBlankLine = 4;
    RawRequest request{peer.number, received.substr(0, headEnd + kBlankLine), {}};
    received.erase(0, headEnd + kBlankLine);
    const std::size_t length = ContentLength(request.head);
    while (received.size() < length && (open = peer.Read(received))) {
    }
    if (!open) break;
    request.body = received.substr(0, length);
    received.erase(0, length);

    RawActions actions{RawAction::Hang()};
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      requests_.push_back(request);
      if (requests_.size() <= options_.script.size()) actions = options_.script[requests_.size() - 1];
    }
    open = Play(peer, actions, request.MessageId());
    if (!open) peer.Close();
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++played_;
    }
    changed_.notify_all();
  }
  peer.Close();
}

bool RawServer::Play(Peer& peer, const RawActions& actions, const std::string& messageId) {
  for (const RawAction& action : actions) {
    if (!PlayOne(peer, action, messageId)) return false;
  }
  return true;
}

bool RawServer::PlayOne(Peer& peer, const RawAction& action, const std::string& messageId) {
  switch (action.kind) {
    case RawAction::Kind::kSend:
      return peer.Write(WithMessageId(action.bytes, messageId));
    case RawAction::Kind::kFlood:
      while (peer.Write(action.bytes)) {
      }
      return false;
    case RawAction::Kind::kTickets:
      while (peer.WriteTicket()) {
      }
      return false;
    case RawAction::Kind::kSendLast: {
      peer.HoldBack();
      const bool sent = peer.Write(WithMessageId(action.bytes, messageId));
      peer.HalfClose();
      return sent;
    }
    case RawAction::Kind::kHalfClose:
      peer.HalfClose();
      return true;
    case RawAction::Kind::kCloseTls:
      peer.SayGoodbye();
      return false;
    case RawAction::Kind::kClose:
      return false;
    case RawAction::Kind::kReset:
      peer.Reset();
      return false;
    case RawAction::Kind::kAwait:
      peer.Await();
      return true;
    case RawAction::Kind::kSleep:
      WaitUntilStopped(action.wait);
      return true;
    case RawAction::Kind::kStopListen: {
      listening_ = false;
      std::unique_lock<std::mutex> lock(mutex_);
      changed_.wait(lock, [this] { return listener_ < 0; });
      return true;
    }
    case RawAction::Kind::kHang:
      WaitUntilStopped(kForever);
      return false;
  }
  return false;
}

void RawServer::WaitUntilStopped(std::chrono::milliseconds atMost) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait_for(lock, atMost, [this] { return stopping_; });
}

}  // namespace Orvane::testing
