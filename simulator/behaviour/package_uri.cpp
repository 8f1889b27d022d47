// URIs after RFC 3986, as far as packages need them.
#include "behaviour/package_uri.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "cim/types.h"

namespace Orvane::simulator {

namespace {

constexpr std::uint16_t kHttpPort = 80;
constexpr std::uint16_t kHttpsPort = 443;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsSchemeCharacter(char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; }

std::size_t SchemeEnd(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || !IsLetter(text.front())) return std::string_view::npos;
  const std::string_view scheme = text.substr(0, colon);
  return std::all_of(scheme.begin(), scheme.end(), IsSchemeCharacter) ? colon : std::string_view::npos;
}

// Bytes written as %XX; none when one is written wrongly or is the end of a C string.
std::optional<std::string> Decode(std::string_view text) {
  constexpr int kHex = 16;
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    unsigned byte = 0;
    const std::string_view digits = text.substr(i + 1, 2);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, kHex);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2 || byte == 0) return std::nullopt;
    decoded += static_cast<char>(byte);
    i += 2;
  }
  return decoded;
}

// "host", "host:port", "[v6]:port"
bool ReadHost(std::string_view text, PackageUri& uri) {
  std::string_view port;
  if (!text.empty() && text.front() == '[') {
    const std::size_t end = text.find(']');
    if (end == std::string_view::npos) return false;
    uri.host = text.substr(1, end - 1);
    port = text.substr(end + 1);
  } else {
    uri.host = text.substr(0, text.find(':'));
    port = text.substr(uri.host.size());
  }
  if (uri.host.empty()) return false;
  if (port.empty()) return true;
  if (port.front() != ':') return false;
  port.remove_prefix(1);
  if (port.empty()) return true;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), uri.port);
  return error == std::errc() && end == port.data() + port.size() && uri.port != 0;
}

}  // namespace

bool HasScheme(const std::string& text) { return SchemeEnd(text) != std::string_view::npos; }

std::optional<PackageUri> ParsePackageUri(const std::string& text) {
  const auto isForbidden = [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7F'; };
  const std::size_t colon = SchemeEnd(text);
  if (colon == std::string_view::npos || std::any_of(text.begin(), text.end(), isForbidden)) return std::nullopt;
  std::string_view rest = std::string_view(text).substr(colon + 1);
  rest = rest.substr(0, rest.find('#'));

  PackageUri uri;
  const std::string scheme = LowerCase(std::string_view(text).substr(0, colon));
  if (scheme == "http") {
    uri.scheme = PackageUri::Scheme::kHttp;
    uri.port = kHttpPort;
  } else if (scheme == "https") {
    uri.scheme = PackageUri::Scheme::kHttps;
    uri.port = kHttpsPort;
  } else if (scheme != "file") {
    return std::nullopt;
  }

  const bool hasAuthority = rest.substr(0, 2) == "//";
  std::string_view authority;
  if (hasAuthority) {
    rest.remove_prefix(2);
    authority = rest.substr(0, rest.find_first_of("/?"));
    rest.remove_prefix(authority.size());
  }
  if (uri.scheme == PackageUri::Scheme::kFile) {
    const auto path = Decode(rest);
    const bool isLocal = authority.empty() || EqualNames(authority, "localhost");
    if (!isLocal || !path || path->empty() || path->front() != '/') return std::nullopt;
    uri.target = *path;
    return uri;
  }
  const std::size_t at = authority.rfind('@');
  if (at != std::string_view::npos) {
    const auto credentials = Decode(authority.substr(0, at));
    if (!credentials) return std::nullopt;
    uri.credentials = *credentials;
    authority.remove_prefix(at + 1);
  }
  if (!hasAuthority || !ReadHost(authority, uri)) return std::nullopt;
  uri.target = (rest.empty() || rest.front() != '/' ? "/" : "") + std::string(rest);
  return uri;
}

}  // namespace Orvane::simulator
