// Of several lines that fit the last one is shown: a job's last words tell how it ended.
// Rows with a line stand before the row of the same code without one, so the first that fits is the most telling.
#include "cli/operations/results.h"

#include <algorithm>
#include <string_view>

namespace Orvane::cli {

Result FindResult(const ResultTable& table, int code, const std::vector<Log::Record>& records) {
  for (const ResultRow& row : table) {
    if (row.code != code && row.code != kEveryOtherCode) continue;
    if (row.line == nullptr) return {&row, {}};
    const std::string_view start = row.line;
    const auto found = std::find_if(records.rbegin(), records.rend(), [start](const Log::Record& record) {
      return std::string_view(record.text).substr(0, start.size()) == start;
    });
    if (found != records.rend()) return {&row, found->text};
  }
  return {&table.back(), {}};
}

}  // namespace Orvane::cli
