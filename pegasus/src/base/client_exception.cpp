// The messages of the exceptions that the answers of servers cause.
#include <Pegasus/Client/CIMClientException.h>

namespace Pegasus {

namespace {

String HttpErrorMessage(Uint32 status, const String& reason, const String& error, const String& detail) {
  String text("HTTP Error (");
  text.appendPrintf("%u", status);
  if (reason.size() != 0) {
    text.append(" " + reason);
  }
  text.append(")");
  if (error.size() != 0 || detail.size() != 0) {
    text.append(":");
  }
  if (error.size() != 0) {
    text.append(" CIMError = \"" + error + "\"");
  }
  if (detail.size() != 0) {
    text.append(" Detail = \"" + detail + "\"");
  }
  text.append(".");
  return text;
}

}  // namespace

CIMClientMalformedHTTPException::CIMClientMalformedHTTPException(const String& message) : Exception(message) {}

CIMClientHTTPErrorException::CIMClientHTTPErrorException(Uint32 httpStatusCode, const String& reasonPhrase,
                                                         const String& cimError, const String& cimErrorDetail)
    : Exception(HttpErrorMessage(httpStatusCode, reasonPhrase, cimError, cimErrorDetail)),
      status_(httpStatusCode),
      error_(cimError),
      detail_(cimErrorDetail) {}

CIMClientHTTPErrorException::CIMClientHTTPErrorException(Uint32 httpStatusCode, const String& cimError,
                                                         const String& cimErrorDetail)
    : CIMClientHTTPErrorException(httpStatusCode, String(), cimError, cimErrorDetail) {}

CIMClientHTTPErrorException::CIMClientHTTPErrorException(const CIMClientHTTPErrorException& other) noexcept = default;
CIMClientHTTPErrorException& CIMClientHTTPErrorException::operator=(const CIMClientHTTPErrorException& other) noexcept =
    default;
CIMClientHTTPErrorException::~CIMClientHTTPErrorException() = default;

Uint32 CIMClientHTTPErrorException::getCode() const { return status_; }
String CIMClientHTTPErrorException::getCIMError() const { return error_; }
String CIMClientHTTPErrorException::getCIMErrorDetail() const { return detail_; }

CIMClientXmlException::CIMClientXmlException(const String& message) : Exception(message) {}

CIMClientResponseException::CIMClientResponseException(const String& message) : Exception(message) {}

}  // namespace Pegasus
