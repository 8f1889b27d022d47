// SSLContext: checks at construction that the files it names can be read, and holds them until a connection needs them.
#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/SSLContext.h>
#include <openssl/x509_vfy.h>
#include <sys/stat.h>
#include <unistd.h>

#include "transport/text.h"

namespace Pegasus {

namespace {

using StorePointer = std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)>;

bool IsDirectory(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void RequireReadable(const String& path) {
  if (path.size() == 0 || ::access(transport::Utf8(path).c_str(), R_OK) == 0) return;
  String message("Could not access server certificate in ");
  message.append(path);
  message.append(String("."));
  throw SSLException(message);
}

/// The revocation lists in a file or a directory, null for an empty path.
StorePointer LoadRevocationLists(const String& path) {
  StorePointer store(nullptr, &X509_STORE_free);
  if (path.size() == 0) return store;
  const std::string name = transport::Utf8(path);
  const bool directory = IsDirectory(name);
  store.reset(X509_STORE_new());
  X509_LOOKUP* lookup =
      store ? X509_STORE_add_lookup(store.get(), directory ? X509_LOOKUP_hash_dir() : X509_LOOKUP_file()) : nullptr;
  const bool loaded =
      lookup != nullptr && (directory ? X509_LOOKUP_add_dir(lookup, name.c_str(), X509_FILETYPE_PEM)
                                      : X509_load_crl_file(lookup, name.c_str(), X509_FILETYPE_PEM)) > 0;
  if (loaded) return store;
  String message("Could not load revocation lists in ");
  message.append(path);
  message.append(String("."));
  throw SSLException(message);
}

}  // namespace

struct SSLContext::Rep {
  Rep(const String& trust, const String& cert, const String& key, const String& crl,
      SSLCertificateVerifyFunction* verify)
      : trustStore(trust),
        certPath(cert),
        keyPath(key),
        crlPath(crl),
        verifyCert(verify),
        crlStore(nullptr, &X509_STORE_free) {
    RequireReadable(certPath);
    RequireReadable(keyPath);
    crlStore = LoadRevocationLists(crlPath);
  }

  String trustStore;
  String certPath;
  String keyPath;
  String crlPath;
  SSLCertificateVerifyFunction* verifyCert;
  StorePointer crlStore;
};

SSLContext::SSLContext(const String& trustStore, SSLCertificateVerifyFunction* verifyCert, const String& /*randomFile*/)
    : rep_(std::make_shared<const Rep>(trustStore, String(), String(), String(), verifyCert)) {}

SSLContext::SSLContext(const String& trustStore, const String& certPath, const String& keyPath,
                       SSLCertificateVerifyFunction* verifyCert, const String& /*randomFile*/)
    : rep_(std::make_shared<const Rep>(trustStore, certPath, keyPath, String(), verifyCert)) {}

SSLContext::SSLContext(const String& trustStore, const String& certPath, const String& keyPath, const String& crlPath,
                       SSLCertificateVerifyFunction* verifyCert, const String& /*randomFile*/)
    : rep_(std::make_shared<const Rep>(trustStore, certPath, keyPath, crlPath, verifyCert)) {}

SSLContext::SSLContext(const SSLContext& sslContext) = default;

SSLContext::~SSLContext() = default;

String SSLContext::getTrustStore() const { return rep_->trustStore; }
String SSLContext::getCertPath() const { return rep_->certPath; }
String SSLContext::getKeyPath() const { return rep_->keyPath; }
String SSLContext::getCRLPath() const { return rep_->crlPath; }
X509_STORE* SSLContext::getCRLStore() const { return rep_->crlStore.get(); }
Boolean SSLContext::isPeerVerificationEnabled() const {
  return rep_->trustStore.size() != 0 || rep_->verifyCert != nullptr;
}
SSLCertificateVerifyFunction* SSLContext::getSSLCertificateVerifyFunction() const { return rep_->verifyCert; }

}  // namespace Pegasus
