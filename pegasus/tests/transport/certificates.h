// The certificates of the recorded TLS exchanges, made anew: the same names, versions and serial numbers, fresh keys.
#pragma once

#include "testing/certificate.h"

namespace Pegasus::test {

/// Self-signed, `/C=DE/O=Example/CN=cmm.example`, version 3, serial number 4660, valid 2020 to 2049.
Orvane::testing::Certificate MakeCmmCertificate();

/// `/CN=cmm.example`, version 1, serial number 2, issued by `/CN=Test Root` (version 3, serial number 1).
/// @param withRoot whether the root follows the leaf in the chain
Orvane::testing::Certificate MakeIssuedCertificate(bool withRoot);

}  // namespace Pegasus::test
