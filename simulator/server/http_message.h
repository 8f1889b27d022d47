// What the HTTP side asks of the CIM side: one request with the headers that count, one reply. Free of any HTTP
// library, so that the rules of CIM over HTTP (DSP0200) can be read, and tested, on their own.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "wire/request.h"

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

/// How a reply goes onto the wire: whole and at once, unless a fault wants it otherwise.
struct Delivery {
  enum class Form {
    kWhole,
    kNothing,  ///< the connection ends instead
    kCut       ///< the connection ends after the head and some bytes, at least one byte before the end
  };
  Form form = Form::kWhole;
  /// With kCut: what follows the head.
  std::uint64_t bodyBytes = 0;
  /// Simulated time before anything is delivered.
  std::chrono::milliseconds delay{0};
  /// For this simulated time from now on nobody listens, and every connection ends.
  std::optional<std::chrono::milliseconds> refusal;
};

struct HttpReply {
  int status = 200;
  /// Empty: the usual one.
  std::string reason;
  /// Beside those that every reply has.
  std::vector<std::pair<std::string, std::string>> headers;
  /// Content of the CIMError header; empty for none.
  std::string cimError;
  /// A challenge for Basic authentication goes with the reply.
  bool challenge = false;
  /// CIM-XML with status 200.
  std::string body;
  Delivery delivery;
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

/// Carries out a CIM request that has passed every check of HTTP.
using Answerer = std::function<HttpReply(const Request& request)>;

/// Answers one HTTP request: authentication first, then form, then the operation.
HttpReply AnswerHttp(const HttpRequest& request, const Authentication& authentication, const Answerer& answer);

}  // namespace Orvane::simulator
