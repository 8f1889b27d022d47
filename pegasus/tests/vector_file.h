// Loads a file of recorded behaviour: a JSON array of records, each of which becomes one test case. A missing or empty
// file stops the program, so that its cases cannot silently vanish.
#pragma once

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "test_data.h"

namespace Pegasus::test {

/// One record, with its number for the name of its test case.
struct Vector {
  std::size_t number;
  nlohmann::json record;
};

/// Shown by a failing case.
inline void PrintTo(const Vector& vector, std::ostream* out) { *out << vector.record.dump(); }

/// Reads <test data>/`name`. Called while test cases are registered, where nothing could catch an exception: a file
/// that cannot be used ends the program with status 1 and a line that names it.
inline std::vector<Vector> LoadVectors(const std::string& name) {
  const std::string path = TestDataPath(name);
  try {
    std::ifstream file(path);
    if (!file) {
      throw std::runtime_error("cannot be opened");
    }
    const auto records = nlohmann::json::parse(file);
    if (!records.is_array() || records.empty()) {
      throw std::runtime_error("is not a list with records");
    }
    std::vector<Vector> vectors;
    vectors.reserve(records.size());
    for (const auto& record : records) {
      vectors.push_back({vectors.size(), record});
    }
    return vectors;
  } catch (const std::exception& error) {
    std::cerr << path << ": " << error.what() << '\n';
    std::exit(1);
  }
}

/// Name of a vector's test case: its number, and its id or a text of it, in characters that a test name may have.
template <typename Info>
std::string VectorName(const Info& info) {
  const nlohmann::json& record = info.param.record;
  std::string text;
  for (const char* key : {"id", "case", "name", "input", "a"}) {
    if (record.contains(key) && record[key].is_string()) {
      text = record[key].template get<std::string>();
      break;
    }
  }
  constexpr std::size_t kLongest = 60;
  std::string name = std::to_string(info.param.number);
  for (const char letter : text.substr(0, kLongest)) {
    const bool usable =
        std::isalnum(static_cast<unsigned char>(letter)) != 0 && static_cast<unsigned char>(letter) < 0x80;
    if (usable || name.back() != '_') {
      name.push_back(usable ? letter : '_');
    }
  }
  return name;
}

}  // namespace Pegasus::test
