// A stream buffer that has no buffer: every character arrives in overflow().
#include "cli/progress/printed_lines.h"

#include <iostream>
#include <utility>

namespace Orvane::cli {

class PrintedLines::Buffer : public std::streambuf {
 public:
  explicit Buffer(std::function<void(const std::string&)> take) : take_(std::move(take)) {}

 protected:
  int_type overflow(int_type character) override {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char c = traits_type::to_char_type(character);
    if (c != '\n') {
      line_ += c;
    } else {
      take_(std::exchange(line_, {}));
    }
    return character;
  }

 private:
  std::function<void(const std::string&)> take_;
  std::string line_;
};

PrintedLines::PrintedLines(std::function<void(const std::string& line)> take)
    : buffer_(std::make_unique<Buffer>(std::move(take))), before_(std::cout.rdbuf(buffer_.get())) {}

PrintedLines::~PrintedLines() { std::cout.rdbuf(before_); }

}  // namespace Orvane::cli
