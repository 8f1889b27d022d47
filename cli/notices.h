// The sentences for the person at the terminal, on standard error: plain, or as lines of JSON beside those of progress.
#pragma once

#include <string>

namespace Orvane::cli {

class Notices {
 public:
  explicit Notices(bool jsonLines) : jsonLines_(jsonLines) {}

  /// @param sentence  harmless text.
  void Error(const std::string& sentence) const { Write("error", "", sentence); }
  void Note(const std::string& sentence) const { Write("note", "note: ", sentence); }
  void Warning(const std::string& sentence) const { Write("warning", "warning: ", sentence); }

 private:
  void Write(const char* event, const char* prefix, const std::string& sentence) const;

  bool jsonLines_;
};

}  // namespace Orvane::cli
