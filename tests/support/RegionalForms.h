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
  regional.shortDayNames = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
  regional.monthNames = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                         "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
  regional.shortMonthNames = {"Jan", "Feb", "Mär", "Apr", "Mai", "Jun",
                              "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
  return regional;
}

inline RegionalSettings France() {
  RegionalSettings regional = Germany();
  regional.groupSeparator = "\u202F";
  regional.percentPattern = "#\u202F%";
  regional.shortDate = "dd/MM/yyyy";
  regional.dayNames = {"dimanche", "lundi", "mardi", "mercredi", "jeudi", "vendredi", "samedi"};
  regional.shortDayNames = {"dim.", "lun.", "mar.", "mer.", "jeu.", "ven.", "sam."};
  regional.monthNames = {"janvier", "février", "mars",      "avril",   "mai",      "juin",
                         "juillet", "août",    "septembre", "octobre", "novembre", "décembre"};
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
