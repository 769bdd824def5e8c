#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "support/DateTime.h"

namespace wattlark {

/// How numbers, money, dates and times are written for the user. A plain value: the platform layer
/// fills it from the system, tests use `UnitedStates()`.
///
/// Date and time patterns use: yyyy MMMM MMM MM M dddd ddd dd d HH H (24-hour) hh h (12-hour) mm ss
/// AP (the AM or PM text); text between single quotes and every other character stands for itself,
/// two single quotes in a row for one.
struct RegionalSettings {
  std::string decimalSeparator = ".";
  std::string groupSeparator = ",";  ///< between groups of three digits
  int defaultDecimals = 2;           ///< numbers and percentages
  std::string negativeSign = "-";
  std::string currencySymbol = "$";
  int currencyDecimals = 2;
  /// Where symbol and number stand: "¤" is the symbol, "#" the number, "-" the negative sign.
  std::string currencyPositive = "¤#";
  std::string currencyNegative = "-¤#";
  std::string percentPattern = "#%";
  std::string shortDate = "M/d/yyyy";   ///< always with a four-digit year
  std::string longTime = "h:mm:ss AP";  ///< always with seconds, never with a zone
  std::string amText = "AM";
  std::string pmText = "PM";
  std::array<std::string, 7> dayNames;          ///< Sunday first
  std::array<std::string, 7> shortDayNames;     ///< Sunday first
  std::array<std::string, 12> monthNames;       ///< January first
  std::array<std::string, 12> shortMonthNames;  ///< January first

  static RegionalSettings UnitedStates();
};

/// The moment in `pattern` (the pattern letters of `RegionalSettings`); empty for "never".
std::string FormatDateTime(const RegionalSettings& regional, DateTime moment,
                           std::string_view pattern);
std::string FormatShortDate(const RegionalSettings& regional, DateTime moment);
std::string FormatLongTime(const RegionalSettings& regional, DateTime moment);
/// Short date, one blank, long time.
std::string FormatDateAndTime(const RegionalSettings& regional, DateTime moment);
/// Reads what `FormatDateAndTime` writes; nothing when the text is anything else. White space
/// around it, letter case, the kind of a blank (no-break or not) and leading zeros of all but the
/// year do not matter; a missing time means midnight.
std::optional<DateTime> ParseDateAndTime(const RegionalSettings& regional, std::string_view text);

}  // namespace wattlark
