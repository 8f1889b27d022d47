// Packages are made with the cryptographic library itself, not with the code under test.
#include "living_chassis.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace Orvane::simulator::tests {

std::string MakePackage(const std::string& target, const std::string& version, const std::string& more) {
  const std::string payload = "firmware " + version;
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  EVP_Digest(payload.data(), payload.size(), digest.data(), &length, EVP_sha256(), nullptr);
  std::string checksum;
  for (unsigned i = 0; i < length; ++i) {
    std::array<char, 3> hex{};
    std::snprintf(hex.data(), hex.size(), "%02x", digest.at(i));
    checksum += hex.data();
  }
  std::vector<unsigned char> encoded(payload.size() * 2 + 4);
  EVP_EncodeBlock(encoded.data(), reinterpret_cast<const unsigned char*>(payload.data()),
                  static_cast<int>(payload.size()));
  return R"({"orvane_package":1,"target":")" + target + R"(","version":")" + version + R"(","sha256":")" + checksum +
         R"(","payload":")" + reinterpret_cast<const char*>(encoded.data()) + "\"" + more + "}";
}

TemporaryFile::TemporaryFile(const std::string& text) {
  std::string name = testing::TempDir() + "orvane-package-XXXXXX";
  const int file = ::mkstemp(name.data());
  if (file < 0) throw std::runtime_error("no temporary file");
  ::close(file);
  path_ = name;
  std::ofstream(path_, std::ios::binary) << text;
}

TemporaryFile::~TemporaryFile() { ::unlink(path_.c_str()); }

LivingChassis::LivingChassis(Model model, Options options) {
  options.authentication = false;
  options.httpsPort = -1;
  options.clock = clock_;
  simulator_ = std::make_unique<Simulator>(std::move(model), options);
}

CimClient& LivingChassis::Client() {
  if (!client_) client_ = std::make_unique<CimClient>(simulator_->HttpPort());
  return *client_;
}

CimInstance LivingChassis::Switch(int bay) {
  return Client().Find("VORTA_IOModuleComputerSystem", "Name", "iomodule0" + std::to_string(bay));
}

CimInstance LivingChassis::PassThru(int bay) {
  return Client().Find("VORTA_PassThroughModule", "DeviceID", "iomodule0" + std::to_string(bay));
}

CimOutcome LivingChassis::Install(const CimInstance& target, const std::string& uri) {
  return InstallWith({Scalar("URI", "string", uri), Reference("Target", target.name),
                      Array("InstallOptions", "uint16", {"5"}), Array("InstallOptionsValues", "string", {""})});
}

CimOutcome LivingChassis::InstallWith(const std::vector<CimParameter>& parameters) {
  const CimInstance service = Client().Enumerate("CIM_SoftwareInstallationService").at(0);
  return Client().Invoke(service.className, service.name, "InstallFromURI", parameters);
}

std::string LivingChassis::Job(const std::string& id, const std::string& className) {
  for (const CimInstance& job : Client().Enumerate(className, "/root/cimv2")) {
    if (job["InstanceID"] == id) return job["JobState"] + " " + job["ErrorDescription"];
  }
  return {};
}

std::string LivingChassis::Request(const CimInstance& target, const std::string& state) {
  const CimOutcome outcome =
      Client().Invoke(target.className, target.name, "RequestStateChange", {Scalar("RequestedState", "uint16", state)});
  return outcome.error != 0 ? "error " + std::to_string(outcome.error) : outcome.returnValue;
}

std::vector<std::string> LivingChassis::Images(const std::string& idStart) {
  std::vector<std::string> images;
  for (const CimInstance& association : Client().Enumerate("CIM_ElementSoftwareIdentity")) {
    const std::string id = association["Antecedent"];
    if (id.find(idStart) == 0) images.push_back(Version(id) + " " + association["ElementSoftwareStatus"]);
  }
  return images;
}

std::string LivingChassis::Version(const std::string& instanceId) {
  return Client().Find("CIM_SoftwareIdentity", "InstanceID", instanceId)["VersionString"];
}

}  // namespace Orvane::simulator::tests
