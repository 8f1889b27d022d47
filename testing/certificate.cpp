// See certificate.h.
#include "testing/certificate.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

namespace Orvane::testing {
namespace {

constexpr long kSecondsPerDay = 86400;

template <auto Free>
struct Deleter {
  template <typename T>
  void operator()(T* object) const {
    Free(object);
  }
};
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Number = std::unique_ptr<BIGNUM, Deleter<BN_free>>;
using X509Ptr = std::unique_ptr<X509, Deleter<X509_free>>;

void Check(bool good, const char* what) {
  if (!good) throw std::runtime_error(std::string("test certificate: ") + what + " failed");
}

std::string Text(BIO* bio) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio, &data);
  return std::string(data, static_cast<std::size_t>(size));
}

}  // namespace

Certificate MakeSelfSignedCertificate(const CertificateOptions& options) {
  const Key key(EVP_EC_gen("P-256"));
  Check(key != nullptr, "key generation");
  const X509Ptr certificate(X509_new());
  Check(certificate != nullptr, "X509_new");
  Check(X509_set_version(certificate.get(), X509_VERSION_3) == 1, "version");
  BIGNUM* number = nullptr;
  Check(BN_hex2bn(&number, options.serialHex.c_str()) > 0, "serial number");
  const Number serial(number);
  Check(BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate.get())) != nullptr, "serial number");
  Check(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), options.notBeforeDays * kSecondsPerDay) != nullptr,
        "notBefore");
  Check(X509_gmtime_adj(X509_getm_notAfter(certificate.get()), options.notAfterDays * kSecondsPerDay) != nullptr,
        "notAfter");
  Check(X509_set_pubkey(certificate.get(), key.get()) == 1, "public key");
  X509_NAME* const name = X509_get_subject_name(certificate.get());
  const auto* const commonName = reinterpret_cast<const unsigned char*>(options.commonName.data());
  Check(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, commonName, static_cast<int>(options.commonName.size()),
                                   -1, 0) == 1,
        "subject");
  Check(X509_set_issuer_name(certificate.get(), name) == 1, "issuer");
  Check(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0, "signature");

  const Bio certificateBio(BIO_new(BIO_s_mem()));
  const Bio keyBio(BIO_new(BIO_s_mem()));
  Check(PEM_write_bio_X509(certificateBio.get(), certificate.get()) == 1, "writing the certificate");
  Check(PEM_write_bio_PrivateKey(keyBio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
        "writing the key");
  return {Text(certificateBio.get()), Text(keyBio.get())};
}

}  // namespace Orvane::testing
