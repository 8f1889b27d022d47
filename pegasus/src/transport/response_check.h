// Decides whether a complete HTTP response is the answer to a CIM operation, and if not, which exception it stands for.
#pragma once

#include <string>

#include "transport/http_response.h"

namespace Pegasus::transport {

/// @return the body, to be read as CIM-XML
/// @throws CIMClientMalformedHTTPException, CIMClientHTTPErrorException, CIMException (status in headers or trailers)
std::string AcceptedBody(HttpResponse&& response);

}  // namespace Pegasus::transport
