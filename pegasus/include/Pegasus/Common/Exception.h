// What the CIM client throws. Every class derives directly from Exception, which carries one message and is not a
// std::exception.
#pragma once

#include <Pegasus/Common/CIMStatusCode.h>
#include <Pegasus/Common/String.h>

namespace Pegasus {

/// Root of everything the CIM client throws. Threads: an exception belongs to the thread that caught it; its copies are
/// values, and so are those of the classes derived from it.
class PEGASUS_COMMON_LINKAGE Exception {
 public:
  /// @param message what getMessage() returns
  explicit Exception(const String& message);
  Exception(const Exception& other) noexcept;
  virtual ~Exception();

  /// The message; valid as long as the exception lives.
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
  /// An exception with that message.
  IndexOutOfBoundsException();
};

/// A second thing of one name: "already exists: <message>".
class PEGASUS_COMMON_LINKAGE AlreadyExistsException : public Exception {
 public:
  /// @param message what there is already, such as `property "p"`
  explicit AlreadyExistsException(const String& message);
};

/// "The CIM name is not valid: <name>".
class PEGASUS_COMMON_LINKAGE InvalidNameException : public Exception {
 public:
  /// @param name the text that is no name
  explicit InvalidNameException(const String& name);
};

/// "invalid CIM namespace name: <name>".
class PEGASUS_COMMON_LINKAGE InvalidNamespaceNameException : public Exception {
 public:
  /// @param name the text that is no name
  explicit InvalidNamespaceNameException(const String& name);
};

/// Use of a handle that was only default-constructed, or of a null name: "uninitialized object".
class PEGASUS_COMMON_LINKAGE UninitializedObjectException : public Exception {
 public:
  /// An exception with that message.
  UninitializedObjectException();
};

/// "type mismatch" or "type mismatch: <message>".
class PEGASUS_COMMON_LINKAGE TypeMismatchException : public Exception {
 public:
  /// The message without anything behind it.
  TypeMismatchException();
  /// @param message what does not fit
  explicit TypeMismatchException(const String& message);
};

/// "dynamic cast failed".
class PEGASUS_COMMON_LINKAGE DynamicCastFailedException : public Exception {
 public:
  /// An exception with that message.
  DynamicCastFailedException();
};

/// "invalid datetime format".
class PEGASUS_COMMON_LINKAGE InvalidDateTimeFormatException : public Exception {
 public:
  /// An exception with that message.
  InvalidDateTimeFormatException();
};

/// "DateTime is out of range : <message>".
class PEGASUS_COMMON_LINKAGE DateTimeOutOfRangeException : public Exception {
 public:
  /// @param message which number is wrong
  explicit DateTimeOutOfRangeException(const String& message);
};

/// "malformed object name: <objectName>", or with `, reason:"<reason>"` behind it.
class PEGASUS_COMMON_LINKAGE MalformedObjectNameException : public Exception {
 public:
  /// @param objectName the text that is no object path
  explicit MalformedObjectNameException(const String& objectName);
  /// @param objectName the text that is no object path
  /// @param reason what is wrong with it
  MalformedObjectNameException(const String& objectName, const String& reason);
};

/// "Bind failed: <message>".
class PEGASUS_COMMON_LINKAGE BindFailedException : public Exception {
 public:
  /// @param message what failed
  explicit BindFailedException(const String& message);
};

/// "Invalid locator: <locator>".
class PEGASUS_COMMON_LINKAGE InvalidLocatorException : public Exception {
 public:
  /// @param locator host and port, such as `cmm:5989`
  explicit InvalidLocatorException(const String& locator);
};

/// "Cannot create socket".
class PEGASUS_COMMON_LINKAGE CannotCreateSocketException : public Exception {
 public:
  /// An exception with that message.
  CannotCreateSocketException();
};

/// The message as given.
class PEGASUS_COMMON_LINKAGE CannotConnectException : public Exception {
 public:
  /// @param message what failed
  explicit CannotConnectException(const String& message);
};

/// "already connected".
class PEGASUS_COMMON_LINKAGE AlreadyConnectedException : public Exception {
 public:
  /// An exception with that message.
  AlreadyConnectedException();
};

/// "not connected".
class PEGASUS_COMMON_LINKAGE NotConnectedException : public Exception {
 public:
  /// An exception with that message.
  NotConnectedException();
};

/// "connection timed out".
class PEGASUS_COMMON_LINKAGE ConnectionTimeoutException : public Exception {
 public:
  /// An exception with that message.
  ConnectionTimeoutException();
};

/// "Invalid Enumeration Context, uninitilialized"; the spelling is part of the interface.
class PEGASUS_COMMON_LINKAGE InvalidEnumerationContextException : public Exception {
 public:
  /// An exception with that message.
  InvalidEnumerationContextException();
};

/// "SSL Exception: <message>".
class PEGASUS_COMMON_LINKAGE SSLException : public Exception {
 public:
  /// @param message what failed
  explicit SSLException(const String& message);
};

/// An error that the CIM server reported: its status code (any number it sent) and its description alone as message.
class PEGASUS_COMMON_LINKAGE CIMException : public Exception {
 public:
  /// @param code any number that a server may send
  /// @param message its description, which becomes the message as it is
  explicit CIMException(CIMStatusCode code = CIM_ERR_SUCCESS, const String& message = String::EMPTY);
  CIMException(const CIMException& other) noexcept;
  CIMException& operator=(const CIMException& other) noexcept;
  ~CIMException() override;

  /// The code; servers send numbers outside the enumeration too.
  CIMStatusCode getCode() const;

 private:
  CIMStatusCode code_;
};

}  // namespace Pegasus
