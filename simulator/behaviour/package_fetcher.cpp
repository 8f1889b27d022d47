// One thread carries all downloads, each a chain of asynchronous steps under one deadline. Boost.Asio and Boost.Beast
// stay inside this file.
#include "behaviour/package_fetcher.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <cerrno>
#include <list>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "behaviour/package_uri.h"

namespace Orvane::simulator {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using Tcp = asio::ip::tcp;
using ErrorCode = boost::system::error_code;
using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

// Of the head of an answer, and of the notes in a chunked body.
constexpr std::size_t kBufferLimit = 128 * 1024;

constexpr const char* kNoHost = "Firmware download operation failed: failed to contact host";
constexpr const char* kNoFile = "Firmware download operation failed: file does not exist";
constexpr const char* kTooSlow = "Firmware download operation failed: timeout";
constexpr const char* kLost = "DCSS_RC_RECV_FAIL: the connection was lost during the download";
constexpr const char* kNoTls = "Firmware download operation failed: no TLS connection with the host";
constexpr const char* kStopped = "Firmware download operation failed: the CMM was switched off";

std::string TooLarge(const FetchLimits& limits) {
  return "Firmware download operation failed: the package is larger than " + std::to_string(limits.bytes) + " bytes";
}

std::string Base64(const std::string& text) {
  std::vector<unsigned char> encoded((text.size() + 2) / 3 * 4 + 1);
  const int length = EVP_EncodeBlock(encoded.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
  return std::string(encoded.begin(), encoded.begin() + length);
}

FetchResult Verify(const std::string& document) {
  try {
    return ReadPackage(document);
  } catch (const InstallError& error) {
    return std::string(error.what());
  } catch (const std::exception&) {  // a document that no memory holds
    return std::string("Flashing ended with failure: the package cannot be read");
  }
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return number_; }

 private:
  int number_;
};

// Only regular files: reading a pipe or a device might never end.
FetchResult FetchFile(const std::string& path, const FetchLimits& limits) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (file.Number() < 0) {
    return std::string(errno == ENOENT || errno == ENOTDIR ? kNoFile
                                                           : "Firmware download operation failed: file cannot be read");
  }
  if (::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::string("Firmware download operation failed: this is no regular file");
  }
  std::string document;
  std::array<char, 65536> block{};
  while (true) {
    const ssize_t count = ::read(file.Number(), block.data(), block.size());
    if (count < 0) return std::string("Firmware download operation failed: file cannot be read");
    if (count == 0) return Verify(document);
    document.append(block.data(), static_cast<std::size_t>(count));
    if (document.size() > limits.bytes) return TooLarge(limits);
  }
}

// What can be ended from outside, and ends at most once.
class Download {
 public:
  virtual ~Download() = default;
  virtual void Start() = 0;
  virtual void Stop() = 0;

 protected:
  Download() = default;
  Download(const Download&) = delete;
  Download& operator=(const Download&) = delete;
};

template <typename Stream>
class HttpDownload : public Download, public std::enable_shared_from_this<HttpDownload<Stream>> {
 public:
  HttpDownload(asio::io_context& context, Stream stream, PackageUri uri, const FetchLimits& limits,
               std::function<void(FetchResult)> done)
      : resolver_(context),
        deadline_(context),
        stream_(std::move(stream)),
        uri_(std::move(uri)),
        limits_(limits),
        done_(std::move(done)) {}

  void Start() override {
    const auto self = this->shared_from_this();
    deadline_.expires_after(limits_.time);
    deadline_.async_wait([self](const ErrorCode& error) {
      if (!error) self->End(std::string(kTooSlow));
    });
    resolver_.async_resolve(uri_.host, std::to_string(uri_.port),
                            [self](const ErrorCode& error, const Tcp::resolver::results_type& found) {
                              if (self->Fails(error, kNoHost)) return;
                              self->Connect(found);
                            });
  }

  void Stop() override { End(std::string(kStopped)); }

 private:
  void Connect(const Tcp::resolver::results_type& found) {
    beast::get_lowest_layer(stream_).async_connect(
        found, [self = this->shared_from_this()](const ErrorCode& error, const Tcp::endpoint&) {
          if (self->Fails(error, kNoHost)) return;
          self->Secure();
        });
  }

  void Secure() {
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      SSL_set_tlsext_host_name(stream_.native_handle(), uri_.host.c_str());
      stream_.async_handshake(asio::ssl::stream_base::client,
                              [self = this->shared_from_this()](const ErrorCode& error) {
                                if (self->Fails(error, kNoTls)) return;
                                self->Ask();
                              });
    } else {
      Ask();
    }
  }

  void Ask() {
    constexpr unsigned kHttp11 = 11;
    const bool isV6 = uri_.host.find(':') != std::string::npos;
    request_ = {http::verb::get, uri_.target, kHttp11};
    request_.set(http::field::host, (isV6 ? "[" + uri_.host + "]" : uri_.host) + ":" + std::to_string(uri_.port));
    request_.set(http::field::user_agent, "cmm");
    request_.set(http::field::connection, "close");
    if (!uri_.credentials.empty()) request_.set(http::field::authorization, "Basic " + Base64(uri_.credentials));
    http::async_write(stream_, request_, [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
      if (self->Fails(error, kLost)) return;
      self->Read();
    });
  }

  // Header and body apart: read in one go, a length that the host says in advance would slip through the limit.
  void Read() {
    parser_.body_limit(limits_.bytes);
    http::async_read_header(stream_, buffer_, parser_,
                            [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
                              if (error == http::error::body_limit) return self->End(TooLarge(self->limits_));
                              if (!self->Fails(error, kLost)) self->ReadBody();
                            });
  }

  void ReadBody() {
    http::async_read(stream_, buffer_, parser_, [self = this->shared_from_this()](const ErrorCode& error, std::size_t) {
      if (error == http::error::body_limit) return self->End(TooLarge(self->limits_));
      // Some servers end TLS without saying so; a whole message is whole all the same.
      if (error && !self->parser_.is_done()) return self->End(std::string(kLost));
      self->Judge();
    });
  }

  void Judge() {
    const http::status status = parser_.get().result();
    if (status == http::status::ok) return End(Verify(parser_.get().body()));
    if (status == http::status::not_found || status == http::status::gone) return End(std::string(kNoFile));
    End("Firmware download operation failed: the host answered with HTTP status " +
        std::to_string(parser_.get().result_int()));
  }

  bool Fails(const ErrorCode& error, const char* text) {
    if (error) End(std::string(text));
    return error || !done_;
  }

  void End(FetchResult result) {
    if (!done_) return;
    deadline_.cancel();
    resolver_.cancel();
    beast::get_lowest_layer(stream_).close();
    std::exchange(done_, nullptr)(std::move(result));
  }

  Tcp::resolver resolver_;
  asio::steady_timer deadline_;
  Stream stream_;
  const PackageUri uri_;
  const FetchLimits limits_;
  std::function<void(FetchResult)> done_;
  http::request<http::empty_body> request_;
  beast::flat_buffer buffer_{kBufferLimit};
  http::response_parser<http::string_body> parser_;
};

}  // namespace

class PackageFetcher::Impl {
 public:
  explicit Impl(const FetchLimits& limits) : limits_(limits), thread_([this] { context_.run(); }) {}

  ~Impl() {
    asio::post(context_, [this] {
      isStopped_ = true;
      for (const std::weak_ptr<Download>& entry : downloads_) {
        if (const auto download = entry.lock()) download->Stop();
      }
      work_.reset();
    });
    thread_.join();
  }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void Fetch(const std::string& uri, std::function<void(FetchResult)> done) {
    asio::post(context_, [this, uri, done = std::move(done)]() mutable { Begin(uri, std::move(done)); });
  }

 private:
  void Begin(const std::string& text, std::function<void(FetchResult)> done) {
    const std::optional<PackageUri> uri = ParsePackageUri(text);
    if (!uri || isStopped_) return done(std::string(isStopped_ ? kStopped : kNoHost));
    if (uri->scheme == PackageUri::Scheme::kFile) return done(FetchFile(uri->target, limits_));
    std::shared_ptr<Download> download;
    if (uri->scheme == PackageUri::Scheme::kHttps) {
      download = std::make_shared<HttpDownload<TlsStream>>(context_, TlsStream(asio::make_strand(context_), tls_), *uri,
                                                           limits_, std::move(done));
    } else {
      download = std::make_shared<HttpDownload<PlainStream>>(context_, PlainStream(asio::make_strand(context_)), *uri,
                                                             limits_, std::move(done));
    }
    downloads_.remove_if([](const std::weak_ptr<Download>& entry) { return entry.expired(); });
    downloads_.push_back(download);
    download->Start();
  }

  const FetchLimits limits_;
  asio::io_context context_;
  asio::ssl::context tls_{asio::ssl::context::tls_client};
  asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
  // Used on the thread only.
  std::list<std::weak_ptr<Download>> downloads_;
  bool isStopped_ = false;
  std::thread thread_;
};

PackageFetcher::PackageFetcher(const FetchLimits& limits) : impl_(std::make_unique<Impl>(limits)) {}
PackageFetcher::~PackageFetcher() = default;

void PackageFetcher::Fetch(const std::string& uri, std::function<void(FetchResult)> done) {
  impl_->Fetch(uri, std::move(done));
}

}  // namespace Orvane::simulator
