#include "cli/TextTable.h"

#include <algorithm>

#include "support/DisplayText.h"

namespace wattlark {

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  for (std::string& cell : cells) cell = PrintableText(cell);
  rows_.push_back(std::move(cells));
}

std::string TextTable::Text() const {
  std::vector<std::string> headings;
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    headings.push_back(columns_[i].heading);
    widths.push_back(DisplayWidth(columns_[i].heading));
    for (const auto& row : rows_) widths[i] = std::max(widths[i], DisplayWidth(row[i]));
  }
  std::string text;
  const auto append = [&](const std::vector<std::string>& row) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - DisplayWidth(row[i]), ' ');
      if (i != 0) line += "  ";
      line += columns_[i].align == Align::Right ? padding + row[i] : row[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  };
  append(headings);
  for (const auto& row : rows_) append(row);
  return text;
}

}  // namespace wattlark
