#pragma once

#include <cstddef>
#include <string>

#include "cli/ConsoleStream.h"

namespace wattlark {

/// Standard output and standard error of a run without a window: data as lines or as a table that
/// is refreshed in place, messages above the table.
class Console {
 public:
  Console(ConsoleStream& output, ConsoleStream& messages) : output_(output), messages_(messages) {}

  /// Whether data is shown as a table.
  bool IsTable() const { return isTable_; }
  ConsoleSize Size() const { return output_.Size(); }
  /// A line of data; the line end is added, and before it the date where nobody else notes it.
  void WriteLine(const std::string& date, const std::string& text) {
    output_.Write((output_.IsJournal() ? text : date + " " + text) + "\n");
  }
  /// Puts the table in the place of the last one. Every line ends with LF and is narrower than the
  /// terminal.
  void ShowTable(const std::string& table);
  /// Text for standard error, with or without line ends; what it holds beside printable characters
  /// is shown harmlessly.
  void WriteMessage(const std::string& text);
  /// The same of an event: its date goes before it where nobody else notes it.
  void WriteMessage(const std::string& date, const std::string& text) {
    WriteMessage(messages_.IsJournal() ? text : date + ": " + text);
  }

 private:
  std::string EraseTable();

  ConsoleStream& output_;
  ConsoleStream& messages_;
  const bool isTable_ = output_.IsTerminal();
  std::string shownTable_;
  std::size_t shownLines_ = 0;
  int shownColumns_ = 0;
};

}  // namespace wattlark
