// Plain POSIX sockets and OpenSSL: the test servers share no code with the client they test.
#include "testing/http_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Orvane::testing {

namespace {

constexpr unsigned char kTlsHandshakeRecord = 0x16;
constexpr std::size_t kReadSize = 65536;

/// Value of a header line, name compared without case; empty when absent.
std::string HeaderValue(const std::string& head, const std::string& name) {
  std::size_t line = head.find("\r\n");
  while (line != std::string::npos) {
    const std::size_t begin = line + 2;
    line = head.find("\r\n", begin);
    const std::string text = head.substr(begin, line == std::string::npos ? std::string::npos : line - begin);
    const std::size_t colon = text.find(':');
    if (colon != name.size()) continue;
    const bool same = std::equal(name.begin(), name.end(), text.begin(),
                                 [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
    if (!same) continue;
    const std::size_t value = text.find_first_not_of(" \t", colon + 1);
    return value == std::string::npos ? std::string() : text.substr(value);
  }
  return {};
}

void BlockSigpipe() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

template <typename T, void (*free)(T*)>
struct Free {
  void operator()(T* pointer) const { free(pointer); }
};

}  // namespace

struct HttpListener::Tls {
  explicit Tls(const Certificate& certificate) : context(SSL_CTX_new(TLS_server_method())) {
    if (!context) throw std::runtime_error("test server: no TLS context");
    std::unique_ptr<BIO, Free<BIO, BIO_free_all>> certificateBytes(
        BIO_new_mem_buf(certificate.certificatePem.data(), static_cast<int>(certificate.certificatePem.size())));
    std::unique_ptr<BIO, Free<BIO, BIO_free_all>> keyBytes(
        BIO_new_mem_buf(certificate.privateKeyPem.data(), static_cast<int>(certificate.privateKeyPem.size())));
    std::unique_ptr<X509, Free<X509, X509_free>> x509(
        PEM_read_bio_X509(certificateBytes.get(), nullptr, nullptr, nullptr));
    std::unique_ptr<EVP_PKEY, Free<EVP_PKEY, EVP_PKEY_free>> key(
        PEM_read_bio_PrivateKey(keyBytes.get(), nullptr, nullptr, nullptr));
    if (!x509 || !key || SSL_CTX_use_certificate(context.get(), x509.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1)
      throw std::runtime_error("test server: unusable certificate or key");
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  }
  std::unique_ptr<SSL_CTX, Free<SSL_CTX, SSL_CTX_free>> context;
};

/// One accepted socket. Its thread reads and writes; the listener may shut it down at any time.
class HttpListener::Connection {
 public:
  Connection(int fd, unsigned number) : fd_(fd), number_(number) {}
  ~Connection() {
    ssl_.reset();
    ::close(fd_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool StartTls(SSL_CTX* context) {
    ssl_.reset(SSL_new(context));
    return ssl_ && SSL_set_fd(ssl_.get(), fd_) == 1 && SSL_accept(ssl_.get()) == 1;
  }

  /// Appends what arrives next; false at the end of the stream or on an error.
  bool Read() {
    char bytes[kReadSize];
    ssize_t got = 0;
    if (ssl_) {
      got = SSL_read(ssl_.get(), bytes, static_cast<int>(sizeof bytes));
    } else {
      do {
        got = ::recv(fd_, bytes, sizeof bytes, 0);
      } while (got < 0 && errno == EINTR);
    }
    if (got <= 0) return false;
    input.append(bytes, static_cast<std::size_t>(got));
    return true;
  }

  bool Write(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
      const std::size_t part = std::min<std::size_t>(bytes.size() - sent, std::size_t{1} << 20);
      const ssize_t done =
          ssl_ ? static_cast<ssize_t>(SSL_write(ssl_.get(), bytes.data() + sent, static_cast<int>(part)))
               : ::send(fd_, bytes.data() + sent, part, MSG_NOSIGNAL);
      if (done <= 0) return false;
      sent += static_cast<std::size_t>(done);
    }
    return true;
  }

  void WaitForPeerToClose() {
    pollfd entry{fd_, POLLRDHUP, 0};
    while (::poll(&entry, 1, -1) < 0 && errno == EINTR) {
    }
  }

  enum class Pending { kNothing, kData, kEnd };
  Pending Peek() const {
    char byte = 0;
    const ssize_t got = ::recv(fd_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (got > 0) return Pending::kData;
    if (got == 0) return Pending::kEnd;
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? Pending::kNothing : Pending::kEnd;
  }

  void Shutdown() const { ::shutdown(fd_, SHUT_RDWR); }
  unsigned Number() const { return number_; }
  bool IsTls() const { return ssl_ != nullptr; }

  std::string input;
  bool closeNoted = false;  // guarded by the listener's lock
  std::thread thread;

 private:
  int fd_;
  unsigned number_;
  std::unique_ptr<SSL, Free<SSL, SSL_free>> ssl_;
};

HttpListener::HttpListener(Options options, Handler handler, Observer observer)
    : options_(std::move(options)), handler_(std::move(handler)), observer_(std::move(observer)) {
  if (options_.certificate) tls_ = std::make_unique<Tls>(*options_.certificate);
  sockaddr_storage address{};
  socklen_t size = 0;
  auto* v4 = reinterpret_cast<sockaddr_in*>(&address);
  auto* v6 = reinterpret_cast<sockaddr_in6*>(&address);
  if (inet_pton(AF_INET, options_.address.c_str(), &v4->sin_addr) == 1) {
    v4->sin_family = AF_INET;
    v4->sin_port = htons(options_.port);
    size = sizeof *v4;
  } else if (inet_pton(AF_INET6, options_.address.c_str(), &v6->sin6_addr) == 1) {
    v6->sin6_family = AF_INET6;
    v6->sin6_port = htons(options_.port);
    size = sizeof *v6;
  } else {
    throw std::runtime_error("test server: not a numeric address: " + options_.address);
  }
  listener_ = ::socket(address.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  if (listener_ >= 0) ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (listener_ < 0 || ::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      ::listen(listener_, 64) != 0 || ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    const int error = errno;
    if (listener_ >= 0) ::close(listener_);
    throw std::system_error(error, std::generic_category(),
                            "test server: cannot listen on " + options_.address + ":" + std::to_string(options_.port));
  }
  port_ = ntohs(address.ss_family == AF_INET ? v4->sin_port : v6->sin6_port);
  acceptor_ = std::thread([this] { Accept(); });
}

HttpListener::~HttpListener() {
  stopping_ = true;
  StopAccepting();
  acceptor_.join();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& connection : connections_) connection->Shutdown();
  }
  for (const auto& connection : connections_) connection->thread.join();
  // Not before: a handler may still stop the accepting, which must not meet another socket of this number.
  ::close(listener_);
}

void HttpListener::StopAccepting() { ::shutdown(listener_, SHUT_RDWR); }

void HttpListener::Accept() {
  BlockSigpipe();
  unsigned number = 0;
  while (!stopping_) {
    const int fd = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return;
    }
    if (stopping_) {
      ::close(fd);
      return;
    }
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    NoteClosedBefore();
    const std::lock_guard<std::mutex> lock(mutex_);
    observer_(Change::kOpened, ++number);
    connections_.push_back(std::make_unique<Connection>(fd, number));
    Connection& connection = *connections_.back();
    connection.thread = std::thread([this, &connection] { Serve(connection); });
  }
}

// A client that closes one connection and opens the next does so in this order, but two threads learn of it. So before
// a new connection is announced, those that have reached their end are.
void HttpListener::NoteClosedBefore() {
  constexpr int kPatience = 200;
  for (int attempt = 0; attempt < kPatience; ++attempt) {
    bool busy = false;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      for (const auto& connection : connections_) {
        if (connection->closeNoted) continue;
        const Connection::Pending pending = connection->Peek();
        if (pending == Connection::Pending::kData) busy = true;
        if (pending != Connection::Pending::kEnd) continue;
        connection->closeNoted = true;
        observer_(Change::kClosed, connection->Number());
      }
    }
    if (!busy) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void HttpListener::Serve(Connection& connection) {
  BlockSigpipe();
  Converse(connection);
  connection.Shutdown();
  const std::lock_guard<std::mutex> lock(mutex_);
  if (connection.closeNoted) return;
  connection.closeNoted = true;
  observer_(Change::kClosed, connection.Number());
}

void HttpListener::Converse(Connection& connection) {
  if (tls_ && !connection.StartTls(tls_->context.get())) {
    ERR_clear_error();
    const std::lock_guard<std::mutex> lock(mutex_);
    observer_(Change::kWrongProtocol, connection.Number());
    return;
  }
  while (!stopping_) {
    std::size_t end = 0;
    while ((end = connection.input.find("\r\n\r\n")) == std::string::npos) {
      if (!connection.Read()) return;
      if (!tls_ && static_cast<unsigned char>(connection.input.front()) == kTlsHandshakeRecord) {
        const std::lock_guard<std::mutex> lock(mutex_);
        observer_(Change::kWrongProtocol, connection.Number());
        return;
      }
    }
    HttpExchange exchange;
    exchange.connection = connection.Number();
    exchange.tls = connection.IsTls();
    exchange.head = connection.input.substr(0, end);
    const std::string length = HeaderValue(exchange.head, "content-length");
    const std::size_t size = length.empty() ? 0 : static_cast<std::size_t>(std::strtoull(length.c_str(), nullptr, 10));
    while (connection.input.size() < end + 4 + size) {
      if (!connection.Read()) return;
    }
    exchange.body = connection.input.substr(end + 4, size);
    connection.input.erase(0, end + 4 + size);
    const HttpReply reply = handler_(exchange);
    if (!connection.Write(reply.bytes)) return;
    if (reply.after == HttpReply::After::kHang) connection.WaitForPeerToClose();
    if (reply.after != HttpReply::After::kKeep) return;
  }
}

}  // namespace Orvane::testing
