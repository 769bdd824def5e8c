#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "support/DateTime.h"

namespace wattlark {

/// One line of a capture: the bytes of one read of the port, or an update tick.
struct CaptureEvent {
  DateTime time;
  std::uint32_t ticks = 0;
  std::uint32_t byteCount = 0;  ///< 0 for a tick

  bool IsTick() const { return byteCount == 0; }
};

/// The events of a capture in order. The bytes of all reads lie one behind the other, so that a
/// capture of a year fits into memory.
struct Capture {
  std::vector<CaptureEvent> events;
  std::vector<std::uint8_t> bytes;
};

/// Adds what one line of a capture, without its line end, says: an event, or nothing for a blank
/// line or a comment. Answers an empty text, or what is wrong with the line; nothing is added then.
std::string ParseCaptureLine(std::string_view line, Capture& capture);

/// Adds every line of the stream, with LF or CR LF as line ends, up to the first one that is wrong.
/// Answers an empty text, or "NAME:LINE: what is wrong"; `name` stands for the stream. A line of
/// more than 16 MiB is wrong, so that no stream can fill the memory with one.
std::string ReadCapture(std::istream& input, const std::string& name, Capture& capture);

}  // namespace wattlark
