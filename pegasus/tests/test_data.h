// Where the recorded behaviour lies that these tests compare with.
#pragma once

#include <string>

namespace Pegasus::test {

/// Path of `name` below the tests' data folder.
std::string TestDataPath(const std::string& name);

}  // namespace Pegasus::test
