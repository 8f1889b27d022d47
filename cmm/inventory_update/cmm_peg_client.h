// The CIM session: one connection to the CIM server of a chassis manager, over HTTPS or HTTP. It turns the CIM client's
// exceptions into codes, empty results and log lines, or lets them pass where an operation has its own answer to them.
#pragma once

#include <Pegasus/Client/CIMClient.h>

#include <memory>
#include <string>

namespace Orvane {

/// A CIM session. Not copyable; one thread at a time.
///
/// Most requests come in two forms. The plain name is the guarded form: a Pegasus exception becomes one level-1 line
/// and an empty (or null) result. The form that ends in `OrThrow` lets every exception pass and logs nothing.
class PegClientOpt {
 public:
  using CertificateCheck = bool (*)(Pegasus::SSLCertificateInfo& certificate);

  /// Connects to nothing. Each later request, and each connect, waits at most 300 seconds.
  PegClientOpt();
  /// Ends the connection if one is open.
  virtual ~PegClientOpt();
  PegClientOpt(const PegClientOpt&) = delete;
  PegClientOpt& operator=(const PegClientOpt&) = delete;

  /// How long a request, or a connect, waits at most, in milliseconds.
  Pegasus::Uint32 Timeout() const { return client_->getTimeout(); }

  /// Connects with HTTPS and, when that fails, with HTTP on the same port.
  /// @param port  0: HTTPS on 5989, then HTTP on 5988.
  /// @return the code of the last attempt, see ConnectOnce(). After a failure the session can connect again.
  int Connect(const std::string& host, Pegasus::Uint32 port, const std::string& user, const std::string& password);

  /// One attempt. It sends no request, so wrong credentials do not show here.
  /// @return   0  connected
  ///          -1  already connected; the connection stays usable
  ///          -2  the host has no address
  ///          -3  no socket
  ///          -4  no connection, or no TLS on that port
  ///          -5  a name is not valid
  ///          -6  any other Pegasus::Exception; other exceptions pass
  int ConnectOnce(const std::string& host, Pegasus::Uint32 port, const std::string& user, const std::string& password,
                  bool secure);

  /// Ends the connection; without one it does nothing. @return always true.
  bool Disconnect();

  /// All instances of a class and its subclasses.
  Pegasus::Array<Pegasus::CIMInstance> EnumerateInstances(const Pegasus::CIMNamespaceName& nameSpace,
                                                          const Pegasus::CIMName& className);
  Pegasus::Array<Pegasus::CIMInstance> EnumerateInstancesOrThrow(const Pegasus::CIMNamespaceName& nameSpace,
                                                                 const Pegasus::CIMName& className);

  /// As EnumerateInstances(), with a code.
  /// @param instances  replaced on success; left as it was otherwise, also after the HTTP errors that give 0.
  /// @return   0  read, or an HTTP status other than 200, 404 and 503
  ///          -6  any other Pegasus::Exception
  ///          -7  CIM error
  ///          -8  HTTP status 503
  ///          -9  HTTP status 404
  int EnumerateInstancesStatus(const std::string& nameSpace, const std::string& className,
                               Pegasus::Array<Pegasus::CIMInstance>& instances);

  /// Paths of the objects that @p assocClass links to @p path and that are of @p resultClass.
  Pegasus::Array<Pegasus::CIMObjectPath> AssociatorNames(const Pegasus::CIMNamespaceName& nameSpace,
                                                         const Pegasus::CIMObjectPath& path,
                                                         const Pegasus::CIMName& assocClass,
                                                         const Pegasus::CIMName& resultClass);
  Pegasus::Array<Pegasus::CIMObjectPath> AssociatorNamesOrThrow(const Pegasus::CIMNamespaceName& nameSpace,
                                                                const Pegasus::CIMObjectPath& path,
                                                                const Pegasus::CIMName& assocClass,
                                                                const Pegasus::CIMName& resultClass);

  /// The objects that @p assocClass links to @p path and that are of @p resultClass. The guarded form lets no exception
  /// pass at all.
  Pegasus::Array<Pegasus::CIMObject> Associators(const Pegasus::CIMNamespaceName& nameSpace,
                                                 const Pegasus::CIMObjectPath& path, const Pegasus::CIMName& assocClass,
                                                 const Pegasus::CIMName& resultClass);
  Pegasus::Array<Pegasus::CIMObject> AssociatorsOrThrow(const Pegasus::CIMNamespaceName& nameSpace,
                                                        const Pegasus::CIMObjectPath& path,
                                                        const Pegasus::CIMName& assocClass,
                                                        const Pegasus::CIMName& resultClass);

  /// One instance per object, in order. Throws for an object that is no instance.
  static Pegasus::Array<Pegasus::CIMInstance> ObjectsToInstances(const Pegasus::Array<Pegasus::CIMObject>& objects);

  /// Reads each path with a request of its own, in order. There is no guarded form: exceptions pass.
  Pegasus::Array<Pegasus::CIMInstance> GetInstances(const Pegasus::CIMNamespaceName& nameSpace,
                                                    const Pegasus::Array<Pegasus::CIMObjectPath>& paths);

  /// The instances whose property @p name has the same text as @p value (exact, whatever the types).
  static Pegasus::Array<Pegasus::CIMInstance> FilterInstancesByProperty(
      const Pegasus::Array<Pegasus::CIMInstance>& instances, const Pegasus::CIMName& name,
      const Pegasus::CIMValue& value);
  static Pegasus::Array<Pegasus::CIMInstance> FilterInstancesByPropertyOrThrow(
      const Pegasus::Array<Pegasus::CIMInstance>& instances, const Pegasus::CIMName& name,
      const Pegasus::CIMValue& value);

  /// The text of the last property called @p name as a string value; a null value when there is none.
  static Pegasus::CIMValue GetPropertyValue(const Pegasus::CIMInstance& instance, const Pegasus::CIMName& name);
  static Pegasus::CIMValue GetPropertyValueOrThrow(const Pegasus::CIMInstance& instance, const Pegasus::CIMName& name);

  /// The object path of @p instance; an empty path on failure.
  static Pegasus::CIMObjectPath GetInstancePath(const Pegasus::CIMInstance& instance);

  /// Invokes a method.
  /// @param out  replaced by the out-parameters on success, left as it was on failure.
  /// @return the method's return value; the guarded form returns a null value on failure.
  Pegasus::CIMValue InvokeMethod(const Pegasus::CIMNamespaceName& nameSpace, const Pegasus::CIMObjectPath& instanceName,
                                 const Pegasus::CIMName& methodName, const Pegasus::Array<Pegasus::CIMParamValue>& in,
                                 Pegasus::Array<Pegasus::CIMParamValue>& out);
  Pegasus::CIMValue InvokeMethodOrThrow(const Pegasus::CIMNamespaceName& nameSpace,
                                        const Pegasus::CIMObjectPath& instanceName, const Pegasus::CIMName& methodName,
                                        const Pegasus::Array<Pegasus::CIMParamValue>& in,
                                        Pegasus::Array<Pegasus::CIMParamValue>& out);

 private:
  CertificateCheck certificateCheck_;
  std::unique_ptr<Pegasus::CIMClient> client_;
};

/// Closes the connection of a session when it goes out of scope, on every way out.
class SessionCloser {
 public:
  explicit SessionCloser(PegClientOpt& session) : session_(session) {}
  ~SessionCloser() { session_.Disconnect(); }
  SessionCloser(const SessionCloser&) = delete;
  SessionCloser& operator=(const SessionCloser&) = delete;

 private:
  PegClientOpt& session_;
};

/// Accepts every server certificate, also expired and self-signed ones: chassis managers ship with such.
bool AcceptAnyCertificate(Pegasus::SSLCertificateInfo& certificate);

/// The text of the first property called @p name as a string value; a null value when there is none, and on a Pegasus
/// exception, which leaves a level-1 line.
Pegasus::CIMValue GetFirstPropertyValue(const Pegasus::CIMInstance& instance, const Pegasus::CIMName& name);

/// The number that the whole text of @p value is. -1 for a null value, and for a text that is no 32-bit integer, which
/// leaves a level-2 line.
int CIMValueToInt(const Pegasus::CIMValue& value);

}  // namespace Orvane
