// A full TLS handshake costs the small processor of a management module about a second, so an inventory must cost one
// of them, however many connections it opens. Counted by the servers: by the simulator, and by nginx in front of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/simulator/simulator.h>

#include <iostream>
#include <set>
#include <string>
#include <tuple>

#include "testing/scoped_log.h"
#include "tests/nginx.h"
#include "tests/process.h"
#include "tests/whole_inventory.h"

namespace Orvane::tests {
namespace {

using simulator::Simulator;
using simulator::TlsHandshakes;
using simulator::TlsVersions;

const char* NameOf(TlsVersions versions) { return versions == TlsVersions::kOnly12 ? "TLS 1.2" : "TLS 1.3"; }

simulator::Options Chassis(TlsVersions versions) {
  simulator::Options options;
  options.user = ChassisUser::kName;
  options.password = ChassisUser::kPassword;
  options.httpPort = -1;
  options.tlsVersions = versions;
  return options;
}

void Report(const std::string& what, const TlsHandshakes& handshakes) {
  std::cout << "handshakes per inventory, " << what << ": full " << handshakes.full << ", resumed "
            << handshakes.resumed << std::endl;
}

class Handshakes : public ::testing::TestWithParam<TlsVersions> {
 protected:
  testing::ScopedLog log_;
};

TEST_P(Handshakes, WholeInventoryOfTheLibraryCostsOne) {
  const Simulator simulator(simulator::BuiltInModel(), Chassis(GetParam()));

  const WholeInventory inventory = ReadWholeInventory(simulator.HttpsPort());

  const TlsHandshakes handshakes = simulator.Handshakes();
  Report(std::string("all operations of the library, ") + NameOf(GetParam()), handshakes);
  EXPECT_GT(inventory.connections, 10U);
  EXPECT_EQ(handshakes.full, 1U);
  EXPECT_EQ(handshakes.resumed, inventory.connections - 1);
}

TEST_P(Handshakes, InventoryOfTheCommandCostsOne) {
  const Simulator simulator(simulator::BuiltInModel(), Chassis(GetParam()));

  Invocation run;
  run.arguments = {"inventory", "--host",          "127.0.0.1", "--port", std::to_string(simulator.HttpsPort()),
                   "--user",    ChassisUser::kName};
  run.environment["ORVANE_PASSWORD"] = ChassisUser::kPassword;
  const Result result = RunOrvane(run);

  ASSERT_EQ(result.status, 0) << result.errors;
  const TlsHandshakes handshakes = simulator.Handshakes();
  Report(std::string("orvane inventory, ") + NameOf(GetParam()), handshakes);
  EXPECT_EQ(handshakes.full, 1U);
  // Chassis, CMMs, switches, three kinds of equipment, and the two bays with pass-through modules.
  EXPECT_EQ(handshakes.resumed, 7U);
}

TEST_P(Handshakes, AreAllFullWithAServerThatResumesNothing) {
  simulator::Options options = Chassis(GetParam());
  options.tlsResumption = false;
  const Simulator simulator(simulator::BuiltInModel(), options);

  const WholeInventory inventory = ReadWholeInventory(simulator.HttpsPort());

  const TlsHandshakes handshakes = simulator.Handshakes();
  Report(std::string("no resumption, ") + NameOf(GetParam()), handshakes);
  EXPECT_EQ(handshakes.full, inventory.connections);
  EXPECT_EQ(handshakes.resumed, 0U);
}

// The count of another program, whose TLS is configured by others.
TEST_P(Handshakes, AsNginxCountsThem) {
  simulator::Options options = Chassis(TlsVersions::kBoth);
  options.httpPort = 0;
  options.httpsPort = -1;
  const Simulator simulator(simulator::BuiltInModel(), options);
  const std::string version = GetParam() == TlsVersions::kOnly12 ? "TLSv1.2" : "TLSv1.3";
  Nginx nginx({"http://127.0.0.1:" + std::to_string(simulator.HttpPort()), "", true, version});

  const WholeInventory inventory = ReadWholeInventory(nginx.Port());

  std::set<std::string> full;
  std::set<std::string> resumed;
  for (const ProxiedAnswer& answer : nginx.StopAndReadLog()) {
    EXPECT_EQ(answer.tlsVersion, version);
    (answer.resumed ? resumed : full).insert(answer.connection);
  }
  Report("counted by nginx, " + std::string(NameOf(GetParam())), {full.size(), resumed.size()});
  EXPECT_EQ(full.size(), 1U);
  EXPECT_EQ(resumed.size(), inventory.connections - 1);
}

INSTANTIATE_TEST_SUITE_P(Versions, Handshakes, ::testing::Values(TlsVersions::kOnly12, TlsVersions::kOnly13),
                         [](const auto& versions) {
                           return versions.param == TlsVersions::kOnly12 ? "Tls12" : "Tls13";
                         });

}  // namespace
}  // namespace Orvane::tests
