#pragma once

#include <string>
#include <string_view>

#include "app/ConsoleView.h"

namespace wattlark {

/// One of the process's output streams, written so that nobody who reads slowly, not at all, or has
/// gone can hold the program up: what cannot be written at once is dropped.
class ConsoleStream {
 public:
  /// `descriptor` stays open and with its owner.
  explicit ConsoleStream(int descriptor) : descriptor_(descriptor) {}

  /// A terminal that understands cursor movements.
  bool IsTerminal() const;
  /// The system's journal, which notes the time of every line itself.
  bool IsJournal() const;
  /// The terminal's present size; the usual one for anything else.
  ConsoleSize Size() const;
  /// False when part of the text was dropped.
  bool Write(std::string_view text);

 private:
  int descriptor_;
  bool isClosed_ = false;
};

}  // namespace wattlark
