#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace wattlark {

/// Rows of cells with their columns aligned and two blanks between them. Widths are counted in
/// terminal columns; what is not printable shows as "?", so that no stored text drives a terminal.
class TextTable {
 public:
  enum class Align { Left, Right };
  struct Column {
    std::string heading;
    Align align = Align::Left;
  };

  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}
  /// A missing cell is empty; a surplus one is left out.
  void AddRow(std::vector<std::string> cells);
  /// The headings and all rows, each line with LF.
  std::string Text() const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace wattlark
