// Checks the host part of object paths: host names, IPv4 and bracketed IPv6 addresses, optional port.
#include "objects/host_name.h"

#include <arpa/inet.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace Pegasus::objects {
namespace {

constexpr unsigned kLargestPort = 65535;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsLabelStart(char c) { return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool AllDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), IsDigit); }

bool IsPort(std::string_view text) {
  unsigned value = 0;
  return std::all_of(text.begin(), text.end(), [&value](char c) {
    value = value * 10 + static_cast<unsigned>(c - '0');
    return IsDigit(c) && value <= kLargestPort;
  });
}

bool IsIpv4(const std::string& text) {
  in_addr address;
  return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

/// A link-local address is ambiguous without its zone, and no other address has one.
bool IsIpv6(const std::string& text) {
  const std::size_t percent = text.find('%');
  in6_addr address;
  if (inet_pton(AF_INET6, text.substr(0, percent).c_str(), &address) != 1) {
    return false;
  }
  const bool hasZone = percent != std::string::npos && percent + 1 < text.size();
  return IN6_IS_ADDR_LINKLOCAL(&address) ? hasZone : percent == std::string::npos;
}

bool IsLabel(std::string_view text) {
  return !text.empty() && IsLabelStart(text.front()) &&
         std::all_of(text.begin(), text.end(), [](char c) { return IsLabelStart(c) || c == '-'; });
}

bool IsHostName(std::string_view text) {
  for (;;) {
    const std::size_t dot = text.find('.');
    const std::string_view label = text.substr(0, dot);
    if (!IsLabel(label)) {
      return false;
    }
    if (dot == std::string_view::npos) {
      return !AllDigits(label);
    }
    text.remove_prefix(dot + 1);
  }
}

}  // namespace

bool IsValidHost(const String& host) {
  std::string text;
  text.reserve(host.size());
  for (Uint32 i = 0; i < host.size(); ++i) {
    const Uint16 unit = host[i];
    if (unit == 0 || unit > 0x7F) {
      return false;
    }
    text.push_back(static_cast<char>(unit));
  }
  if (!text.empty() && text.front() == '[') {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string::npos || !IsIpv6(text.substr(1, bracket - 1))) {
      return false;
    }
    const std::string_view rest = std::string_view(text).substr(bracket + 1);
    return rest.empty() || (rest.front() == ':' && IsPort(rest.substr(1)));
  }
  const std::size_t colon = text.find(':');
  if (colon != std::string::npos && !IsPort(std::string_view(text).substr(colon + 1))) {
    return false;
  }
  text.resize(std::min(colon, text.size()));
  return IsIpv4(text) || IsHostName(text);
}

}  // namespace Pegasus::objects
