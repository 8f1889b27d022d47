// The system's lookup can neither be interrupted nor limited in time, so names are looked up on a thread that can be
// left alone.
#include "transport/resolver.h"

#include <netdb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>

#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace Pegasus::transport {

namespace {

using Endpoints = std::vector<boost::asio::ip::tcp::endpoint>;

struct AddressListDeleter {
  void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};

/// Empty when there is no such host.
Endpoints LookUp(const std::string& host, int flags) {
  addrinfo hints{};
  hints.ai_flags = flags;
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return {};
  const std::unique_ptr<addrinfo, AddressListDeleter> list(found);
  Endpoints addresses;
  for (const addrinfo* item = list.get(); item != nullptr; item = item->ai_next) {
    boost::asio::ip::tcp::endpoint address;
    if (item->ai_addrlen > address.capacity()) continue;
    address.resize(item->ai_addrlen);
    std::memcpy(address.data(), item->ai_addr, item->ai_addrlen);
    addresses.push_back(address);
  }
  return addresses;
}

/// What the thread that asks and the thread that waits share; lives as long as either needs it.
struct Lookup {
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  bool outOfMemory = false;
  Endpoints addresses;
};

void Run(const std::string& host, Lookup& lookup) {
  Endpoints addresses;
  bool outOfMemory = false;
  try {
    addresses = LookUp(host, 0);
  } catch (const std::bad_alloc&) {
    outOfMemory = true;
  }
  const std::lock_guard<std::mutex> lock(lookup.mutex);
  lookup.addresses = std::move(addresses);
  lookup.outOfMemory = outOfMemory;
  lookup.done = true;
  lookup.changed.notify_all();
}

/// While it lives, threads are started that take no signals: those are for the program's own threads.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

/// False when the system gives no thread.
bool Start(const std::string& host, const std::shared_ptr<Lookup>& lookup) {
  const SignalsBlocked blocked;
  try {
    std::thread([host, lookup] { Run(host, *lookup); }).detach();
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

ResolveStatus StatusOf(const Endpoints& addresses) {
  return addresses.empty() ? ResolveStatus::kUnknownHost : ResolveStatus::kOk;
}

}  // namespace

ResolveStatus Resolve(const std::string& host, Deadline deadline, Endpoints& addresses) {
  addresses = LookUp(host, AI_NUMERICHOST);
  if (!addresses.empty()) return ResolveStatus::kOk;

  const auto lookup = std::make_shared<Lookup>();
  if (!Start(host, lookup)) {
    addresses = LookUp(host, 0);
    return StatusOf(addresses);
  }
  std::unique_lock<std::mutex> lock(lookup->mutex);
  if (!lookup->changed.wait_until(lock, deadline.Time(), [&lookup] { return lookup->done; })) {
    return ResolveStatus::kTimeout;
  }
  if (lookup->outOfMemory) throw std::bad_alloc();
  addresses = std::move(lookup->addresses);
  return StatusOf(addresses);
}

}  // namespace Pegasus::transport
