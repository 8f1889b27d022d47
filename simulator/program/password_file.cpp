// The checks are made on the opened file, not on its name, so that the file cannot be exchanged in between.
#include "program/password_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace Orvane::simulator {

namespace {

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error("password file " + path + ": " + reason);
}

}  // namespace

std::string ReadPasswordFile(const std::string& path) {
  // O_NONBLOCK: a FIFO without a writer must not hang the start.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0) Fail(path, std::strerror(errno));
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) Fail(path, std::strerror(errno));
  if (!S_ISREG(status.st_mode)) Fail(path, "is not a regular file");
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    Fail(path, "is open to group or others; allow its owner only (chmod 600)");
  }
  std::array<char, 1024> buffer{};
  const ssize_t count = ::read(file.Get(), buffer.data(), buffer.size());
  if (count < 0) Fail(path, std::strerror(errno));
  std::string line(buffer.data(), static_cast<std::size_t>(count));
  const std::size_t end = line.find_first_of("\r\n");
  if (end == std::string::npos && line.size() == buffer.size()) Fail(path, "its first line is too long");
  line.erase(end == std::string::npos ? line.size() : end);
  if (line.empty()) Fail(path, "its first line is empty");
  return line;
}

}  // namespace Orvane::simulator
