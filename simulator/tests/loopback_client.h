// Clients of the tests that send bytes as they stand, over TCP and over TLS, to a port of 127.0.0.1. Every wait is
// bounded; a client that waited in vain has just read less.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace Orvane::simulator::tests {

class PlainClient {
 public:
  /// @throws std::runtime_error when nobody listens there
  explicit PlainClient(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const timeval limit{10, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      ::close(socket_);
      throw std::runtime_error("cannot connect");
    }
  }
  ~PlainClient() { ::close(socket_); }
  PlainClient(const PlainClient&) = delete;
  PlainClient& operator=(const PlainClient&) = delete;

  /// False when the server took less than all of it.
  bool Send(const std::string& text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
      const ssize_t count = ::send(socket_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
      if (count <= 0) return false;
      sent += static_cast<std::size_t>(count);
    }
    return true;
  }

  /// Nothing more will be sent.
  void EndSending() { ::shutdown(socket_, SHUT_WR); }

  /// Everything up to and including this text; less when the server ends the connection or stays silent.
  std::string ReadUntil(const std::string& end) {
    std::string text;
    std::array<char, 4096> buffer{};
    while (text.find(end) == std::string::npos) {
      const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), 0);
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

  int Socket() const { return socket_; }

 private:
  int socket_;
};

/// Takes any certificate.
class TlsClient {
 public:
  /// @throws std::runtime_error when nobody listens there or there is no TLS
  explicit TlsClient(std::uint16_t port)
      : plain_(port),
        context_(SSL_CTX_new(TLS_client_method()), SSL_CTX_free),
        tls_(SSL_new(context_.get()), SSL_free) {
    SSL_set_fd(tls_.get(), plain_.Socket());
    if (SSL_connect(tls_.get()) != 1) throw std::runtime_error("no TLS");
  }

  bool Send(const std::string& text) {
    return SSL_write(tls_.get(), text.data(), static_cast<int>(text.size())) == static_cast<int>(text.size());
  }

  std::string ReadUntil(const std::string& end) {
    std::string text;
    std::array<char, 4096> buffer{};
    while (text.find(end) == std::string::npos) {
      const int count = SSL_read(tls_.get(), buffer.data(), static_cast<int>(buffer.size()));
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  PlainClient plain_;
  std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
  std::unique_ptr<SSL, decltype(&SSL_free)> tls_;
};

}  // namespace Orvane::simulator::tests
