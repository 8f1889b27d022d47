// How a connection answers a server's demand for credentials. Schemes other than Basic are known by name only: the
// request is repeated without credentials, and the server's refusal then reaches the caller.
#include "transport/authentication.h"

#include <Pegasus/Client/CIMClientException.h>
#include <openssl/evp.h>

#include <vector>

#include "transport/text.h"

namespace Pegasus::transport {

namespace {

/// One byte for each UTF-16 unit, as servers of this protocol expect it; what does not fit is cut.
void AppendLatin1(std::string& bytes, const String& text) {
  const Char16* units = text.getChar16Data();
  for (Uint32 i = 0; i < text.size(); ++i) {
    constexpr unsigned kByte = 0xFFU;
    bytes += static_cast<char>(static_cast<unsigned char>(static_cast<Uint16>(units[i]) & kByte));
  }
}

std::string Base64(const std::string& bytes) {
  constexpr std::size_t kGroup = 3;
  constexpr std::size_t kSymbols = 4;
  std::vector<unsigned char> encoded((bytes.size() + kGroup - 1) / kGroup * kSymbols + 1);
  const int length = EVP_EncodeBlock(encoded.data(), reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<int>(bytes.size()));
  return std::string(encoded.begin(), encoded.begin() + length);
}

/// Whether the parameters of a Basic challenge name a realm, in quotes and not empty.
bool HasRealm(std::string_view parameters) {
  const std::size_t open = parameters.find('"');
  if (open == std::string_view::npos) return false;
  const std::size_t close = parameters.find('"', open + 1);
  return close != std::string_view::npos && close > open + 1 &&
         EqualIgnoringCase(Trim(parameters.substr(0, open)), "realm=");
}

}  // namespace

void Authentication::SetCredentials(const String& userName, const String& password) {
  Clear();
  credentials_.clear();
  AppendLatin1(credentials_, userName);
  credentials_ += ':';
  AppendLatin1(credentials_, password);
}

void Authentication::Clear() {
  ForgetChallenge();
  credentials_ = ":";
}

void Authentication::ForgetChallenge() { challenged_ = Scheme::kNone; }

bool Authentication::OnChallenge(std::string_view challenge) {
  if (challenged_ != Scheme::kNone) return false;
  const std::size_t blank = challenge.find(' ');
  const std::string_view scheme = challenge.substr(0, blank);
  const bool known = scheme == "Basic" || scheme == "Digest" || scheme == "Negotiate";
  const bool needsParameters = scheme != "Negotiate";
  if (!known || (needsParameters && blank == std::string_view::npos)) {
    throw CIMClientMalformedHTTPException(String("Invalid Authorization header"));
  }
  if (scheme != "Basic") {
    challenged_ = Scheme::kOther;
    return true;
  }
  if (!HasRealm(challenge.substr(blank))) return false;
  challenged_ = Scheme::kBasic;
  return true;
}

std::string Authentication::HeaderValue() const {
  return challenged_ == Scheme::kBasic ? "Basic " + Base64(credentials_) : std::string();
}

}  // namespace Pegasus::transport
