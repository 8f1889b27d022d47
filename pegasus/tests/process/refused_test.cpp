// Memory that runs out at any moment of an operation: every single allocation of an enumeration and of a method call is
// refused once, and those of a connect. Each ends in an exception or in the right result, nothing is lost, no request
// is sent twice, and the same client works afterwards.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <openssl/crypto.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>

#include "faults/row.h"
#include "testing/cim_server.h"
#include "testing/refused_memory.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using Orvane::testing::CimObjectSpec;
using Orvane::testing::CimServer;
using Orvane::testing::HeldBytes;
using Orvane::testing::RefuseMemory;
using Orvane::testing::StopRefusingMemory;
using test::FaultRow;
using test::kHost;
using test::kPassword;
using test::kUser;

constexpr Uint32 kInstances = 3;

/// Objects with a property of every kind that takes memory of its own.
Orvane::testing::CimAnswer Answer() {
  using namespace Orvane::testing;
  std::vector<CimObjectSpec> objects;
  for (Uint32 i = 0; i < kInstances; ++i) {
    objects.push_back(CimObjectSpec("CIM_Foo")
                          .Key("A", "instance " + std::to_string(i))
                          .With("Text", std::string(100, 'x'))
                          .With("Texts", CimStringArray({"one", std::string(100, 'y')}))
                          .With("Numbers", CimUint16Array({1, 2, 3, 4, 5, 6, 7, 8, 9}))
                          .With("When", CimDateTime("20240101000000.000000+000"))
                          .With("Where", CimReference(CimObjectSpec("CIM_Bar").Key("B", "x").Path()))
                          .With("Nothing", CimNull("string")));
  }
  return Objects(objects);
}

/// OpenSSL's memory comes from the same source, so that its allocations are refused too.
void* TakeForOpenSsl(std::size_t size, const char* /*file*/, int /*line*/) {
  return size == 0 ? nullptr : Orvane::testing::Take(size);
}
void GiveBackForOpenSsl(void* memory, const char* /*file*/, int /*line*/) { Orvane::testing::GiveBack(memory); }
void* ResizeForOpenSsl(void* memory, std::size_t size, const char* file, int line) {
  void* const larger = TakeForOpenSsl(size, file, line);
  if (memory == nullptr || (larger == nullptr && size != 0)) return larger;
  if (larger != nullptr) std::memcpy(larger, memory, std::min(size, ::malloc_usable_size(memory)));
  Orvane::testing::GiveBack(memory);
  return larger;
}
const bool kOpenSslIsWatched = CRYPTO_set_mem_functions(&TakeForOpenSsl, &ResizeForOpenSsl, &GiveBackForOpenSsl) == 1;

struct Row {
  const char* name;
  bool tls;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class EveryAllocation : public ::testing::TestWithParam<Row> {
 protected:
  EveryAllocation() : server_(Options()) {
    server_.OnEnumerate("CIM_Foo", Answer());
    server_.OnInvoke("M", Orvane::testing::MethodResult(
                              Orvane::testing::CimTyped("uint32", "0"),
                              {{"Job", Orvane::testing::CimReference(CimObjectSpec("CIM_Job").Key("J", "1").Path())}}));
  }

  void Connect(CIMClient& client) const {
    if (GetParam().tls) {
      client.connect(kHost, server_.Port(), SSLContext(String(), [](SSLCertificateInfo&) { return Boolean(true); }),
                     kUser, kPassword);
    } else {
      client.connect(kHost, server_.Port(), kUser, kPassword);
    }
  }

  static void Enumerate(CIMClient& client) {
    const Array<CIMInstance> found = client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo"));
    ASSERT_EQ(found.size(), kInstances);
    EXPECT_EQ(found[2].getPath().toString(), "CIM_Foo.A=\"instance 2\"");
    EXPECT_EQ(found[2].getPropertyCount(), 7U);
  }

  static void Invoke(CIMClient& client) {
    Array<CIMParamValue> in;
    Array<CIMParamValue> out;
    in.append(CIMParamValue("P", CIMValue(String("a text that takes memory of its own"))));
    const CIMValue result =
        client.invokeMethod(CIMNamespaceName("root/cimv2"), CIMObjectPath("CIM_Foo.A=\"x\""), CIMName("M"), in, out);
    EXPECT_EQ(result.toString(), "0");
    EXPECT_EQ(out.size(), 1U);
  }

  /// What this thread holds, without what OpenSSL remembers of past errors.
  static std::ptrdiff_t Held() {
    OPENSSL_thread_stop();
    return HeldBytes();
  }

  struct Steps {
    const char* name;
    std::function<void()> begin;
    std::function<void()> operation;
    /// Follows each operation, with all the memory it wants.
    std::function<void()> recover;
    std::function<void()> end;
  };

  /// Does the operation over and over, refusing its first allocation, that `stride` further, and so on, until it needs
  /// fewer.
  void RefuseEach(const Steps& steps, int stride = 1) {
    ASSERT_TRUE(kOpenSslIsWatched);
    // What is made once and kept, whoever needs it first, is no loss.
    for (const auto* step : {&steps.begin, &steps.operation, &steps.recover, &steps.end}) (*step)();
    const std::ptrdiff_t before = Held();
    steps.begin();
    int runs = 0;
    std::size_t errors = 0;
    for (bool refused = true; refused; ++runs) {
      constexpr int kMost = 1000;
      ASSERT_LT(runs, kMost);
      const std::size_t requests = server_.Requests().size();
      RefuseMemory(1, runs * stride);
      test::Thrown thrown;
      try {
        thrown = test::Catch(steps.operation);
      } catch (const std::bad_alloc&) {
        thrown.name = "std::bad_alloc";
      }
      refused = StopRefusingMemory();
      if (!thrown.name.empty()) ++errors;
      EXPECT_TRUE(refused || thrown.name.empty()) << thrown.name << thrown.message;
      EXPECT_EQ(thrown.message.find(kPassword), std::string::npos);
      steps.recover();
      // That of the operation, if it came so far, and that of the recovery.
      EXPECT_LE(server_.Requests().size(), requests + 2);
    }
    steps.end();
    // A loss of anything in each run would be more than the sessions that servers give differ in size.
    const std::ptrdiff_t spread = GetParam().tls ? runs * std::ptrdiff_t{8} : 0;
    EXPECT_LE(std::abs(Held() - before), spread);
    EXPECT_GT(errors, 0U);
    fault_.Saw(steps.name +
               (": " + std::to_string(runs - 1) + " allocations refused, " + std::to_string(errors) + " errors"));
  }

  static CimServer::Options Options() {
    CimServer::Options options;
    options.tls = GetParam().tls;
    return options;
  }

  FaultRow fault_;  // first: it outlives what it watches
  CimServer server_;
};

TEST_P(EveryAllocation, OfAConnect) {
  CIMClient client;
  // A full TLS handshake makes some thousands, most of them inside OpenSSL.
  constexpr int kStride = 17;
  const auto disconnect = [&] { client.disconnect(); };
  RefuseEach({"connect", [] {}, [&] { Connect(client); }, disconnect, [] {}}, GetParam().tls ? kStride : 1);
}

TEST_P(EveryAllocation, OfAnEnumeration) {
  CIMClient client;
  const auto enumerate = [&] { Enumerate(client); };
  RefuseEach({"enumeration", [&] { Connect(client); }, enumerate, enumerate, [&] { client.disconnect(); }});
}

TEST_P(EveryAllocation, OfAMethodCall) {
  CIMClient client;
  const auto invoke = [&] { Invoke(client); };
  RefuseEach({"method call", [&] { Connect(client); }, invoke, invoke, [&] { client.disconnect(); }});
}

INSTANTIATE_TEST_SUITE_P(Memory, EveryAllocation, ::testing::Values(Row{"Plain", false}, Row{"Tls", true}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Pegasus
