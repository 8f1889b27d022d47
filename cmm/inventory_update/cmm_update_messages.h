// The English texts of update failures, the codes of the 200 range that stand for some of them, and a callback that
// ignores what it is told. Every source that includes this header has a copy of its own, built when the library is
// loaded.
#pragma once

#include <orvane/cmm.h>

#include <array>
#include <cstdint>
#include <string>

namespace Orvane {

const std::string kMessageConnectFailed = "Failed connecting to server";
const std::string kMessageOpenFileFailed = "Failed open file";
const std::string kMessageFlashFailed = "Failed flashing ZEQ package";
const std::string kMessageResultNotFound = "CMM Package Installation Result not found!";
const std::string kMessageInvalidParameters = "Invalid parameters to connect to CMM";
const std::string kMessageInvocationError = "CMM Method Invocation Error occurred";
const std::string kMessageInstanceCount = "More than one instance or no instance for given class";
const std::string kMessageInstallFailed = "Update package installation failed";
const std::string kMessageNotSupported = "Package is not supported currently";
const std::string kMessageUnknownError = "Unknown Error";
const std::string kMessageTimeout = "Time out when updating the remote CMM host";

/// An external code and its text, a copy of one of the messages above.
struct UpdateErrorCode {
  std::int32_t code;
  std::string message;
};

/// The order counts: of two entries with one code a lookup takes the first.
const std::array<UpdateErrorCode, 4> UpdateErrorCodeTable = {{
    {207, kMessageConnectFailed},
    {207, kMessageInstallFailed},
    {212, kMessageInvocationError},
    {213, kMessageResultNotFound},
}};

/// Stands in for a callback that nobody has set.
static EmptyLogMessageCallBack emptyLogMessageCallBack;

}  // namespace Orvane
