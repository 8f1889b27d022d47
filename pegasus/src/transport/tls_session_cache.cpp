#include "transport/tls_session_cache.h"

#include <algorithm>
#include <utility>

#include "base/limits.h"
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
  static const auto cache = std::make_shared<TlsSessionCache>();
  return cache;
}

std::list<TlsSessionCache::Entry>::iterator TlsSessionCache::Locate(const TlsSessionKey& key) {
  return std::find_if(entries_.begin(), entries_.end(), [&key](const Entry& entry) { return entry.key == key; });
}

void TlsSessionCache::Put(const TlsSessionKey& key, SSL_SESSION* session) {
  const int size = i2d_SSL_SESSION(session, nullptr);
  if (size <= 0) return;
  std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
  unsigned char* end = bytes.data();
  if (i2d_SSL_SESSION(session, &end) != size) return;

  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known != entries_.end()) {
    known->session = std::move(bytes);
    entries_.splice(entries_.begin(), entries_, known);
    return;
  }
  entries_.push_front({key, std::move(bytes)});
  if (entries_.size() > limits::kTlsSessions) entries_.pop_back();
}

SslSessionPointer TlsSessionCache::Find(const TlsSessionKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known == entries_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, known);
  const unsigned char* begin = known->session.data();
  return SslSessionPointer(d2i_SSL_SESSION(nullptr, &begin, static_cast<long>(known->session.size())));
}

void TlsSessionCache::Drop(const TlsSessionKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = Locate(key);
  if (known != entries_.end()) entries_.erase(known);
}

}  // namespace Pegasus::transport
