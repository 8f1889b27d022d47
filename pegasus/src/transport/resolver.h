// Looks up the addresses of a host without waiting for a name server longer than the caller has time.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <string>
#include <vector>

#include "transport/deadline.h"

namespace Pegasus::transport {

enum class ResolveStatus { kOk, kUnknownHost, kTimeout };

/// Puts the addresses of `host` into `addresses`, of both families, in the order in which the system gives them, with
/// port 0. An address in numbers takes no time. A lookup that is given up goes on by itself until the system gives it
/// up too; it holds nothing but its own memory and a thread that takes no signals.
/// @throws std::bad_alloc
ResolveStatus Resolve(const std::string& host, Deadline deadline,
                      std::vector<boost::asio::ip::tcp::endpoint>& addresses);

}  // namespace Pegasus::transport
