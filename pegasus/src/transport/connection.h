// The life of a client's connection: opened by connect, kept between operations, opened again when the server has
// closed it, and the one repetition of a request that a challenge for credentials calls for.
#pragma once

#include <Pegasus/Common/SSLContext.h>
#include <Pegasus/Common/String.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "transport/authentication.h"
#include "transport/deadline.h"
#include "transport/http_response.h"
#include "transport/stream.h"
#include "wire/request.h"

namespace Pegasus::transport {

/// Not thread-safe.
class Connection {
 public:
  struct Target {
    Endpoint endpoint;
    std::optional<SSLContext> tls;
  };

  /// Opens a connection; sends no request.
  /// @param timeout milliseconds, for looking up the host, for each address tried and for each wait of a handshake
  /// @throws AlreadyConnectedException, InvalidLocatorException, CannotConnectException, SSLException
  void Connect(Target target, const String& userName, const String& password, std::uint32_t timeout);

  /// Closes the connection and forgets all about it.
  void Disconnect();

  /// @throws NotConnectedException unless a connect has succeeded and no disconnect came after it
  void RequireConnected() const;

  /// Sends `request`, waits for the answer and returns its body.
  /// @param timeout milliseconds from sending to the complete answer
  /// @throws what Connect throws when a new connection is due, ConnectionTimeoutException, and what
  ///         AcceptedBody throws
  std::string Exchange(const wire::Request& request, std::uint32_t timeout);

 private:
  void Reopen(std::uint32_t timeout);
  void DropStale();
  HttpResponse RoundTrip(const wire::Request& request, Deadline deadline);
  HttpResponse ReadResponse(Deadline deadline);
  bool AnswerChallenge(const HttpResponse& response);
  void KeepCookie(const HttpResponse& response);
  [[noreturn]] void FailByTimeout();

  std::optional<Target> target_;
  std::unique_ptr<Stream> stream_;
  Authentication authentication_;
  std::string cookie_;
};

}  // namespace Pegasus::transport
