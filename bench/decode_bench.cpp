// How long it takes to turn a response of many instances into values, to read every property as text and to free
// everything, beside parsing the same bytes in place into a tree that nobody reads. Prints the ratio of the two, and
// the memory that the answer and its values take together per byte of the answer.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <future>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/response_text.h"
#include "wire/response_reader.h"

namespace {

/// CPU seconds of this thread: what else the machine does does not count.
double Seconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

std::size_t AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

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

/// The buffer is released only when all values are there, so this is the peak.
double PeakMemoryPerByte(const std::string& text) {
  const std::size_t before = AllocatedBytes();
  const Pegasus::Array<Pegasus::CIMInstance> instances =
      Pegasus::wire::ReadEnumerateInstances(std::string(text), Orvane::bench::kMessageId);
  const auto values = static_cast<double>(AllocatedBytes() - before);
  return 1 + values / static_cast<double>(text.size());
}

/// Freed memory stays with the process: what the system takes for new pages would else be counted here or there by
/// chance.
void KeepFreedMemory() {
  constexpr int kMost = 1 << 30;
  mallopt(M_TRIM_THRESHOLD, kMost);
  mallopt(M_MMAP_THRESHOLD, kMost);
}

/// A thread that does nothing: in a process that has more than one, sharing takes atomic operations.
class IdleThread {
 public:
  IdleThread() : thread_([done = done_.get_future()] { done.wait(); }) {}
  IdleThread(const IdleThread&) = delete;
  IdleThread& operator=(const IdleThread&) = delete;
  ~IdleThread() {
    done_.set_value();
    thread_.join();
  }

 private:
  std::promise<void> done_;
  std::thread thread_;
};

/// Both on the same bytes, in turns, so that what the caches hold suits both alike.
void Decode(benchmark::State& state) {
  KeepFreedMemory();
  std::optional<IdleThread> other;
  if (state.range(1) != 0) other.emplace();
  const std::string text = Orvane::bench::EnumerationResponse(static_cast<std::size_t>(state.range(0)));
  std::vector<double> decoding;
  std::vector<double> parsing;
  for (auto _ : state) {
    std::string body = text;
    double start = Seconds();
    benchmark::DoNotOptimize(DecodeAndRead(std::move(body)));
    decoding.push_back(Seconds() - start);
    state.SetIterationTime(decoding.back());
    std::string copy = text;
    start = Seconds();
    ParseOnly(copy);
    parsing.push_back(Seconds() - start);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
  state.counters["bytes"] = static_cast<double>(text.size());
  state.counters["decode_us"] = 1e6 * Median(decoding);
  state.counters["parse_us"] = 1e6 * Median(parsing);
  state.counters["ratio"] = Median(decoding) / Median(parsing);
  state.counters["peak_per_byte"] = PeakMemoryPerByte(text);
}

// First all rows without another thread: once there was one, sharing may stay atomic.
BENCHMARK(Decode)
    ->ArgNames({"instances", "threads"})
    ->ArgsProduct({{1, 100, 10000}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
