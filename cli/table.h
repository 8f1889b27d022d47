// Plain text tables for a terminal: columns as wide as their contents need, cells of several lines, nothing forged by
// what a server put into a cell.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Orvane::cli {

/// One cell: the lines it shows below each other. No line at all, or an empty one, shows as "-".
using Cell = std::vector<std::string>;

class Table {
 public:
  struct Column {
    std::string title;
    std::size_t maxWidth;  ///< Longer texts are cut with an ellipsis; 0 means never.
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// @param cells  one per column, raw texts: they are trimmed and made harmless here.
  void AddRow(const std::vector<Cell>& cells);

  /// The titles and the rows, each line ended by a line end and without trailing blanks.
  std::string Text() const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<Cell>> rows_;
};

/// Two columns without titles: names and values, one pair on a line, values aligned.
std::string FieldList(const std::vector<std::pair<std::string, std::string>>& fields);

}  // namespace Orvane::cli
