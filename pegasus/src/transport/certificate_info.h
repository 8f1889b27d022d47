// Makes the description of a certificate that a verification callback is handed, from what OpenSSL has at that moment.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <openssl/x509.h>

namespace Pegasus {

struct SSLCertificateInfo::Rep {
  String subjectName;
  String issuerName;
  int errorDepth = 0;
  int errorCode = 0;
  int responseCode = 0;
  String errorString;  // of the verification that runs; empty when a caller describes a certificate itself
  Uint32 versionNumber = 0;
  long serialNumber = 0;
  CIMDateTime notBefore;
  CIMDateTime notAfter;
};

namespace transport {

class CertificateInfoFactory {
 public:
  /// @param context the verification that runs
  /// @param passed 1 when OpenSSL's own check of the certificate passed, else 0
  static SSLCertificateInfo Make(X509_STORE_CTX* context, int passed);
};

}  // namespace transport
}  // namespace Pegasus
