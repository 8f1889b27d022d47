// The TLS sessions of this process. A full handshake costs the small processor of a chassis manager about a second, and
// one inventory makes many connections, so each connect offers the session of an earlier one.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <openssl/ssl.h>

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "transport/stream.h"

namespace Pegasus::transport {

struct SslSessionDeleter {
  void operator()(SSL_SESSION* session) const { SSL_SESSION_free(session); }
};
using SslSessionPointer = std::unique_ptr<SSL_SESSION, SslSessionDeleter>;

/// Who may use a session: connects to the same host and port, with the same files, whose certificates the same function
/// judges. A resumed handshake shows no certificate, so the judgement of the first one has to be the later one's too.
struct TlsSessionKey {
  TlsSessionKey(const Endpoint& endpoint, const SSLContext& settings);
  bool operator==(const TlsSessionKey& other) const;

  Endpoint endpoint;
  std::string files;
  SSLCertificateVerifyFunction* verify;
};

/// The latest session of each key, the least recently used ones forgotten above limits::kTlsSessions. Thread-safe.
class TlsSessionCache {
 public:
  /// The cache of this process; streams share it, so that it outlives the last of them.
  static std::shared_ptr<TlsSessionCache> OfProcess();

  void Put(const TlsSessionKey& key, SSL_SESSION* session);
  /// The session to offer, an object of the caller's own; null when there is none.
  SslSessionPointer Find(const TlsSessionKey& key);
  void Drop(const TlsSessionKey& key);

 private:
  struct Entry {
    TlsSessionKey key;
    /// As ASN.1: OpenSSL goes on working on the object, so connections on several threads must not share it.
    std::vector<unsigned char> session;
  };
  std::list<Entry>::iterator Locate(const TlsSessionKey& key);

  std::mutex mutex_;
  std::list<Entry> entries_;  // most recently used first
};

}  // namespace Pegasus::transport
