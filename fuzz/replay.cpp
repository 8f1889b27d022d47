// Reads the inputs of a corpus and hands them to the fuzz target that is linked with it.
#include "replay.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Orvane::fuzz {

namespace {

namespace fs = std::filesystem;

std::optional<std::string> ReadInput(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (!in.is_open() || in.bad() || bytes.size() != fs::file_size(path, error)) return std::nullopt;
  return bytes;
}

}  // namespace

int Replay(const std::string& folder, std::ostream& out, std::ostream& errors) {
  std::error_code error;
  std::set<fs::path> inputs;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    inputs.insert(entry->path());
  }
  if (error) {
    errors << "cannot list " << folder << ": " << error.message() << '\n';
    return 1;
  }
  if (inputs.empty()) {
    errors << "no file in " << folder << '\n';
    return 1;
  }
  for (const fs::path& path : inputs) {
    const std::optional<std::string> bytes = ReadInput(path);
    if (!bytes) {
      errors << "cannot read " << path.string() << '\n';
      return 1;
    }
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size());
  }
  out << inputs.size() << " inputs replayed\n";
  return 0;
}

}  // namespace Orvane::fuzz
