// The connection procedure of the module updates.
#include "cmm/inventory_update/module_client.h"

#include <platform/sleep.h>

#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_util.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::String;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr Uint32 kTimeoutMs = 300000;
constexpr std::uint16_t kHttpsPort = 5989;
constexpr std::uint16_t kHttpPort = 5988;

}  // namespace

ModuleClient::ModuleClient(const ModuleClientTexts& texts, const std::string& host, std::uint16_t port,
                           const std::string& user, const std::string& password)
    : texts_(texts), host_(host), user_(user), password_(password), port_(port) {}

bool ModuleClient::ConnectOnce(std::uint16_t port, bool useHttps) {
  const char* const kLogSource = texts_.source;
  const auto failed = [kLogSource](const char* text, const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << text << ToStdString(error.getMessage());
    return false;
  };
  try {
    const String host(host_.c_str());
    const String user(user_.c_str());
    const String password(password_.c_str());
    client_.setTimeout(kTimeoutMs);
    if (useHttps) {
      const Pegasus::SSLContext context(String::EMPTY, String::EMPTY, String::EMPTY, certificateCheck_, String::EMPTY);
      client_.connect(host, port, context, user, password);
    } else {
      client_.connect(host, port, user, password);
    }
    ORVANE_LOG(kLogProgress) << "Successfully connected to host : " << host_;
    return true;
  } catch (const Pegasus::AlreadyConnectedException& error) {
    ORVANE_LOG(texts_.alreadyConnectedLevel) << texts_.alreadyConnected << ToStdString(error.getMessage());
    return true;
  } catch (const Pegasus::InvalidLocatorException& error) {
    return failed(texts_.invalidLocator, error);
  } catch (const Pegasus::CannotCreateSocketException& error) {
    return failed(texts_.cannotCreateSocket, error);
  } catch (const Pegasus::CannotConnectException& error) {
    return failed(texts_.cannotConnect, error);
  } catch (const Pegasus::InvalidNameException& error) {
    return failed(texts_.invalidName, error);
  } catch (const Pegasus::Exception& error) {
    return failed(texts_.unknown, error);
  }
}

bool ModuleClient::Connect() {
  return ConnectOnce(port_ == 0 ? kHttpsPort : port_, true) || ConnectOnce(port_ == 0 ? kHttpPort : port_, false);
}

bool ModuleClient::ConnectInThree(std::uint32_t pauseMs) {
  for (int failures = 0; failures < 2; ++failures) {
    if (Connect()) return true;
    platform::Sleep(pauseMs);
  }
  return Connect();
}

void ModuleClient::Disconnect() noexcept {
  try {
    client_.disconnect();
  } catch (...) {
    // Whatever went wrong at the end of a connection concerns nobody any more; callers disconnect on their way out.
  }
}

Array<CIMInstance> ModuleClient::EnumerateInstances(const char* nameSpace, const char* className) {
  return client_.enumerateInstances(Pegasus::CIMNamespaceName(nameSpace), Pegasus::CIMName(className),
                                    /*deepInheritance=*/true, /*localOnly=*/true, /*includeQualifiers=*/false,
                                    /*includeClassOrigin=*/false, Pegasus::CIMPropertyList());
}

std::string ModuleClient::OutParameterText(const Array<Pegasus::CIMParamValue>& outParameters, const char* name) const {
  const char* const kLogSource = texts_.source;
  if (outParameters.size() == 0) {
    ORVANE_LOG(texts_.emptyParameterLevel) << "Empty Parameter";
    return {};
  }
  for (Uint32 i = 0; i < outParameters.size(); ++i) {
    if (outParameters[i].getParameterName() != name) continue;
    std::string value = ToStdString(outParameters[i].getValue().toString());
    ORVANE_LOG(kLogProgress) << "Parameter Name: " << name << ", Parameter Value: " << value;
    return value;
  }
  return {};
}

}  // namespace Orvane
