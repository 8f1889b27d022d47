// The certificates of the recorded TLS exchanges, made anew: the same names, versions and serial numbers, fresh keys.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "testing/certificate.h"

namespace Pegasus::test {

/// Self-signed, `/C=DE/O=Example/CN=cmm.example`, version 3, serial number 4660, valid 2020 to 2049.
Orvane::testing::Certificate MakeCmmCertificate();

/// `/CN=cmm.example`, version 1, serial number 2, issued by `/CN=Test Root` (version 3, serial number 1).
/// @param withRoot whether the root follows the leaf in the chain
Orvane::testing::Certificate MakeIssuedCertificate(bool withRoot);

/// An authority of its own, `/CN=Test Root`, that issues and revokes certificates.
class Authority {
 public:
  Authority();
  ~Authority();
  Authority(const Authority&) = delete;
  Authority& operator=(const Authority&) = delete;

  /// Its own certificate, PEM.
  const std::string& CertificatePem() const;
  /// The name under which its certificate, with ".0", or a list of it, with ".r0", is looked for in a directory.
  std::string NameHash() const;
  /// A certificate for `/CN=cmm.example`; the authority's own is not in the chain.
  Orvane::testing::Certificate Issue(long serial) const;
  /// PEM list of the certificates that it has revoked, valid for a day.
  std::string RevocationList(const std::vector<long>& serials) const;

 private:
  struct Rep;
  std::unique_ptr<Rep> rep_;
};

}  // namespace Pegasus::test
