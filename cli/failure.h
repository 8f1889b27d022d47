// The one way a part of the command reports that it cannot go on: an exit status, the library's code and a sentence.
#pragma once

#include <stdexcept>
#include <string>

#include "cli/exit_status.h"

namespace Orvane::cli {

/// Code of a failure for which the library gave none (it reported success, an empty text or nothing at all).
constexpr int kNoLibraryCode = -1;

/// Ends a command. what() is one sentence for the person at the terminal; it never holds a password and no control
/// characters.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, int code, const std::string& sentence)
      : std::runtime_error(sentence), status_(status), code_(code) {}

  ExitStatus Status() const { return status_; }

  /// The library's own code, or kNoLibraryCode.
  int Code() const { return code_; }

 private:
  ExitStatus status_;
  int code_;
};

}  // namespace Orvane::cli
