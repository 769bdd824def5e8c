#include "support/DateTime.h"

#include <charconv>

namespace wattlark {

namespace {

constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor) {
  const std::int64_t quotient = value / divisor;
  return value % divisor < 0 ? quotient - 1 : quotient;
}

constexpr std::int64_t FloorRemainder(std::int64_t value, std::int64_t divisor) {
  const std::int64_t remainder = value % divisor;
  return remainder < 0 ? remainder + divisor : remainder;
}

// Years are counted from March, so that the leap day ends the year, in eras of 400 years, after
// which the calendar repeats.
constexpr std::int64_t kDaysOfEra = 146097;
constexpr std::int64_t kEpochFromEraStart = 719468;  // 0000-03-01 to 1970-01-01

constexpr std::int64_t DaysFromDate(std::int64_t year, int month, int day) {
  const std::int64_t marchYear = month <= 2 ? year - 1 : year;
  const std::int64_t era = FloorDivide(marchYear, 400);
  const std::int64_t yearOfEra = marchYear - era * 400;
  const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * kDaysOfEra + dayOfEra - kEpochFromEraStart;
}

struct Date {
  std::int64_t year;
  int month;
  int day;
};

constexpr Date DateFromDays(std::int64_t days) {
  const std::int64_t shifted = days + kEpochFromEraStart;
  const std::int64_t era = FloorDivide(shifted, kDaysOfEra);
  const std::int64_t dayOfEra = shifted - era * kDaysOfEra;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
  const int day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  const int month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

constexpr bool IsLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int DaysOfMonth(int year, int month) {
  if (month == 2) return IsLeapYear(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

constexpr bool IsBetween(int value, int minimum, int maximum) {
  return value >= minimum && value <= maximum;
}

constexpr std::int64_t DayNumber(DateTime moment) {
  return FloorDivide(moment.Milliseconds(), kDay);
}

std::int64_t BoundariesCrossed(DateTime from, DateTime to, std::int64_t unit) {
  return FloorDivide(to.Milliseconds(), unit) - FloorDivide(from.Milliseconds(), unit);
}

bool ReadDigits(std::string_view text, std::size_t position, std::size_t count, int& value) {
  value = 0;
  for (const char c : text.substr(position, count)) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + (c - '0');
  }
  return true;
}

void AppendPadded(std::string& text, int value, std::size_t width) {
  char digits[12];
  const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  const auto length = static_cast<std::size_t>(end - digits);
  if (length < width) text.append(width - length, '0');
  text.append(digits, length);
}

}  // namespace

std::optional<DateTime> DateTime::FromCivil(const CivilTime& civil) {
  if (!IsBetween(civil.year, 1, 9999) || !IsBetween(civil.month, 1, 12) ||
      !IsBetween(civil.day, 1, DaysOfMonth(civil.year, civil.month)) ||
      !IsBetween(civil.hour, 0, 23) || !IsBetween(civil.minute, 0, 59) ||
      !IsBetween(civil.second, 0, 59) || !IsBetween(civil.millisecond, 0, 999)) {
    return std::nullopt;
  }
  return FromMilliseconds(DaysFromDate(civil.year, civil.month, civil.day) * kDay +
                          civil.hour * kHour + civil.minute * kMinute + civil.second * kSecond +
                          civil.millisecond);
}

std::optional<DateTime> DateTime::FromIso(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00.000";
  constexpr std::size_t kLengthWithoutMilliseconds = 19;
  if (text.size() != kForm.size() && text.size() != kLengthWithoutMilliseconds) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kForm[i] != '0' && text[i] != kForm[i]) return std::nullopt;
  }
  CivilTime civil;
  if (!ReadDigits(text, 0, 4, civil.year) || !ReadDigits(text, 5, 2, civil.month) ||
      !ReadDigits(text, 8, 2, civil.day) || !ReadDigits(text, 11, 2, civil.hour) ||
      !ReadDigits(text, 14, 2, civil.minute) || !ReadDigits(text, 17, 2, civil.second)) {
    return std::nullopt;
  }
  if (text.size() == kForm.size() && !ReadDigits(text, 20, 3, civil.millisecond)) {
    return std::nullopt;
  }
  return FromCivil(civil);
}

CivilTime DateTime::Civil() const {
  const Date date = DateFromDays(DayNumber(*this));
  const std::int64_t timeOfDay = FloorRemainder(milliseconds_, kDay);
  CivilTime civil;
  civil.year = static_cast<int>(date.year);
  civil.month = date.month;
  civil.day = date.day;
  civil.hour = static_cast<int>(timeOfDay / kHour);
  civil.minute = static_cast<int>(timeOfDay % kHour / kMinute);
  civil.second = static_cast<int>(timeOfDay % kMinute / kSecond);
  civil.millisecond = static_cast<int>(timeOfDay % kSecond);
  return civil;
}

// 1970-01-01, day 0, was a Thursday.
int DateTime::DayOfWeek() const {
  return static_cast<int>(FloorRemainder(DayNumber(*this) + 4, 7));
}

std::int64_t DateTime::SecondsTo(DateTime later) const {
  return BoundariesCrossed(*this, later, kSecond);
}

std::int64_t DateTime::MinutesTo(DateTime later) const {
  return BoundariesCrossed(*this, later, kMinute);
}

std::int64_t DateTime::HoursTo(DateTime later) const {
  return BoundariesCrossed(*this, later, kHour);
}

std::int64_t DateTime::DaysTo(DateTime later) const {
  return BoundariesCrossed(*this, later, kDay);
}

std::int64_t DateTime::WeeksTo(DateTime later) const {
  return FloorDivide(DayNumber(later) + 4, 7) - FloorDivide(DayNumber(*this) + 4, 7);
}

std::int64_t DateTime::MonthsTo(DateTime later) const {
  const std::int64_t fromDay = DayNumber(*this);
  const std::int64_t toDay = DayNumber(later);
  // Nearly every question is asked of two moments of one day, where no calendar is needed.
  if (fromDay == toDay) return 0;
  const Date from = DateFromDays(fromDay);
  const Date to = DateFromDays(toDay);
  return (to.year - from.year) * 12 + (to.month - from.month);
}

std::int64_t DateTime::YearsTo(DateTime later) const {
  const std::int64_t fromDay = DayNumber(*this);
  const std::int64_t toDay = DayNumber(later);
  if (fromDay == toDay) return 0;
  return DateFromDays(toDay).year - DateFromDays(fromDay).year;
}

DateTime DateTime::StartOfHour() const {
  return IsNever() ? *this : FromMilliseconds(milliseconds_ - FloorRemainder(milliseconds_, kHour));
}

DateTime DateTime::StartOfDay() const {
  return IsNever() ? *this : FromMilliseconds(milliseconds_ - FloorRemainder(milliseconds_, kDay));
}

std::string DateTime::ToIso() const {
  std::string text;
  if (IsNever()) return text;
  const CivilTime civil = Civil();
  AppendPadded(text, civil.year, 4);
  text += '-';
  AppendPadded(text, civil.month, 2);
  text += '-';
  AppendPadded(text, civil.day, 2);
  text += 'T';
  AppendPadded(text, civil.hour, 2);
  text += ':';
  AppendPadded(text, civil.minute, 2);
  text += ':';
  AppendPadded(text, civil.second, 2);
  if (civil.millisecond != 0) {
    text += '.';
    AppendPadded(text, civil.millisecond, 3);
  }
  return text;
}

}  // namespace wattlark
