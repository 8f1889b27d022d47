// Any bytes as the text of a date-time; what is accepted gives its text back and can be compared and counted.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Pegasus/Common/CIMDateTime.h"
#include "Pegasus/Common/Exception.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Pegasus::CIMDateTime value;
  try {
    value = Pegasus::CIMDateTime(Pegasus::String(bytes.c_str()));
  } catch (const Pegasus::Exception&) {
    return 0;  // refused
  }
  const Pegasus::CIMDateTime again(value.toString());
  const bool same = again.equal(value) && again.toString() == value.toString() &&
                    again.isInterval() == value.isInterval() && again.toMicroSeconds() == value.toMicroSeconds();
  if (!same) std::abort();
  return 0;
}
