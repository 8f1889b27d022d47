// The CIM client of the module updates: one object that connects, disconnects and connects again as often as an
// operation needs it. It knows nothing of switches or pass-through modules; the two differ in the texts they log.
#pragma once

#include <Pegasus/Client/CIMClient.h>

#include <cstdint>
#include <string>

#include "cmm/inventory_update/cmm_peg_client.h"

namespace Orvane {

/// What a user of ModuleClient logs, and under which name. The texts stand before a message or value.
struct ModuleClientTexts {
  const char* source;
  unsigned alreadyConnectedLevel;
  const char* alreadyConnected;
  const char* invalidLocator;
  const char* cannotCreateSocket;
  const char* cannotConnect;
  const char* invalidName;
  const char* unknown;
  unsigned emptyParameterLevel;
};

/// A CIM client with the connection procedure of the module updates. One thread at a time.
class ModuleClient {
 public:
  /// Connects to nothing. @param texts  must outlive the object. @param port  0 means the standard ports.
  ModuleClient(const ModuleClientTexts& texts, const std::string& host, std::uint16_t port, const std::string& user,
               const std::string& password);

  /// One attempt, waiting at most 300 seconds as every later request. It sends no request, so wrong credentials do not
  /// show here.
  /// @return true when connected, also when the client already was; false on any Pegasus exception, which is logged.
  bool ConnectOnce(std::uint16_t port, bool useHttps);

  /// HTTPS, then HTTP on the same port; with port 0 HTTPS on 5989, then HTTP on 5988.
  bool Connect();

  /// Connect() up to three times, with @p pauseMs after each of the first two failures.
  bool ConnectInThree(std::uint32_t pauseMs);

  /// Without a connection it does nothing.
  void Disconnect() noexcept;

  /// All instances of a class and its subclasses, with their local properties only. Lets every exception pass.
  Pegasus::Array<Pegasus::CIMInstance> EnumerateInstances(const char* nameSpace, const char* className);

  /// The text of the first out-parameter called @p name; empty when there is none. An empty array leaves a line.
  std::string OutParameterText(const Pegasus::Array<Pegasus::CIMParamValue>& outParameters, const char* name) const;

  /// For the requests that stand above only as exceptions to let pass.
  Pegasus::CIMClient& Client() { return client_; }

 private:
  const ModuleClientTexts& texts_;
  PegClientOpt::CertificateCheck certificateCheck_ = AcceptAnyCertificate;
  Pegasus::CIMClient client_;
  std::string host_;
  std::string user_;
  std::string password_;
  std::uint16_t port_;
};

/// Ends the connection of a client when it goes out of scope, on every way out.
class ModuleClientCloser {
 public:
  explicit ModuleClientCloser(ModuleClient& client) : client_(client) {}
  ~ModuleClientCloser() { client_.Disconnect(); }
  ModuleClientCloser(const ModuleClientCloser&) = delete;
  ModuleClientCloser& operator=(const ModuleClientCloser&) = delete;

 private:
  ModuleClient& client_;
};

}  // namespace Orvane
