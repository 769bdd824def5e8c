// A meter while the clock does what clocks do: daylight time, steps, leap days,
// year ends, a start without a clock, sleep, and a tick count that wraps.

#include <limits>

#include "acquisition/clsKillAWatt.h"
#include "sim/Random.h"
#include "torture/Torture.h"
#include "torture/core/ReferenceMeter.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

constexpr std::int64_t kUpperLimit = 500;  // W
constexpr std::int64_t kLongestStep = std::int64_t{20} * 86'400'000;
constexpr const char* kBegin = "2026-11-16T20:10:00";

bool IsSame(double a, double b) {
  return a == b || std::fabs(a - b) <= 1e-9 * std::max(std::fabs(a), std::fabs(b));
}

/// A meter beside its reference.
class Household {
 public:
  Household(DateTime now, std::int64_t ticks, Torture& torture)
      : torture_(torture), now_(now), ticks_(ticks) {
    meter_.Alarm().SetAlarmActive(true);
  }

  DateTime Now() const { return now_; }
  /// The user, the network or the zone sets the clock.
  void SetClock(DateTime now) { now_ = now; }
  /// Time passes by both clocks, and a reading comes. Steps longer than half the tick count's range
  /// are made of several.
  void Pass(std::int64_t milliseconds) {
    while (milliseconds > kLongestStep) {
      Advance(kLongestStep, kLongestStep);
      milliseconds -= kLongestStep;
    }
    Advance(milliseconds, milliseconds);
  }
  void PassEach(std::int64_t milliseconds, int times) {
    for (int i = 0; i < times; ++i) Pass(milliseconds);
  }
  /// As `Pass`, with the share of it that each clock shows.
  void Advance(std::int64_t ofClock, std::int64_t ofTicks) {
    now_ = now_.PlusMilliseconds(ofClock);
    ticks_ += ofTicks;
    const std::int64_t watts = 100 + (++readings_ * 37) % 900;
    // The fault: a count that stops at its end, where the real one starts again from 0.
    const auto shown = static_cast<std::uint32_t>(
        torture_.isBroken
            ? std::min<std::int64_t>(ticks_, std::numeric_limits<std::uint32_t>::max())
            : ticks_);
    meter_.AddReading(120, 4, static_cast<double>(watts), now_, shown);
    const bool isFirst = readings_ == 1;
    reference_.Add(watts, now_, isFirst ? std::nullopt : std::optional(ofTicks), kUpperLimit);
    Compare();
  }

 private:
  void Compare() {
    const MeterStatistics& statistics = meter_.Statistics();
    const double energy = statistics.Usage(ToDate) * 3600000;
    Expect(IsSame(energy, static_cast<double>(reference_.wattMilliseconds)),
           "the energy is not that of the ticks");
    for (std::size_t i = 0; i < PeriodCount; ++i) {
      const int period = static_cast<int>(i);
      const DateTime time = statistics.PeakTime(period);
      const auto expected = reference_.peakTime[i];
      const bool isSame =
          IsSame(statistics.Usage(period), reference_.usage[i]) &&
          statistics.Peak(period) == reference_.peak[i] &&
          time.IsNever() == !expected.has_value() &&
          (!expected || time.Milliseconds() == expected->time_since_epoch().count());
      Expect(isSame, "a period is off", i);
    }
    for (std::size_t i = 0; i < IntervalCount; ++i) {
      const int interval = static_cast<int>(i);
      const bool isSame =
          std::ranges::equal(statistics.DemandRecent(interval), reference_.demand[i].entries,
                             IsSame) &&
          std::ranges::equal(statistics.UsageRecent(interval), reference_.used[i].entries, IsSame);
      Expect(isSame, "a series is off", i);
    }
    const std::int64_t most = std::numeric_limits<std::int32_t>::max();
    Expect(meter_.Alarm().OutOfRangeSeconds() == std::min(most, reference_.outOfRange) &&
               meter_.Alarm().IntervalSeconds() == std::min(most, reference_.sinceNotice),
           "the alarm's counters are off");
  }

  void Expect(bool holds, const char* fault, std::size_t which = 0) {
    torture_.Expect(
        holds, [&] { return now_.ToIso() + ": " + fault + " (" + std::to_string(which) + ")"; });
  }

  Torture& torture_;
  DateTime now_;
  std::int64_t ticks_;
  std::int64_t readings_ = 0;
  clsKillAWatt meter_;
  ReferenceMeter reference_;
};

// ---- what clocks do ----

void Steps(Torture& torture) {
  constexpr std::int64_t kDay = 86'400;
  // Seconds; those that daylight time takes are among them, and the last one is from the start of
  // all clocks to the present.
  const std::int64_t steps[] = {
      1,        2,        3,         4,         5,          59,         60,         61,
      1800,     3599,     3600,      3601,      7200,       kDay / 2,   kDay - 1,   kDay,
      kDay + 1, 7 * kDay, 30 * kDay, 31 * kDay, 365 * kDay, 366 * kDay, 400 * kDay, 20'773 * kDay};
  for (const char* begin :
       {kBegin, "2026-11-14T23:59:30", "2026-11-30T23:59:30", "2026-12-31T23:59:30",
        "2028-02-28T23:59:30", "2028-02-29T23:59:30", "2100-02-28T23:59:30", "1970-01-01T00:00:00",
        "2026-11-16T20:59:59", "2026-03-29T01:59:30", "2026-10-25T02:59:30"}) {
    for (const std::int64_t step : steps) {
      for (const std::int64_t seconds : {step, -step}) {
        Household household(At(begin), 1000, torture);
        household.PassEach(2000, 20);
        household.SetClock(household.Now().PlusSeconds(seconds));
        household.PassEach(2000, 90);
        household.SetClock(household.Now().PlusSeconds(-seconds));
        household.PassEach(2000, 90);
      }
    }
  }
}

void SleepAndWrap(Torture& torture) {
  constexpr std::int64_t kNight = std::int64_t{8} * 3'600'000;
  constexpr std::int64_t kWrap = std::int64_t{1} << 32;
  for (const std::int64_t ticks : {std::int64_t{0}, std::int64_t{1000}, kWrap - 60'000,
                                   kWrap / 2 - 60'000, kWrap - kNight / 2, kWrap - 3000}) {
    for (const std::int64_t counted : {kNight, std::int64_t{2000}}) {
      Household household(At("2026-11-16T23:00:00"), ticks, torture);
      household.PassEach(2000, 60);
      household.Advance(kNight, counted);  // the count goes on in sleep, or stands still
      household.PassEach(2000, 200);
    }
  }
}

void LeapDaysAndYearEnds(Torture& torture) {
  Household household(At("1970-01-01T00:00:00"), 1000, torture);
  for (int year = 1970; year <= (torture.isLong ? 2110 : 2036); ++year) {
    for (const CivilTime& day : {CivilTime{.year = year, .month = 3, .day = 1},
                                 CivilTime{.year = year + 1, .month = 1, .day = 1}}) {
      const DateTime midnight = *DateTime::FromCivil(day);
      household.Pass(midnight.PlusDays(-2).Milliseconds() - household.Now().Milliseconds());
      household.PassEach(3'600'000, 47);
      household.PassEach(60'000, 58);
      household.PassEach(2000, 90);
    }
  }
}

void RandomSteps(Torture& torture) {
  Random random(8);
  Household household(At(kBegin), 1000, torture);
  for (int i = torture.isLong ? 3'000'000 : 30'000; i > 0; --i) {
    household.Pass(random.Chance(0.99) ? 500 + random.Below(3000) : random.Below(100'000'000));
    if (!random.Chance(0.01)) continue;
    const double size = std::pow(400.0 * 86'400'000, random.Uniform());
    const auto step = static_cast<std::int64_t>(random.Chance(0.5) ? size : -size);
    const DateTime now = household.Now().PlusMilliseconds(step);
    const int year = now.Civil().year;
    household.SetClock(year < 1970 || year > 2200 ? At(kBegin) : now);
  }
}

}  // namespace

void Run(Torture& torture) {
  Steps(torture);
  SleepAndWrap(torture);
  LeapDaysAndYearEnds(torture);
  RandomSteps(torture);
}

}  // namespace wattlark
