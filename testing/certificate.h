// Certificates for test servers, made in memory when a test needs one.
#pragma once

#include <string>

namespace Orvane::testing {

struct Certificate {
  std::string certificatePem;
  std::string privateKeyPem;
};

struct CertificateOptions {
  std::string commonName = "localhost";
  std::string serialHex = "1234";  ///< serial number, hexadecimal
  int notBeforeDays = -1;          ///< start of validity, days from now
  int notAfterDays = 365;          ///< end of validity, days from now
};

/// A self-signed X.509 v3 certificate with a fresh EC P-256 key.
/// @throws std::runtime_error  OpenSSL refused.
Certificate MakeSelfSignedCertificate(const CertificateOptions& options = {});

}  // namespace Orvane::testing
