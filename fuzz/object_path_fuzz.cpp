// Any bytes as the text of an object path; what is accepted has a text form that is accepted again and means the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Pegasus/Common/CIMObjectPath.h"
#include "Pegasus/Common/Exception.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Pegasus::CIMObjectPath path;
  try {
    path = Pegasus::CIMObjectPath(Pegasus::String(bytes.c_str()));
  } catch (const Pegasus::Exception&) {
    return 0;  // refused
  }
  // From here on nothing may be refused.
  const Pegasus::CIMObjectPath again(path.toString());
  if (!again.identical(path)) std::abort();
  return 0;
}
