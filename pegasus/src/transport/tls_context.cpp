// The OpenSSL side of an SSLContext: versions, certificates and verification of the connections made from it.
#include "transport/tls_context.h"

#include <Pegasus/Common/Exception.h>
#include <openssl/err.h>
#include <openssl/x509_vfy.h>
#include <sys/stat.h>

#include <new>

#include "transport/certificate_info.h"
#include "transport/text.h"

namespace Pegasus::transport {

namespace {

[[noreturn]] void ThrowUnusable(const char* what, const String& path) {
  ERR_clear_error();
  String message(what);
  message.append(path);
  message.append(String("."));
  throw SSLException(message);
}

int CallbackIndex() {
  static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
  return index;
}

TlsCallbacks* CallbacksOf(const SSL* ssl) { return static_cast<TlsCallbacks*>(SSL_get_ex_data(ssl, CallbackIndex())); }

/// Keeps a session for later connects. With TLS 1.3 it comes only after the handshake, with the first answer.
/// @return 0: the reference to the session stays with OpenSSL
int KeepSession(SSL* ssl, SSL_SESSION* session) {
  const TlsCallbacks* callbacks = CallbacksOf(ssl);
  if (callbacks == nullptr || SSL_SESSION_is_resumable(session) != 1) return 0;
  try {
    callbacks->sessions->Put(*callbacks->key, session);
  } catch (const std::bad_alloc&) {
    // Nothing is lost but the time of a full handshake.
  }
  return 0;
}

/// Hands every result of OpenSSL's own check to the user's function, whose word is final.
int VerifyCertificate(int passed, X509_STORE_CTX* context) {
  auto* ssl = static_cast<SSL*>(X509_STORE_CTX_get_ex_data(context, SSL_get_ex_data_X509_STORE_CTX_idx()));
  TlsCallbacks* callbacks = ssl == nullptr ? nullptr : CallbacksOf(ssl);
  if (callbacks == nullptr) return passed;
  callbacks->sawCertificate = true;
  try {
    SSLCertificateInfo info = CertificateInfoFactory::Make(context, passed);
    return callbacks->verification->GetVerifyFunction()(info) ? 1 : 0;
  } catch (...) {
    // No exception can travel through OpenSSL's frames; a judge that fails has not said yes.
    return 0;
  }
}

void LoadTrustStore(SSL_CTX* context, const String& path) {
  if (path.size() == 0) return;
  const std::string name = Utf8(path);
  struct stat status {};
  if (::stat(name.c_str(), &status) != 0) ThrowUnusable("Could not load certificates in to trust store ", path);
  const bool directory = S_ISDIR(status.st_mode);
  const int loaded =
      directory ? SSL_CTX_load_verify_dir(context, name.c_str()) : SSL_CTX_load_verify_file(context, name.c_str());
  if (loaded != 1) ThrowUnusable("Could not load certificates in to trust store ", path);
}

/// Nobody is there to be asked for the password of a key; without this OpenSSL would ask at the terminal, and wait.
int NoPassword(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*unused*/) { return -1; }

void LoadOwnCertificate(SSL_CTX* context, const String& certPath, const String& keyPath) {
  if (certPath.size() == 0) return;
  if (SSL_CTX_use_certificate_chain_file(context, Utf8(certPath).c_str()) != 1) {
    ThrowUnusable("Could not access server certificate in ", certPath);
  }
  SSL_CTX_set_default_passwd_cb(context, &NoPassword);
  const String& key = keyPath.size() == 0 ? certPath : keyPath;
  if (SSL_CTX_use_PrivateKey_file(context, Utf8(key).c_str(), SSL_FILETYPE_PEM) != 1 ||
      SSL_CTX_check_private_key(context) != 1) {
    ThrowUnusable("Could not access private key in ", key);
  }
}

void LoadRevocationLists(SSL_CTX* context, const String& path) {
  if (path.size() == 0) return;
  X509_STORE* store = SSL_CTX_get_cert_store(context);
  const std::string name = Utf8(path);
  struct stat status {};
  const bool directory = ::stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  X509_LOOKUP* lookup = X509_STORE_add_lookup(store, directory ? X509_LOOKUP_hash_dir() : X509_LOOKUP_file());
  const bool loaded =
      lookup != nullptr && (directory ? X509_LOOKUP_add_dir(lookup, name.c_str(), X509_FILETYPE_PEM)
                                      : X509_load_crl_file(lookup, name.c_str(), X509_FILETYPE_PEM)) > 0;
  if (!loaded) ThrowUnusable("Could not load revocation lists in ", path);
  X509_STORE_set_flags(store, X509_V_FLAG_CRL_CHECK);
}

}  // namespace

SslContextPointer MakeSslContext(const SSLContext& settings) {
  ERR_clear_error();
  SslContextPointer context(SSL_CTX_new(TLS_client_method()));
  if (!context) ThrowUnusable("Could not get SSL CTX", String());
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL);
  SSL_CTX_sess_set_new_cb(context.get(), &KeepSession);
  SSL_CTX_set_quiet_shutdown(context.get(), 1);
  LoadTrustStore(context.get(), settings.getTrustStore());
  LoadOwnCertificate(context.get(), settings.getCertPath(), settings.getKeyPath());
  LoadRevocationLists(context.get(), settings.getCRLPath());
  const bool callback = settings.getSSLCertificateVerifyFunction() != nullptr;
  SSL_CTX_set_verify(context.get(), settings.isPeerVerificationEnabled() ? SSL_VERIFY_PEER : SSL_VERIFY_NONE,
                     callback ? &VerifyCertificate : nullptr);
  return context;
}

SslPointer MakeSsl(SSL_CTX* context, TlsCallbacks& callbacks) {
  SslPointer ssl(SSL_new(context));
  if (!ssl || SSL_set_ex_data(ssl.get(), CallbackIndex(), &callbacks) != 1) {
    ThrowUnusable("Could not make an SSL connection", String());
  }
  SSL_set_connect_state(ssl.get());
  if (const SslSessionPointer session = callbacks.sessions->Find(*callbacks.key)) {
    // A session that OpenSSL does not take leads to a full handshake.
    if (SSL_set_session(ssl.get(), session.get()) != 1) ERR_clear_error();
  }
  return ssl;
}

}  // namespace Pegasus::transport
