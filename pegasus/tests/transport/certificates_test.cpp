// The certificates of the recorded TLS exchanges, and a check that they are what the recordings had.
#include "transport/certificates.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Pegasus::test {

namespace {

using Orvane::testing::Certificate;
using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using X509Pointer = std::unique_ptr<X509, decltype(&X509_free)>;
using NameParts = std::vector<std::pair<const char*, const char*>>;

Key MakeKey() { return Key(EVP_EC_gen("P-256"), &EVP_PKEY_free); }

void SetName(X509_NAME* name, const NameParts& parts) {
  for (const auto& [field, value] : parts) {
    X509_NAME_add_entry_by_txt(name, field, MBSTRING_ASC, reinterpret_cast<const unsigned char*>(value), -1, -1, 0);
  }
}

struct Subject {
  NameParts name;
  NameParts issuer;
  long version;
  long serial;
};

X509Pointer Issue(const Subject& subject, EVP_PKEY* key, EVP_PKEY* issuerKey) {
  X509Pointer certificate(X509_new(), &X509_free);
  X509* const raw = certificate.get();
  X509_set_version(raw, subject.version);
  ASN1_INTEGER_set(X509_get_serialNumber(raw), subject.serial);
  ASN1_TIME_set_string(X509_getm_notBefore(raw), "20200101000000Z");
  ASN1_TIME_set_string(X509_getm_notAfter(raw), "20491231235959Z");
  SetName(X509_get_subject_name(raw), subject.name);
  SetName(X509_get_issuer_name(raw), subject.issuer);
  X509_set_pubkey(raw, key);
  const bool authority = subject.serial == 1;
  if (authority) {
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_basic_constraints, "critical,CA:TRUE"), &X509_EXTENSION_free);
    X509_add_ext(raw, extension.get(), -1);
  }
  if (X509_sign(raw, issuerKey, EVP_sha256()) <= 0) throw std::runtime_error("the certificate cannot be signed");
  return certificate;
}

std::string Pem(X509* certificate) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_X509(text.get(), certificate);
  char* data = nullptr;
  const long size = BIO_get_mem_data(text.get(), &data);
  return {data, static_cast<std::size_t>(size)};
}

std::string Pem(EVP_PKEY* key) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_PrivateKey(text.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
  char* data = nullptr;
  const long size = BIO_get_mem_data(text.get(), &data);
  return {data, static_cast<std::size_t>(size)};
}

}  // namespace

Certificate MakeCmmCertificate() {
  const Key key = MakeKey();
  const NameParts name{{"C", "DE"}, {"O", "Example"}, {"CN", "cmm.example"}};
  return {Pem(Issue({name, name, X509_VERSION_3, 4660}, key.get(), key.get()).get()), Pem(key.get())};
}

Certificate MakeIssuedCertificate(bool withRoot) {
  const Key rootKey = MakeKey();
  const Key leafKey = MakeKey();
  const NameParts rootName{{"CN", "Test Root"}};
  const X509Pointer root = Issue({rootName, rootName, X509_VERSION_3, 1}, rootKey.get(), rootKey.get());
  const X509Pointer leaf = Issue({{{"CN", "cmm.example"}}, rootName, X509_VERSION_1, 2}, leafKey.get(), rootKey.get());
  return {Pem(leaf.get()) + (withRoot ? Pem(root.get()) : std::string()), Pem(leafKey.get())};
}

TEST(Certificates, ChainHoldsLeafAndRoot) {
  const auto count = [](const std::string& text) {
    std::size_t found = 0;
    for (std::size_t at = text.find("BEGIN CERTIFICATE"); at != std::string::npos;
         at = text.find("BEGIN CERTIFICATE", at + 1)) {
      ++found;
    }
    return found;
  };
  EXPECT_EQ(count(MakeIssuedCertificate(true).certificatePem), 2U);
  EXPECT_EQ(count(MakeIssuedCertificate(false).certificatePem), 1U);
  EXPECT_EQ(count(MakeCmmCertificate().certificatePem), 1U);
}

}  // namespace Pegasus::test
