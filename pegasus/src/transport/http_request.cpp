// The head of an HTTP request that carries a CIM operation. The order of the lines is fixed: servers exist that were
// only ever tried with this one.
#include "transport/http_request.h"

namespace Pegasus::transport {

namespace {

constexpr std::size_t kLengthDigits = 10;

void AppendLine(std::string& head, const char* name, const std::string& value) {
  head += name;
  head += ": ";
  head += value;
  head += "\r\n";
}

std::string PaddedLength(std::size_t length) {
  std::string digits = std::to_string(length);
  if (digits.size() < kLengthDigits) digits.insert(0, kLengthDigits - digits.size(), '0');
  return digits;
}

}  // namespace

std::string BuildHead(const wire::Request& request, const RequestContext& context) {
  std::string head = "POST /cimom HTTP/1.1\r\n";
  if (!context.cookie.empty()) AppendLine(head, "Cookie", context.cookie);
  AppendLine(head, "HOST", context.host + ":" + std::to_string(context.port));
  AppendLine(head, "Content-Type", "application/xml; charset=utf-8");
  AppendLine(head, "content-length", PaddedLength(request.body.size()));
  AppendLine(head, "TE", "chunked, trailers");
  AppendLine(head, "CIMOperation", "MethodCall");
  AppendLine(head, "CIMMethod", wire::EncodeUri(request.method));
  AppendLine(head, "CIMObject", wire::EncodeUri(request.object));
  if (!context.authorization.empty()) AppendLine(head, "Authorization", context.authorization);
  head += "\r\n";
  return head;
}

}  // namespace Pegasus::transport
