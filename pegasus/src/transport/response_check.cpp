// Decides whether a complete HTTP response is the answer to a CIM operation, and if not, which exception it stands for.
#include "transport/response_check.h"

#include <Pegasus/Client/CIMClientException.h>
#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/Exception.h>

#include <charconv>
#include <string_view>

#include "transport/text.h"

namespace Pegasus::transport {

namespace {

constexpr Uint32 kOk = 200;
constexpr Uint32 kBadRequest = 400;

String TextOf(const std::string* value) { return value == nullptr ? String() : HeaderText(*value); }

String DecodedTextOf(const std::string* value) { return value == nullptr ? String() : HeaderText(UriDecode(*value)); }

/// A CIM status that came outside the body, as a header or a trailer.
void CheckCimStatus(const Headers& headers) {
  const std::string* code = headers.FindPrefixed("CIMStatusCode");
  if (code == nullptr) return;
  int number = 0;
  std::from_chars(code->data(), code->data() + code->size(), number);
  if (number <= 0) return;
  const auto status = static_cast<CIMStatusCode>(number);
  const std::string* description = headers.FindPrefixed("CIMStatusCodeDescription");
  throw CIMException(status,
                     description == nullptr ? String(cimStatusCodeToString(status)) : DecodedTextOf(description));
}

void CheckTrailers(const Headers& trailers) {
  CheckCimStatus(trailers);
  const std::string* error = trailers.FindPrefixed("CIMError");
  if (error == nullptr) return;
  throw CIMClientHTTPErrorException(kBadRequest, String("Bad Request"), HeaderText(*error),
                                    DecodedTextOf(trailers.FindPrefixed("PGErrorDetail")));
}

void CheckOperation(const HttpResponse& response) {
  const std::string* operation = response.headers.FindPrefixed("CIMOperation");
  if (operation == nullptr) throw CIMClientMalformedHTTPException(String("Missing CIMOperation HTTP header"));
  if (!EqualIgnoringCase(*operation, "MethodResponse")) {
    // The value is left out, as users of the API know the message.
    throw CIMClientMalformedHTTPException(
        String("Received CIMOperation HTTP header value \"\", expected \"MethodResponse\""));
  }
}

/// `application/xml` or `text/xml`, and at most the charset utf-8 behind it.
bool IsXmlType(std::string_view value) {
  constexpr std::string_view kCharset = "charset=";
  const std::size_t semicolon = value.find(';');
  const std::string_view type = Trim(value.substr(0, semicolon));
  if (!EqualIgnoringCase(type, "application/xml") && !EqualIgnoringCase(type, "text/xml")) return false;
  if (semicolon == std::string_view::npos) return true;
  const std::string_view parameter = Trim(value.substr(semicolon + 1));
  if (!EqualIgnoringCase(parameter.substr(0, kCharset.size()), kCharset)) return false;
  std::string_view charset = parameter.substr(kCharset.size());
  if (charset.size() >= 2 && charset.front() == '"' && charset.back() == '"') {
    charset = charset.substr(1, charset.size() - 2);
  }
  return EqualIgnoringCase(charset, "utf-8");
}

void CheckContentType(const Headers& headers) {
  const std::string* type = headers.Find("Content-Type");
  if (type == nullptr || IsXmlType(*type)) return;
  String message("Bad Content-Type HTTP header; ");
  message.append(HeaderText(*type));
  throw CIMClientMalformedHTTPException(message);
}

}  // namespace

std::string AcceptedBody(HttpResponse&& response) {
  if (!response.statusLineValid) {
    throw CIMClientMalformedHTTPException(String("Malformed HTTP response message."));
  }
  if (response.status != kOk) {
    throw CIMClientHTTPErrorException(response.status, HeaderText(response.reason),
                                      TextOf(response.headers.FindPrefixed("CIMError")),
                                      DecodedTextOf(response.headers.FindPrefixed("PGErrorDetail")));
  }
  CheckTrailers(response.trailers);
  CheckCimStatus(response.headers);
  CheckOperation(response);
  if (!response.headComplete) throw CIMClientMalformedHTTPException(String("Malformed HTTP response message."));
  CheckContentType(response.headers);
  return std::move(response.body);
}

}  // namespace Pegasus::transport
