// Turns a host name and a port into a connection: resolves, tries each address in turn, and adds TLS when asked to.
#include <Pegasus/Common/Exception.h>

#include <limits>

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

/// All addresses of the host, of both families, in the order in which the resolver gives them.
asio::ip::tcp::resolver::results_type Resolve(const Endpoint& endpoint) {
  asio::io_context context(1);
  asio::ip::tcp::resolver resolver(context);
  boost::system::error_code error;
  auto addresses = resolver.resolve(endpoint.host, "", asio::ip::resolver_base::flags(), error);
  if (error || addresses.empty()) throw InvalidLocatorException(Locator(endpoint));
  return addresses;
}

std::unique_ptr<TcpStream> ConnectTcp(const Endpoint& endpoint, std::uint32_t timeout) {
  const auto addresses = Resolve(endpoint);
  if (endpoint.port == 0 || endpoint.port > std::numeric_limits<std::uint16_t>::max()) ThrowCannotConnect(endpoint);
  for (const auto& address : addresses) {
    auto stream = std::make_unique<TcpStream>();
    asio::ip::tcp::endpoint target = address.endpoint();
    target.port(static_cast<std::uint16_t>(endpoint.port));
    if (stream->Connect(target, Deadline::After(timeout)) == IoStatus::kOk) return stream;
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
