// One CIM-XML request as a test server received it, taken apart into what tests look at.
#pragma once

#include <string>
#include <vector>

#include "testing/http_listener.h"

namespace Orvane::testing {

/// An in-parameter of a method call, or a property of a modified instance.
struct CimArgument {
  std::string name;
  std::string type;  ///< PARAMTYPE or TYPE; empty when the element has none; "reference" for reference properties
  bool isArray = false;
  bool isNull = false;              ///< no value inside
  std::vector<std::string> values;  ///< texts; a reference as its path text
};

struct CimRequest {
  unsigned connection = 0;
  bool tls = false;
  bool authorized = true;   ///< false: answered with a challenge instead of the script
  std::string operation;    ///< e.g. "EnumerateInstances"; "InvokeMethod" for method calls
  std::string method;       ///< of InvokeMethod, else empty
  std::string nameSpace;    ///< parts joined by "/"
  std::string objectClass;  ///< class asked for, or class of the object
  std::string objectText;   ///< text of the object path, keys sorted by name; the class alone when there are none
  std::string assocClass;   ///< empty when not given
  std::string resultClass;
  std::vector<CimArgument> arguments;
  std::string messageId;
  std::string head;  ///< request line and headers as they came
  std::string body;

  /// `operation object`, with `[assocClass, resultClass]` behind it for associations and the method for method calls.
  std::string Summary() const;
};

/// @throws std::runtime_error  the body is no CIM-XML request.
CimRequest ParseCimRequest(const HttpExchange& exchange);

}  // namespace Orvane::testing
