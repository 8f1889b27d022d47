// A TLS connection over a TCP connection, with OpenSSL working on memory only.
#include "transport/tls_stream.h"

#include <Pegasus/Common/Exception.h>
#include <openssl/bio.h>
#include <openssl/err.h>

#include <algorithm>
#include <limits>

#include "base/limits.h"

namespace Pegasus::transport {

TlsStream::TlsStream(std::unique_ptr<TcpStream> tcp, const Endpoint& endpoint, const SSLContext& settings)
    : tcp_(std::move(tcp)),
      settings_(settings),
      verification_(settings_.getSSLCertificateVerifyFunction(), settings_.getCRLStore()),
      key_(endpoint, settings_),
      sessions_(TlsSessionCache::OfProcess()),
      callbacks_{&verification_, sessions_.get(), &key_, false},
      context_(MakeSslContext(settings_)),
      ssl_(MakeSsl(context_.get(), callbacks_)),
      offered_(SSL_get_session(ssl_.get()) != nullptr),
      buffer_(limits::kReadBytes),
      incoming_(BIO_new(BIO_s_mem())),
      outgoing_(BIO_new(BIO_s_mem())) {
  // The connection state owns both from here on, and takes null for either well.
  SSL_set_bio(ssl_.get(), incoming_, outgoing_);
  if (incoming_ == nullptr || outgoing_ == nullptr) {
    throw SSLException(String("Could not make an SSL connection."));
  }
}

IoStatus TlsStream::Flush(Deadline deadline) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(outgoing_, &data);
  if (size <= 0) return IoStatus::kOk;
  const IoStatus status = tcp_->Write(std::string_view(data, static_cast<std::size_t>(size)), deadline);
  (void)BIO_reset(outgoing_);
  return status;
}

IoStatus TlsStream::Fill(Deadline deadline) {
  if (deadline.HasPassed()) return IoStatus::kTimeout;
  std::size_t count = 0;
  const IoStatus status = tcp_->Read(buffer_.data(), buffer_.size(), count, deadline);
  if (status != IoStatus::kOk) return status;
  const int written = BIO_write(incoming_, buffer_.data(), static_cast<int>(count));
  return written == static_cast<int>(count) ? IoStatus::kOk : IoStatus::kClosed;
}

IoStatus TlsStream::Resume(int result, Deadline deadline) {
  const int reason = SSL_get_error(ssl_.get(), result);
  const IoStatus flushed = Flush(deadline);
  if (reason != SSL_ERROR_WANT_READ) return IoStatus::kClosed;
  return flushed == IoStatus::kOk ? Fill(deadline) : flushed;
}

IoStatus TlsStream::Handshake(std::uint32_t timeout) {
  const Deadline whole = Deadline::After(std::chrono::milliseconds(timeout) * limits::kHandshakeTimeouts);
  for (;;) {
    ERR_clear_error();
    const int result = SSL_do_handshake(ssl_.get());
    const Deadline wait = whole.Earlier(Deadline::After(timeout));
    if (result == 1) return Flush(wait);
    const IoStatus status = Resume(result, wait);
    if (status == IoStatus::kOk) continue;
    sessions_->Drop(key_);
    return status;
  }
}

IoStatus TlsStream::Write(std::string_view bytes, Deadline deadline) {
  // One record's worth at a time, so that what waits to be sent stays small.
  constexpr std::size_t kRecord = 16U * 1024U;
  while (!bytes.empty()) {
    ERR_clear_error();
    const std::size_t part = std::min(bytes.size(), kRecord);
    const int result = SSL_write(ssl_.get(), bytes.data(), static_cast<int>(part));
    const IoStatus status = result > 0 ? Flush(deadline) : Resume(result, deadline);
    if (status != IoStatus::kOk) return status;
    if (result > 0) bytes.remove_prefix(static_cast<std::size_t>(result));
  }
  return IoStatus::kOk;
}

IoStatus TlsStream::Read(char* buffer, std::size_t size, std::size_t& count, Deadline deadline) {
  count = 0;
  const int wanted = static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
  for (;;) {
    ERR_clear_error();
    const int result = SSL_read(ssl_.get(), buffer, wanted);
    if (result > 0) {
      count = static_cast<std::size_t>(result);
      return IoStatus::kOk;
    }
    const IoStatus status = Resume(result, deadline);
    if (status != IoStatus::kOk) return status;
  }
}

bool TlsStream::IsIdle() {
  // Bytes on the socket need not be data: a server may send session tickets at any time.
  for (std::size_t taken = 0; taken < limits::kIdleBytes;) {
    std::size_t received = 0;
    const IoStatus status = tcp_->ReadNow(buffer_.data(), buffer_.size(), received);
    if (status == IoStatus::kClosed) return false;
    if (status == IoStatus::kOk && BIO_write(incoming_, buffer_.data(), static_cast<int>(received)) <= 0) return false;
    char byte = 0;
    ERR_clear_error();
    const int result = SSL_read(ssl_.get(), &byte, 1);
    if (result > 0 || SSL_get_error(ssl_.get(), result) != SSL_ERROR_WANT_READ) return false;
    if (status == IoStatus::kTimeout) return true;
    taken += received;
  }
  return false;
}

}  // namespace Pegasus::transport
