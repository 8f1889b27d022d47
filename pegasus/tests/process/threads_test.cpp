// Sixty-four clients on as many threads, and values that are copied between threads: nothing is shared that must not
// be. The thread sanitizer watches.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "faults/row.h"
#include "testing/cim_server.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using Orvane::testing::CimObjectSpec;
using Orvane::testing::CimServer;
using Orvane::testing::CimStringArray;
using test::FaultRow;
using test::kHost;
using test::kPassword;
using test::kUser;

constexpr unsigned kThreads = 64;
constexpr Uint32 kInstances = 20;

Orvane::testing::CimAnswer Answer() {
  std::vector<CimObjectSpec> objects;
  for (Uint32 i = 0; i < kInstances; ++i) {
    objects.push_back(CimObjectSpec("CIM_Foo")
                          .Key("A", "instance " + std::to_string(i))
                          .With("Text", std::string(100, 'x'))
                          .With("Texts", CimStringArray({"one", std::string(100, 'y')})));
  }
  return Objects(objects);
}

Array<CIMInstance> Read(CIMClient& client) {
  return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo"));
}

/// Runs `action` with the number of each of many threads at a time; counts those that did not throw.
template <typename Action>
unsigned OnManyThreads(Action action) {
  std::atomic<unsigned> good{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (unsigned number = 0; number < kThreads; ++number) {
    threads.emplace_back([&action, &good, number] {
      const test::Thrown thrown = test::Catch([&] { action(number); });
      EXPECT_EQ(thrown, test::Thrown());
      if (thrown.name.empty()) ++good;
    });
  }
  for (std::thread& thread : threads) thread.join();
  return good;
}

TEST(Threads, ClientsOnAThreadEachDisturbNoOther) {
  FaultRow fault;
  CimServer plain;
  CimServer::Options options;
  options.tls = true;
  CimServer tls(options);
  for (CimServer* server : {&plain, &tls}) {
    server->OnEnumerate("CIM_Foo", Answer());
    server->OnInvoke("M", Orvane::testing::MethodResult(Orvane::testing::CimTyped("uint32", "0")));
  }
  const SSLContext context(String(), [](SSLCertificateInfo&) { return Boolean(true); });
  const unsigned good = OnManyThreads([&](unsigned number) {
    CIMClient client;
    // The second connect of a thread may resume a session of any of them.
    for (int connect = 0; connect < 2; ++connect) {
      if (number % 2 == 0) {
        client.connect(kHost, plain.Port(), kUser, kPassword);
      } else {
        client.connect(kHost, tls.Port(), context, kUser, kPassword);
      }
      const Array<CIMInstance> found = Read(client);
      EXPECT_EQ(found.size(), kInstances);
      EXPECT_EQ(found[7].getPath().toString(), "CIM_Foo.A=\"instance 7\"");
      EXPECT_EQ(test::Invoke(client).toString(), "0");
      client.disconnect();
    }
  });
  EXPECT_EQ(good, kThreads);
  EXPECT_TRUE(plain.WaitUntilAllClosed());
  EXPECT_TRUE(tls.WaitUntilAllClosed());
  fault.Saw(std::to_string(good) + " clients, " + std::to_string(plain.Requests().size() + tls.Requests().size()) +
            " requests");
}

TEST(Threads, ClientGoesFromThreadToThread) {
  FaultRow fault;
  CimServer server;
  server.OnEnumerate("CIM_Foo", Answer());
  CIMClient client;
  client.connect(kHost, server.Port(), kUser, kPassword);
  constexpr int kTurns = 4;
  for (int turn = 0; turn < kTurns; ++turn) {
    std::thread([&] { fault.Expect([&] { EXPECT_EQ(Read(client).size(), kInstances); }, {}); }).join();
  }
  client.disconnect();
  EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST(Threads, CopiesOfValuesAreEachThreadsOwn) {
  FaultRow fault;
  CimServer server;
  server.OnEnumerate("CIM_Foo", Answer());
  Array<CIMInstance> original;
  {
    CIMClient client;
    client.connect(kHost, server.Port(), kUser, kPassword);
    original = Read(client);
  }
  // Only a look that cannot change anything may be taken by several threads at a time.
  const unsigned good = OnManyThreads([&original = std::as_const(original)](unsigned number) {
    // Copies share what they copy until one is changed.
    Array<CIMInstance> copy = original;
    String text = copy[number % kInstances].getPath().toString();
    text.append(String(std::to_string(number).c_str()));
    CIMInstance own = copy[0].clone();
    own.addProperty(CIMProperty(CIMName("Number"), CIMValue(Uint32(number))));
    own.setPath(CIMObjectPath("CIM_Foo.A=\"own\""));
    copy.append(own);
    copy.remove(0);
    CIMValue value = original[1].getProperty(1).getValue();
    String read;
    value.get(read);
    read.append(Char16('z'));
    value.set(read);
    EXPECT_EQ(copy.size(), kInstances);
    EXPECT_EQ(copy[kInstances - 1].getPropertyCount(), original[0].getPropertyCount() + 1);
  });
  EXPECT_EQ(good, kThreads);
  ASSERT_EQ(original.size(), kInstances);
  EXPECT_EQ(original[0].getPath().toString(), "CIM_Foo.A=\"instance 0\"");
  EXPECT_EQ(original[0].getPropertyCount(), 3U);
  EXPECT_EQ(test::Utf8(original[1].getProperty(1).getValue().toString()), std::string(100, 'x'));
  EXPECT_TRUE(server.WaitUntilAllClosed());
  fault.Saw(std::to_string(good) + " copies changed, the original is as it was");
}

}  // namespace
}  // namespace Pegasus
