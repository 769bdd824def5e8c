#include "cli/Console.h"

#include <algorithm>

#include "support/DisplayText.h"

namespace wattlark {

namespace {

constexpr const char* kEraseToLineEnd = "\x1b[K";
constexpr const char* kEraseToScreenEnd = "\x1b[J";

std::size_t LineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Line by line, each made printable and ended with LF.
std::string PrintableLines(const std::string& text) {
  std::string lines;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines += PrintableText(line) + "\n";
  }
  return lines;
}

}  // namespace

std::string Console::EraseTable() {
  std::string codes;
  if (shownLines_ > 0) codes = "\x1b[" + std::to_string(shownLines_) + "A\r";
  shownLines_ = 0;
  return codes;
}

void Console::ShowTable(const std::string& table) {
  const int columns = Size().columns;
  const bool isResized = shownLines_ > 0 && columns != shownColumns_;
  if (table == shownTable_ && shownLines_ > 0 && !isResized) return;
  std::string text = EraseTable();
  // The terminal has wrapped the old lines anew: where they begin is not known any more.
  if (isResized) text = "\x1b[H\x1b[2J";
  for (const char c : table) {
    if (c == '\n') text += kEraseToLineEnd;
    text += c;
  }
  text += kEraseToScreenEnd;
  if (!output_.Write(text)) return;
  shownTable_ = table;
  shownLines_ = LineCount(table);
  shownColumns_ = columns;
}

void Console::WriteMessage(const std::string& text) {
  const bool hasTable = shownLines_ > 0;
  if (hasTable) output_.Write(EraseTable() + kEraseToScreenEnd);
  messages_.Write(PrintableLines(text));
  if (hasTable) ShowTable(shownTable_);
}

}  // namespace wattlark
