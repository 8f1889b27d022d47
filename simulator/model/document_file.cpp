// Reading of whole files, with the reasons of the system.
#include "model/document_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <vector>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

namespace {

constexpr std::streamsize kBlock = 64 * 1024;
// More than any chassis needs; a device may have no end.
constexpr std::size_t kLargest = 64UL * 1024 * 1024;

}  // namespace

std::string ReadDocumentFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
  std::string text;
  std::vector<char> block(kBlock);
  while (file) {
    errno = 0;
    file.read(block.data(), kBlock);
    // A directory opens, but cannot be read.
    if (file.bad()) throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
    if (text.size() > kLargest) throw ModelError(path + ": is larger than " + std::to_string(kLargest) + " bytes");
  }
  if (text.empty()) throw ModelError(path + ": holds no text");
  return text;
}

}  // namespace Orvane::simulator
