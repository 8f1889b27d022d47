// The one unit compiled with the path of the checkout, so that a compiler cache serves every other one to all clones.
#include "test_data.h"

namespace Pegasus::test {

std::string TestDataPath(const std::string& name) { return std::string(ORVANE_TEST_DATA "/") + name; }

}  // namespace Pegasus::test
