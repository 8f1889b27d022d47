// Runs a fuzz target over every file of a corpus folder, with any compiler. A folder without files, or a file that
// cannot be read, is a failure: an empty replay would prove nothing.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " CORPUS_FOLDER\n";
    return 2;
  }
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    if (!entry.is_regular_file()) continue;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.is_open() || in.bad()) {
      std::cerr << "cannot read " << entry.path() << '\n';
      return 1;
    }
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++files;
  }
  if (files == 0) {
    std::cerr << "no file in " << argv[1] << '\n';
    return 1;
  }
  std::cout << files << " inputs replayed\n";
  return 0;
}
