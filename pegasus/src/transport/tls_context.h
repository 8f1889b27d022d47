// The OpenSSL side of an SSLContext: versions, certificates and verification of the connections made from it.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <openssl/ssl.h>

#include <memory>

#include "transport/tls_session_cache.h"

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

/// What the functions that OpenSSL calls back need to know of a connection.
struct TlsCallbacks {
  SSLCallbackInfo* verification;  ///< judges the server's certificates
  TlsSessionCache* sessions;      ///< gets the sessions that the server offers for later
  const TlsSessionKey* key;
  bool sawCertificate = false;  ///< set when a certificate was judged, which a resumed handshake never does
};

/// A client's connection state, which offers the session that the cache has for it. `callbacks` and what it points to
/// are borrowed and have to outlive the result.
/// @throws SSLException when OpenSSL cannot make one
SslPointer MakeSsl(SSL_CTX* context, TlsCallbacks& callbacks);

}  // namespace Pegasus::transport
