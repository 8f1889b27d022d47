// The file's folder is synchronised too: without that a new file may be gone after a crash, whatever was synchronised
// in it.
#include "cli/journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "cli/failure.h"
#include "cli/text.h"
#include "cli/time_text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

// A pipe or a terminal has nothing to synchronise and says so.
bool Synchronise(int fd) { return fsync(fd) == 0 || errno == EINVAL || errno == EROFS; }

void SynchroniseFolderOf(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  const int fd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  Synchronise(fd);
  close(fd);
}

}  // namespace

Journal::Journal(std::string path) : path_(std::move(path)) {
  fd_ = open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (fd_ < 0) {
    throw Failure(ExitStatus::kUsage, kNoLibraryCode,
                  "the journal " + Neutralise(path_) + " cannot be opened: " + std::strerror(errno));
  }
  SynchroniseFolderOf(path_);
}

Journal::~Journal() { close(fd_); }

bool Journal::Append(const Json& record) {
  Json line = {{"time", UtcNow()}};
  line.update(record);
  const std::string text = line.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n";
  return WriteAll(fd_, text) && Synchronise(fd_);
}

}  // namespace Orvane::cli
