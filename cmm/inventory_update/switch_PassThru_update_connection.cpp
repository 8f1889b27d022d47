// The connection of the pass-through update's own CIM client. Its log texts differ from those of the session and of the
// switch update by single blanks and one level; log readers know them as they are.
#include "cmm/inventory_update/cmm_log.h"
#include "cmm/inventory_update/cmm_util.h"
#include "cmm/inventory_update/switch_PassThru_update.h"
#include "cmm/inventory_update/switch_PassThru_update_common.h"
#include "platform/sleep.h"

using Pegasus::String;

namespace Orvane {

using passthru::kLogSource;

namespace {

constexpr Pegasus::Uint32 kTimeoutMs = 300000;
constexpr Pegasus::Uint32 kHttpsPort = 5989;
constexpr Pegasus::Uint32 kHttpPort = 5988;

constexpr int kConnectAttempts = 3;
constexpr std::uint32_t kConnectPauseMs = 1000;

void LogFailure(const char* prefix, const Pegasus::Exception& error) {
  ORVANE_LOG(kLogError) << prefix << ToStdString(error.getMessage());
}

}  // namespace

bool TarnPassThruUpdate::connectOnce(Pegasus::Uint32 port, bool secure) {
  try {
    const String host(host_.c_str());
    const String user(user_.c_str());
    const String password(password_.c_str());
    client_->setTimeout(kTimeoutMs);
    if (secure) {
      const Pegasus::SSLContext context(String::EMPTY, String::EMPTY, String::EMPTY, certificateCheck_, String::EMPTY);
      client_->connect(host, port, context, user, password);
    } else {
      client_->connect(host, port, user, password);
    }
    ORVANE_LOG(kLogProgress) << "Successfully connected to host : " << host_;
    return true;
  } catch (const Pegasus::AlreadyConnectedException& error) {
    LogFailure("Pegasus AlreadyConnectedException :", error);
    return true;
  } catch (const Pegasus::InvalidLocatorException& error) {
    LogFailure("Pegasus InvalidLocatorException :", error);
  } catch (const Pegasus::CannotCreateSocketException& error) {
    LogFailure("Pegasus CannotCreateSocketException :", error);
  } catch (const Pegasus::CannotConnectException& error) {
    LogFailure("Pegasus CannotConnectException :", error);
  } catch (const Pegasus::InvalidNameException& error) {
    LogFailure("Pegasus InvalidNameException :", error);
  } catch (const Pegasus::Exception& error) {
    LogFailure("Unknown Exception: ", error);
  }
  return false;
}

bool TarnPassThruUpdate::connect() {
  return connectOnce(port_ == 0 ? kHttpsPort : port_, true) || connectOnce(port_ == 0 ? kHttpPort : port_, false);
}

bool TarnPassThruUpdate::ConnectPatiently() {
  for (int attempt = 1; !connect(); ++attempt) {
    if (attempt == kConnectAttempts) return false;
    platform::Sleep(kConnectPauseMs);
  }
  return true;
}

}  // namespace Orvane
