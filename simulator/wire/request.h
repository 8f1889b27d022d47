// A CIM operation request as the simulator works with it, and the reader that gets it out of a CIM-XML body (DSP0201).
// The reader knows nothing of HTTP beyond the status it asks the server to answer a bad request with.
#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cim/object_store.h"
#include "cim/types.h"

namespace Orvane::simulator {

/// A request that is answered by an HTTP status and a CIMError header (DSP0200, 7.4) instead of a CIM-XML body.
class BadRequest : public std::runtime_error {
 public:
  BadRequest(int httpStatus, const std::string& cimError, const std::string& reason)
      : std::runtime_error(reason), httpStatus_(httpStatus), cimError_(cimError) {}
  int HttpStatus() const { return httpStatus_; }
  const std::string& CimErrorHeader() const { return cimError_; }

 private:
  int httpStatus_;
  std::string cimError_;
};

/// A property of an instance that a client sends, with the type that the client says it has.
struct SentProperty {
  std::string name;
  std::string typeName;
  bool isArray = false;
  Value value;
};

/// A VALUE.NAMEDINSTANCE.
struct SentInstance {
  ObjectPath path;
  /// Of the instance itself, which the path names as well.
  std::string className;
  std::vector<SentProperty> properties;
};

/// A parameter of an intrinsic operation; the members that fit what was sent are set, none for a NULL.
struct Parameter {
  std::optional<std::string> text;
  std::optional<std::vector<std::string>> texts;
  std::optional<std::string> className;
  std::optional<ObjectPath> path;
  std::optional<SentInstance> instance;
};

/// A parameter of an extrinsic method.
struct MethodParameter {
  std::string name;
  /// Empty when a client names none.
  std::string typeName;
  bool isArray = false;
  Value value;
};

struct Request {
  std::string messageId;
  bool isIntrinsic = true;
  /// Name of the operation or of the method.
  std::string name;
  /// "root/cimv2"
  std::string nameSpace;
  /// Of an intrinsic operation, by name in any case.
  std::map<std::string, Parameter, LessName> parameters;
  /// Of an extrinsic method: the object, without keys for a class.
  ObjectPath target;
  std::vector<MethodParameter> methodParameters;
};

/// @throws BadRequest when the body is not well-formed, not a CIM request, or of a version that is not supported
Request ReadRequest(const std::string& body);

}  // namespace Orvane::simulator
