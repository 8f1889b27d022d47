// The text form of a log record.
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <orvane/log.h>

#include <chrono>
#include <ctime>
#include <string>

namespace Orvane {
namespace {

void AppendEscaped(std::string& out, const std::string& text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
      out += fmt::format("\\x{:02X}", byte);
    } else {
      out += c;
    }
  }
}

}  // namespace

std::string FormatRecord(const Log::Record& record) {
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::floor<milliseconds>(record.time.time_since_epoch());
  const auto wholeSeconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
  const auto seconds = static_cast<std::time_t>(wholeSeconds.count());
  std::string line = fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z {} {}:{} ", fmt::gmtime(seconds),
                                 (sinceEpoch - wholeSeconds).count(), record.level, record.file, record.line);
  AppendEscaped(line, record.text);
  return line;
}

}  // namespace Orvane
