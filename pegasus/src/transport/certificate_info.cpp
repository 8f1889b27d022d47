// The description of a certificate that a verification callback is handed, and how it is made from an X.509 object.
#include "transport/certificate_info.h"

#include <Pegasus/Common/Exception.h>
#include <openssl/asn1.h>
#include <openssl/x509_vfy.h>

#include <array>
#include <ctime>
#include <sstream>

#include "transport/text.h"

namespace Pegasus {

SSLCertificateInfo::SSLCertificateInfo(const String subjectName, const String issuerName, const int errorDepth,
                                       const int errorCode, const int respCode)
    : rep_(std::make_unique<Rep>()) {
  rep_->subjectName = subjectName;
  rep_->issuerName = issuerName;
  rep_->errorDepth = errorDepth;
  rep_->errorCode = errorCode;
  rep_->responseCode = respCode;
}

SSLCertificateInfo::SSLCertificateInfo(const SSLCertificateInfo& certificateInfo)
    : rep_(std::make_unique<Rep>(*certificateInfo.rep_)) {}

SSLCertificateInfo::SSLCertificateInfo(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}

SSLCertificateInfo::~SSLCertificateInfo() = default;

String SSLCertificateInfo::getSubjectName() const { return rep_->subjectName; }
String SSLCertificateInfo::getIssuerName() const { return rep_->issuerName; }
Uint32 SSLCertificateInfo::getVersionNumber() const { return rep_->versionNumber; }
long SSLCertificateInfo::getSerialNumber() const { return rep_->serialNumber; }
CIMDateTime SSLCertificateInfo::getNotBefore() const { return rep_->notBefore; }
CIMDateTime SSLCertificateInfo::getNotAfter() const { return rep_->notAfter; }
Uint32 SSLCertificateInfo::getErrorDepth() const { return static_cast<Uint32>(rep_->errorDepth); }
Uint32 SSLCertificateInfo::getErrorCode() const { return static_cast<Uint32>(rep_->errorCode); }
String SSLCertificateInfo::getErrorString() const { return rep_->errorString; }
Uint32 SSLCertificateInfo::getResponseCode() const { return static_cast<Uint32>(rep_->responseCode); }
void SSLCertificateInfo::setErrorCode(const int errorCode) { rep_->errorCode = errorCode; }
void SSLCertificateInfo::setResponseCode(const int respCode) { rep_->responseCode = respCode; }

String SSLCertificateInfo::toString() const {
  using transport::Utf8;
  std::ostringstream text;
  text << "Subject Name:\n\t" << Utf8(rep_->subjectName) << "\nIssuer Name:\n\t" << Utf8(rep_->issuerName)
       << "\nDepth: " << rep_->errorDepth << "\nError code: " << rep_->errorCode
       << "\nResponse (preverify) code: " << rep_->responseCode << "\nError string: " << Utf8(rep_->errorString)
       << "\nVersion number: " << rep_->versionNumber << "\nSerial number: " << rep_->serialNumber
       << "\nNot before date: " << Utf8(rep_->notBefore.toString())
       << "\nNot after date: " << Utf8(rep_->notAfter.toString()) << "\n";
  return String(text.str().c_str());
}

namespace transport {

namespace {

String NameText(const X509_NAME* name) {
  std::array<char, 256> text{};
  X509_NAME_oneline(name, text.data(), static_cast<int>(text.size()));
  return HeaderText(text.data());
}

/// The zero interval for a time that is none, or that a date-time cannot hold.
CIMDateTime TimeStamp(const ASN1_TIME* time) {
  std::tm parts{};
  if (ASN1_TIME_to_tm(time, &parts) != 1) return CIMDateTime();
  std::array<char, 32> text{};
  if (std::strftime(text.data(), text.size(), "%Y%m%d%H%M%S.000000+000", &parts) == 0) return CIMDateTime();
  try {
    return CIMDateTime(String(text.data()));
  } catch (const Exception&) {
    return CIMDateTime();
  }
}

}  // namespace

SSLCertificateInfo CertificateInfoFactory::Make(X509_STORE_CTX* context, int passed) {
  auto rep = std::make_unique<SSLCertificateInfo::Rep>();
  rep->errorDepth = X509_STORE_CTX_get_error_depth(context);
  rep->errorCode = X509_STORE_CTX_get_error(context);
  rep->responseCode = passed;
  rep->errorString = X509_verify_cert_error_string(rep->errorCode);
  if (X509* certificate = X509_STORE_CTX_get_current_cert(context)) {
    rep->subjectName = NameText(X509_get_subject_name(certificate));
    rep->issuerName = NameText(X509_get_issuer_name(certificate));
    rep->versionNumber = static_cast<Uint32>(X509_get_version(certificate));
    rep->serialNumber = ASN1_INTEGER_get(X509_get0_serialNumber(certificate));
    rep->notBefore = TimeStamp(X509_get0_notBefore(certificate));
    rep->notAfter = TimeStamp(X509_get0_notAfter(certificate));
  }
  return SSLCertificateInfo(std::move(rep));
}

}  // namespace transport
}  // namespace Pegasus
