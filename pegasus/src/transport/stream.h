// A byte stream to the server, plain or TLS, every call of which is limited by a deadline.
#pragma once

#include <Pegasus/Common/SSLContext.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "transport/deadline.h"

namespace Pegasus::transport {

enum class IoStatus { kOk, kClosed, kTimeout };

class Stream {
 public:
  Stream() = default;
  /// Closes the socket; sends nothing.
  virtual ~Stream() = default;
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  /// Sends all of `bytes`.
  virtual IoStatus Write(std::string_view bytes, Deadline deadline) = 0;
  /// Waits for bytes and puts what is there into `buffer`, whose size is the most that is taken.
  /// @param count how many came; not 0 with kOk
  virtual IoStatus Read(char* buffer, std::size_t size, std::size_t& count, Deadline deadline) = 0;
  /// True when the server has neither closed the connection nor sent anything on it. Does not wait.
  virtual bool IsIdle() = 0;
};

/// Where a connection goes.
struct Endpoint {
  /// Name or address as the caller gave it.
  std::string host;
  std::uint32_t port = 0;
};

/// Connects to the addresses of `endpoint` in turn until one accepts, and makes the TLS handshake when `tls` is given.
/// @param timeout milliseconds for looking up the host's addresses, for each address, and for each wait of the
/// handshake
/// @throws InvalidLocatorException, CannotConnectException, SSLException
std::unique_ptr<Stream> OpenStream(const Endpoint& endpoint, const SSLContext* tls, std::uint32_t timeout);

}  // namespace Pegasus::transport
