// The journal of an operation: lines of JSON that are on the disk before waiting begins, so that a job can be found
// again after the machine that started it went down.
#pragma once

#include <string>
#include <system_error>

#include "cli/records_json.h"

namespace Orvane::cli {

class Journal {
 public:
  /// Opens @p path for appending; a new file may be read and written by its owner only.
  /// @throws Failure kUsage when it cannot be opened.
  explicit Journal(std::string path);
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// Appends @p record as one line, with the time in front, and returns once it is on the disk. Several processes may
  /// append to one file. A last line without an end, left by a process that was killed or by a full disk, stays a line
  /// of its own.
  /// @return  why it could not be written; no error when it is on the disk.
  std::error_code Append(const Json& record);

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  int fd_ = -1;
};

}  // namespace Orvane::cli
