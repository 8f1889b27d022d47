// A sink that hands each line to the operating system in one write to a file opened for appending. Buffered streams
// split long lines, and two processes that append to one file would then cut into each other's.
#pragma once

#include <spdlog/sinks/base_sink.h>

#include <mutex>
#include <string>

namespace Orvane::logging {

class AppendFileSink final : public spdlog::sinks::base_sink<std::mutex> {
 public:
  /// @throws std::system_error  the file cannot be opened; what() names it and the reason.
  explicit AppendFileSink(const std::string& path);
  ~AppendFileSink() override;
  AppendFileSink(const AppendFileSink&) = delete;
  AppendFileSink& operator=(const AppendFileSink&) = delete;

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override;
  void flush_() override {}

 private:
  int descriptor_;
};

}  // namespace Orvane::logging
