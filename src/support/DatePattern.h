#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wattlark {

enum class PatternField {
  Literal,
  Year,
  MonthName,
  ShortMonthName,
  Month,
  DayName,
  ShortDayName,
  Day,
  Hour,
  HalfDayHour,
  Minute,
  Second,
  HalfDay,
};

/// One piece of a date or time pattern (the pattern letters of `RegionalSettings`).
struct PatternPart {
  PatternField field = PatternField::Literal;
  std::size_t width = 0;  ///< pattern letters
  std::string literal;
};

/// Takes the first part, a field or all text up to the next one, off a pattern that is not empty.
/// Two single quotes in a row are one quote of the text; a quote that is never closed reaches to
/// the end.
PatternPart TakePatternPart(std::string_view& pattern);

}  // namespace wattlark
