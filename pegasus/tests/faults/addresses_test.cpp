// The table of faults, connecting: hosts that take no connection, names with a dead address before a live one, and name
// servers that do not answer.
#include <Pegasus/Client/CIMClient.h>
#include <arpa/inet.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "faults/row.h"
#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

/// A name that this program resolves to ::1 and 127.0.0.1, in that order.
constexpr char kTwoFamilies[] = "two-families.test";
/// A name that this program resolves to 127.0.0.1 once it is told to.
constexpr char kSlow[] = "slow.test";

struct SlowName {
  std::promise<void> resolve;
  std::shared_future<void> resolved = resolve.get_future().share();
  std::atomic<int> asked{0};
  std::atomic<int> answered{0};
};
SlowName& Slow() {
  static SlowName slow;
  return slow;
}

using Resolve = int (*)(const char*, const char*, const addrinfo*, addrinfo**);

Resolve SystemResolver() {
  static const auto resolve = reinterpret_cast<Resolve>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return resolve;
}

int ResolveTwoFamilies(const char* service, const addrinfo* hints, addrinfo** result) {
  addrinfo* six = nullptr;
  const int failed = SystemResolver()("::1", service, hints, &six);
  if (failed != 0) return failed;
  addrinfo* last = six;
  while (last->ai_next != nullptr) last = last->ai_next;
  const int failedToo = SystemResolver()("127.0.0.1", service, hints, &last->ai_next);
  if (failedToo != 0) {
    ::freeaddrinfo(six);
    return failedToo;
  }
  *result = six;
  return 0;
}

int ResolveSlowly(const char* service, const addrinfo* hints, addrinfo** result) {
  ++Slow().asked;
  Slow().resolved.wait();
  const int failed = SystemResolver()("127.0.0.1", service, hints, result);
  ++Slow().answered;
  return failed;
}

}  // namespace
}  // namespace Pegasus

// Stands before the system's function in this program.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
  const bool isLookup = name != nullptr && (hints == nullptr || (hints->ai_flags & AI_NUMERICHOST) == 0);
  if (isLookup && std::strcmp(name, Pegasus::kTwoFamilies) == 0) {
    return Pegasus::ResolveTwoFamilies(service, hints, result);
  }
  if (isLookup && std::strcmp(name, Pegasus::kSlow) == 0) return Pegasus::ResolveSlowly(service, hints, result);
  return Pegasus::SystemResolver()(name, service, hints, result);
}

namespace Pegasus {
namespace {

using Orvane::testing::RawAction;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using test::FaultRow;
using test::kLong;
using test::kPassword;
using test::kShort;
using test::kUser;
using test::Thrown;

class Socket {
 public:
  explicit Socket(int family) : descriptor_(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
  Socket(Socket&& other) noexcept : descriptor_(other.descriptor_) { other.descriptor_ = -1; }
  Socket& operator=(Socket&&) = delete;
  ~Socket() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// A port of ::1 that answers no attempt to connect, as the address of a host that is switched off does not: more
/// connections wait there to be accepted than the system lets wait.
class SilentPort {
 public:
  explicit SilentPort(std::uint16_t port) : listener_(AF_INET6) {
    sockaddr_in6 place{};
    place.sin6_family = AF_INET6;
    place.sin6_addr = in6addr_loopback;
    place.sin6_port = htons(port);
    const auto* const address = reinterpret_cast<const sockaddr*>(&place);
    const int on = 1;
    if (::setsockopt(listener_.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0 ||
        ::bind(listener_.Get(), address, sizeof(place)) != 0 || ::listen(listener_.Get(), 0) != 0) {
      return;
    }
    constexpr int kMoreThanWait = 4;
    for (int i = 0; i < kMoreThanWait; ++i) {
      waiting_.emplace_back(AF_INET6);
      (void)::connect(waiting_.back().Get(), address, sizeof(place));
    }
    good_ = true;
  }
  bool Good() const { return good_; }

 private:
  Socket listener_;
  std::vector<Socket> waiting_;
  bool good_ = false;
};

RawServerOptions Busy() {
  RawServerOptions options;
  options.script = {{RawAction::Send("HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n")}};
  return options;
}

Thrown CannotConnect(const std::string& host, std::uint16_t port) {
  return {"CannotConnectException", "Cannot connect to " + host + ":" + std::to_string(port) + ". Connection failed."};
}

/// The port of a server that has gone, so that nothing else listens there.
std::uint16_t FreePort() { return RawServer{RawServerOptions()}.Port(); }

void ExpectBusy(CIMClient& client) {
  EXPECT_EQ(test::Catch([&] { test::Enumerate(client); }),
            (Thrown{"CIMClientHTTPErrorException", "HTTP Error (503 Busy)."}));
}

TEST(Addresses, HostThatRefusesIsGivenUpAtOnce) {
  FaultRow fault;
  const std::uint16_t port = FreePort();
  CIMClient client;
  fault.Expect([&] { client.connect("127.0.0.1", port, kUser, kPassword); }, CannotConnect("127.0.0.1", port));
}

TEST(Addresses, HostThatAnswersNothingIsGivenUpAfterTheTimeout) {
  FaultRow fault;
  const std::uint16_t port = FreePort();
  const SilentPort silent(port);
  ASSERT_TRUE(silent.Good());
  CIMClient client;
  client.setTimeout(kShort);
  const auto start = std::chrono::steady_clock::now();
  fault.Expect([&] { client.connect("::1", port, kUser, kPassword); }, CannotConnect("::1", port));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kShort));
}

TEST(Addresses, NameWithARefusingAddressFirstConnectsToTheOther) {
  FaultRow fault;
  const RawServer server(Busy());
  CIMClient client;
  fault.Expect([&] { client.connect(kTwoFamilies, server.Port(), kUser, kPassword); }, {});
  ExpectBusy(client);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Addresses, NameWithASilentAddressFirstConnectsToTheOther) {
  FaultRow fault;
  const RawServer server(Busy());
  const SilentPort silent(server.Port());
  ASSERT_TRUE(silent.Good());
  CIMClient client;
  client.setTimeout(kShort);
  fault.Expect([&] { client.connect(kTwoFamilies, server.Port(), kUser, kPassword); }, {});
  client.setTimeout(kLong);
  ExpectBusy(client);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Addresses, NameWhoseAddressesAllRefuseIsGivenUp) {
  FaultRow fault;
  const std::uint16_t port = FreePort();
  CIMClient client;
  fault.Expect([&] { client.connect(kTwoFamilies, port, kUser, kPassword); }, CannotConnect(kTwoFamilies, port));
}

TEST(Addresses, NameThatDoesNotExistIsNoLocator) {
  FaultRow fault;
  CIMClient client;
  fault.Expect([&] { client.connect("no such host", 5989, kUser, kPassword); },
               {"InvalidLocatorException", "Invalid locator: no such host:5989"});
}

TEST(Addresses, NameThatIsNotResolvedInTimeIsGivenUp) {
  FaultRow fault;
  const RawServer server(Busy());
  CIMClient client;
  client.setTimeout(kShort);
  fault.Expect([&] { client.connect(kSlow, server.Port(), kUser, kPassword); }, CannotConnect(kSlow, server.Port()));
  EXPECT_EQ(Slow().asked, 1);
  EXPECT_EQ(Slow().answered, 0);
  // The lookup that was given up ends by itself, and disturbs nobody.
  Slow().resolve.set_value();
  while (Slow().answered == 0) std::this_thread::yield();
  client.setTimeout(kLong);
  client.connect(kSlow, server.Port(), kUser, kPassword);
  ExpectBusy(client);
  EXPECT_EQ(server.Connections(), 1U);
}

}  // namespace
}  // namespace Pegasus
