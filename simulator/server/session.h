// The connections of the server: HTTP messages over TCP and TLS, request by request. Boost.Asio and Boost.Beast stay
// inside this header and server.cpp; everything that CIM says about HTTP is in http_message.
#pragma once

#include <algorithm>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "server/http_message.h"
#include "server/operations.h"

namespace Orvane::simulator {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using Tcp = asio::ip::tcp;
using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;
using ErrorCode = boost::system::error_code;

/// A connection as far as it can be ended from outside.
class Connection {
 public:
  virtual ~Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Where Close must be called.
  virtual asio::any_io_executor Executor() = 0;
  /// Closes the socket whatever goes on on it.
  virtual void Close() = 0;

 protected:
  Connection() = default;
};

/// The connections that are open. Thread-safe.
class Connections {
 public:
  void Add(const std::shared_ptr<Connection>& connection) {
    const std::lock_guard<std::mutex> lock(mutex_);
    connections_.erase(std::remove_if(connections_.begin(), connections_.end(),
                                      [](const std::weak_ptr<Connection>& entry) { return entry.expired(); }),
                       connections_.end());
    connections_.push_back(connection);
  }

  std::vector<std::shared_ptr<Connection>> Open() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::shared_ptr<Connection>> open;
    for (const std::weak_ptr<Connection>& entry : connections_) {
      if (auto connection = entry.lock()) open.push_back(std::move(connection));
    }
    return open;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::weak_ptr<Connection>> connections_;
};

/// What all connections use.
struct Service {
  using Action = std::function<void()>;

  Authentication authentication;
  Operations operations;
  Answerer answer;
  /// Told of every finished TLS handshake.
  std::function<void(bool resumed)> onHandshake;
  /// Calls an action of a connection, where Close must be called, after a simulated time.
  std::function<void(std::chrono::milliseconds delay, std::shared_ptr<Connection> connection, Action action)> later;
  /// Listens no more for a simulated time, ends all connections but this one, and then calls an action of this one.
  std::function<void(std::chrono::milliseconds duration, std::shared_ptr<Connection> spared, Action action)> refuse;
};

constexpr std::uint32_t kHeaderLimit = 64 * 1024;
// What is held of a request beside its body: a head, or the notes in a chunked body, none of which may be longer.
constexpr std::size_t kBufferLimit = 2 * kHeaderLimit;
constexpr std::uint64_t kBodyLimit = 8 * 1024 * 1024;
constexpr auto kIdleLimit = std::chrono::seconds(120);
constexpr auto kDiscardLimit = std::chrono::seconds(5);
constexpr std::size_t kDiscardBlock = 64 * 1024;

inline std::string_view View(beast::string_view text) { return {text.data(), text.size()}; }

// The bytes of a message as they would go onto the wire.
inline std::string TextOf(http::response<http::string_body>& message) {
  std::string text;
  http::response_serializer<http::string_body> serializer(message);
  ErrorCode error;
  while (!serializer.is_done() && !error) {
    serializer.next(error, [&](ErrorCode& failed, const auto& buffers) {
      failed = {};
      text += beast::buffers_to_string(buffers);
      serializer.consume(beast::buffer_bytes(buffers));
    });
  }
  return text;
}

// One connection: requests are read and answered one after the other until either side ends it. It lives as long as an
// operation on it is pending.
template <typename Stream>
class Session : public Connection, public std::enable_shared_from_this<Session<Stream>> {
 public:
  Session(Stream stream, Service& service) : stream_(std::move(stream)), service_(service) {}

  asio::any_io_executor Executor() override { return stream_.get_executor(); }

  void Close() override { beast::get_lowest_layer(stream_).close(); }

  void Start() {
    // An answer goes out in several pieces; none of them waits until the client has confirmed the one before.
    ErrorCode ignored;
    beast::get_lowest_layer(stream_).socket().set_option(Tcp::no_delay(true), ignored);
    Limit();
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      stream_.async_handshake(asio::ssl::stream_base::server,
                              [self = this->shared_from_this()](const ErrorCode& error) {
                                if (error) return;
                                self->service_.onHandshake(SSL_session_reused(self->stream_.native_handle()) == 1);
                                self->ReadHeader();
                              });
    } else {
      ReadHeader();
    }
  }

 private:
  void Limit() { beast::get_lowest_layer(stream_).expires_after(kIdleLimit); }

  void ReadHeader() {
    Limit();
    parser_.emplace();
    parser_->header_limit(kHeaderLimit);
    parser_->body_limit(kBodyLimit);
    http::async_read_header(
        stream_, buffer_, *parser_,
        [self = this->shared_from_this()](const ErrorCode& error, std::size_t) { self->OnHeader(error); });
  }

  void OnHeader(const ErrorCode& error) {
    if (error) return RefuseOrEnd(error);
    if (beast::iequals(parser_->get()[http::field::expect], "100-continue")) {
      const auto text = std::make_shared<std::string>("HTTP/1.1 100 Continue\r\n\r\n");
      asio::async_write(stream_, asio::buffer(*text),
                        [self = this->shared_from_this(), text](const ErrorCode& failed, std::size_t) {
                          if (!failed) self->ReadBody();
                        });
      return;
    }
    ReadBody();
  }

  void ReadBody() {
    http::async_read(stream_, buffer_, *parser_,
                     [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
                       if (error) return self->RefuseOrEnd(error);
                       self->Answer();
                     });
  }

  // What is no HTTP, or too much of it, is told so and ends the connection; a connection that broke just ends.
  void RefuseOrEnd(const ErrorCode& error) {
    if (error == http::error::body_limit) return Refuse(http::status::payload_too_large);
    if (error == http::error::header_limit) return Refuse(http::status::request_header_fields_too_large);
    if (error == http::error::end_of_stream || error == http::error::partial_message) return End();
    if (error.category() == make_error_code(http::error::end_of_stream).category()) {
      return Refuse(http::status::bad_request);
    }
  }

  void Refuse(http::status status) {
    HttpReply reply;
    reply.status = static_cast<int>(status);
    keepAlive_ = false;
    refused_ = true;
    Compose(std::move(reply), false);
    Write();
  }

  void Answer() {
    http::request<http::string_body> message = parser_->release();
    keepAlive_ = message.keep_alive();
    // Chunks only for clients that say they know trailers; others get the length in advance.
    const bool chunked =
        message.version() >= 11 && beast::http::token_list(message[http::field::te]).exists("trailers");
    HttpRequest request;
    request.method = View(message.method_string());
    request.target = View(message.target());
    request.contentType = View(message[http::field::content_type]);
    request.cimOperation = View(message["CIMOperation"]);
    request.cimMethod = View(message["CIMMethod"]);
    request.cimObject = View(message["CIMObject"]);
    request.authorization = View(message[http::field::authorization]);
    request.body = std::move(message.body());
    Deliver(AnswerHttp(request, service_.authentication, service_.answer), chunked);
  }

  void Deliver(HttpReply reply, bool chunked) {
    const auto delay = std::exchange(reply.delivery.delay, {});
    const auto refusal = std::exchange(reply.delivery.refusal, std::nullopt);
    if (delay.count() > 0) {
      return service_.later(delay, this->shared_from_this(), DeliverAgain(std::move(reply), chunked, refusal));
    }
    if (refusal) {
      keepAlive_ = false;
      return service_.refuse(*refusal, this->shared_from_this(), DeliverAgain(std::move(reply), chunked, {}));
    }
    if (reply.delivery.form == Delivery::Form::kNothing) return Cut();
    const Delivery delivery = reply.delivery;
    Compose(std::move(reply), chunked);
    if (delivery.form == Delivery::Form::kCut) return WriteCut(delivery.bodyBytes);
    Write();
  }

  Service::Action DeliverAgain(HttpReply reply, bool chunked, std::optional<std::chrono::milliseconds> refusal) {
    reply.delivery.refusal = refusal;
    return [self = this->shared_from_this(), kept = std::make_shared<HttpReply>(std::move(reply)), chunked] {
      self->Deliver(std::move(*kept), chunked);
    };
  }

  void Compose(HttpReply reply, bool chunked) {
    response_ = {};
    response_.result(static_cast<unsigned>(reply.status));
    if (!reply.reason.empty()) response_.reason(reply.reason);
    if (reply.status == static_cast<int>(http::status::ok)) {
      response_.set(http::field::content_type, "application/xml; charset=utf-8");
      response_.set("CIMOperation", "MethodResponse");
      if (chunked) response_.set(http::field::trailer, "CIMStatusCode, CIMStatusCodeDescription, Content-Language");
      response_.chunked(chunked);
    }
    if (reply.challenge) response_.set(http::field::www_authenticate, "Basic realm=\"cmm\"");
    if (!reply.cimError.empty()) response_.set("CIMError", reply.cimError);
    if (reply.status == static_cast<int>(http::status::method_not_allowed)) response_.set(http::field::allow, "POST");
    for (const auto& [name, value] : reply.headers) response_.set(name, value);
    response_.body() = std::move(reply.body);
    response_.keep_alive(keepAlive_);
    // Also with an empty body, and with every status: clients would wait for more.
    if (!response_.chunked()) response_.content_length(response_.body().size());
  }

  void Write() {
    Limit();
    http::async_write(stream_, response_, [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
      if (error) return;
      if (self->keepAlive_) return self->ReadHeader();
      if (self->refused_) return self->Discard();
      self->End();
    });
  }

  // The head as it stands, a part of what follows it, and then nothing more.
  void WriteCut(std::uint64_t bodyBytes) {
    const auto text = std::make_shared<std::string>(TextOf(response_));
    const std::size_t head = text->find("\r\n\r\n") + 4;
    text->resize(std::min<std::uint64_t>(head + bodyBytes, text->size() - 1));
    Limit();
    asio::async_write(stream_, asio::buffer(*text),
                      [self = this->shared_from_this(), text](const ErrorCode&, std::size_t) { self->Cut(); });
  }

  // Ends the connection as a server does that is no more: without a farewell, also below TLS.
  void Cut() {
    ErrorCode ignored;
    beast::get_lowest_layer(stream_).socket().shutdown(Tcp::socket::shutdown_both, ignored);
    beast::get_lowest_layer(stream_).socket().close(ignored);
  }

  void End() {
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      Limit();
      stream_.async_shutdown([self = this->shared_from_this()](const ErrorCode&) {});
    } else {
      ErrorCode ignored;
      stream_.socket().shutdown(Tcp::socket::shutdown_send, ignored);
    }
  }

  // After a request that was not read to its end. A socket closed on unread bytes is reset, and the client may lose the
  // reply by that; so what still comes is read and dropped for a short time, below TLS if there is any.
  void Discard() {
    ErrorCode ignored;
    beast::get_lowest_layer(stream_).socket().shutdown(Tcp::socket::shutdown_send, ignored);
    beast::get_lowest_layer(stream_).expires_after(kDiscardLimit);
    buffer_.clear();
    DiscardBlock();
  }

  void DiscardBlock() {
    beast::get_lowest_layer(stream_).async_read_some(
        buffer_.prepare(kDiscardBlock), [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
          if (!error) self->DiscardBlock();
        });
  }

  Stream stream_;
  Service& service_;
  beast::flat_buffer buffer_{kBufferLimit};
  std::optional<http::request_parser<http::string_body>> parser_;
  http::response<http::string_body> response_;
  bool keepAlive_ = true;
  bool refused_ = false;
};

}  // namespace Orvane::simulator
