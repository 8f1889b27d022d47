// The exit statuses of the command, which scripts build on. Each has one meaning; the texts of failures live elsewhere.
#pragma once

namespace Orvane::cli {

enum class ExitStatus {
  kDone = 0,          ///< Done, or nothing to do.
  kFailed = 1,        ///< The operation failed; its code and text are printed.
  kUsage = 2,         ///< Wrong usage: options, environment, password sources, model file.
  kNoConnection = 3,  ///< Nothing answers at the host, or the host has no address.
  kNotFound = 4,      ///< The target was not found or is not ready, or the host is no management module.
  kRefused = 5,       ///< The user or the password was refused.
  kGaveUp = 6,        ///< Gave up waiting; the job goes on at the management module.
  kInterrupted = 130  ///< Interrupted by the user.
};

/// The number the process ends with.
constexpr int ToInt(ExitStatus status) { return static_cast<int>(status); }

}  // namespace Orvane::cli
