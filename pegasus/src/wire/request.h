// Builds the requests of the supported CIM operations: the body as CIM-XML and the two values that go into the
// HTTP header. Nothing here knows about connections.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Pegasus/Common/CIMInstance.h"
#include "Pegasus/Common/CIMName.h"
#include "Pegasus/Common/CIMObjectPath.h"
#include "Pegasus/Common/CIMParamValue.h"
#include "Pegasus/Common/CIMPropertyList.h"
#include "Pegasus/Common/String.h"

namespace Pegasus::wire {

/// One request ready to be sent.
struct Request {
  /// Value of the CIMMethod header: raw UTF-8, to be passed through EncodeUri.
  std::string method;
  /// Value of the CIMObject header: raw UTF-8, to be passed through EncodeUri.
  std::string object;
  /// The request body: UTF-8 CIM-XML.
  std::string body;
  /// The MESSAGE ID written in the body; the response must carry the same.
  std::uint32_t messageId = 0;
};

/// Percent-encodes every byte but ASCII letters, digits and `- _ . ! ~ * ' ( )`, upper-case hex.
std::string EncodeUri(std::string_view text);

/// The builders below throw InvalidNamespaceNameException when `nameSpace` is null. Parameters which equal the
/// protocol's default are not written. The host and namespace of an object path never travel as the target.
Request BuildEnumerateInstances(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMName& className,
                                bool deepInheritance, bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                                const CIMPropertyList& propertyList);

Request BuildEnumerateInstanceNames(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                                    const CIMName& className);

Request BuildGetInstance(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                         bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                         const CIMPropertyList& propertyList);

Request BuildModifyInstance(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                            const CIMInstance& modifiedInstance, bool includeQualifiers,
                            const CIMPropertyList& propertyList);

Request BuildAssociators(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                         const CIMName& assocClass, const CIMName& resultClass, const String& role,
                         const String& resultRole, bool includeQualifiers, bool includeClassOrigin,
                         const CIMPropertyList& propertyList);

Request BuildAssociatorNames(std::uint32_t messageId, const CIMNamespaceName& nameSpace,
                             const CIMObjectPath& objectName, const CIMName& assocClass, const CIMName& resultClass,
                             const String& role, const String& resultRole);

Request BuildGetClass(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMName& className,
                      bool localOnly, bool includeQualifiers, bool includeClassOrigin,
                      const CIMPropertyList& propertyList);

Request BuildInvokeMethod(std::uint32_t messageId, const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                          const CIMName& methodName, const Array<CIMParamValue>& inParameters);

}  // namespace Pegasus::wire
