// What a document holds must neither end the line of a message about it nor cut the message off.
#include <string>

#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {

namespace {

std::string OneLine(const std::string& message) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr unsigned char kFirstPrintable = 0x20;
  constexpr unsigned char kDelete = 0x7F;
  constexpr unsigned kRadix = 16;
  std::string line;
  for (const char c : message) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= kFirstPrintable && code != kDelete) {
      line += c;
    } else {
      line += "\\u00";
      line += kDigits[code / kRadix];
      line += kDigits[code % kRadix];
    }
  }
  return line;
}

}  // namespace

ModelError::ModelError(const std::string& message) : std::runtime_error(OneLine(message)) {}

}  // namespace Orvane::simulator
