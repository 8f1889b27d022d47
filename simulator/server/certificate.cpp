// Making of a self-signed X.509 v3 certificate with OpenSSL.
#include "server/certificate.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace Orvane::simulator {

namespace {

template <auto Free>
struct Deleter {
  template <typename T>
  void operator()(T* object) const {
    Free(object);
  }
};

using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;
using Memory = std::unique_ptr<BIO, Deleter<BIO_free_all>>;

void Check(bool good, const char* step) {
  if (!good) throw std::runtime_error(std::string("cannot make the server certificate: ") + step);
}

std::string Contents(BIO* memory) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  return {data, static_cast<std::size_t>(size)};
}

}  // namespace

ServerCertificate MakeServerCertificate(const std::string& address) {
  constexpr long kDay = 24L * 60 * 60;
  constexpr long kVersion3 = 2;
  const Key key(EVP_EC_gen("P-256"));
  Check(key != nullptr, "key");
  const Certificate certificate(X509_new());
  Check(certificate != nullptr, "certificate");
  std::uint32_t serial = 0;
  Check(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) == 1, "serial number");
  X509_NAME* const name = X509_get_subject_name(certificate.get());
  const auto* const commonName = reinterpret_cast<const unsigned char*>("localhost");
  Check(X509_set_version(certificate.get(), kVersion3) == 1 &&
            ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), std::uint64_t{serial} + 1) == 1 &&
            X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -kDay) != nullptr &&
            X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 365 * kDay) != nullptr &&
            X509_set_pubkey(certificate.get(), key.get()) == 1 &&
            X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, commonName, -1, -1, 0) == 1 &&
            X509_set_issuer_name(certificate.get(), name) == 1,
        "fields");
  const std::string names = "DNS:localhost,IP:" + address;
  const Extension extension(X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, names.c_str()));
  Check(extension != nullptr && X509_add_ext(certificate.get(), extension.get(), -1) == 1, "names");
  Check(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0, "signature");

  const Memory certificateText(BIO_new(BIO_s_mem()));
  const Memory keyText(BIO_new(BIO_s_mem()));
  Check(certificateText && keyText && PEM_write_bio_X509(certificateText.get(), certificate.get()) == 1 &&
            PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
        "text form");
  return {Contents(certificateText.get()), Contents(keyText.get())};
}

}  // namespace Orvane::simulator
