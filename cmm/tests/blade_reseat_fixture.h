// What the tests of the blade reseat share: a scripted chassis with compute nodes, their power management services and
// the associations between them.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cmm/tests/inventory_fixture.h"

namespace Orvane::testing {

constexpr char kPowerServiceClass[] = "CIM_PowerManagementService";
constexpr char kNodeClass[] = "VORTA_ComputerSystem";
constexpr char kPowerAssociation[] = "CIM_AssociatedPowerManagementService";
constexpr char kRequestPowerChange[] = "RequestPowerStateChange";

inline CimObjectSpec PowerService(const std::string& node) {
  return CimObjectSpec(kPowerServiceClass).Key("Name", "power " + node);
}
inline CimObjectSpec Node(const std::string& name) { return CimObjectSpec(kNodeClass).Key("Name", name); }

/// The association of a node with its service; without states the property is absent.
inline CimObjectSpec PowerAssociation(const std::string& node) {
  CimObjectSpec association(kPowerAssociation);
  for (const auto& [name, path] : {std::pair<std::string, CimPath>("ServiceProvided", PowerService(node).Path()),
                                   std::pair<std::string, CimPath>("UserOfService", Node(node).Path())}) {
    association.keys.push_back({name, "", "string", std::make_shared<const CimPath>(path)});
    association.With(name, CimReference(path));
  }
  return association;
}
inline CimObjectSpec PowerAssociation(const std::string& node, std::initializer_list<unsigned> states) {
  return PowerAssociation(node).With("AvailableRequestedPowerStates", CimUint16Array(states));
}

class BladeReseatTest : public ::testing::Test {
 protected:
  BladeReseatTest() : server(HttpsServer()), reseat("127.0.0.1", server.Port(), "USERID", "s3cret", 7) {}

  /// Nodes that offer to be reseated.
  void ScriptNodes(const std::vector<std::string>& names) {
    std::vector<CimObjectSpec> services;
    std::vector<CimObjectSpec> nodes;
    std::vector<CimObjectSpec> associations;
    for (const std::string& name : names) {
      services.push_back(PowerService(name));
      nodes.push_back(Node(name));
      associations.push_back(PowerAssociation(name, {2, 8, 32769}));
    }
    server.OnEnumerate(kPowerServiceClass, Objects(services));
    server.OnEnumerate(kNodeClass, Objects(nodes));
    server.OnEnumerate(kPowerAssociation, Objects(associations));
    server.OnInvoke(kRequestPowerChange, MethodResult(CimTyped("uint32", "0")));
  }

  /// Everything logged so far, as "level text".
  std::vector<std::string> Lines() const { return LinesOf({}); }
  /// The lines of the reseat alone.
  std::vector<std::string> OwnLines() const { return LinesOf("cmm/inventory_update/cmm_blade_reseat"); }
  std::string SessionConnected() const {
    return "3 Connect CIMOM . H:127.0.0.1 P:" + std::to_string(server.Port()) + " U:USERID RC: 0";
  }
  std::vector<CimRequest> Invocations() const {
    std::vector<CimRequest> found;
    for (CimRequest& request : server.Requests()) {
      if (request.operation == "InvokeMethod" && request.authorized) found.push_back(std::move(request));
    }
    return found;
  }

  CimServer server;
  Cmm_Blade_Reseat reseat;
  ScopedLog log;

 private:
  std::vector<std::string> LinesOf(const std::string& file) const {
    std::vector<std::string> lines;
    for (const Log::Record& record : log.Records()) {
      if (file.empty() || record.file == file) lines.push_back(std::to_string(record.level) + " " + record.text);
    }
    return lines;
  }
};

}  // namespace Orvane::testing
