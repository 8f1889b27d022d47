// The head of an HTTP request that carries a CIM operation.
#pragma once

#include <cstdint>
#include <string>

#include "wire/request.h"

namespace Pegasus::transport {

/// What the connection, not the operation, adds to a request's head.
struct RequestContext {
  /// Host text as the caller of connect wrote it.
  std::string host;
  std::uint32_t port = 0;
  /// Value of the Cookie header, empty for none.
  std::string cookie;
  /// Value of the Authorization header, empty for none.
  std::string authorization;
};

/// Request line and headers of `request`, the empty line included; the body follows it unchanged.
std::string BuildHead(const wire::Request& request, const RequestContext& context);

}  // namespace Pegasus::transport
