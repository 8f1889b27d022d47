// Any bytes as the body of a request to the simulator.
#include <cstddef>
#include <cstdint>
#include <string>

#include "wire/request.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string body(reinterpret_cast<const char*>(data), size);
  // Corpus files are whole HTTP requests; the reader gets their body.
  if (const std::size_t head = body.find("\r\n\r\n"); head != std::string::npos) body.erase(0, head + 4);
  try {
    Orvane::simulator::ReadRequest(body);
  } catch (const Orvane::simulator::BadRequest&) {
    return 0;  // refused, with the HTTP status that the client gets
  }
  return 0;
}
