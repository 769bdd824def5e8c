#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>

#include "support/DateTime.h"

namespace wattlark {

/// Appends what the serial port delivered, and the update ticks, to a capture file as text.
class CaptureWriter {
 public:
  /// Opens `file` for appending; a new one can be read by its owner alone. Throws
  /// std::runtime_error with a readable text when that fails.
  explicit CaptureWriter(const std::string& file);

  void WriteRead(DateTime now, std::uint32_t ticks, std::span<const std::uint8_t> bytes);
  void WriteTick(DateTime now, std::uint32_t ticks);

 private:
  void WriteLine(DateTime now, std::uint32_t ticks, const std::string& event);

  std::string file_;
  std::ofstream stream_;
};

}  // namespace wattlark
