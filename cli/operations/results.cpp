// Of several lines that fit the last one is shown: a job's last words tell how it ended.
// Rows with a line stand before the row of the same code without one, so the first that fits is the most telling.
#include "cli/operations/results.h"

#include <algorithm>
#include <string_view>

namespace Orvane::cli {

namespace {

bool StartsWith(const Log::Record& record, std::string_view start) {
  return std::string_view(record.text).substr(0, start.size()) == start;
}

}  // namespace

Result FindResult(const ResultTable& table, int code, const std::vector<Log::Record>& records) {
  // A job that was completed has no part in what failed behind it.
  auto end = records.rend();
  if (code != 0) {
    end = std::find_if(records.rbegin(), records.rend(),
                       [](const Log::Record& record) { return StartsWith(record, "Update completed successfully"); });
  }
  for (const ResultRow& row : table) {
    if (row.code != code && row.code != kEveryOtherCode) continue;
    if (row.line == nullptr) return {&row, {}};
    const auto found =
        std::find_if(records.rbegin(), end, [&row](const Log::Record& record) { return StartsWith(record, row.line); });
    if (found != end) return {&row, found->text};
  }
  return {&table.back(), {}};
}

}  // namespace Orvane::cli
