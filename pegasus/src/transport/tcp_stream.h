// A plain TCP connection. Sends without ever raising SIGPIPE and leaves the process's signal handlers alone.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include "transport/stream.h"

namespace Pegasus::transport {

class TcpStream : public Stream {
 public:
  TcpStream();

  /// May be called once; a stream that could not connect is of no use any more.
  IoStatus Connect(const boost::asio::ip::tcp::endpoint& address, Deadline deadline);

  IoStatus Write(std::string_view bytes, Deadline deadline) override;
  IoStatus Read(char* buffer, std::size_t size, std::size_t& count, Deadline deadline) override;
  bool IsIdle() override;

  /// As Read, without waiting: kTimeout when nothing is there.
  IoStatus ReadNow(char* buffer, std::size_t size, std::size_t& count);

 private:
  /// Runs what was started until it has called back, at most until `deadline`; cancels it then.
  bool RunUntil(const bool& done, Deadline deadline);
  IoStatus Wait(boost::asio::ip::tcp::socket::wait_type what, Deadline deadline);

  boost::asio::io_context context_;
  boost::asio::ip::tcp::socket socket_;
};

}  // namespace Pegasus::transport
