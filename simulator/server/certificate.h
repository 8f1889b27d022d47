// The certificate that the simulator shows over HTTPS: self-signed, made anew at every start, kept in memory only.
#pragma once

#include <string>

namespace Orvane::simulator {

struct ServerCertificate {
  std::string certificatePem;
  std::string privateKeyPem;
};

/// An EC certificate for "localhost" and this address, valid from a day ago for a year.
/// @throws std::runtime_error when the cryptographic library refuses
ServerCertificate MakeServerCertificate(const std::string& address);

}  // namespace Orvane::simulator
