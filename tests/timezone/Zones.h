#pragma once

#include <cstdint>

#include "timezone/clsTimeZone.h"

namespace wattlark {

inline clsSystemTime Relative(int month, int dayOfWeek, int occurrence, int hour) {
  clsSystemTime rule;
  rule.wMonth = static_cast<std::uint16_t>(month);
  rule.wDayOfWeek = static_cast<std::uint16_t>(dayOfWeek);
  rule.wDay = static_cast<std::uint16_t>(occurrence);
  rule.wHour = static_cast<std::uint16_t>(hour);
  return rule;
}

inline clsSystemTime Absolute(int year, int month, int day) {
  clsSystemTime rule = Relative(month, 0, day, 0);
  rule.wYear = static_cast<std::uint16_t>(year);
  return rule;
}

/// Five hours behind UTC; daylight time from the second Sunday of March to the first of November,
/// at 02:00.
inline clsTimeZoneInformation EasternRule() {
  return {300, 0, -60, Relative(11, 0, 1, 2), Relative(3, 0, 2, 2)};
}

}  // namespace wattlark
