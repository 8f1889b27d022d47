// What a waiting update costs: many updates of chassis managers at once, a thread and a simulated chassis each, all in
// this process and on scaled time. Prints the processor time per update and simulated hour of waiting, and the memory
// that an update adds. The simulators' share of the time is in the figure, so the library's own is below it.
#include <orvane/cmm.h>
#include <orvane/log.h>
#include <orvane/simulator/clock.h>
#include <orvane/simulator/simulator.h>
#include <platform/sleep.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr int kUpdates = 200;
constexpr double kScale = 20;
constexpr std::chrono::minutes kWarmUp{2};
constexpr std::chrono::minutes kMeasured{10};
// Behind both, so that every job runs while the measurement does.
constexpr std::chrono::minutes kInstall{20};

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double ResidentMegabytes() {
  std::ifstream statistics("/proc/self/statm");
  long total = 0;
  long resident = 0;
  statistics >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

/// A folder of its own that goes with the object.
class Scratch {
 public:
  Scratch() {
    std::string name = (std::filesystem::temp_directory_path() / "orvane-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder below " + name);
    path_ = name;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string Write(const std::string& name, const std::string& text) const {
    const std::filesystem::path path = path_ / name;
    std::ofstream(path) << text;
    return path.string();
  }

 private:
  std::filesystem::path path_;
};

std::string ModelText() {
  const auto seconds = std::chrono::seconds(kInstall).count();
  return R"({"formatVersion": 1, "chassis": {"name": "CH1"}, "bays": {"cmm": 1, "iomodule": 1, "node": 1},)"
         R"( "timing": {"cmmInstall": )" +
         std::to_string(seconds) +
         R"(}, "cmms": [{"bay": 1, "package": {"productName": "Management Module", "serialNumber": "S2"},)"
         R"( "firmware": [{"id": "active", "versionString": "FW1", "majorVersion": 1, "minorVersion": 2,)"
         R"( "revisionNumber": 3, "targetTypes": ["Firmware:CMM"], "classificationDescriptions": ["CMM firmware"]}]}]})";
}

int Run(const std::string& package) {
  using namespace Orvane;
  Log::SetMinLogLevel(0);
  const Scratch scratch;
  const simulator::Model model = simulator::LoadModel(scratch.Write("model.json", ModelText()));
  const auto clock = std::make_shared<simulator::ScaledClock>(kScale);
  std::vector<std::unique_ptr<simulator::Simulator>> chassis;
  for (int i = 0; i < kUpdates; ++i) {
    simulator::Options options;
    options.password = "bench";
    options.httpPort = -1;
    options.clock = clock;
    chassis.push_back(std::make_unique<simulator::Simulator>(model, options));
  }
  const platform::SleepOverride faster([](std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds / kScale));
  });

  const double memoryBefore = ResidentMegabytes();
  std::atomic<int> succeeded{0};
  std::vector<std::thread> updates;
  updates.reserve(chassis.size());
  for (const auto& one : chassis) {
    updates.emplace_back([&succeeded, &package, port = one->HttpsPort()] {
      CMMUpdate update("127.0.0.1", port, "USERID", "bench", "file://" + package);
      if (update.Apply(CMMUpdate::CMM_UPDATE_NO_REBOOT) == 0) ++succeeded;
    });
  }
  std::this_thread::sleep_for(std::chrono::duration<double>(kWarmUp) / kScale);
  const double begin = ProcessorSeconds();
  const Milliseconds simulatedBegin = clock->Now();
  std::this_thread::sleep_for(std::chrono::duration<double>(kMeasured) / kScale);
  const double used = ProcessorSeconds() - begin;
  const double hours = std::chrono::duration<double, std::ratio<3600>>(clock->Now() - simulatedBegin).count();
  const double memory = ResidentMegabytes() - memoryBefore;
  for (std::thread& update : updates) update.join();

  std::printf("%d updates waited %.2f simulated hours each: %.3f CPU seconds per update and hour, %.3f MB per update\n",
              kUpdates, hours, used / kUpdates / hours, memory / kUpdates);
  if (succeeded != kUpdates) {
    std::fprintf(stderr, "only %d of %d updates succeeded, so the figures mean nothing\n", succeeded.load(), kUpdates);
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s PACKAGE (a firmware package for a CMM, as an absolute path)\n", argv[0]);
    return 2;
  }
  try {
    return Run(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
