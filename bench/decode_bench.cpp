// How long it takes to turn a response of many instances into values, to read every property as text and to free
// everything, beside parsing the same bytes in place into a tree that nobody reads. Prints the ratio of the two.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <pugixml.hpp>
#include <string>

#include "bench/response_text.h"
#include "wire/response_reader.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Decodes `body`, reads every property as text and frees the result; returns the bytes of the texts.
std::size_t DecodeAndRead(std::string&& body) {
  const Pegasus::Array<Pegasus::CIMInstance> instances =
      Pegasus::wire::ReadEnumerateInstances(std::move(body), Orvane::bench::kMessageId);
  std::size_t bytes = 0;
  for (Pegasus::Uint32 i = 0; i < instances.size(); ++i) {
    const Pegasus::CIMInstance& instance = instances[i];
    const Pegasus::Uint32 count = instance.getPropertyCount();
    for (Pegasus::Uint32 j = 0; j < count; ++j) {
      const Pegasus::CString text = instance.getProperty(j).getValue().toString().getCString();
      bytes += static_cast<unsigned char>(*static_cast<const char*>(text)) + 1U;
    }
  }
  return bytes;
}

void ParseOnly(std::string& body) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer_inplace(body.data(), body.size(), pugi::parse_minimal);
  if (!result) std::abort();
  benchmark::DoNotOptimize(document.first_child());
}

double Seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

/// Both on the same bytes, in turns, so that what else the machine does hits both alike.
void Decode(benchmark::State& state) {
  const std::string text = Orvane::bench::EnumerationResponse(static_cast<std::size_t>(state.range(0)));
  Clock::duration decoding{};
  Clock::duration parsing{};
  for (auto _ : state) {
    std::string body = text;
    auto start = Clock::now();
    benchmark::DoNotOptimize(DecodeAndRead(std::move(body)));
    const Clock::duration decoded = Clock::now() - start;
    decoding += decoded;
    state.SetIterationTime(Seconds(decoded));
    std::string copy = text;
    start = Clock::now();
    ParseOnly(copy);
    parsing += Clock::now() - start;
  }
  const auto iterations = static_cast<double>(state.iterations());
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
  state.counters["bytes"] = static_cast<double>(text.size());
  state.counters["parse_us"] = 1e6 * Seconds(parsing) / iterations;
  state.counters["ratio"] = Seconds(decoding) / Seconds(parsing);
}

BENCHMARK(Decode)->Arg(1)->Arg(100)->Arg(10000)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
