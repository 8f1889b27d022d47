// Access to the recorded requests and responses for the tests of this folder.
#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "test_data.h"

namespace Pegasus::test {

/// The bytes of <test data>/`name`.
inline std::string ReadRecorded(const std::string& name) {
  std::ifstream file(TestDataPath(name), std::ios::binary);
  if (!file) throw std::runtime_error(name + " cannot be opened");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// What stands behind the header of an HTTP message whose header lines end with LF or CR LF.
inline std::string BodyOf(const std::string& message) {
  const std::size_t crlf = message.find("\r\n\r\n");
  const std::size_t lf = message.find("\n\n");
  if (crlf == std::string::npos && lf == std::string::npos) throw std::runtime_error("no end of header");
  return crlf < lf ? message.substr(crlf + 4) : message.substr(lf + 2);
}

/// The value of a header line, found by the spelling given.
inline std::string HeaderOf(const std::string& message, const std::string& name) {
  const std::string start = "\n" + name + ": ";
  const std::size_t begin = message.find(start);
  if (begin == std::string::npos) return {};
  const std::size_t end = message.find_first_of("\r\n", begin + start.size());
  return message.substr(begin + start.size(), end - begin - start.size());
}

/// A file name as the name of a test case.
inline std::string CaseName(const std::string& file) {
  std::string name;
  for (const char c : file.substr(0, file.rfind('.'))) {
    const bool usable = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    name += usable ? c : '_';
  }
  return name;
}

}  // namespace Pegasus::test
