#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "support/DateTime.h"
#include "support/NoValue.h"
#include "support/modSeries.h"

namespace wattlark {

enum Period {
  Yesterday,
  Today,
  ThisWeek,
  ThisMonth,
  ThisYear,
  ToDate,
  SinceReset,
};
inline constexpr int PeriodCount = 7;

enum Interval { Minute, Hour, Day, Week, Month, Year };
inline constexpr int IntervalCount = 6;
/// Entries of one series: seconds, minutes, hours, days, days, months.
inline constexpr std::array<int, IntervalCount> IntervalLength{60, 60, 24, 7, 31, 12};

/// One set of rolling series, an array of doubles for every interval; index 0 is the oldest entry,
/// the last index the newest.
class RecentSeries {
 public:
  RecentSeries() { values_.fill(NoValue); }
  /// Throws std::out_of_range for an interval outside 0..5.
  std::span<double> operator[](int interval);
  std::span<const double> operator[](int interval) const;
  std::span<double> All() { return values_; }

 private:
  std::array<double, 60 + 60 + 24 + 7 + 31 + 12> values_;
};

/// Energy and peak demand of the calendar periods and the rolling series of one meter. Demand is in
/// watts, usage in watt-hours, times are local.
///
/// A reading that is older than the last one (clock set back, end of daylight time) shifts nothing
/// and takes nothing from a counter; its energy reaches the newest entries and its time is stored.
class MeterStatistics {
 public:
  /// Adds a reading of `watts` at `time`; `ticks` is the millisecond tick count. The energy is the
  /// signed 32-bit tick difference to the previous reading, when positive, at this reading's power;
  /// the first reading after start adds none. It is credited to the periods that are current before
  /// `time` is applied. Answers the whole seconds since the previous reading (0 for the first one
  /// and for an older one).
  std::int64_t AddReading(double watts, DateTime time, std::uint32_t ticks);

  DateTime Timestamp() const { return timestamp_; }
  /// Rolls the periods over by the calendar boundaries between the present timestamp and `time`,
  /// and stores it; only stores while either is "never".
  void SetTimestamp(DateTime time);

  double Usage(int period) const { return usage_.at(Checked(period)); }
  double Peak(int period) const { return peak_.at(Checked(period)); }
  DateTime PeakTime(int period) const { return peakTime_.at(Checked(period)); }
  void SetUsage(int period, double wattHours) { usage_.at(Checked(period)) = wattHours; }
  void SetPeak(int period, double watts) { peak_.at(Checked(period)) = watts; }
  void SetPeakTime(int period, DateTime time) { peakTime_.at(Checked(period)) = time; }

  std::span<const double> DemandRecent(int interval) const { return demand_[interval]; }
  std::span<const double> UsageRecent(int interval) const { return usageRecent_[interval]; }
  /// The series itself, for loading; not to be kept.
  std::span<double> DemandRecent(int interval) {
    older_ = {};
    return demand_[interval];
  }
  std::span<double> UsageRecent(int interval) { return usageRecent_[interval]; }
  /// Copies `values` from index 0; surplus ones are ignored, entries not covered keep their values.
  void SetDemandRecent(int interval, std::span<const double> values);
  void SetUsageRecent(int interval, std::span<const double> values);

  /// Mean demand of the last `seconds` (at least 1), from the series that covers them: up to a
  /// minute, an hour, a day; 0 for more than a day; `NoValue` without data.
  double AverageDemand(std::int32_t seconds) const;

  void ResetStatistics();
  void ResetPeak() { peak_[SinceReset] = 0; }
  void ResetUsage() { usage_[SinceReset] = 0; }

 private:
  static std::size_t Checked(int period) { return static_cast<std::size_t>(period); }
  void UpdateRecent(double watts, double energy, DateTime time);
  void Advance(Interval interval, std::int64_t n);
  double MeanDemand(Interval interval);
  void ClearPeriod(Period period);

  std::array<double, PeriodCount> usage_{};
  std::array<double, PeriodCount> peak_{};
  std::array<DateTime, PeriodCount> peakTime_{};
  RecentSeries demand_;
  RecentSeries usageRecent_;
  /// Of each demand series all entries but the newest, where they were summed since they last
  /// changed.
  std::array<std::optional<SeriesSum>, IntervalCount> older_;
  DateTime timestamp_;
  std::uint32_t lastTicks_ = 0;
  bool hasLastTicks_ = false;
};

}  // namespace wattlark
