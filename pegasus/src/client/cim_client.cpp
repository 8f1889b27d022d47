// CIMClient: every operation builds its request, exchanges it over the connection, and reads the answer.
#include <Pegasus/Client/CIMClient.h>
#include <Pegasus/Common/Exception.h>

#include <atomic>
#include <cstdint>

#include "transport/connection.h"
#include "transport/text.h"
#include "wire/request.h"
#include "wire/response_reader.h"

namespace Pegasus {

namespace {

constexpr Uint32 kDefaultTimeout = 20000;
constexpr Uint32 kDefaultPort = 5988;
constexpr std::uint32_t kFirstMessageId = 1000;

/// Message ids are unique within the process, whichever client uses them.
std::uint32_t NextMessageId() {
  static std::atomic<std::uint32_t> next{kFirstMessageId};
  return next++;
}

transport::Endpoint MakeEndpoint(const String& host, Uint32 port) {
  return {host.size() == 0 ? "localhost" : transport::Utf8(host), port};
}

}  // namespace

class CIMClientRep {
 public:
  /// Runs one operation: `build` makes the request for a message id, `read` turns the answer's body into the result.
  template <typename Build, typename Read>
  auto Run(const CIMNamespaceName& nameSpace, Build build, Read read) {
    connection.RequireConnected();
    if (nameSpace.isNull()) throw InvalidNamespaceNameException(String());
    const wire::Request request = build(NextMessageId());
    return read(connection.Exchange(request, timeout), request.messageId);
  }

  transport::Connection connection;
  Uint32 timeout = kDefaultTimeout;
};

CIMClient::CIMClient() : rep_(std::make_unique<CIMClientRep>()) {}

CIMClient::~CIMClient() = default;

Uint32 CIMClient::getTimeout() const { return rep_->timeout; }

void CIMClient::setTimeout(Uint32 timeoutMilliseconds) { rep_->timeout = timeoutMilliseconds; }

void CIMClient::connect(const String& host, const Uint32 portNumber, const String& userName, const String& password) {
  rep_->connection.Connect({MakeEndpoint(host, portNumber), std::nullopt}, userName, password, rep_->timeout);
}

void CIMClient::connect(const String& host, const Uint32 portNumber, const SSLContext& sslContext,
                        const String& userName, const String& password) {
  rep_->connection.Connect({MakeEndpoint(host, portNumber), sslContext}, userName, password, rep_->timeout);
}

void CIMClient::connectLocal() { connect(String(), kDefaultPort, String(), String()); }

void CIMClient::disconnect() { rep_->connection.Disconnect(); }

CIMClass CIMClient::getClass(const CIMNamespaceName& nameSpace, const CIMName& className, Boolean localOnly,
                             Boolean includeQualifiers, Boolean includeClassOrigin,
                             const CIMPropertyList& propertyList) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildGetClass(id, nameSpace, className, localOnly, includeQualifiers, includeClassOrigin,
                                   propertyList);
      },
      wire::ReadGetClass);
}

CIMInstance CIMClient::getInstance(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                                   Boolean localOnly, Boolean includeQualifiers, Boolean includeClassOrigin,
                                   const CIMPropertyList& propertyList) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildGetInstance(id, nameSpace, instanceName, localOnly, includeQualifiers, includeClassOrigin,
                                      propertyList);
      },
      wire::ReadGetInstance);
}

void CIMClient::modifyInstance(const CIMNamespaceName& nameSpace, const CIMInstance& modifiedInstance,
                               Boolean includeQualifiers, const CIMPropertyList& propertyList) {
  rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildModifyInstance(id, nameSpace, modifiedInstance, includeQualifiers, propertyList);
      },
      wire::ReadModifyInstance);
}

Array<CIMInstance> CIMClient::enumerateInstances(const CIMNamespaceName& nameSpace, const CIMName& className,
                                                 Boolean deepInheritance, Boolean localOnly, Boolean includeQualifiers,
                                                 Boolean includeClassOrigin, const CIMPropertyList& propertyList) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildEnumerateInstances(id, nameSpace, className, deepInheritance, localOnly, includeQualifiers,
                                             includeClassOrigin, propertyList);
      },
      wire::ReadEnumerateInstances);
}

Array<CIMObjectPath> CIMClient::enumerateInstanceNames(const CIMNamespaceName& nameSpace, const CIMName& className) {
  return rep_->Run(
      nameSpace, [&](std::uint32_t id) { return wire::BuildEnumerateInstanceNames(id, nameSpace, className); },
      wire::ReadEnumerateInstanceNames);
}

Array<CIMObject> CIMClient::associators(const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                                        const CIMName& assocClass, const CIMName& resultClass, const String& role,
                                        const String& resultRole, Boolean includeQualifiers, Boolean includeClassOrigin,
                                        const CIMPropertyList& propertyList) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildAssociators(id, nameSpace, objectName, assocClass, resultClass, role, resultRole,
                                      includeQualifiers, includeClassOrigin, propertyList);
      },
      wire::ReadAssociators);
}

Array<CIMObjectPath> CIMClient::associatorNames(const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                                                const CIMName& assocClass, const CIMName& resultClass,
                                                const String& role, const String& resultRole) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) {
        return wire::BuildAssociatorNames(id, nameSpace, objectName, assocClass, resultClass, role, resultRole);
      },
      wire::ReadAssociatorNames);
}

CIMValue CIMClient::invokeMethod(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                                 const CIMName& methodName, const Array<CIMParamValue>& inParameters,
                                 Array<CIMParamValue>& outParameters) {
  return rep_->Run(
      nameSpace,
      [&](std::uint32_t id) { return wire::BuildInvokeMethod(id, nameSpace, instanceName, methodName, inParameters); },
      [&](std::string&& body, std::uint32_t id) { return wire::ReadInvokeMethod(std::move(body), id, outParameters); });
}

}  // namespace Pegasus
