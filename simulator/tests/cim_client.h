// A CIM client of the tests that speaks CIM-XML over plain HTTP on one connection, as much of it as the behaviour of a
// chassis needs. It reads answers with an XML parser of its own, so that nothing of the server judges itself.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "loopback_client.h"

namespace Orvane::simulator::tests {

struct CimInstance {
  /// INSTANCENAME element, to be sent back as a reference or target.
  std::string name;
  std::string className;
  /// Texts of the properties that are not NULL; those of arrays with a blank between them, references as the texts of
  /// all their keys.
  std::map<std::string, std::string> values;

  std::string operator[](const std::string& property) const {
    const auto found = values.find(property);
    return found == values.end() ? std::string() : found->second;
  }
};

struct CimParameter {
  std::string name;
  std::string type;
  /// Element with the value; empty for NULL.
  std::string value;
};

CimParameter Scalar(const std::string& name, const std::string& type, const std::string& text);
CimParameter Array(const std::string& name, const std::string& type, const std::vector<std::string>& texts);
CimParameter Reference(const std::string& name, const std::string& instanceName);

struct CimOutcome {
  /// Code of the CIM error; 0 for none.
  int error = 0;
  std::string description;
  std::string returnValue;
  /// Text of the InstanceID key of the out-parameter Job; empty when there is none.
  std::string job;
  std::string jobClass;
};

class CimClient {
 public:
  /// @throws std::runtime_error when nobody listens there
  explicit CimClient(std::uint16_t port) : client_(port) {}

  /// @throws std::runtime_error when the connection ends or a CIM error comes back
  std::vector<CimInstance> Enumerate(const std::string& className, const std::string& nameSpace = "root/cimv2");
  /// The one whose property has this text. @throws std::runtime_error when there is none
  CimInstance Find(const std::string& className, const std::string& property, const std::string& text);

  /// @throws std::runtime_error when the connection ends
  CimOutcome Invoke(const std::string& className, const std::string& instanceName, const std::string& method,
                    const std::vector<CimParameter>& parameters);
  CimOutcome Modify(const CimInstance& instance, const CimParameter& property);

 private:
  std::string Call(const std::string& method, const std::string& object, const std::string& call);

  PlainClient client_;
};

/// Whether somebody listens on a port of 127.0.0.1.
bool IsListening(std::uint16_t port);

}  // namespace Orvane::simulator::tests
