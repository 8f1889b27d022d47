// A plain TCP connection on a non-blocking socket. Asio sends with MSG_NOSIGNAL and repeats calls that a signal
// interrupted.
#include "transport/tcp_stream.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>

namespace Pegasus::transport {

namespace asio = boost::asio;

TcpStream::TcpStream() : context_(1), socket_(context_) {}

bool TcpStream::RunUntil(const bool& done, Deadline deadline) {
  context_.restart();
  context_.run_until(deadline.Time());
  if (done) return true;
  boost::system::error_code ignored;
  socket_.cancel(ignored);
  context_.restart();
  context_.run();
  return false;
}

IoStatus TcpStream::Wait(asio::ip::tcp::socket::wait_type what, Deadline deadline) {
  bool done = false;
  boost::system::error_code result;
  socket_.async_wait(what, [&done, &result](const boost::system::error_code& error) {
    done = true;
    result = error;
  });
  if (!RunUntil(done, deadline)) return IoStatus::kTimeout;
  return result ? IoStatus::kClosed : IoStatus::kOk;
}

IoStatus TcpStream::Connect(const asio::ip::tcp::endpoint& address, Deadline deadline) {
  bool done = false;
  boost::system::error_code result;
  socket_.async_connect(address, [&done, &result](const boost::system::error_code& error) {
    done = true;
    result = error;
  });
  if (!RunUntil(done, deadline)) return IoStatus::kTimeout;
  if (!result) socket_.non_blocking(true, result);
  if (result) return IoStatus::kClosed;
  boost::system::error_code ignored;
  socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
  return IoStatus::kOk;
}

IoStatus TcpStream::Write(std::string_view bytes, Deadline deadline) {
  while (!bytes.empty()) {
    boost::system::error_code error;
    bytes.remove_prefix(socket_.write_some(asio::buffer(bytes.data(), bytes.size()), error));
    if (!error) continue;
    if (error != asio::error::would_block) return IoStatus::kClosed;
    const IoStatus status = Wait(asio::ip::tcp::socket::wait_write, deadline);
    if (status != IoStatus::kOk) return status;
  }
  return IoStatus::kOk;
}

IoStatus TcpStream::ReadNow(char* buffer, std::size_t size, std::size_t& count) {
  boost::system::error_code error;
  count = socket_.read_some(asio::buffer(buffer, size), error);
  if (!error) return IoStatus::kOk;
  return error == asio::error::would_block ? IoStatus::kTimeout : IoStatus::kClosed;
}

IoStatus TcpStream::Read(char* buffer, std::size_t size, std::size_t& count, Deadline deadline) {
  for (;;) {
    const IoStatus now = ReadNow(buffer, size, count);
    if (now != IoStatus::kTimeout) return now;
    const IoStatus waited = Wait(asio::ip::tcp::socket::wait_read, deadline);
    if (waited != IoStatus::kOk) return waited;
  }
}

bool TcpStream::IsIdle() {
  char byte = 0;
  std::size_t count = 0;
  return ReadNow(&byte, sizeof(byte), count) == IoStatus::kTimeout;
}

}  // namespace Pegasus::transport
