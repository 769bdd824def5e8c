#pragma once

#include <cstdint>

#include "timezone/clsTimeZone.h"

namespace wattlark {

inline clsSystemTime Relative(std::uint16_t month, std::uint16_t dayOfWeek,
                              std::uint16_t occurrence, std::uint16_t hour) {
  return {.wMonth = month, .wDayOfWeek = dayOfWeek, .wDay = occurrence, .wHour = hour};
}

inline clsSystemTime Absolute(int year, std::uint16_t month, std::uint16_t day) {
  return {.wYear = static_cast<std::uint16_t>(year), .wMonth = month, .wDay = day};
}

/// Five hours behind UTC; daylight time from the second Sunday of March to the first of November,
/// at 02:00.
inline clsTimeZoneInformation EasternRule() {
  return {300, 0, -60, Relative(11, 0, 1, 2), Relative(3, 0, 2, 2)};
}

}  // namespace wattlark
