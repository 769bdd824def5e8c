#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wattlark {

/// A civil date and time of day, as the wall clock shows it.
struct CivilTime {
  int year = 1970;
  int month = 1;  ///< 1..12
  int day = 1;    ///< 1..31
  int hour = 0;   ///< 0..23
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// A local date-time with milliseconds, without a zone. The default-constructed one is "never".
///
/// The differences (`SecondsTo` and so on) count boundaries crossed: 10:00:00.999 to 10:00:01.000
/// is one second, 23:59 to 00:01 is one day, a Sunday midnight is one week. They are negative when
/// `later` lies before this time, and must not be asked of "never".
class DateTime {
 public:
  constexpr DateTime() = default;

  /// The given moment; nothing when a field is out of range or the date does not exist
  /// (years 1 to 9999).
  static std::optional<DateTime> FromCivil(const CivilTime& civil);
  /// `milliseconds` since 1970-01-01 00:00:00 of the local calendar; any value.
  static constexpr DateTime FromMilliseconds(std::int64_t milliseconds) {
    DateTime result;
    result.milliseconds_ = milliseconds;
    return result;
  }
  /// Reads "YYYY-MM-DDTHH:MM:SS" with an optional ".mmm"; nothing when the text has another form.
  static std::optional<DateTime> FromIso(std::string_view text);

  constexpr bool IsNever() const { return milliseconds_ == kNever; }
  constexpr std::int64_t Milliseconds() const { return milliseconds_; }

  CivilTime Civil() const;
  int DayOfWeek() const;  ///< 0 = Sunday .. 6 = Saturday

  std::int64_t SecondsTo(DateTime later) const;
  std::int64_t MinutesTo(DateTime later) const;
  std::int64_t HoursTo(DateTime later) const;
  std::int64_t DaysTo(DateTime later) const;
  std::int64_t WeeksTo(DateTime later) const;  ///< Sundays crossed
  std::int64_t MonthsTo(DateTime later) const;
  std::int64_t YearsTo(DateTime later) const;

  DateTime PlusMilliseconds(std::int64_t n) const { return FromMilliseconds(milliseconds_ + n); }
  DateTime PlusSeconds(std::int64_t n) const { return PlusMilliseconds(n * 1000); }
  DateTime PlusMinutes(std::int64_t n) const { return PlusSeconds(n * 60); }
  DateTime PlusHours(std::int64_t n) const { return PlusSeconds(n * 3600); }
  DateTime PlusDays(std::int64_t n) const { return PlusSeconds(n * 86400); }

  DateTime StartOfHour() const;
  DateTime StartOfDay() const;

  /// "YYYY-MM-DDTHH:MM:SS", with ".mmm" when the milliseconds are not 0; empty for "never".
  std::string ToIso() const;

  friend constexpr auto operator<=>(DateTime, DateTime) = default;

 private:
  static constexpr std::int64_t kNever = INT64_MIN;
  std::int64_t milliseconds_ = kNever;
};

}  // namespace wattlark
