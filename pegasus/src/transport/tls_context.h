// The OpenSSL side of an SSLContext: versions, certificates and verification of the connections made from it.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <openssl/ssl.h>

#include <memory>

namespace Pegasus::transport {

struct SslContextDeleter {
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
struct SslDeleter {
  void operator()(SSL* ssl) const { SSL_free(ssl); }
};

using SslContextPointer = std::unique_ptr<SSL_CTX, SslContextDeleter>;
using SslPointer = std::unique_ptr<SSL, SslDeleter>;

/// @throws SSLException when the files that `settings` names cannot be used
SslContextPointer MakeSslContext(const SSLContext& settings);

/// A client's connection state. `callback` is borrowed and has to outlive the handshake.
/// @throws SSLException when OpenSSL cannot make one
SslPointer MakeSsl(SSL_CTX* context, SSLCallbackInfo& callback);

}  // namespace Pegasus::transport
