// Any bytes as a model document of the simulator.
#include <orvane/simulator/simulator.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "model/model_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    Orvane::simulator::BuildModel("model.json", std::string(reinterpret_cast<const char*>(data), size));
  } catch (const Orvane::simulator::ModelError&) {
    return 0;  // refused, with file, place and reason
  }
  return 0;
}
