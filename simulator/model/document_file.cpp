// Reading of whole files, with the reasons of the system.
#include "model/document_file.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

std::string ReadDocumentFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  } catch (const std::ios_base::failure&) {  // a directory opens, but cannot be read
    throw ModelError(path + ": cannot be read: " + std::generic_category().message(errno));
  }
  if (text.empty()) throw ModelError(path + ": holds no text");
  return text;
}

}  // namespace Orvane::simulator
