// The CIM session. Each guarded call stands on the form that lets exceptions pass; the log prefixes differ between the
// operations, with and without a blank at their end, and stay as they are because log readers match them.
#include "cmm/inventory_update/cmm_peg_client.h"

#include <boost/lexical_cast.hpp>

#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_util.h"

using Pegasus::Array;
using Pegasus::CIMInstance;
using Pegasus::CIMName;
using Pegasus::CIMNamespaceName;
using Pegasus::CIMObject;
using Pegasus::CIMObjectPath;
using Pegasus::CIMParamValue;
using Pegasus::CIMPropertyList;
using Pegasus::CIMValue;
using Pegasus::String;
using Pegasus::Uint32;

namespace Orvane {
namespace {

constexpr char kLogSource[] = "cmm/inventory_update/cmm_peg_client";

constexpr Uint32 kTimeoutMs = 300000;
constexpr Uint32 kHttpsPort = 5989;
constexpr Uint32 kHttpPort = 5988;

// ConnectOnce() and EnumerateInstancesStatus().
constexpr int kOk = 0;
constexpr int kAlreadyConnected = -1;
constexpr int kInvalidLocator = -2;
constexpr int kCannotCreateSocket = -3;
constexpr int kCannotConnect = -4;
constexpr int kInvalidName = -5;
constexpr int kUnknownException = -6;
constexpr int kCimError = -7;
constexpr int kServiceUnavailable = -8;
constexpr int kNotFound = -9;

constexpr Uint32 kHttpNotFound = 404;
constexpr Uint32 kHttpServiceUnavailable = 503;

std::string Message(const Pegasus::Exception& error) { return ToStdString(error.getMessage()); }

String TextOf(const std::string& text) { return String(text.c_str()); }

std::string HttpErrorLine(const Pegasus::CIMClientHTTPErrorException& error) {
  return "Client HTTP Exception: " + Message(error) + "RESP: [" + std::to_string(error.getCode()) + "]";
}

bool HasPropertyText(const CIMInstance& instance, const CIMName& name, const String& text) {
  for (Uint32 i = 0; i < instance.getPropertyCount(); ++i) {
    const Pegasus::CIMConstProperty property = instance.getProperty(i);
    if (property.getName().equal(name) && property.getValue().toString() == text) return true;
  }
  return false;
}

}  // namespace

PegClientOpt::PegClientOpt()
    : certificateCheck_(AcceptAnyCertificate), client_(std::make_unique<Pegasus::CIMClient>()) {
  client_->setTimeout(kTimeoutMs);
}

PegClientOpt::~PegClientOpt() = default;

int PegClientOpt::Connect(const std::string& host, Uint32 port, const std::string& user, const std::string& password) {
  int result = ConnectOnce(host, port == 0 ? kHttpsPort : port, user, password, true);
  if (result != kOk) result = ConnectOnce(host, port == 0 ? kHttpPort : port, user, password, false);
  ORVANE_LOG(kLogProgress) << "Connect CIMOM . H:" << host << " P:" << port << " U:" << user << " RC: " << result;
  return result;
}

int PegClientOpt::ConnectOnce(const std::string& host, Uint32 port, const std::string& user,
                              const std::string& password, bool secure) {
  try {
    const String hostText = TextOf(host);
    const String userText = TextOf(user);
    const String passwordText = TextOf(password);
    if (secure) {
      const Pegasus::SSLContext context(String::EMPTY, String::EMPTY, String::EMPTY, certificateCheck_, String::EMPTY);
      client_->connect(hostText, port, context, userText, passwordText);
    } else {
      client_->connect(hostText, port, userText, passwordText);
    }
    return kOk;
  } catch (const Pegasus::AlreadyConnectedException& error) {
    ORVANE_LOG(kLogError) << "Pegasus AlreadyConnectedException: " << Message(error);
    return kAlreadyConnected;
  } catch (const Pegasus::InvalidLocatorException& error) {
    ORVANE_LOG(kLogError) << "Pegasus InvalidLocatorException: " << Message(error);
    return kInvalidLocator;
  } catch (const Pegasus::CannotCreateSocketException& error) {
    ORVANE_LOG(kLogError) << "Pegasus CannotCreateSocketException:" << Message(error);
    return kCannotCreateSocket;
  } catch (const Pegasus::CannotConnectException& error) {
    ORVANE_LOG(kLogError) << "Pegasus CannotConnectException:" << Message(error);
    return kCannotConnect;
  } catch (const Pegasus::InvalidNameException& error) {
    ORVANE_LOG(kLogError) << "Pegasus InvalidNameException: " << Message(error);
    return kInvalidName;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Unknown Exception: " << Message(error);
    return kUnknownException;
  }
}

bool PegClientOpt::Disconnect() {
  try {
    client_->disconnect();
  } catch (...) {
    // Whatever went wrong at the end of a connection concerns nobody any more; callers disconnect on their way out.
  }
  return true;
}

Array<CIMInstance> PegClientOpt::EnumerateInstancesOrThrow(const CIMNamespaceName& nameSpace,
                                                           const CIMName& className) {
  return client_->enumerateInstances(nameSpace, className, /*deepInheritance=*/true, /*localOnly=*/true,
                                     /*includeQualifiers=*/false, /*includeClassOrigin=*/false, CIMPropertyList());
}

Array<CIMInstance> PegClientOpt::EnumerateInstances(const CIMNamespaceName& nameSpace, const CIMName& className) {
  try {
    return EnumerateInstancesOrThrow(nameSpace, className);
  } catch (const Pegasus::CIMClientHTTPErrorException& error) {
    ORVANE_LOG(kLogError) << HttpErrorLine(error);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "EnumerateInstances Exception: " << Message(error);
  }
  return {};
}

int PegClientOpt::EnumerateInstancesStatus(const std::string& nameSpace, const std::string& className,
                                           Array<CIMInstance>& instances) {
  try {
    instances = EnumerateInstancesOrThrow(CIMNamespaceName(TextOf(nameSpace)), CIMName(TextOf(className)));
    return kOk;
  } catch (const Pegasus::CIMClientHTTPErrorException& error) {
    ORVANE_LOG(kLogError) << HttpErrorLine(error);
    if (error.getCode() == kHttpServiceUnavailable) return kServiceUnavailable;
    if (error.getCode() == kHttpNotFound) return kNotFound;
    return kOk;  // Any other HTTP error reads as an empty list: callers treat it as "nothing there yet".
  } catch (const Pegasus::CIMException& error) {
    ORVANE_LOG(kLogError) << "EnumerateInstances error. return code:" << static_cast<int>(error.getCode())
                          << "error message:" << Message(error);
    return kCimError;
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "unknown error happened when enumerate Reboot Instance :" << Message(error);
    return kUnknownException;
  }
}

Array<CIMObjectPath> PegClientOpt::AssociatorNamesOrThrow(const CIMNamespaceName& nameSpace, const CIMObjectPath& path,
                                                          const CIMName& assocClass, const CIMName& resultClass) {
  return client_->associatorNames(nameSpace, path, assocClass, resultClass, String::EMPTY, String::EMPTY);
}

Array<CIMObjectPath> PegClientOpt::AssociatorNames(const CIMNamespaceName& nameSpace, const CIMObjectPath& path,
                                                   const CIMName& assocClass, const CIMName& resultClass) {
  try {
    return AssociatorNamesOrThrow(nameSpace, path, assocClass, resultClass);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

Array<CIMObject> PegClientOpt::AssociatorsOrThrow(const CIMNamespaceName& nameSpace, const CIMObjectPath& path,
                                                  const CIMName& assocClass, const CIMName& resultClass) {
  return client_->associators(nameSpace, path, assocClass, resultClass, String::EMPTY, String::EMPTY,
                              /*includeQualifiers=*/false, /*includeClassOrigin=*/false, CIMPropertyList());
}

Array<CIMObject> PegClientOpt::Associators(const CIMNamespaceName& nameSpace, const CIMObjectPath& path,
                                           const CIMName& assocClass, const CIMName& resultClass) {
  try {
    return AssociatorsOrThrow(nameSpace, path, assocClass, resultClass);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  } catch (...) {
    ORVANE_LOG(kLogError) << "Unknown exception in 'Associators' operation.";
  }
  return {};
}

Array<CIMInstance> PegClientOpt::ObjectsToInstances(const Array<CIMObject>& objects) {
  Array<CIMInstance> instances;
  instances.reserveCapacity(objects.size());
  for (Uint32 i = 0; i < objects.size(); ++i) instances.append(CIMInstance(objects[i]));
  return instances;
}

Array<CIMInstance> PegClientOpt::GetInstances(const CIMNamespaceName& nameSpace, const Array<CIMObjectPath>& paths) {
  Array<CIMInstance> instances;
  instances.reserveCapacity(paths.size());
  for (Uint32 i = 0; i < paths.size(); ++i) {
    instances.append(client_->getInstance(nameSpace, paths[i], /*localOnly=*/false, /*includeQualifiers=*/false,
                                          /*includeClassOrigin=*/false, CIMPropertyList()));
  }
  return instances;
}

Array<CIMInstance> PegClientOpt::FilterInstancesByPropertyOrThrow(const Array<CIMInstance>& instances,
                                                                  const CIMName& name, const CIMValue& value) {
  const String text = value.toString();
  Array<CIMInstance> matches;
  for (Uint32 i = 0; i < instances.size(); ++i) {
    if (HasPropertyText(instances[i], name, text)) matches.append(instances[i]);
  }
  return matches;
}

Array<CIMInstance> PegClientOpt::FilterInstancesByProperty(const Array<CIMInstance>& instances, const CIMName& name,
                                                           const CIMValue& value) {
  try {
    return FilterInstancesByPropertyOrThrow(instances, name, value);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

CIMValue PegClientOpt::GetPropertyValueOrThrow(const CIMInstance& instance, const CIMName& name) {
  CIMValue value;
  for (Uint32 i = 0; i < instance.getPropertyCount(); ++i) {
    const Pegasus::CIMConstProperty property = instance.getProperty(i);
    if (property.getName().equal(name)) value = CIMValue(property.getValue().toString());
  }
  return value;
}

CIMValue PegClientOpt::GetPropertyValue(const CIMInstance& instance, const CIMName& name) {
  try {
    return GetPropertyValueOrThrow(instance, name);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

CIMObjectPath PegClientOpt::GetInstancePath(const CIMInstance& instance) {
  try {
    return instance.getPath();
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

CIMValue PegClientOpt::InvokeMethodOrThrow(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                                           const CIMName& methodName, const Array<CIMParamValue>& in,
                                           Array<CIMParamValue>& out) {
  ORVANE_LOG(kLogProgress) << "Invoke Cim Method";
  return client_->invokeMethod(nameSpace, instanceName, methodName, in, out);
}

CIMValue PegClientOpt::InvokeMethod(const CIMNamespaceName& nameSpace, const CIMObjectPath& instanceName,
                                    const CIMName& methodName, const Array<CIMParamValue>& in,
                                    Array<CIMParamValue>& out) {
  try {
    return InvokeMethodOrThrow(nameSpace, instanceName, methodName, in, out);
  } catch (const Pegasus::CIMException& error) {
    ORVANE_LOG(kLogError) << "Pegasus CIMException: " << Message(error);
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

bool AcceptAnyCertificate(Pegasus::SSLCertificateInfo& certificate) {
  static_cast<void>(certificate.getSubjectName());
  static_cast<void>(certificate.getVersionNumber());
  static_cast<void>(certificate.getSerialNumber());
  static_cast<void>(certificate.getResponseCode());
  return true;
}

CIMValue GetFirstPropertyValue(const CIMInstance& instance, const CIMName& name) {
  try {
    for (Uint32 i = 0; i < instance.getPropertyCount(); ++i) {
      const Pegasus::CIMConstProperty property = instance.getProperty(i);
      if (property.getName().equal(name)) return CIMValue(property.getValue().toString());
    }
  } catch (const Pegasus::Exception& error) {
    ORVANE_LOG(kLogError) << "Pegasus Exception: " << Message(error);
  }
  return {};
}

int CIMValueToInt(const CIMValue& value) {
  constexpr int kNoNumber = -1;
  if (value.isNull()) return kNoNumber;
  const std::string text = ToStdString(value.toString());
  try {
    return boost::lexical_cast<int>(text);
  } catch (const boost::bad_lexical_cast& error) {
    ORVANE_LOG(kLogWarning) << error.what() << ". String: [" << text << "]";
    return kNoNumber;
  }
}

}  // namespace Orvane
