// An operation that ends in a CIM error: the status code of DSP0200 and a sentence for the client.
#pragma once

#include <stdexcept>
#include <string>

namespace Orvane::simulator {

/// Status codes of DSP0200 that the simulator gives.
enum class CimStatus {
  kFailed = 1,
  kInvalidNamespace = 3,
  kInvalidParameter = 4,
  kInvalidClass = 5,
  kNotFound = 6,
  kNotSupported = 7,
  kNoSuchProperty = 12,
  kTypeMismatch = 13,
  kMethodNotAvailable = 16,
  kMethodNotFound = 17,
};

class CimError : public std::runtime_error {
 public:
  CimError(CimStatus status, const std::string& description) : std::runtime_error(description), status_(status) {}
  CimStatus Status() const { return status_; }

 private:
  CimStatus status_;
};

}  // namespace Orvane::simulator
