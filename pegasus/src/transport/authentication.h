// How a connection answers a server's demand for credentials: Basic, once, and from then on with every request.
#pragma once

#include <Pegasus/Common/String.h>

#include <string>
#include <string_view>

namespace Pegasus::transport {

class Authentication {
 public:
  /// Credentials to be shown when they are asked for.
  void SetCredentials(const String& userName, const String& password);
  /// Forgets the credentials and the challenge.
  void Clear();

  /// Takes the value of a WWW-Authenticate header.
  /// @return true when the request is to be sent again; false when the answer stands as it is, which it does from the
  ///         second challenge on
  /// @throws CIMClientMalformedHTTPException when the header is none that can be understood
  bool OnChallenge(std::string_view challenge);
  /// The next connection starts without credentials again.
  void ForgetChallenge();

  /// Value of the Authorization header for the next request, empty for none.
  std::string HeaderValue() const;

 private:
  enum class Scheme { kNone, kBasic, kOther };

  Scheme challenged_ = Scheme::kNone;
  std::string credentials_ = ":";
};

}  // namespace Pegasus::transport
