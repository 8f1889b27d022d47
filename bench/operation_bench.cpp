// How long whole operations take over real sockets, against servers in the same program that answer from memory:
// getInstance on a kept connection, connecting with one request, and the inventory of a small recorded chassis.
#include <Pegasus/Client/CIMClient.h>
#include <benchmark/benchmark.h>
#include <orvane/cmm.h>

#include <cstdlib>
#include <string>

#include "bench/response_text.h"
#include "testing/capture_replay.h"
#include "testing/cim_server.h"

namespace {

using Orvane::testing::CaptureReplay;
using Orvane::testing::CimServer;
using Pegasus::CIMClient;

const Pegasus::CIMNamespaceName kNameSpace("root/cimv2");

/// The certificate of the server in this program is its own.
Pegasus::Boolean Accept(Pegasus::SSLCertificateInfo& /*certificate*/) { return true; }

/// The answer to GetInstance: the one instance of an enumeration, without its path.
std::string InstanceResponse() {
  const std::string text = Orvane::bench::EnumerationResponse(1);
  const std::string close = "</INSTANCE>";
  const std::size_t begin = text.find("<INSTANCE ");
  const std::size_t end = text.find(close) + close.size();
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE "
         "ID=\"@ID@\" "
         "PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"GetInstance\"><IRETURNVALUE>\n" +
         text.substr(begin, end - begin) + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>\n";
}

/// A server that answers everything with one instance.
class InstanceServer {
 public:
  explicit InstanceServer(bool tls) : server_(Options(tls)), tls_(tls) {
    server_.OnAnything(Orvane::testing::Body(InstanceResponse()));
  }

  void Connect(CIMClient& client) const {
    if (tls_) {
      client.connect("127.0.0.1", server_.Port(), Pegasus::SSLContext(Pegasus::String(), Accept), "user", "secret");
    } else {
      client.connect("127.0.0.1", server_.Port(), "user", "secret");
    }
  }

 private:
  static CimServer::Options Options(bool tls) {
    CimServer::Options options;
    options.tls = tls;
    return options;
  }

  CimServer server_;
  bool tls_;
};

void GetOne(CIMClient& client) {
  const Pegasus::CIMInstance instance =
      client.getInstance(kNameSpace, Pegasus::CIMObjectPath("CIM_ComputerSystem.Name=\"system0\""));
  if (instance.getPropertyCount() != 30) std::abort();
}

void GetInstance(benchmark::State& state) {
  const InstanceServer server(state.range(0) != 0);
  CIMClient client;
  server.Connect(client);
  for (auto _ : state) GetOne(client);
}

void ConnectAndGetInstance(benchmark::State& state) {
  const InstanceServer server(state.range(0) != 0);
  for (auto _ : state) {
    CIMClient client;
    server.Connect(client);
    GetOne(client);
  }
}

/// All that the facade reads: the modules of management, chassis, switches and pass-through modules.
void Inventory(benchmark::State& state) {
  CaptureReplay server(ORVANE_BENCH_RECORDING, state.range(0) != 0);
  for (auto _ : state) {
    Orvane::CMMInventory inventory("127.0.0.1", server.Port(), "USERID", "s3cret");
    Orvane::CMMDataList modules;
    Orvane::ChassisInfo chassis;
    Orvane::CIMIODataList switches;
    if (inventory.GetCMMData(modules) != 0 || inventory.GetChassisInfo(chassis) != 0 ||
        inventory.GetIOModuleData(switches) != 0) {
      state.SkipWithError("the inventory failed");
      break;
    }
    Orvane::CIMIODataList passThrough;
    inventory.GetPassThruData(1, passThrough);
  }
  if (!server.Unmatched().empty()) state.SkipWithError("asked what the recording does not have");
  state.counters["requests"] = static_cast<double>(server.Summaries().size()) / static_cast<double>(state.iterations());
}

void WithAndWithoutTls(benchmark::internal::Benchmark* row) {
  row->ArgName("tls")->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(GetInstance)->Apply(WithAndWithoutTls);
BENCHMARK(ConnectAndGetInstance)->Apply(WithAndWithoutTls);
BENCHMARK(Inventory)->Apply(WithAndWithoutTls);

}  // namespace
