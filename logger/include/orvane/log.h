// The log of Orvane: one line per record, from any thread, with a level that is tested before any text is built.
// Verbosity and destination come from the environment (ORVANE_LOG_LEVEL, ORVANE_LOG_FILE) and can be overridden here.
#pragma once

#include <chrono>
#include <functional>
#include <sstream>
#include <string>

#define ORVANE_LOGGER_EXPORT __attribute__((visibility("default")))

namespace Orvane {

/// One log line in the making: construct it, stream the text, let it go out of scope.
///
/// Levels: 1 error, 2 warning, 3 progress, 4 detail. Test GetMinLogLevel() first, so that no text is built for a line
/// nobody reads; a Log that was constructed is always emitted.
/// The static members are thread-safe; one Log object belongs to one thread.
class ORVANE_LOGGER_EXPORT Log {
 public:
  /// One emitted line.
  struct Record {
    std::chrono::system_clock::time_point time;
    unsigned level = 0;
    std::string file;  ///< source path without extension, for example cmm/inventory_update/cmm_peg_client
    int line = 0;
    std::string text;  ///< as streamed, one line end at its end dropped; control characters are still raw
  };

  /// Receives records one at a time; never called by two threads at once. It must not log itself.
  using Sink = std::function<void(const Record&)>;

  /// @param level  1 to 4.
  /// @param file   source path without extension; must not be null.
  /// @param line   line of the log statement.
  Log(unsigned level, const char* file, int line);
  /// Emits the line. Never throws: a sink that does is ignored.
  virtual ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// The text of the line; append to it.
  std::ostringstream& Stream() { return stream_; }

  /// The configured verbosity, 0 (nothing is logged) to 4. A line of level L is wanted when this is at least L.
  /// Read from ORVANE_LOG_LEVEL at the first call; 1 when unset, and 1 with one complaint when not 0 to 4.
  static unsigned GetMinLogLevel();

  /// Overrides ORVANE_LOG_LEVEL. @param level  0 to 4; more counts as 4.
  static void SetMinLogLevel(unsigned level);

  /// Sends every later record to @p sink instead of the file or standard error. An empty sink ends that.
  static void SetSink(Sink sink);

  /// Appends every later record to the file at @p path, overriding ORVANE_LOG_FILE; empty means standard error.
  /// A file that cannot be opened is complained of once on standard error, which then takes the records.
  static void SetFile(const std::string& path);

 private:
  unsigned level_;
  const char* file_;
  int line_;
  std::ostringstream stream_;
};

/// Records one timing mark of a long step, as a line of @p level (nothing when the level is off):
/// "<mark> step=<step> value=<value> <detail>".
/// @param mark    "[B]" before the step, "[E]" after it. At "[E]" " elapsed=<ms>ms" follows when the "[B]" of the same
///                step was seen on the same thread; steps of one number nest.
/// @param step    number of the step.
/// @param value   0 at the beginning, the step's result code at the end.
/// @param detail  free text. Thread-safe.
ORVANE_LOGGER_EXPORT void AddDetailTimeDebugLog(int level, const char* file, int line, const std::string& mark,
                                                int step, int value, std::string detail);

/// The line as written to a file, without its line end: "<UTC time, ms> <level> <file>:<line> <text>". Control
/// characters of the text stand C-style (\n, \r, \t, \xHH), so that no text can forge a line.
ORVANE_LOGGER_EXPORT std::string FormatRecord(const Log::Record& record);

}  // namespace Orvane
