// What the tests of the update and the reboot of a chassis manager share: a scripted CMM that can go down and come back
// on its port, and one transcript of everything that the operation does: log lines, callback texts, sleeps and lines
// on standard output.
#pragma once

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <orvane/cmm.h>
#include <orvane/log.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <regex>
#include <streambuf>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "testing/cim_server.h"
#include "testing/scoped_log.h"
#include "testing/virtual_clock.h"

namespace Orvane::testing {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

inline Lines Repeat(int count, const Lines& lines) {
  Lines all;
  for (int i = 0; i < count; ++i) all = std::move(all) + lines;
  return all;
}

/// What happened, in order. Thread-safe.
class Transcript {
 public:
  void Add(std::string line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    lines_.push_back(std::move(line));
  }
  Lines All() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
  }
  /// Those that begin with @p prefix, without it.
  Lines Of(const std::string& prefix) const {
    Lines found;
    for (const std::string& line : All()) {
      if (line.compare(0, prefix.size(), prefix) == 0) found.push_back(line.substr(prefix.size()));
    }
    return found;
  }
  bool Has(const std::string& line) const {
    const Lines all = All();
    return std::find(all.begin(), all.end(), line) != all.end();
  }
  void Clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    lines_.clear();
  }

 private:
  mutable std::mutex mutex_;
  Lines lines_;
};

/// Puts log records into a transcript as "<source> <level> <text>", the source without its directory and the measured
/// time of timing marks cut off.
class TranscribedLog {
 public:
  explicit TranscribedLog(Transcript& transcript, unsigned level = 4) : level_(level) {
    Log::SetSink([&transcript](const Log::Record& record) {
      static const std::regex elapsed(" elapsed=[0-9]+ms$");
      transcript.Add(record.file.substr(record.file.rfind('/') + 1) + " " + std::to_string(record.level) + " " +
                     std::regex_replace(record.text, elapsed, ""));
    });
  }

 private:
  ScopedLog level_;  // puts level and sink back
};

/// Puts what is written to std::cout into a transcript, as "stdout <text>", one entry per flush.
class TranscribedOutput : private std::stringbuf {
 public:
  explicit TranscribedOutput(Transcript& transcript)
      : transcript_(transcript), previous_(std::cout.rdbuf(static_cast<std::stringbuf*>(this))) {}
  ~TranscribedOutput() override {
    std::cout.rdbuf(previous_);
    if (!str().empty()) transcript_.Add("not flushed: " + str());
  }
  TranscribedOutput(const TranscribedOutput&) = delete;
  TranscribedOutput& operator=(const TranscribedOutput&) = delete;

 private:
  int sync() override {
    transcript_.Add("stdout " + str());
    str("");
    return 0;
  }

  Transcript& transcript_;
  std::streambuf* previous_;
};

/// Puts callback texts into a transcript as "callback <text>", then does what the test wants at that moment.
class TranscribedCallBack : public LogMessageCallBack {
 public:
  explicit TranscribedCallBack(Transcript& transcript) : transcript_(transcript) {}
  void OnMessage(const std::string& message) override {
    transcript_.Add("callback " + message);
    if (then) then(message);
  }

  std::function<void(const std::string& message)> then;

 private:
  Transcript& transcript_;
};

/// A TCP port of the loopback interface that nobody else is given while this lives; it refuses connections as long as
/// no server listens on it.
class PortReservation {
 public:
  PortReservation() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    const int on = 1;
    if (socket_ < 0 || ::setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        ::bind(socket_, generic, size) != 0 || ::getsockname(socket_, generic, &size) != 0) {
      throw std::system_error(errno, std::generic_category(), "no port to reserve");
    }
    port_ = ntohs(address.sin_port);
  }
  ~PortReservation() { ::close(socket_); }
  PortReservation(const PortReservation&) = delete;
  PortReservation& operator=(const PortReservation&) = delete;

  std::uint16_t Port() const { return port_; }

 private:
  int socket_;
  std::uint16_t port_ = 0;
};

/// The CIM server of a CMM that goes down, with all its connections, and comes back on the same port with the same
/// script. Going up and down happens between the client's requests, on the client's thread.
class RestartableCmm {
 public:
  using Script = std::function<void(CimServer&)>;

  explicit RestartableCmm(CimServer::Options options) : options_(std::move(options)) {
    options_.port = reservation_.Port();
    Up();
  }

  std::uint16_t Port() const { return reservation_.Port(); }
  /// Scripts the server now and whenever it comes back; behind what was scripted before.
  void Do(const Script& script) {
    scripts_.push_back(script);
    if (server_) script(*server_);
  }
  void Up() {
    server_ = std::make_unique<CimServer>(options_);
    for (const Script& script : scripts_) script(*server_);
  }
  /// @param open  connections that the client has open now; the journal waits for the end of the others.
  void Down(unsigned open = 0) {
    if (!server_) return;
    WaitForOpenConnections(open);
    past_ = Conversation();
    pastRequests_ = Requests();
    server_.reset();
  }
  bool IsUp() const { return server_ != nullptr; }
  /// The client closes at once, the server learns of it a little later. @return false when that takes too long.
  bool WaitForOpenConnections(unsigned open) const {
    constexpr int kPatienceMs = 10000;
    for (int i = 0; i < kPatienceMs && server_->OpenConnections() != open; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return server_->OpenConnections() == open;
  }
  CimServer& Server() { return *server_; }
  /// Over all its lives. Connections that were open when the server went down have no "disconnect".
  Lines Conversation() const { return server_ ? past_ + server_->Conversation() : past_; }
  std::vector<CimRequest> Requests() const {
    std::vector<CimRequest> all = pastRequests_;
    if (!server_) return all;
    const std::vector<CimRequest> now = server_->Requests();
    all.insert(all.end(), now.begin(), now.end());
    return all;
  }

 private:
  PortReservation reservation_;
  CimServer::Options options_;
  std::vector<Script> scripts_;
  Lines past_;
  std::vector<CimRequest> pastRequests_;
  std::unique_ptr<CimServer> server_;
};

constexpr char kServiceClass[] = "CIM_SoftwareInstallationService";
constexpr char kJobClass[] = "VORTA_FirmwareInstallationJob";
constexpr char kCapabilitiesClass[] = "VORTA_CMMEnabledLogicalElementCapabilities";

constexpr char kServicePath[] = "CIM_SoftwareInstallationService.Name=\"installer\"";
constexpr char kCmmPath[] = "CIM_ComputerSystem.Name=\"cmm01\"";
constexpr char kCapabilitiesPath[] = "VORTA_CMMEnabledLogicalElementCapabilities.InstanceID=\"restart\"";
constexpr char kJobReference[] = "VORTA_FirmwareInstallationJob.InstanceID=\"JOB_17\"";
constexpr char kUriText[] = "http://127.0.0.1/cmm.pkg";
constexpr char kAnyPassword[] = "s3cret";

inline CimObjectSpec PrimaryCmm() {
  return CimObjectSpec("CIM_ComputerSystem")
      .Key("Name", "cmm01")
      .With("Dedicated", CimUint16Array({29}))
      .With("EnabledState", CimUint16(2));
}

inline CimObjectSpec Capabilities(const CimValue& states) {
  return CimObjectSpec(kCapabilitiesClass).Key("InstanceID", "restart").With("RequestedStatesSupported", states);
}

inline CimObjectSpec Job(const std::string& id, const CimValue& state, const std::string& status = "") {
  return CimObjectSpec(kJobClass).Key("InstanceID", id).With("JobState", state).With("ErrorDescription", status);
}
/// One answer with the job under test alone.
inline CimAnswer JobIs(unsigned state, const std::string& status = "") {
  return Objects({Job("JOB_17", CimUint16(state), status)});
}

inline CimAnswer InstallStarted(unsigned returnValue = 4096) {
  return MethodResult(CimTyped("uint32", std::to_string(returnValue)),
                      {{"Job", CimReference({kJobClass, {{"InstanceID", "JOB_17", "string", nullptr}}, {}, {}})}});
}

inline CimAnswer RebootAccepted(unsigned returnValue = 0) {
  return MethodResult(CimTyped("uint32", std::to_string(returnValue)));
}

/// A CMM that installs, and reboots when asked to; the job completes at the first poll.
class CmmUpdateTest : public ::testing::Test {
 protected:
  CmmUpdateTest() : CmmUpdateTest(TlsOptions()) {}
  explicit CmmUpdateTest(CimServer::Options options)
      : cmm(std::move(options)),
        log(transcript),
        output(transcript),
        clock([this](std::size_t /*index*/, std::uint32_t milliseconds) {
          transcript.Add("sleep " + std::to_string(milliseconds));
          if (onSleep) onSleep(milliseconds);
        }),
        callback(transcript) {
    cmm.Do([](CimServer& server) {
      server.OnEnumerate(kServiceClass, Objects({CimObjectSpec(kServiceClass).Key("Name", "installer"),
                                                 CimObjectSpec(kServiceClass).Key("Name", "second")}));
      server.OnEnumerate("CIM_ComputerSystem", Objects({PrimaryCmm()}));
      server.OnEnumerate(kCapabilitiesClass, Objects({Capabilities(CimUint16Array({2, 11}))}));
      server.OnEnumerate(kJobClass, JobIs(7, "done"));
      server.OnInvoke("InstallFromURI", InstallStarted());
      server.OnInvoke("RequestStateChange", RebootAccepted());
    });
  }

  static CimServer::Options TlsOptions() {
    CimServer::Options options;
    options.tls = true;
    return options;
  }

  CMMUpdate Update(const std::string& uri = kUriText) {
    return CMMUpdate("127.0.0.1", cmm.Port(), "USERID", kAnyPassword, uri);
  }
  /// One Apply() with a fresh object and the callback.
  int Apply(CMMUpdate::CMMUpdateOption option = CMMUpdate::CMM_UPDATE_NO_REBOOT) {
    CMMUpdate update("127.0.0.1", cmm.Port(), "USERID", kAnyPassword, kUriText);
    update.SetLogCallBack(&callback);
    return update.Apply(option);
  }
  int Reboot(CMMRebootFlag flag) { return CMMReboot("127.0.0.1", cmm.Port(), "USERID", kAnyPassword, flag); }

  std::string ConnectLine(int result = 0) const {
    return "cmm_peg_client 3 Connect CIMOM . H:127.0.0.1 P:" + std::to_string(cmm.Port()) +
           " U:USERID RC: " + std::to_string(result);
  }
  /// What a refused connect leaves: both attempts and the result.
  Lines RefusedConnect() const {
    const std::string line =
        "cmm_peg_client 1 Pegasus CannotConnectException:Cannot connect to 127.0.0.1:" + std::to_string(cmm.Port()) +
        ". Connection failed.";
    return {line, line, ConnectLine(-4)};
  }
  /// The journal once every connection is closed.
  Lines Conversation() {
    EXPECT_TRUE(!cmm.IsUp() || cmm.Server().WaitUntilAllClosed());
    return cmm.Conversation();
  }
  std::vector<CimRequest> Requests(const std::string& operation) const {
    std::vector<CimRequest> found;
    for (const CimRequest& request : cmm.Requests()) {
      if (request.operation == operation) found.push_back(request);
    }
    return found;
  }

  Transcript transcript;
  std::function<void(std::uint32_t milliseconds)> onSleep;
  RestartableCmm cmm;
  TranscribedLog log;
  TranscribedOutput output;
  VirtualClock clock;
  TranscribedCallBack callback;
};

}  // namespace Orvane::testing
