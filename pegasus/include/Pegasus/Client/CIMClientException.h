// What a CIM client throws when the answer of a server cannot be used: not HTTP, an HTTP error, not XML, or not the
// answer to the request.
#pragma once

#include <Pegasus/Client/Linkage.h>
#include <Pegasus/Common/Exception.h>

namespace Pegasus {

/// The answer is not usable HTTP. The message as given.
class PEGASUS_CLIENT_LINKAGE CIMClientMalformedHTTPException : public Exception {
 public:
  /// @param message what getMessage() returns
  explicit CIMClientMalformedHTTPException(const String& message);
};

/// The answer's HTTP status is an error:
/// `HTTP Error (<status>[ <reason>])[:][ CIMError = "<error>"][ Detail = "<detail>"].`
class PEGASUS_CLIENT_LINKAGE CIMClientHTTPErrorException : public Exception {
 public:
  /// @param httpStatusCode HTTP status, such as 401
  /// @param reasonPhrase text of the status line, may be empty
  /// @param cimError text of the header CIMError, may be empty
  /// @param cimErrorDetail decoded text of the header PGErrorDetail, may be empty
  CIMClientHTTPErrorException(Uint32 httpStatusCode, const String& reasonPhrase, const String& cimError,
                              const String& cimErrorDetail);
  /// The same without a reason.
  CIMClientHTTPErrorException(Uint32 httpStatusCode, const String& cimError = String(),
                              const String& cimErrorDetail = String());
  CIMClientHTTPErrorException(const CIMClientHTTPErrorException& other) noexcept;
  CIMClientHTTPErrorException& operator=(const CIMClientHTTPErrorException& other) noexcept;
  ~CIMClientHTTPErrorException() override;

  /// The HTTP status.
  Uint32 getCode() const;
  /// Text of the header CIMError, empty when there was none.
  String getCIMError() const;
  /// Decoded text of the header PGErrorDetail, empty when there was none.
  String getCIMErrorDetail() const;

 private:
  Uint32 status_;
  String error_;
  String detail_;
};

/// The answer is not well-formed XML, or not CIM-XML. The message as given.
class PEGASUS_CLIENT_LINKAGE CIMClientXmlException : public Exception {
 public:
  /// @param message what getMessage() returns
  explicit CIMClientXmlException(const String& message);
};

/// The answer does not belong to the request. The message as given.
class PEGASUS_CLIENT_LINKAGE CIMClientResponseException : public Exception {
 public:
  /// @param message what getMessage() returns
  explicit CIMClientResponseException(const String& message);
};

}  // namespace Pegasus
