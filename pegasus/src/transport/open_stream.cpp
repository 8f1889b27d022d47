// Turns a host name and a port into a connection: resolves, tries each address in turn, and adds TLS when asked to.
#include <Pegasus/Common/Exception.h>

#include <limits>
#include <vector>

#include "transport/resolver.h"
#include "transport/stream.h"
#include "transport/tcp_stream.h"
#include "transport/text.h"
#include "transport/tls_stream.h"

namespace Pegasus::transport {

namespace asio = boost::asio;

namespace {

String Locator(const Endpoint& endpoint) { return HeaderText(endpoint.host + ":" + std::to_string(endpoint.port)); }

[[noreturn]] void ThrowCannotConnect(const Endpoint& endpoint) {
  String message("Cannot connect to ");
  message.append(Locator(endpoint));
  message.append(String(". Connection failed."));
  throw CannotConnectException(message);
}

std::vector<asio::ip::tcp::endpoint> AddressesOf(const Endpoint& endpoint, std::uint32_t timeout) {
  std::vector<asio::ip::tcp::endpoint> addresses;
  switch (Resolve(endpoint.host, Deadline::After(timeout), addresses)) {
    case ResolveStatus::kOk:
      return addresses;
    case ResolveStatus::kUnknownHost:
      throw InvalidLocatorException(Locator(endpoint));
    case ResolveStatus::kTimeout:
      break;
  }
  ThrowCannotConnect(endpoint);
}

std::unique_ptr<TcpStream> ConnectTcp(const Endpoint& endpoint, std::uint32_t timeout) {
  std::vector<asio::ip::tcp::endpoint> addresses = AddressesOf(endpoint, timeout);
  if (endpoint.port == 0 || endpoint.port > std::numeric_limits<std::uint16_t>::max()) ThrowCannotConnect(endpoint);
  for (asio::ip::tcp::endpoint& address : addresses) {
    auto stream = std::make_unique<TcpStream>();
    address.port(static_cast<std::uint16_t>(endpoint.port));
    if (stream->Connect(address, Deadline::After(timeout)) == IoStatus::kOk) return stream;
  }
  ThrowCannotConnect(endpoint);
}

}  // namespace

std::unique_ptr<Stream> OpenStream(const Endpoint& endpoint, const SSLContext* tls, std::uint32_t timeout) {
  try {
    if (tls == nullptr) return ConnectTcp(endpoint, timeout);
    auto stream = std::make_unique<TlsStream>(ConnectTcp(endpoint, timeout), endpoint, *tls);
    IoStatus status = stream->Handshake(timeout);
    if (status == IoStatus::kClosed && stream->FailedOverSession()) {
      // The failed handshake has forgotten the session, so this one is a full one.
      stream = std::make_unique<TlsStream>(ConnectTcp(endpoint, timeout), endpoint, *tls);
      status = stream->Handshake(timeout);
    }
    if (status != IoStatus::kOk) ThrowCannotConnect(endpoint);
    return stream;
  } catch (const boost::system::system_error&) {
    // Asio throws where the process has no descriptor left for a connection.
    throw CannotCreateSocketException();
  }
}

}  // namespace Pegasus::transport
