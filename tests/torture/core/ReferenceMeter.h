#pragma once

#include <chrono>
#include <deque>

#include "acquisition/MeterStatistics.h"

namespace wattlark {

/// The rules of a meter's statistics and alarm counters in their plainest form, over the standard
/// library's calendar: everything is shifted entry by entry and summed anew.
class ReferenceMeter {
 public:
  using Local = std::chrono::local_time<std::chrono::milliseconds>;

  struct Series {
    explicit Series(int length) : entries(static_cast<std::size_t>(length), NoValue) {}
    std::deque<double> entries;

    void Push(double value) {
      entries.pop_front();
      entries.push_back(value);
    }
    double Mean() const {
      double sum = 0;
      int count = 0;
      for (const double entry : entries) {
        if (entry == NoValue) continue;
        sum += entry;
        ++count;
      }
      return count == 0 ? NoValue : sum / count;
    }
  };

  std::array<double, PeriodCount> usage{};
  std::array<double, PeriodCount> peak{};
  std::array<std::optional<Local>, PeriodCount> peakTime{};
  std::array<Series, IntervalCount> demand{Series(60), Series(60), Series(24),
                                           Series(7),  Series(31), Series(12)};
  std::array<Series, IntervalCount> used{Series(60), Series(60), Series(24),
                                         Series(7),  Series(31), Series(12)};
  std::int64_t outOfRange = 0;
  std::int64_t sinceNotice = 600;
  /// Energy in W ms, exact for whole watts.
  std::int64_t wattMilliseconds = 0;

  /// `milliseconds` since the last reading by a count that never wraps; nothing for the first.
  void Add(std::int64_t watts, DateTime moment, std::optional<std::int64_t> milliseconds,
           std::int64_t upperLimit) {
    const Local now{std::chrono::milliseconds(moment.Milliseconds())};
    const std::int64_t counted = milliseconds.value_or(0);
    wattMilliseconds += counted * watts;
    const double energy = static_cast<double>(counted * watts) / 3600000;
    for (std::size_t i = Today; i < PeriodCount; ++i) {
      usage[i] += energy;
      if (!peakTime[i] || static_cast<double>(watts) > peak[i]) {
        peak[i] = static_cast<double>(watts);
        peakTime[i] = now;
      }
    }
    if (last_) {
      Recent(static_cast<double>(watts), energy, now);
      RollOver(now);
      const std::int64_t seconds = std::max<std::int64_t>(0, Count<std::chrono::seconds>(now));
      outOfRange = watts > upperLimit ? outOfRange + seconds : 0;
      sinceNotice += seconds;
    }
    last_ = now;
  }

 private:
  template <typename Unit>
  std::int64_t Count(Local now) const {
    return (std::chrono::floor<Unit>(now) - std::chrono::floor<Unit>(*last_)).count();
  }
  static std::chrono::year_month_day Date(Local moment) {
    return std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(moment));
  }
  std::int64_t Months(Local now) const {
    const auto from = Date(*last_);
    const auto to = Date(now);
    return (to.year() / to.month() - from.year() / from.month()).count();
  }
  /// The Sunday before or at a moment.
  static std::chrono::local_days WeekStart(Local moment) {
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    return day - (std::chrono::weekday(day) - std::chrono::Sunday);
  }

  void Advance(Interval interval, std::int64_t count) {
    if (count <= 0) return;
    const auto length = static_cast<std::int64_t>(used[interval].entries.size());
    for (std::int64_t i = 0; i < std::min(count, length); ++i) {
      demand[interval].Push(NoValue);
      used[interval].Push(NoValue);
    }
    used[interval].entries.back() = 0;
  }
  void Enter(Interval interval, const Series& finer, double energy) {
    double& entry = used[interval].entries.back();
    entry = entry == NoValue ? energy : entry + energy;
    demand[interval].entries.back() = finer.Mean();
  }

  void Recent(double watts, double energy, Local now) {
    const std::int64_t seconds = Count<std::chrono::seconds>(now);
    for (std::int64_t i = 0; i < std::min<std::int64_t>(seconds, 60); ++i) {
      const bool isData = seconds <= 4 || i == std::min<std::int64_t>(seconds, 60) - 1;
      demand[Minute].Push(isData ? watts : NoValue);
      used[Minute].Push(isData ? energy : NoValue);
    }
    Advance(Hour, Count<std::chrono::minutes>(now));
    Enter(Hour, demand[Minute], energy);
    Advance(Day, Count<std::chrono::hours>(now));
    Enter(Day, demand[Hour], energy);
    const std::int64_t days = Count<std::chrono::days>(now);
    Advance(Week, days);
    Enter(Week, demand[Day], energy);
    Advance(Month, days);
    used[Month].entries.back() = used[Week].entries.back();
    demand[Month].entries.back() = demand[Week].entries.back();
    Advance(Year, Months(now));
    Enter(Year, demand[Month], energy);
  }

  void Clear(std::size_t period) {
    usage[period] = 0;
    peak[period] = 0;
    peakTime[period].reset();
  }

  void RollOver(Local now) {
    const std::int64_t days = Count<std::chrono::days>(now);
    if (days == 1) {
      usage[Yesterday] = usage[Today];
      peak[Yesterday] = peak[Today];
      peakTime[Yesterday] = peakTime[Today];
    } else if (days != 0) {
      usage[Yesterday] = peak[Yesterday] = NoValue;
      peakTime[Yesterday].reset();
    }
    if (days != 0) Clear(Today);
    if (WeekStart(now) != WeekStart(*last_)) Clear(ThisWeek);
    if (Months(now) != 0) Clear(ThisMonth);
    if (Date(now).year() != Date(*last_).year()) Clear(ThisYear);
  }

  std::optional<Local> last_;
};

}  // namespace wattlark
