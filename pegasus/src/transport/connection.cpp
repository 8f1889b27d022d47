// The life of a client's connection. A request is sent a second time only when the server has answered the first with
// a challenge; whatever else goes wrong, the caller decides whether to repeat the operation.
#include "transport/connection.h"

#include <Pegasus/Client/CIMClientException.h>
#include <Pegasus/Common/Exception.h>

#include <vector>

#include "base/limits.h"
#include "transport/http_request.h"
#include "transport/response_check.h"
#include "transport/text.h"

namespace Pegasus::transport {

void Connection::Connect(Target target, const String& userName, const String& password, std::uint32_t timeout) {
  if (stream_) throw AlreadyConnectedException();
  Disconnect();
  Authentication authentication;
  authentication.SetCredentials(userName, password);
  stream_ = OpenStream(target.endpoint, target.tls ? &*target.tls : nullptr, timeout);
  target_.emplace(std::move(target));
  authentication_ = std::move(authentication);
}

void Connection::Disconnect() {
  stream_.reset();
  target_.reset();
  authentication_.Clear();
  cookie_.clear();
}

void Connection::RequireConnected() const {
  if (!target_) throw NotConnectedException();
}

void Connection::Reopen(std::uint32_t timeout) {
  stream_ = OpenStream(target_->endpoint, target_->tls ? &*target_->tls : nullptr, timeout);
}

void Connection::DropStale() {
  if (!stream_ || stream_->IsIdle()) return;
  stream_.reset();
  authentication_.ForgetChallenge();
}

void Connection::FailByTimeout() {
  stream_.reset();
  authentication_.ForgetChallenge();
  throw ConnectionTimeoutException();
}

std::string Connection::Exchange(const wire::Request& request, std::uint32_t timeout) {
  RequireConnected();
  DropStale();
  if (!stream_) Reopen(timeout);
  Deadline deadline = Deadline::After(timeout);
  for (;;) {
    HttpResponse response = RoundTrip(request, deadline);
    if (response.closesConnection) stream_.reset();
    const bool repeat = AnswerChallenge(response);
    KeepCookie(response);
    if (!repeat) return AcceptedBody(std::move(response));
    if (!stream_) {
      Reopen(timeout);
      deadline = Deadline::After(timeout);
    }
  }
}

HttpResponse Connection::RoundTrip(const wire::Request& request, Deadline deadline) {
  std::string bytes =
      BuildHead(request, {target_->endpoint.host, target_->endpoint.port, cookie_, authentication_.HeaderValue()});
  bytes += request.body;
  try {
    // A server may refuse a request without reading all of it, so a failed send does not mean that there is no answer.
    if (stream_->Write(bytes, deadline) == IoStatus::kTimeout) FailByTimeout();
    return ReadResponse(deadline);
  } catch (...) {
    // Whatever ended the exchange left the stream in the middle of a request or an answer, which the next request must
    // not meet.
    stream_.reset();
    throw;
  }
}

HttpResponse Connection::ReadResponse(Deadline deadline) {
  ResponseReader reader;
  std::vector<char> buffer(limits::kReadBytes);
  std::optional<Deadline> errorBody;
  for (;;) {
    if (reader.OnlyErrorBodyMissing() && !errorBody)
      errorBody = deadline.Earlier(Deadline::After(limits::kErrorBodyWait));
    std::size_t count = 0;
    const IoStatus status = stream_->Read(buffer.data(), buffer.size(), count, errorBody.value_or(deadline));
    if (status == IoStatus::kTimeout) {
      if (errorBody) return reader.Abandon();
      FailByTimeout();
    }
    if (status == IoStatus::kClosed) {
      if (!reader.Started()) throw CIMClientMalformedHTTPException(String("Connection closed by CIM Server."));
      reader.End();
      return reader.Result();
    }
    if (reader.Take({buffer.data(), count})) return reader.Result();
    // A server that never stops sending must not get round the time-out.
    if (!errorBody.value_or(deadline).HasPassed()) continue;
    if (errorBody) return reader.Abandon();
    FailByTimeout();
  }
}

bool Connection::AnswerChallenge(const HttpResponse& response) {
  // With any other status the server may have carried the operation out, which must not happen twice.
  constexpr std::uint32_t kUnauthorized = 401;
  if (!response.headComplete || response.status != kUnauthorized) return false;
  const std::string* challenge = response.headers.Find("WWW-Authenticate");
  if (challenge == nullptr) return false;
  cookie_.clear();
  return authentication_.OnChallenge(*challenge);
}

void Connection::KeepCookie(const HttpResponse& response) {
  const std::string* cookie = response.headers.Find("Set-Cookie");
  if (cookie == nullptr) return;
  const std::string_view text = *cookie;
  const std::string_view value = Trim(text.substr(0, text.find(';')));
  // It comes back to the server inside a header line, where a control character would be a forged one.
  if (!HasControlCharacter(value)) cookie_ = std::string(value);
}

}  // namespace Pegasus::transport
