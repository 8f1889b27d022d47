// orvane-simulator: serves a chassis model as a CIM server until SIGINT or SIGTERM. Exit status: 0 stopped, 1 could not
// listen, 2 wrong usage, bad model, fault plan or password file (then nothing was started).
#include <pthread.h>
#include <signal.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "orvane/simulator/simulator.h"
#include "program/password_file.h"

namespace {

using Orvane::simulator::BuiltInModel;
using Orvane::simulator::LoadFaultPlan;
using Orvane::simulator::LoadModel;
using Orvane::simulator::Model;
using Orvane::simulator::Options;
using Orvane::simulator::ReadPasswordFile;
using Orvane::simulator::ScaledClock;
using Orvane::simulator::Simulator;

constexpr int kStopped = 0;
constexpr int kCannotListen = 1;
constexpr int kWrongInput = 2;
constexpr int kHighestPort = 65535;
constexpr int kLongestRunSeconds = 86400 * 365;
constexpr double kLowestScale = 0.001;
constexpr double kHighestScale = 1000000;

struct Arguments {
  std::string modelFile;
  std::string faultsFile;
  std::optional<int> httpPort;
  std::optional<int> httpsPort;
  std::string address = "127.0.0.1";
  std::string user = "USERID";
  std::string passwordFile;
  bool noAuthentication = false;
  std::optional<int> runSeconds;
  double timeScale = 1.0;
};

void Describe(CLI::App& app, Arguments& arguments) {
  app.add_option("--model", arguments.modelFile, "Chassis model (JSON); without it the built-in chassis is served");
  app.add_option("--faults", arguments.faultsFile, "Fault plan (JSON): which requests go wrong, and how");
  app.add_option("--http", arguments.httpPort, "Port of HTTP, 0 for a free one")->check(CLI::Range(0, kHighestPort));
  app.add_option("--https", arguments.httpsPort, "Port of HTTPS, 0 for a free one")->check(CLI::Range(0, kHighestPort));
  app.add_option("--address", arguments.address, "Address to listen on")->capture_default_str();
  app.add_option("--user", arguments.user, "User who may connect")->capture_default_str();
  CLI::Option* const file = app.add_option("--password-file", arguments.passwordFile,
                                           "File with the user's password in its first line, for its owner only");
  app.add_flag("--no-authentication", arguments.noAuthentication, "Serve everybody")->excludes(file);
  app.add_option("--run-seconds", arguments.runSeconds, "Stop by itself after this time")
      ->check(CLI::Range(1, kLongestRunSeconds));
  app.add_option("--time-scale", arguments.timeScale, "Seconds that pass in the chassis in a second, 0.001 to 1000000")
      ->capture_default_str()
      ->check(CLI::Range(kLowestScale, kHighestScale));
}

Options ToOptions(const Arguments& arguments) {
  if (!arguments.noAuthentication && arguments.passwordFile.empty()) {
    throw std::invalid_argument("give --password-file FILE, or --no-authentication to serve everybody");
  }
  Options options;
  options.address = arguments.address;
  options.user = arguments.user;
  options.authentication = !arguments.noAuthentication;
  if (options.authentication) options.password = ReadPasswordFile(arguments.passwordFile);
  // Naming one protocol asks for that one alone; naming none asks for both.
  const bool both = !arguments.httpPort && !arguments.httpsPort;
  options.httpPort = both ? 0 : arguments.httpPort.value_or(-1);
  options.httpsPort = both ? 0 : arguments.httpsPort.value_or(-1);
  return options;
}

// The stop signals stay blocked in every thread and are taken here, so that no handler runs in the middle of anything.
void WaitForStop(const sigset_t& signals, const std::optional<int>& seconds) {
  if (!seconds) {
    int taken = 0;
    ::sigwait(&signals, &taken);
    return;
  }
  const timespec limit{*seconds, 0};
  while (::sigtimedwait(&signals, nullptr, &limit) < 0 && errno == EINTR) {
  }
}

int Serve(Model model, Options options, const Arguments& arguments) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  options.clock = std::make_shared<ScaledClock>(arguments.timeScale);
  const Simulator simulator(std::move(model), options);
  nlohmann::ordered_json ports;
  if (simulator.HttpPort() != 0) ports["http"] = simulator.HttpPort();
  if (simulator.HttpsPort() != 0) ports["https"] = simulator.HttpsPort();
  std::cout << ports.dump() << std::endl;
  WaitForStop(signals, arguments.runSeconds);
  return kStopped;
}

int Run(int argc, char** argv) {
  Arguments arguments;
  CLI::App app("Serves a simulated blade chassis as a CIM server over HTTP and HTTPS", "orvane-simulator");
  Describe(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kStopped : kWrongInput;
  }
  std::optional<Model> model;
  Options options;
  try {
    options = ToOptions(arguments);
    if (!arguments.faultsFile.empty()) options.faults = LoadFaultPlan(arguments.faultsFile);
    model = arguments.modelFile.empty() ? BuiltInModel() : LoadModel(arguments.modelFile);
  } catch (const std::exception& error) {
    std::cerr << "orvane-simulator: " << error.what() << "\n";
    return kWrongInput;
  }
  return Serve(std::move(*model), std::move(options), arguments);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::invalid_argument& error) {
    std::cerr << "orvane-simulator: " << error.what() << "\n";
    return kWrongInput;
  } catch (const std::exception& error) {
    std::cerr << "orvane-simulator: " << error.what() << "\n";
    return kCannotListen;
  }
}
