// A URI ends where a blank, a quote, an angle bracket or a control character stands: none of them is legal in one.
#include "cli/masking.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace Orvane::cli {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::string_view kSchemeEnd = "://";
constexpr std::string_view kSecretWords[] = {"pass", "pwd", "token", "secret", "sig", "key", "cred", "auth"};

bool EndsUri(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= ' ' || byte == 0x7F || c == '"' || c == '<' || c == '>';
}

bool IsPort(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// Where the "@" behind the user information stands; npos without one. A user or a password may hold a "/" that should
// have been escaped: then what looks like a port is none, and a password stands in what looks like the path.
std::size_t EndOfUserInformation(std::string_view uri) {
  const std::string_view authority = uri.substr(0, uri.find_first_of("/?#"));
  const std::size_t at = authority.rfind('@');
  if (at != std::string_view::npos || authority.substr(0, 1) == "[") return at;
  const std::size_t colon = authority.find(':');
  const bool hasPort = colon != std::string_view::npos && IsPort(authority.substr(colon + 1));
  const std::size_t last = uri.rfind('@');
  if (hasPort || last == std::string_view::npos) return std::string_view::npos;
  return uri.substr(0, last).find(':') == std::string_view::npos ? std::string_view::npos : last;
}

bool NamesASecret(std::string_view name) {
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::any_of(std::begin(kSecretWords), std::end(kSecretWords),
                     [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

// The query, and the fragment behind it.
void AppendQuery(std::string_view query, std::string& out) {
  while (!query.empty()) {
    const std::string_view parameter = query.substr(0, query.find_first_of("&;#"));
    const std::size_t equals = parameter.find('=');
    if (equals != std::string_view::npos && NamesASecret(parameter.substr(0, equals))) {
      out.append(parameter.substr(0, equals + 1)).append(kMask);
    } else {
      out.append(parameter);
    }
    query.remove_prefix(parameter.size());
    if (query.empty()) break;
    out += query.front();
    query.remove_prefix(1);
  }
}

// What follows "://".
void AppendMasked(std::string_view uri, std::string& out) {
  if (uri.empty()) return;
  if (const std::size_t at = EndOfUserInformation(uri); at != std::string_view::npos) {
    out.append(kMask);
    uri.remove_prefix(at);
  }
  const std::size_t query = std::min(uri.find_first_of("?#"), uri.size() - 1) + 1;
  out.append(uri.substr(0, query));
  AppendQuery(uri.substr(query), out);
}

}  // namespace

std::string MaskCredentials(std::string_view text) {
  std::string out;
  std::size_t scheme = 0;
  while ((scheme = text.find(kSchemeEnd)) != std::string_view::npos) {
    out.append(text.substr(0, scheme + kSchemeEnd.size()));
    text.remove_prefix(scheme + kSchemeEnd.size());
    const auto end = std::find_if(text.begin(), text.end(), EndsUri);
    const std::string_view uri = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    AppendMasked(uri, out);
    text.remove_prefix(uri.size());
  }
  return out.append(text);
}

}  // namespace Orvane::cli
