#include "acquisition/MeterStatistics.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "support/modSeries.h"

namespace wattlark {

namespace {

constexpr std::array<std::size_t, IntervalCount> kStart{0, 60, 120, 144, 151, 182};
constexpr double kMillisecondsPerHour = 3600000;
// A gap of up to so many seconds repeats the reading into every second that was skipped.
constexpr std::int64_t kRepeatedSeconds = 4;

void AddTo(double& entry, double energy) {
  entry = HasValue(entry) ? entry + energy : energy;
}

void CopyInto(std::span<double> series, std::span<const double> values) {
  std::copy_n(values.begin(), std::min(series.size(), values.size()), series.begin());
}

}  // namespace

std::span<double> RecentSeries::operator[](int interval) {
  const auto index = static_cast<std::size_t>(interval);
  if (index >= kStart.size()) throw std::out_of_range("interval");
  return std::span(values_).subspan(kStart[index], static_cast<std::size_t>(IntervalLength[index]));
}

std::span<const double> RecentSeries::operator[](int interval) const {
  return const_cast<RecentSeries&>(*this)[interval];
}

std::int64_t MeterStatistics::AddReading(double watts, DateTime time, std::uint32_t ticks) {
  const std::int64_t seconds =
      timestamp_.IsNever() ? 0 : std::max<std::int64_t>(0, timestamp_.SecondsTo(time));
  double energy = 0;
  if (hasLastTicks_) {
    const auto milliseconds = static_cast<std::int32_t>(ticks - lastTicks_);
    if (milliseconds > 0) energy = milliseconds / kMillisecondsPerHour * watts;
  }
  // A tick count of 0 stands for "none" at the start, but is an ordinary count when it wraps.
  hasLastTicks_ = hasLastTicks_ || ticks != 0;
  lastTicks_ = ticks;

  for (int period = Today; period < PeriodCount; ++period) {
    const auto i = static_cast<std::size_t>(period);
    AddTo(usage_[i], energy);
    if (peakTime_[i].IsNever() || watts > peak_[i]) {
      peak_[i] = watts;
      peakTime_[i] = time;
    }
  }
  if (!timestamp_.IsNever()) UpdateRecent(watts, energy, time);
  SetTimestamp(time);
  return seconds;
}

void MeterStatistics::UpdateRecent(double watts, double energy, DateTime time) {
  const std::int64_t seconds = timestamp_.SecondsTo(time);
  // A boundary of a longer unit is one of every shorter unit too; most readings cross none.
  const std::int64_t minutes = timestamp_.MinutesTo(time);
  const std::int64_t hours = minutes == 0 ? 0 : timestamp_.HoursTo(time);
  const std::int64_t days = hours == 0 ? 0 : timestamp_.DaysTo(time);
  const std::int64_t months = days == 0 ? 0 : timestamp_.MonthsTo(time);
  if (seconds <= kRepeatedSeconds) {
    ShiftSeries(usageRecent_[Minute], seconds, energy);
    ShiftSeries(demand_[Minute], seconds, watts);
  } else {
    ShiftSeries(usageRecent_[Minute], seconds, NoValue);
    ShiftSeries(demand_[Minute], seconds, NoValue);
    usageRecent_[Minute].back() = energy;
    demand_[Minute].back() = watts;
  }

  Advance(Hour, minutes);
  AddTo(usageRecent_[Hour].back(), energy);
  demand_[Hour].back() = AverageSeries(demand_[Minute]);

  Advance(Day, hours);
  AddTo(usageRecent_[Day].back(), energy);
  demand_[Day].back() = MeanDemand(Hour);

  Advance(Month, days);
  Advance(Week, days);
  AddTo(usageRecent_[Week].back(), energy);
  demand_[Week].back() = MeanDemand(Day);
  usageRecent_[Month].back() = usageRecent_[Week].back();
  demand_[Month].back() = demand_[Week].back();

  Advance(Year, months);
  AddTo(usageRecent_[Year].back(), energy);
  demand_[Year].back() = MeanDemand(Month);
}

// Makes room for `n` new entries of a coarser series; the newest then counts energy from 0.
void MeterStatistics::Advance(Interval interval, std::int64_t n) {
  if (n <= 0) return;
  ShiftSeries(usageRecent_[interval], n, NoValue);
  ShiftSeries(demand_[interval], n, NoValue);
  usageRecent_[interval].back() = 0;
  older_[interval].reset();
}

// The mean of a coarser series: of its entries, only the newest changes with most readings.
double MeterStatistics::MeanDemand(Interval interval) {
  const std::span<const double> series = demand_[interval];
  std::optional<SeriesSum>& older = older_[interval];
  if (!older) older = SumSeries(series.first(series.size() - 1));
  const double newest = series.back();
  if (!HasValue(newest)) return AverageSeries(series);
  const double mean = (older->sum + newest) / static_cast<double>(older->count + 1);
  return std::isfinite(mean) ? mean : AverageSeries(series);
}

void MeterStatistics::SetTimestamp(DateTime time) {
  if (!time.IsNever() && !timestamp_.IsNever()) {
    const std::int64_t days = timestamp_.DaysTo(time);
    if (days != 0) {
      if (days == 1) {
        usage_[Yesterday] = usage_[Today];
        peak_[Yesterday] = peak_[Today];
        peakTime_[Yesterday] = peakTime_[Today];
      } else {
        usage_[Yesterday] = NoValue;
        peak_[Yesterday] = NoValue;
        peakTime_[Yesterday] = DateTime();
      }
      ClearPeriod(Today);
      if (timestamp_.WeeksTo(time) != 0) ClearPeriod(ThisWeek);
      if (timestamp_.MonthsTo(time) != 0) ClearPeriod(ThisMonth);
      if (timestamp_.YearsTo(time) != 0) ClearPeriod(ThisYear);
    }
  }
  timestamp_ = time;
}

void MeterStatistics::ClearPeriod(Period period) {
  usage_[period] = 0;
  peak_[period] = 0;
  peakTime_[period] = DateTime();
}

void MeterStatistics::SetDemandRecent(int interval, std::span<const double> values) {
  CopyInto(DemandRecent(interval), values);
}

void MeterStatistics::SetUsageRecent(int interval, std::span<const double> values) {
  CopyInto(usageRecent_[interval], values);
}

double MeterStatistics::AverageDemand(std::int32_t seconds) const {
  const auto newest = [this](Interval interval, std::int32_t count) {
    return AverageSeries(
        demand_[interval].last(static_cast<std::size_t>(std::max<std::int32_t>(1, count))));
  };
  if (seconds <= 60) return newest(Minute, seconds);
  if (seconds <= 3600) return newest(Hour, seconds / 60);
  if (seconds <= 86400) return newest(Day, seconds / 3600);
  return 0;
}

void MeterStatistics::ResetStatistics() {
  demand_ = RecentSeries();
  usageRecent_ = RecentSeries();
  older_ = {};
  usage_.fill(0);
  peak_.fill(0);
  peakTime_.fill(DateTime());
}

}  // namespace wattlark
