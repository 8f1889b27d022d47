// Any bytes as the body of a response, read as the answer of each operation.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Pegasus/Common/Exception.h"
#include "wire/response_reader.h"

namespace {

constexpr std::uint32_t kMessageId = 1000;

// Corpus files are whole HTTP answers with a placeholder for the message id; the reader gets their body.
std::string BodyOf(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  if (const std::size_t head = text.find("\r\n\r\n"); head != std::string::npos) text.erase(0, head + 4);
  if (const std::size_t id = text.find("@ID@"); id != std::string::npos)
    text.replace(id, 4, std::to_string(kMessageId));
  return text;
}

template <typename Read>
void Try(Read read) {
  try {
    read();
  } catch (const Pegasus::Exception&) {
    return;  // the answer was refused, which is as good as a value
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Pegasus::wire;
  const std::string body = BodyOf(data, size);
  Try([&] { ReadEnumerateInstances(std::string(body), kMessageId); });
  Try([&] { ReadEnumerateInstanceNames(std::string(body), kMessageId); });
  Try([&] { ReadGetInstance(std::string(body), kMessageId); });
  Try([&] { ReadModifyInstance(std::string(body), kMessageId); });
  Try([&] { ReadAssociators(std::string(body), kMessageId); });
  Try([&] { ReadAssociatorNames(std::string(body), kMessageId); });
  Try([&] { ReadGetClass(std::string(body), kMessageId); });
  Try([&] {
    Pegasus::Array<Pegasus::CIMParamValue> out;
    ReadInvokeMethod(std::string(body), kMessageId, out);
  });
  return 0;
}
