#pragma once

#include "support/RegionalSettings.h"

namespace wattlark {

inline RegionalSettings Germany() {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.decimalSeparator = ",";
  regional.groupSeparator = ".";
  regional.currencySymbol = "€";
  regional.currencyPositive = "#\u00A0¤";
  regional.currencyNegative = "-#\u00A0¤";
  regional.percentPattern = "#\u00A0%";
  regional.shortDate = "dd.MM.yyyy";
  regional.longTime = "HH:mm:ss";
  regional.dayNames = {"Sonntag",    "Montag",  "Dienstag", "Mittwoch",
                       "Donnerstag", "Freitag", "Samstag"};
  return regional;
}

inline RegionalSettings France() {
  RegionalSettings regional = Germany();
  regional.groupSeparator = "\u202F";
  regional.percentPattern = "#\u202F%";
  regional.shortDate = "dd/MM/yyyy";
  regional.shortMonthNames = {"janv.", "févr.", "mars",  "avr.", "mai",  "juin",
                              "juil.", "août",  "sept.", "oct.", "nov.", "déc."};
  return regional;
}

/// A negative sign of its own.
inline RegionalSettings Sweden() {
  RegionalSettings regional = France();
  regional.negativeSign = "\u2212";
  regional.currencySymbol = "kr";
  return regional;
}

inline RegionalSettings WithParentheses() {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.currencyNegative = "(¤#)";
  regional.percentPattern = "%#";
  return regional;
}

/// The United States form with other date and time patterns and half-day texts.
inline RegionalSettings WithPatterns(const char* shortDate, const char* longTime,
                                     const char* amText = "AM", const char* pmText = "PM") {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.shortDate = shortDate;
  regional.longTime = longTime;
  regional.amText = amText;
  regional.pmText = pmText;
  return regional;
}

}  // namespace wattlark
