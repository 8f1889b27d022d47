// Any bytes as an HTTP response, whole and in small pieces: both ways give the same result.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "Pegasus/Common/Exception.h"
#include "transport/http_response.h"

namespace {

struct Seen {
  bool complete = false;
  std::uint32_t status = 0;
  std::string reason;
  std::string body;
  std::size_t headers = 0;
  std::size_t trailers = 0;
  bool closes = false;

  bool operator==(const Seen& other) const {
    return complete == other.complete && status == other.status && reason == other.reason && body == other.body &&
           headers == other.headers && trailers == other.trailers && closes == other.closes;
  }
};

/// Nothing when the response was refused.
std::optional<Seen> Read(std::string_view bytes, std::size_t piece) {
  Pegasus::transport::ResponseReader reader;
  Seen seen;
  try {
    while (!bytes.empty() && !seen.complete) {
      const std::size_t count = std::min(piece, bytes.size());
      seen.complete = reader.Take(bytes.substr(0, count));
      bytes.remove_prefix(count);
    }
    if (!seen.complete) reader.End();
  } catch (const Pegasus::Exception&) {
    return std::nullopt;
  }
  const Pegasus::transport::HttpResponse response = reader.Result();
  seen.status = response.status;
  seen.reason = response.reason;
  seen.body = response.body;
  seen.headers = response.headers.Count();
  seen.trailers = response.trailers.Count();
  seen.closes = response.closesConnection;
  return seen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  constexpr std::size_t kSmall = 7;
  const bool same = Read(bytes, std::max<std::size_t>(size, 1)) == Read(bytes, kSmall);
  if (!same) std::abort();
  return 0;
}
