// Layout in two steps: rows are cleaned when they are added, widths are known when the text is asked for.
#include "cli/table.h"

#include <algorithm>
#include <utility>

#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr std::size_t kGap = 2;

std::string Clean(const std::string& raw, std::size_t maxWidth) {
  std::string text = Neutralise(Trim(raw));
  if (text.empty()) return "-";
  return maxWidth == 0 ? text : Truncate(text, maxWidth);
}

void TrimEnd(std::string& line) { line.erase(line.find_last_not_of(' ') + 1); }

}  // namespace

void Table::AddRow(const std::vector<Cell>& cells) {
  std::vector<Cell> row;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    Cell cell;
    if (i < cells.size()) {
      for (const std::string& line : cells[i]) cell.push_back(Clean(line, columns_[i].maxWidth));
    }
    if (cell.empty()) cell.emplace_back("-");
    row.push_back(std::move(cell));
  }
  rows_.push_back(std::move(row));
}

std::string Table::Text() const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = DisplayWidth(columns_[i].title);
    for (const auto& row : rows_) {
      for (const std::string& line : row[i]) width = std::max(width, DisplayWidth(line));
    }
    widths.push_back(width);
  }

  std::string out;
  const auto appendLine = [&](const auto& cellText) {
    std::string line;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const std::string text = cellText(i);
      line += text;
      line.append(widths[i] - DisplayWidth(text) + kGap, ' ');
    }
    TrimEnd(line);
    out += line + "\n";
  };

  appendLine([&](std::size_t i) { return columns_[i].title; });
  for (const auto& row : rows_) {
    std::size_t height = 0;
    for (const Cell& cell : row) height = std::max(height, cell.size());
    for (std::size_t y = 0; y < height; ++y) {
      appendLine([&](std::size_t i) { return y < row[i].size() ? row[i][y] : std::string(); });
    }
  }
  return out;
}

std::string FieldList(const std::vector<std::pair<std::string, std::string>>& fields) {
  std::size_t width = 0;
  for (const auto& [name, value] : fields) width = std::max(width, DisplayWidth(name));
  std::string out;
  for (const auto& [name, value] : fields) {
    out += name + std::string(width - DisplayWidth(name) + kGap, ' ') + Clean(value, 0) + "\n";
  }
  return out;
}

}  // namespace Orvane::cli
