// What the CIM client throws. Every class derives directly from Exception, which carries one message and is not a
// std::exception.
#pragma once

#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// Root of everything the CIM client throws.
class PEGASUS_COMMON_LINKAGE Exception {
 public:
  explicit Exception(const String& message);
  Exception(const Exception& other) noexcept;
  virtual ~Exception();

  virtual const String& getMessage() const;

 protected:
  Exception() noexcept;
  Exception& operator=(const Exception& other) noexcept;

 private:
  String message_;
};

/// An index at or beyond the end: "index out of bounds".
class PEGASUS_COMMON_LINKAGE IndexOutOfBoundsException : public Exception {
 public:
  IndexOutOfBoundsException();
};

/// A second thing of one name: "already exists: <message>".
class PEGASUS_COMMON_LINKAGE AlreadyExistsException : public Exception {
 public:
  explicit AlreadyExistsException(const String& message);
};

/// "The CIM name is not valid: <name>".
class PEGASUS_COMMON_LINKAGE InvalidNameException : public Exception {
 public:
  explicit InvalidNameException(const String& name);
};

/// "invalid CIM namespace name: <name>".
class PEGASUS_COMMON_LINKAGE InvalidNamespaceNameException : public Exception {
 public:
  explicit InvalidNamespaceNameException(const String& name);
};

/// Use of a handle that was only default-constructed, or of a null name: "uninitialized object".
class PEGASUS_COMMON_LINKAGE UninitializedObjectException : public Exception {
 public:
  UninitializedObjectException();
};

/// "type mismatch" or "type mismatch: <message>".
class PEGASUS_COMMON_LINKAGE TypeMismatchException : public Exception {
 public:
  TypeMismatchException();
  explicit TypeMismatchException(const String& message);
};

/// "dynamic cast failed".
class PEGASUS_COMMON_LINKAGE DynamicCastFailedException : public Exception {
 public:
  DynamicCastFailedException();
};

/// "invalid datetime format".
class PEGASUS_COMMON_LINKAGE InvalidDateTimeFormatException : public Exception {
 public:
  InvalidDateTimeFormatException();
};

/// "DateTime is out of range : <message>".
class PEGASUS_COMMON_LINKAGE DateTimeOutOfRangeException : public Exception {
 public:
  explicit DateTimeOutOfRangeException(const String& message);
};

/// "malformed object name: <objectName>", or with `, reason:"<reason>"` behind it.
class PEGASUS_COMMON_LINKAGE MalformedObjectNameException : public Exception {
 public:
  explicit MalformedObjectNameException(const String& objectName);
  MalformedObjectNameException(const String& objectName, const String& reason);
};

/// "Bind failed: <message>".
class PEGASUS_COMMON_LINKAGE BindFailedException : public Exception {
 public:
  explicit BindFailedException(const String& message);
};

/// "Invalid locator: <locator>".
class PEGASUS_COMMON_LINKAGE InvalidLocatorException : public Exception {
 public:
  explicit InvalidLocatorException(const String& locator);
};

/// "Cannot create socket".
class PEGASUS_COMMON_LINKAGE CannotCreateSocketException : public Exception {
 public:
  CannotCreateSocketException();
};

/// The message as given.
class PEGASUS_COMMON_LINKAGE CannotConnectException : public Exception {
 public:
  explicit CannotConnectException(const String& message);
};

/// "already connected".
class PEGASUS_COMMON_LINKAGE AlreadyConnectedException : public Exception {
 public:
  AlreadyConnectedException();
};

/// "not connected".
class PEGASUS_COMMON_LINKAGE NotConnectedException : public Exception {
 public:
  NotConnectedException();
};

/// "connection timed out".
class PEGASUS_COMMON_LINKAGE ConnectionTimeoutException : public Exception {
 public:
  ConnectionTimeoutException();
};

/// "Invalid Enumeration Context, uninitilialized"; the spelling is part of the interface.
class PEGASUS_COMMON_LINKAGE InvalidEnumerationContextException : public Exception {
 public:
  InvalidEnumerationContextException();
};

/// "SSL Exception: <message>".
class PEGASUS_COMMON_LINKAGE SSLException : public Exception {
 public:
  explicit SSLException(const String& message);
};

/// An error that the CIM server reported: its status code (any number it sent) and its description alone as message.
class PEGASUS_COMMON_LINKAGE CIMException : public Exception {
 public:
  explicit CIMException(CIMStatusCode code = CIM_ERR_SUCCESS, const String& message = String::EMPTY);
  CIMException(const CIMException& other) noexcept;
  CIMException& operator=(const CIMException& other) noexcept;
  ~CIMException() override;

  CIMStatusCode getCode() const;

 private:
  CIMStatusCode code_;
};

}  // namespace Pegasus
