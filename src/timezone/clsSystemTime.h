#pragma once

#include <cstdint>

namespace wattlark {

/// A moment as the system's time-zone rules write it, in one of three forms: `wMonth` 0 is no
/// moment; `wYear` not 0 is a date; `wYear` 0 is a rule for every year, where `wDay` counts the
/// occurrences of the weekday in the month. Read from outside, so any field may hold anything.
struct clsSystemTime {
  std::uint16_t wYear = 0;
  std::uint16_t wMonth = 0;      ///< 1..12
  std::uint16_t wDayOfWeek = 0;  ///< 0 = Sunday .. 6
  std::uint16_t wDay = 0;        ///< of the month, or 1..4 for an occurrence and 5 for the last
  std::uint16_t wHour = 0;
  std::uint16_t wMinute = 0;
  std::uint16_t wSecond = 0;
  std::uint16_t wMilliseconds = 0;
};

}  // namespace wattlark
