// The file's folder is synchronised too: without that a new file may be gone after a crash, whatever was synchronised
// in it.
#include "cli/journal.h"

#include <fcntl.h>
#include <sys/stat.h>
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

int OpenForAppending(const std::string& path, int access) {
  return open(path.c_str(), access | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

// Never true of what cannot be read, a pipe for one.
bool EndsInsideALine(int fd) {
  struct stat status = {};
  char last = 0;
  return fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
         pread(fd, &last, 1, status.st_size - 1) == 1 && last != '\n';
}

std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

}  // namespace

Journal::Journal(std::string path) : path_(std::move(path)) {
  fd_ = OpenForAppending(path_, O_RDWR);
  if (fd_ < 0 && errno == EACCES) fd_ = OpenForAppending(path_, O_WRONLY);
  if (fd_ < 0) {
    throw Failure(ExitStatus::kUsage, kNoLibraryCode,
                  "the journal " + Neutralise(path_) + " cannot be opened: " + std::strerror(errno));
  }
  SynchroniseFolderOf(path_);
}

Journal::~Journal() { close(fd_); }

std::error_code Journal::Append(const Json& record) {
  Json line = {{"time", UtcNow()}};
  line.update(record);
  std::string text = line.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n";
  if (EndsInsideALine(fd_)) text.insert(0, "\n");
  errno = 0;
  return WriteAll(fd_, text) && Synchronise(fd_) ? std::error_code() : LastError();
}

}  // namespace Orvane::cli
