// What the HTTP side asks of the CIM side: one request with the headers that count, one reply. Free of any HTTP
// library, so that the rules of CIM over HTTP (DSP0200) can be read, and tested, on their own.
#pragma once

#include <string>
#include <string_view>

#include "server/operations.h"

namespace Orvane::simulator {

struct HttpRequest {
  std::string_view method;
  std::string_view target;
  std::string_view contentType;
  std::string_view cimOperation;
  std::string_view cimMethod;
  std::string_view cimObject;
  std::string_view authorization;
  std::string body;
};

struct HttpReply {
  int status = 200;
  /// Content of the CIMError header; empty for none.
  std::string cimError;
  /// A challenge for Basic authentication goes with the reply.
  bool challenge = false;
  /// CIM-XML; only with status 200.
  std::string body;
};

/// The user who is let in. Thread-safe after construction.
class Authentication {
 public:
  /// @param enabled  false lets everybody in
  Authentication(bool enabled, std::string_view user, std::string_view password);

  /// Whether an Authorization header is Basic with the right user and password. CIM clients send the password in UTF-8
  /// or in Latin-1; both are taken.
  bool Allows(std::string_view authorization) const;

 private:
  bool enabled_;
  std::string credentials_;
  std::string latin1Credentials_;
};

/// Answers one HTTP request: authentication first, then form, then the operation.
HttpReply AnswerHttp(const HttpRequest& request, const Authentication& authentication, Operations& operations);

}  // namespace Orvane::simulator
