// What a command that was carried out yields: the same result for people (a text) and for programs (JSON).
#pragma once

#include <string>
#include <vector>

#include "cli/exit_status.h"
#include "cli/records_json.h"

namespace Orvane::cli {

struct Outcome {
  ExitStatus status = ExitStatus::kDone;
  int code = 0;                       ///< The library's code; 0 when all is well.
  std::string message = "ok";         ///< One sentence.
  Json data = Json::object();         ///< The member "data" of the JSON document.
  std::string text;                   ///< The result as a table, ended by a line end.
  std::string error;                  ///< A sentence for standard error when the status is none of success.
  std::vector<std::string> notes;     ///< Sentences for standard error that tell no trouble.
  std::vector<std::string> warnings;  ///< Sentences for standard error.
};

}  // namespace Orvane::cli
