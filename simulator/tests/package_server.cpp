// One thread serves one connection after the other with blocking calls; its sockets are bounded in time.
#include "package_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "server/certificate.h"

namespace Orvane::simulator::tests {

namespace {

using TlsContext = std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)>;
using Tls = std::unique_ptr<SSL, decltype(&SSL_free)>;

TlsContext MakeTlsContext() {
  TlsContext context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  const ServerCertificate made = MakeServerCertificate("127.0.0.1");
  const auto read = [](const std::string& pem) {
    return std::unique_ptr<BIO, decltype(&BIO_free)>(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())),
                                                     BIO_free);
  };
  const std::unique_ptr<X509, decltype(&X509_free)> certificate(
      PEM_read_bio_X509(read(made.certificatePem).get(), nullptr, nullptr, nullptr), X509_free);
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
      PEM_read_bio_PrivateKey(read(made.privateKeyPem).get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
  if (SSL_CTX_use_certificate(context.get(), certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
    throw std::runtime_error("no certificate");
  }
  return context;
}

}  // namespace

class PackageServer::Impl {
 public:
  Impl(Kind kind, std::string answer)
      : kind_(kind),
        answer_(std::move(answer)),
        tls_(MakeTlsContext()),
        listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 || ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      throw std::runtime_error("cannot listen");
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Serve(); });
  }

  ~Impl() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
    for (const int socket : silent_) ::close(socket);
  }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  std::string Uri(const std::string& access) const {
    return std::string(kind_ == Kind::kHttps ? "https" : "http") + "://" + access +
           "127.0.0.1:" + std::to_string(port_) + "/path/p.pkg?a=1&b=%20";
  }

  std::vector<std::string> Requests() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
  }

 private:
  void Serve() {
    while (true) {
      const int socket = ::accept(listener_, nullptr, nullptr);
      if (socket < 0) return;
      const timeval limit{10, 0};
      ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
      ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
      if (kind_ == Kind::kSilent) {
        silent_.push_back(socket);
        continue;
      }
      Answer(socket);
      ::shutdown(socket, SHUT_WR);
      ::close(socket);
    }
  }

  void Answer(int socket) {
    const Tls tls(kind_ == Kind::kHttps ? SSL_new(tls_.get()) : nullptr, SSL_free);
    if (tls) {
      SSL_set_fd(tls.get(), socket);
      if (SSL_accept(tls.get()) != 1) return;
    }
    std::string request;
    std::array<char, 4096> block{};
    // The greeting of TLS, which is no HTTP, has no end to wait for.
    const auto isTls = [&request] { return !request.empty() && request.front() == '\x16'; };
    while (request.find("\r\n\r\n") == std::string::npos && !isTls()) {
      const ssize_t count = tls ? SSL_read(tls.get(), block.data(), static_cast<int>(block.size()))
                                : ::recv(socket, block.data(), block.size(), 0);
      if (count <= 0) break;
      request.append(block.data(), static_cast<std::size_t>(count));
    }
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      requests_.push_back(request);
    }
    for (std::size_t sent = 0; sent < answer_.size();) {
      const std::size_t left = answer_.size() - sent;
      const ssize_t count = tls ? SSL_write(tls.get(), answer_.data() + sent, static_cast<int>(left))
                                : ::send(socket, answer_.data() + sent, left, MSG_NOSIGNAL);
      if (count <= 0) return;
      sent += static_cast<std::size_t>(count);
    }
  }

  const Kind kind_;
  const std::string answer_;
  TlsContext tls_;
  int listener_;
  std::uint16_t port_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::vector<int> silent_;  // used by the thread, then by the destructor
  std::thread thread_;
};

PackageServer::PackageServer(Kind kind, std::string answer) : impl_(std::make_unique<Impl>(kind, std::move(answer))) {}
PackageServer::~PackageServer() = default;

std::string PackageServer::Answer(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

std::string PackageServer::Uri(const std::string& access) const { return impl_->Uri(access); }
std::vector<std::string> PackageServer::Requests() const { return impl_->Requests(); }

}  // namespace Orvane::simulator::tests
