#include "transport/tls_session_cache.h"

#include <algorithm>
#include <utility>

#include "transport/limits.h"
#include "transport/text.h"

namespace Pegasus::transport {

TlsSessionKey::TlsSessionKey(const Endpoint& where, const SSLContext& settings)
    : endpoint(where), verify(settings.getSSLCertificateVerifyFunction()) {
  for (const String& path :
       {settings.getTrustStore(), settings.getCertPath(), settings.getKeyPath(), settings.getCRLPath()}) {
    files += Utf8(path);
    files += '\0';
  }
}

bool TlsSessionKey::operator==(const TlsSessionKey& other) const {
  return endpoint.port == other.endpoint.port && verify == other.verify && endpoint.host == other.endpoint.host &&
         files == other.files;
}

std::shared_ptr<TlsSessionCache> TlsSessionCache::OfProcess() {
  static const auto cache = [] {
    // OpenSSL registers its own cleanup when it starts. Started before the cache is, it ends after the cache has freed
    // its sessions.
    OPENSSL_init_ssl(0, nullptr);
    return std::make_shared<TlsSessionCache>();
  }();
  return cache;
}

std::list<TlsSessionCache::Entry>::iterator TlsSessionCache::Locate(const TlsSessionKey& key) {
  return std::find_if(entries_.begin(), entries_.end(), [&key](const Entry& entry) { return entry.key == key; });
}

void TlsSessionCache::Put(const TlsSessionKey& key, SslSessionPointer session) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known != entries_.end()) {
    known->session = std::move(session);
    entries_.splice(entries_.begin(), entries_, known);
    return;
  }
  entries_.push_front({key, std::move(session)});
  if (entries_.size() > limits::kTlsSessions) entries_.pop_back();
}

SslSessionPointer TlsSessionCache::Find(const TlsSessionKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known == entries_.end()) return nullptr;
  SSL_SESSION* const session = known->session.get();
  if (SSL_SESSION_is_resumable(session) != 1) {
    entries_.erase(known);
    return nullptr;
  }
  entries_.splice(entries_.begin(), entries_, known);
  SSL_SESSION_up_ref(session);
  return SslSessionPointer(session);
}

void TlsSessionCache::Drop(const TlsSessionKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known != entries_.end()) entries_.erase(known);
}

}  // namespace Pegasus::transport
