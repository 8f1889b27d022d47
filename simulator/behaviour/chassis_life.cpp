// Which method of which class leads where.
#include "behaviour/chassis_life.h"

namespace Orvane::simulator {

namespace {

constexpr const char* kRestartable[] = {"VORTA_CMMComputerSystem", "VORTA_IOModuleComputerSystem",
                                        "VORTA_PassThroughModule"};

}  // namespace

ChassisLife::ChassisLife(SharedStore& store, Clock& clock, Network& network, const ChassisSettings& settings,
                         const FetchLimits& limits)
    : jobs_(store, clock, settings.timing.jobRemoval),
      cmms_(store, clock, network, images_, settings.timing),
      installation_(store, clock, jobs_, images_, settings, limits),
      power_(store, clock, cmms_, images_, installation_, settings.timing) {}

void ChassisLife::Register(Operations& operations) {
  operations.AddMethod("CIM_SoftwareInstallationService", "InstallFromURI",
                       [this](ObjectStore& store, const ObjectPath&, const std::vector<MethodParameter>& parameters) {
                         return installation_.InstallFromUri(store, parameters);
                       });
  for (const char* className : kRestartable) {
    operations.AddMethod(
        className, "RequestStateChange",
        [this](ObjectStore& store, const ObjectPath& target, const std::vector<MethodParameter>& parameters) {
          return power_.RequestStateChange(store, target, parameters);
        });
  }
  operations.AddMethod(
      "CIM_PowerManagementService", "RequestPowerStateChange",
      [this](ObjectStore& store, const ObjectPath& service, const std::vector<MethodParameter>& parameters) {
        return power_.RequestPowerStateChange(store, service, parameters);
      });
  operations.AddObserver("CIM_ElementSoftwareIdentity", [this](ObjectStore& store, const ObjectPath& association) {
    power_.ImageModified(store, association);
  });
}

}  // namespace Orvane::simulator
