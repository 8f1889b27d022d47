// A small program that logs, so that tests can look at what a whole process writes: its environment, its file, its
// standard error. Usage: orvane_logger_writer NAME THREADS LINES LENGTH
#include <orvane/log.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: orvane_logger_writer NAME THREADS LINES LENGTH\n";
    return 2;
  }
  const std::string name = argv[1];
  const int threads = std::atoi(argv[2]);
  const int lines = std::atoi(argv[3]);
  const std::string filler(static_cast<std::size_t>(std::atoi(argv[4])), 'x');

  std::vector<std::thread> writers;
  writers.reserve(static_cast<std::size_t>(threads));
  for (int thread = 0; thread < threads; ++thread) {
    writers.emplace_back([&, thread] {
      for (int line = 0; line < lines; ++line) {
        for (unsigned level = 1; level <= 4; ++level) {
          if (Orvane::Log::GetMinLogLevel() < level) continue;
          Orvane::Log(level, "writer", line + 1).Stream()
              << name << '.' << thread << '.' << line << '.' << level << ' ' << filler << " end";
        }
      }
    });
  }
  for (std::thread& writer : writers) writer.join();
  std::cout << "done\n";
  return 0;
}
