// The order of checks follows DSP0200: who asks, whether it is a CIM request at all, whether headers and body agree.
#include "server/http_message.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <optional>
#include <vector>

namespace Orvane::simulator {

namespace {

constexpr int kBadRequest = 400;
constexpr int kUnauthorized = 401;
constexpr int kNotFound = 404;
constexpr int kMethodNotAllowed = 405;
constexpr int kUnsupportedMediaType = 415;
constexpr int kNotImplemented = 501;

// Latin-1 spelling of a UTF-8 text; none when a character has no place there.
std::optional<std::string> ToLatin1(std::string_view text) {
  std::string latin1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80U) {
      latin1 += text[i];
    } else if ((lead == 0xC2U || lead == 0xC3U) && i + 1 < text.size()) {
      latin1 += static_cast<char>(((lead & 0x03U) << 6U) | (static_cast<unsigned char>(text[++i]) & 0x3FU));
    } else {
      return std::nullopt;
    }
  }
  return latin1;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  constexpr std::size_t kGroup = 4;
  constexpr std::size_t kLongest = 8192;
  if (text.empty() || text.size() % kGroup != 0 || text.size() > kLongest) return std::nullopt;
  std::vector<unsigned char> decoded(text.size() / kGroup * 3);
  const int length = EVP_DecodeBlock(decoded.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
  if (length < 0) return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && text[text.size() - 1 - padding] == '=') ++padding;
  return std::string(decoded.begin(), decoded.begin() + length - static_cast<std::ptrdiff_t>(padding));
}

// The time this takes tells nothing about where two secrets differ.
bool SameSecret(const std::string& a, const std::string& b) {
  return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

bool IsXml(std::string_view contentType) {
  const std::string_view type = WithoutBlanks(contentType.substr(0, contentType.find(';')));
  return EqualNames(type, "application/xml") || EqualNames(type, "text/xml");
}

// Text of a header in which bytes may be written as %XX; none when it is written wrongly.
std::optional<std::string> DecodeUri(std::string_view text) {
  constexpr int kHex = 16;
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    const std::string digits(text.substr(i + 1, 2));
    if (digits.size() != 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
      return std::nullopt;
    }
    decoded += static_cast<char>(std::stoi(digits, nullptr, kHex));
    i += 2;
  }
  return decoded;
}

// The headers repeat the call so that proxies need not read the body; they must not say something else than the body.
// Of the object the namespace and the class are compared: the keys may be spelt in more than one way.
bool HeadersAgree(const HttpRequest& http, const Request& request) {
  const auto method = DecodeUri(http.cimMethod);
  const auto object = DecodeUri(http.cimObject);
  if (!method || !object || !EqualNames(*method, request.name)) return false;
  std::string_view rest = *object;
  if (!rest.empty() && rest.front() == '/') rest.remove_prefix(1);
  const std::size_t colon = rest.find(':');
  if (!EqualNames(rest.substr(0, colon), request.nameSpace)) return false;
  if (request.isIntrinsic) return true;
  if (colon == std::string_view::npos) return false;
  rest.remove_prefix(colon + 1);
  return EqualNames(rest.substr(0, rest.find('.')), request.target.className);
}

HttpReply Refuse(int status, const std::string& cimError = {}) {
  HttpReply reply;
  reply.status = status;
  reply.cimError = cimError;
  return reply;
}

}  // namespace

Authentication::Authentication(bool enabled, std::string_view user, std::string_view password)
    : enabled_(enabled), credentials_(std::string(user) + ":" + std::string(password)) {
  latin1Credentials_ = ToLatin1(credentials_).value_or(credentials_);
}

bool Authentication::Allows(std::string_view authorization) const {
  if (!enabled_) return true;
  constexpr std::string_view kScheme = "Basic ";
  if (!EqualNames(authorization.substr(0, kScheme.size()), kScheme)) return false;
  const auto sent = DecodeBase64(WithoutBlanks(authorization.substr(kScheme.size())));
  return sent && (SameSecret(*sent, credentials_) || SameSecret(*sent, latin1Credentials_));
}

HttpReply AnswerHttp(const HttpRequest& request, const Authentication& authentication, const Answerer& answer) {
  if (!authentication.Allows(request.authorization)) {
    HttpReply reply = Refuse(kUnauthorized);
    reply.challenge = true;
    return reply;
  }
  if (request.method == "M-POST") return Refuse(kNotImplemented);
  if (request.method != "POST") return Refuse(kMethodNotAllowed);
  if (request.target != "/cimom" && request.target != "/") return Refuse(kNotFound);
  if (!IsXml(request.contentType)) return Refuse(kUnsupportedMediaType);
  if (!EqualNames(request.cimOperation, "MethodCall")) return Refuse(kBadRequest, "unsupported-operation");
  try {
    const Request call = ReadRequest(request.body);
    if (!HeadersAgree(request, call)) return Refuse(kBadRequest, "header-mismatch");
    return answer(call);
  } catch (const BadRequest& error) {
    return Refuse(error.HttpStatus(), error.CimErrorHeader());
  }
}

}  // namespace Orvane::simulator
