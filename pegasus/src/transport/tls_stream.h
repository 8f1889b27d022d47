// A TLS connection over a TCP connection. OpenSSL only turns bytes into bytes here; sending, receiving and waiting are
// the TCP stream's.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <openssl/ssl.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "transport/stream.h"
#include "transport/tcp_stream.h"
#include "transport/tls_context.h"

namespace Pegasus::transport {

class TlsStream : public Stream {
 public:
  /// @param endpoint what `tcp` is connected to
  /// @throws SSLException when the files that `settings` names cannot be used
  TlsStream(std::unique_ptr<TcpStream> tcp, const Endpoint& endpoint, const SSLContext& settings);

  /// Offers the session of an earlier connection to the same server, if there is one. A handshake that fails forgets
  /// that session.
  /// @param timeout milliseconds for each wait, of which the whole may take limits::kHandshakeTimeouts
  IoStatus Handshake(std::uint32_t timeout);
  /// After a failed handshake: the server broke off before it showed a certificate, although a session was offered, so
  /// that it may well accept a full handshake.
  bool FailedOverSession() const { return offered_ && !callbacks_.sawCertificate; }

  IoStatus Write(std::string_view bytes, Deadline deadline) override;
  IoStatus Read(char* buffer, std::size_t size, std::size_t& count, Deadline deadline) override;
  bool IsIdle() override;

 private:
  /// Sends what OpenSSL has for the server.
  IoStatus Flush(Deadline deadline);
  /// Waits for bytes from the server and hands them to OpenSSL. Looks at the deadline even when bytes are there: what
  /// arrives may be no data at all, so a server that sends on and on must not get round the time-out.
  IoStatus Fill(Deadline deadline);
  /// What to do after a call of OpenSSL returned `result` without success: kOk to repeat it.
  IoStatus Resume(int result, Deadline deadline);

  std::unique_ptr<TcpStream> tcp_;
  SSLContext settings_;
  SSLCallbackInfo verification_;
  TlsSessionKey key_;
  std::shared_ptr<TlsSessionCache> sessions_;
  TlsCallbacks callbacks_;
  SslContextPointer context_;
  SslPointer ssl_;
  bool offered_;
  std::vector<char> buffer_;
  BIO* incoming_;
  BIO* outgoing_;
};

}  // namespace Pegasus::transport
