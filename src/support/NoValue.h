#pragma once

namespace wattlark {

/// Marks a reading, series entry, period value or average without data. Compared by exact equality,
/// never by range (bit pattern 0x7FE1CCF385EBC8A0). Displays show "---" for it.
inline constexpr double NoValue = 1E+308;

inline constexpr bool HasValue(double value) {
  return value != NoValue;
}

}  // namespace wattlark
