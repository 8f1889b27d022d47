// The CIM client: one persistent HTTP or HTTPS connection to a CIM server and the operations that travel over it.
// Including this header brings in every type that the operations take and return.
#pragma once

#include <Pegasus/Client/CIMClientException.h>
#include <Pegasus/Client/Linkage.h>
#include <Pegasus/Common/AcceptLanguageList.h>
#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/CIMFlavor.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMMethod.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMObjectPath.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <Pegasus/Common/CIMParameter.h>
#include <Pegasus/Common/CIMProperty.h>
#include <Pegasus/Common/CIMPropertyList.h>
#include <Pegasus/Common/CIMQualifier.h>
#include <Pegasus/Common/CIMQualifierDecl.h>
#include <Pegasus/Common/CIMScope.h>
#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/CIMType.h>
#include <Pegasus/Common/CIMValue.h>
#include <Pegasus/Common/Char16.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/ContentLanguageList.h>
#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/SSLContext.h>
#include <Pegasus/Common/String.h>
#include <Pegasus/Common/UintArgs.h>

#include <memory>

namespace Pegasus {

class CIMClientRep;

/// A client of one CIM server at a time. One object serves one thread at a time; different objects are independent, and
/// what an operation returned may be handed to other threads.
///
/// Every operation needs a preceding connect, else it throws NotConnectedException. It sends its request over the kept
/// connection, opening a new one first when the server has closed the old, and waits for the whole answer.
/// Operations throw, besides what connect throws when a new connection is due:
/// ConnectionTimeoutException when the time-out passes first (the connection is then closed),
/// CIMClientMalformedHTTPException, CIMClientHTTPErrorException, CIMClientXmlException and CIMClientResponseException
/// for answers that are no proper CIM-XML answers, CIMException for the server's own errors, and
/// InvalidNamespaceNameException for a null namespace (nothing is sent then).
/// A request is never sent twice, but for the one repetition that a server's authentication challenge asks for.
class PEGASUS_CLIENT_LINKAGE CIMClient {
 public:
  /// Not connected yet; the time-out is 20 seconds.
  CIMClient();
  /// Disconnects.
  ~CIMClient();

  /// Milliseconds that a connect, each wait of a TLS handshake and a whole operation may take; 20000 at first.
  Uint32 getTimeout() const;
  /// Takes effect with the next call.
  void setTimeout(Uint32 timeoutMilliseconds);

  /// Opens a plain connection; no request is sent, so credentials are first tried by the first operation.
  /// @param host name or address; IPv6 literals without brackets; empty means localhost
  /// @param portNumber 1 to 65535
  /// @param userName, password sent when the server asks for them; each character is cut to Latin-1
  /// @throws AlreadyConnectedException, InvalidLocatorException (unknown host), CannotConnectException (also when the
  ///   time-out passes first, and for other port numbers), CannotCreateSocketException (no descriptors left)
  void connect(const String& host, const Uint32 portNumber, const String& userName, const String& password);
  /// Opens a TLS connection, handshake included; otherwise as the plain form.
  /// @throws SSLException also, when the context's files cannot be used
  void connect(const String& host, const Uint32 portNumber, const SSLContext& sslContext, const String& userName,
               const String& password);
  /// Opens a plain connection to port 5988 of this machine, without credentials. Throws as connect does.
  void connectLocal();
  /// Closes the connection and forgets host and credentials. No effect when not connected.
  void disconnect();

  /// The definition of a class.
  /// @param localOnly leaves out what comes from superclasses
  /// @param includeQualifiers asks for qualifiers too
  /// @param includeClassOrigin asks for the class that defined each property and method
  /// @param propertyList the properties to send; null for all, empty for none
  CIMClass getClass(const CIMNamespaceName& nameSpace, const CIMName& className, Boolean localOnly = true,
                    Boolean includeQualifiers = true, Boolean includeClassOrigin = false,
                    const CIMPropertyList& propertyList = CIMPropertyList());

  /// One instance. The result's path is the class name alone.
  /// @param instanceName class and keys; host and namespace of the path are not used
  /// @param localOnly, includeQualifiers, includeClassOrigin, propertyList as for getClass
  CIMInstance getInstance(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                          Boolean localOnly = true, Boolean includeQualifiers = false,
                          Boolean includeClassOrigin = false, const CIMPropertyList& propertyList = CIMPropertyList());

  /// Changes properties of an instance, which the path of `modifiedInstance` names.
  /// @param includeQualifiers changes the qualifiers too
  /// @param propertyList the properties to change; null for all that `modifiedInstance` has
  void modifyInstance(const CIMNamespaceName& nameSpace, const CIMInstance& modifiedInstance,
                      Boolean includeQualifiers = true, const CIMPropertyList& propertyList = CIMPropertyList());

  /// All instances of a class and its subclasses. Their paths carry neither host nor namespace.
  /// @param deepInheritance asks for the properties that subclasses add, too
  /// @param localOnly, includeQualifiers, includeClassOrigin, propertyList as for getClass
  Array<CIMInstance> enumerateInstances(const CIMNamespaceName& nameSpace, const CIMName& className,
                                        Boolean deepInheritance = true, Boolean localOnly = true,
                                        Boolean includeQualifiers = false, Boolean includeClassOrigin = false,
                                        const CIMPropertyList& propertyList = CIMPropertyList());

  /// The paths of all instances of a class and its subclasses, without host and namespace.
  Array<CIMObjectPath> enumerateInstanceNames(const CIMNamespaceName& nameSpace, const CIMName& className);

  /// The instances (for a path without keys: the classes) that are associated with an object. Their paths carry the
  /// host and the namespace that the server sent.
  /// @param assocClass associations of this class and its subclasses only; null for any
  /// @param resultClass results of this class and its subclasses only; null for any
  /// @param role the property of the association that leads to `objectName`; empty for any
  /// @param resultRole the property of the association that leads to the result; empty for any
  /// @param includeQualifiers, includeClassOrigin, propertyList as for getClass
  Array<CIMObject> associators(const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                               const CIMName& assocClass = CIMName(), const CIMName& resultClass = CIMName(),
                               const String& role = String::EMPTY, const String& resultRole = String::EMPTY,
                               Boolean includeQualifiers = false, Boolean includeClassOrigin = false,
                               const CIMPropertyList& propertyList = CIMPropertyList());

  /// The paths of what associators would return for the same arguments.
  Array<CIMObjectPath> associatorNames(const CIMNamespaceName& nameSpace, const CIMObjectPath& objectName,
                                       const CIMName& assocClass = CIMName(), const CIMName& resultClass = CIMName(),
                                       const String& role = String::EMPTY, const String& resultRole = String::EMPTY);

  /// Calls a method of an instance, or of a class when the path has no keys.
  /// @param inParameters sent in their order
  /// @param outParameters replaced on success, by all that the server sent in its order; untouched on failure
  /// @return what the method returned; a NULL boolean when the server sent nothing
  CIMValue invokeMethod(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName, const CIMName& methodName,
                        const Array<CIMParamValue>& inParameters, Array<CIMParamValue>& outParameters);

 private:
  CIMClient(const CIMClient&);
  CIMClient& operator=(const CIMClient&);

  std::unique_ptr<CIMClientRep> rep_;
};

}  // namespace Pegasus
