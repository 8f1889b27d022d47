// Takes the lines that the library prints to standard output while an operation runs: there only the result belongs.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <streambuf>
#include <string>

namespace Orvane::cli {

/// While it lives, whole lines printed through std::cout go to a function instead, without their line end.
class PrintedLines {
 public:
  explicit PrintedLines(std::function<void(const std::string& line)> take);
  ~PrintedLines();
  PrintedLines(const PrintedLines&) = delete;
  PrintedLines& operator=(const PrintedLines&) = delete;

 private:
  class Buffer;
  std::unique_ptr<Buffer> buffer_;
  std::streambuf* before_;
};

}  // namespace Orvane::cli
