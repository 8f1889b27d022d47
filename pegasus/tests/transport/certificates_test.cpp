// The certificates of the recorded TLS exchanges, and a check that they are what the recordings had.
#include "transport/certificates.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
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
using CrlPointer = std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)>;
using TimePointer = std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)>;
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

/// What `write` writes.
template <typename Write>
std::string Pem(Write write) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new(BIO_s_mem()), &BIO_free);
  if (write(text.get()) != 1) throw std::runtime_error("nothing to write as PEM");
  char* data = nullptr;
  const long size = BIO_get_mem_data(text.get(), &data);
  return {data, static_cast<std::size_t>(size)};
}

std::string Pem(X509* certificate) {
  return Pem([certificate](BIO* out) { return PEM_write_bio_X509(out, certificate); });
}

std::string Pem(EVP_PKEY* key) {
  return Pem([key](BIO* out) { return PEM_write_bio_PrivateKey(out, key, nullptr, nullptr, 0, nullptr, nullptr); });
}

const NameParts kRootName{{"CN", "Test Root"}};
const NameParts kLeafName{{"CN", "cmm.example"}};

X509Pointer IssueRoot(EVP_PKEY* key) { return Issue({kRootName, kRootName, X509_VERSION_3, 1}, key, key); }

X509Pointer IssueLeaf(long serial, EVP_PKEY* key, EVP_PKEY* rootKey) {
  return Issue({kLeafName, kRootName, X509_VERSION_1, serial}, key, rootKey);
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
  const X509Pointer root = IssueRoot(rootKey.get());
  const X509Pointer leaf = IssueLeaf(2, leafKey.get(), rootKey.get());
  return {Pem(leaf.get()) + (withRoot ? Pem(root.get()) : std::string()), Pem(leafKey.get())};
}

struct Authority::Rep {
  Rep() : key(MakeKey()), certificate(IssueRoot(key.get())), pem(Pem(certificate.get())) {}

  Key key;
  X509Pointer certificate;
  std::string pem;
};

Authority::Authority() : rep_(std::make_unique<Rep>()) {}

Authority::~Authority() = default;

const std::string& Authority::CertificatePem() const { return rep_->pem; }

std::string Authority::NameHash() const {
  char text[9];  // eight digits, as the tools that make such directories write them
  std::snprintf(text, sizeof text, "%08lx", X509_subject_name_hash(rep_->certificate.get()));
  return text;
}

Certificate Authority::Issue(long serial) const {
  const Key key = MakeKey();
  return {Pem(IssueLeaf(serial, key.get(), rep_->key.get()).get()), Pem(key.get())};
}

std::string Authority::RevocationList(const std::vector<long>& serials) const {
  const CrlPointer list(X509_CRL_new(), &X509_CRL_free);
  X509_CRL_set_version(list.get(), X509_CRL_VERSION_2);
  X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(rep_->certificate.get()));
  constexpr long kHour = 3600;
  const TimePointer before(X509_gmtime_adj(nullptr, -kHour), &ASN1_TIME_free);
  const TimePointer after(X509_gmtime_adj(nullptr, 24 * kHour), &ASN1_TIME_free);
  X509_CRL_set1_lastUpdate(list.get(), before.get());
  X509_CRL_set1_nextUpdate(list.get(), after.get());
  for (const long serial : serials) {
    const std::unique_ptr<ASN1_INTEGER, decltype(&ASN1_INTEGER_free)> number(ASN1_INTEGER_new(), &ASN1_INTEGER_free);
    ASN1_INTEGER_set(number.get(), serial);
    X509_REVOKED* const revoked = X509_REVOKED_new();
    X509_REVOKED_set_serialNumber(revoked, number.get());
    X509_REVOKED_set_revocationDate(revoked, before.get());
    X509_CRL_add0_revoked(list.get(), revoked);
  }
  X509_CRL_sort(list.get());
  if (X509_CRL_sign(list.get(), rep_->key.get(), EVP_sha256()) <= 0) {
    throw std::runtime_error("the list cannot be signed");
  }
  return Pem([&list](BIO* out) { return PEM_write_bio_X509_CRL(out, list.get()); });
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
