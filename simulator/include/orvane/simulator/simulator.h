// The chassis simulator as a library: a CIM server on loopback that behaves as a chassis management module does.
// A Model says what the chassis holds; a Simulator serves it over HTTP and HTTPS on threads of its own until destroyed.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "orvane/simulator/clock.h"
#include "orvane/simulator/fault_plan.h"

namespace Orvane::simulator {

class ObjectStore;
struct ChassisSettings;

/// A document, of a model or of faults, that cannot be used. what() is one line: file, JSON pointer of the offending
/// place, reason.
class ModelError : public std::runtime_error {
 public:
  /// @param message  control characters in it, which come out of the document, are shown as JSON writes them ("\u000A")
  explicit ModelError(const std::string& message);
};

/// The checked contents of a chassis, ready to be served. An immutable value: copies are cheap and share the contents,
/// and each Simulator works on a store of its own, so one Model may serve several of them at once.
class Model {
 public:
  Model(std::shared_ptr<const ObjectStore> contents, std::shared_ptr<const ChassisSettings> settings)
      : contents_(std::move(contents)), settings_(std::move(settings)) {}
  const std::shared_ptr<const ObjectStore>& Contents() const { return contents_; }
  const std::shared_ptr<const ChassisSettings>& Settings() const { return settings_; }

 private:
  std::shared_ptr<const ObjectStore> contents_;
  std::shared_ptr<const ChassisSettings> settings_;
};

/// The chassis that is served when no model file is given: 2 CMMs (the second a spare), 4 switches, 2 pass-through
/// modules and 14 nodes, with some bays of each kind empty.
Model BuiltInModel();

/// Reads and checks a model document (docs/simulator.md describes it, docs/chassis-model.schema.json is its schema).
/// @throws ModelError when the file cannot be read, is no JSON, or breaks a rule of the format.
Model LoadModel(const std::string& path);

/// The versions of TLS that HTTPS takes.
enum class TlsVersions { kBoth, kOnly12, kOnly13 };

/// Finished TLS handshakes: those that showed the certificate, and those that resumed a session.
struct TlsHandshakes {
  std::uint64_t full = 0;
  std::uint64_t resumed = 0;
};

/// Where the simulator listens and whom it lets in.
struct Options {
  std::string user = "USERID";
  std::string password;
  /// TCP port from 1 to 65535; 0 takes any free port, -1 leaves the protocol out. At least one must be on.
  int httpPort = 0;
  int httpsPort = 0;
  /// Literal IPv4 or IPv6 address to listen on.
  std::string address = "127.0.0.1";
  /// False: requests are served without asking for a user.
  bool authentication = true;
  TlsVersions tlsVersions = TlsVersions::kBoth;
  /// False: every TLS handshake is a full one, as with a server that keeps no sessions and hands out no tickets.
  bool tlsResumption = true;
  /// The time that the chassis lives in; null means real time. One clock may serve several simulators.
  std::shared_ptr<Clock> clock;
  /// What the chassis takes at most of a firmware package it fetches: bytes, and real time for the whole download.
  std::uint64_t packageSizeLimit = 64ULL * 1024 * 1024;
  std::chrono::milliseconds packageTimeLimit = std::chrono::seconds(30);
  /// What goes wrong; nothing by default.
  FaultPlan faults;
};

/// A running CIM server. All members may be called from any thread.
class Simulator {
 public:
  /// Listens and serves from threads of its own; returns once connections are accepted.
  /// @throws std::system_error when a port or address cannot be listened on; its text names them.
  /// @throws std::invalid_argument when Options makes no sense (no protocol on, a port or address out of range).
  Simulator(Model model, Options options);

  /// Stops listening, closes every connection and joins the threads.
  ~Simulator();

  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  /// The port in use; 0 when the protocol is off.
  std::uint16_t HttpPort() const;
  std::uint16_t HttpsPort() const;

  /// How many calls of a CIM operation ("EnumerateInstances", "InvokeMethod" for every extrinsic method, ...) were
  /// carried out or answered with a CIM error since the start; requests refused before (401, 400) do not count.
  std::uint64_t RequestCount(const std::string& operation) const;

  /// The TLS handshakes since the start. One is counted before the first request of its connection is read.
  TlsHandshakes Handshakes() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Orvane::simulator
