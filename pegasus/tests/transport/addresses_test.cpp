// Connecting where addresses do not answer: a host that takes no connection, and a name with a dead address before a
// live one.
#include <Pegasus/Client/CIMClient.h>
#include <arpa/inet.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "testing/raw_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

/// A name that this program resolves to ::1 and 127.0.0.1, in that order.
constexpr char kTwoFamilies[] = "two-families.test";

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

}  // namespace
}  // namespace Pegasus

// Stands before the system's function in this program.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
  if (name != nullptr && std::strcmp(name, Pegasus::kTwoFamilies) == 0) {
    return Pegasus::ResolveTwoFamilies(service, hints, result);
  }
  return Pegasus::SystemResolver()(name, service, hints, result);
}

namespace Pegasus {
namespace {

using Orvane::testing::RawAction;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using test::Catch;
using test::Thrown;

constexpr Uint32 kShort = 300;
constexpr std::chrono::seconds kWatchdog{10};

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

Thrown Enumerate(CIMClient& client) {
  return Catch([&] { client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")); });
}

const Thrown kBusy{"CIMClientHTTPErrorException", "HTTP Error (503 Busy)."};

TEST(Addresses, HostThatAnswersNothingIsGivenUpAfterTheTimeout) {
  // The port of a server that has gone, so that nothing else listens there.
  const std::uint16_t port = RawServer{RawServerOptions()}.Port();
  const SilentPort silent(port);
  ASSERT_TRUE(silent.Good());
  CIMClient client;
  client.setTimeout(kShort);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(
      Catch([&] { client.connect("::1", port, "", ""); }),
      (Thrown{"CannotConnectException", "Cannot connect to ::1:" + std::to_string(port) + ". Connection failed."}));
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GE(took, std::chrono::milliseconds(kShort));
  EXPECT_LT(took, kWatchdog);
}

TEST(Addresses, NameWithARefusingAddressFirstConnectsToTheOther) {
  const RawServer server(Busy());
  CIMClient client;
  client.connect(kTwoFamilies, server.Port(), "", "");
  EXPECT_EQ(Enumerate(client), kBusy);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Addresses, NameWithASilentAddressFirstConnectsToTheOther) {
  const RawServer server(Busy());
  const SilentPort silent(server.Port());
  ASSERT_TRUE(silent.Good());
  CIMClient client;
  client.setTimeout(kShort);
  client.connect(kTwoFamilies, server.Port(), "", "");
  client.setTimeout(static_cast<Uint32>(std::chrono::milliseconds(kWatchdog).count()));
  EXPECT_EQ(Enumerate(client), kBusy);
  EXPECT_EQ(server.Connections(), 1U);
}

TEST(Addresses, NameWhoseAddressesAllRefuseIsGivenUp) {
  const std::uint16_t port = RawServer{RawServerOptions()}.Port();
  CIMClient client;
  EXPECT_EQ(Catch([&] { client.connect(kTwoFamilies, port, "", ""); }),
            (Thrown{"CannotConnectException",
                    "Cannot connect to two-families.test:" + std::to_string(port) + ". Connection failed."}));
}

}  // namespace
}  // namespace Pegasus
