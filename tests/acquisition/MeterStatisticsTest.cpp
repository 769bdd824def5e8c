#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <utility>

#include "acquisition/MeterStatistics.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::_;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr double None = NoValue;

std::vector<double> NewestEntries(std::span<const double> series, std::size_t count) {
  return {series.end() - static_cast<std::ptrdiff_t>(count), series.end()};
}

std::vector<double> NewestDemand(const MeterStatistics& meter, int interval,
                                 std::size_t count = 1) {
  return NewestEntries(meter.DemandRecent(interval), count);
}

std::vector<double> NewestUsages(const MeterStatistics& meter, int interval,
                                 std::size_t count = 1) {
  return NewestEntries(meter.UsageRecent(interval), count);
}

double NewestUsage(const MeterStatistics& meter, int interval) {
  return meter.UsageRecent(interval).back();
}

void ExpectNoSeries(const MeterStatistics& meter) {
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_THAT(meter.DemandRecent(i), Each(None));
    EXPECT_THAT(meter.UsageRecent(i), Each(None));
  }
}

void ExpectNoPeriods(const MeterStatistics& meter) {
  for (int i = 0; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 0);
    EXPECT_TRUE(meter.PeakTime(i).IsNever());
  }
}

/// A meter whose last reading was at `time` and tick 1000, with 100 in every entry of every series
/// and 10, 20 .. 70 as usage and peak of the periods.
MeterStatistics FullMeter(const char* time) {
  MeterStatistics meter;
  meter.AddReading(5, At(time), 1000);
  const std::vector<double> hundreds(60, 100.0);
  for (int i = 0; i < IntervalCount; ++i) {
    meter.SetDemandRecent(i, hundreds);
    meter.SetUsageRecent(i, hundreds);
  }
  for (int i = 0; i < PeriodCount; ++i) {
    meter.SetUsage(i, 10 * (i + 1));
    meter.SetPeak(i, 10 * (i + 1));
    meter.SetPeakTime(i, At("2000-01-01T00:00:00"));
  }
  return meter;
}

TEST(MeterStatistics, HasSeriesOfTheirLengthsWithoutValues) {
  const MeterStatistics meter;
  const std::size_t lengths[] = {60, 60, 24, 7, 31, 12};
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_EQ(meter.DemandRecent(i).size(), lengths[i]);
    EXPECT_EQ(meter.UsageRecent(i).size(), lengths[i]);
  }
  ExpectNoSeries(meter);
  ExpectNoPeriods(meter);
  EXPECT_TRUE(meter.Timestamp().IsNever());
  for (const int index : {-1, 7}) EXPECT_THROW(meter.Usage(index), std::out_of_range);
  for (const int index : {-1, 6}) EXPECT_THROW(meter.DemandRecent(index), std::out_of_range);
}

TEST(MeterStatistics, FirstReadingSetsTimeAndPeaksAlone) {
  MeterStatistics meter;
  EXPECT_EQ(meter.AddReading(450, At("2026-11-16T20:10:00"), 1000), 0);
  EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00"));
  EXPECT_EQ(meter.Peak(Yesterday), 0);
  for (int i = Today; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 450);
    EXPECT_EQ(meter.PeakTime(i), At("2026-11-16T20:10:00"));
  }
  ExpectNoSeries(meter);
}

TEST(MeterStatistics, TakesEnergyFromTicksAtTheNewPower) {
  struct Row {
    const char* what;
    std::uint32_t before, after;
    double milliseconds;
  };
  for (const auto& test : {Row{"an hour", 1000, 3601000, 3600000}, Row{"none", 1000, 1000, 0},
                           Row{"wrap", 0xFFFFFC18, 1000, 2000}, Row{"backwards", 3000, 1000, 0},
                           Row{"the longest interval", 1000, 1000 + 0x7FFFFFFFU, 2147483647},
                           Row{"half the count is backwards", 1000, 1000 + 0x80000000U, 0},
                           Row{"no ticks yet", 0, 5000, 0}}) {
    SCOPED_TRACE(test.what);
    MeterStatistics meter;
    meter.AddReading(1000, At("2026-11-16T20:10:00"), test.before);
    meter.AddReading(36, At("2026-11-16T20:10:02"), test.after);
    const double energy = test.milliseconds / 100000;  // 36 W for 1/3600000 h a millisecond
    for (int i = Today; i < PeriodCount; ++i) {
      EXPECT_NEAR(meter.Usage(i), energy, 1e-9 * (1 + energy));
    }
    EXPECT_EQ(meter.Usage(Yesterday), 0);
    for (const int i : {Hour, Day, Week, Month, Year}) {
      EXPECT_NEAR(NewestUsage(meter, i), energy, 1e-9 * (1 + energy));
    }
  }
  // No energy is lost where the ticks wrap onto 0, or after they went backwards.
  MeterStatistics meter;
  for (const std::uint32_t ticks : {0xFFFFFFFFU, 0U, 2000U, 500U, 1500U}) {
    meter.AddReading(36, At("2026-11-16T20:10:00"), ticks);
  }
  EXPECT_NEAR(meter.Usage(Today), 3001 / 100000.0, 1e-12);
}

TEST(MeterStatistics, KeepsTheHighestReadingAndItsTime) {
  MeterStatistics meter;
  using Row = std::pair<double, const char*>;
  for (const auto& [watts, time] :
       {Row{100, "2026-11-16T20:10:00"}, Row{300, "2026-11-16T20:10:01"},
        Row{300, "2026-11-16T20:10:02"}, Row{200, "2026-11-16T20:10:03"}}) {
    meter.AddReading(watts, At(time), 0);
  }
  EXPECT_EQ(meter.Peak(ToDate), 300);
  EXPECT_EQ(meter.PeakTime(ToDate), At("2026-11-16T20:10:01"));
  meter.ResetPeak();
  EXPECT_EQ(meter.Peak(SinceReset), 0);
  EXPECT_EQ(meter.PeakTime(SinceReset), At("2026-11-16T20:10:01")) << "kept until the next one";
  meter.AddReading(0, At("2026-11-16T20:10:04"), 0);
  EXPECT_EQ(meter.PeakTime(SinceReset), At("2026-11-16T20:10:01")) << "0 W is no peak";
  meter.AddReading(50, At("2026-11-16T20:10:05"), 0);
  EXPECT_EQ(meter.Peak(SinceReset), 50);
  EXPECT_EQ(meter.PeakTime(SinceReset), At("2026-11-16T20:10:05"));
  EXPECT_EQ(meter.Peak(ToDate), 300);
  // The Total of generators alone is negative; its first reading is its peak all the same.
  MeterStatistics total;
  total.AddReading(-200, At("2026-11-16T20:10:00"), 0);
  EXPECT_EQ(total.Peak(Today), -200);
}

TEST(MeterStatistics, RepeatsAReadingIntoShortGaps) {
  MeterStatistics meter;
  meter.AddReading(36, At("2026-11-16T20:10:00"), 1000);
  meter.AddReading(36, At("2026-11-16T20:10:02"), 3000);
  meter.AddReading(72, At("2026-11-16T20:10:04"), 5000);
  EXPECT_THAT(NewestDemand(meter, Minute, 5), ElementsAre(None, 36, 36, 72, 72));
  EXPECT_THAT(NewestUsages(meter, Minute, 5), ElementsAre(None, 0.02, 0.02, 0.04, 0.04));
  EXPECT_NEAR(NewestUsage(meter, Hour), 0.06, 1e-12) << "the energy itself only once a reading";
  EXPECT_EQ(NewestDemand(meter, Hour).back(), 54);
  EXPECT_EQ(NewestDemand(meter, Day).back(), 54);
  EXPECT_EQ(NewestDemand(meter, Year).back(), 54);
  // Into one of four seconds, but not into one of five; longer ones leave gaps in every series.
  meter.AddReading(10, At("2026-11-16T20:10:08"), 9000);
  EXPECT_THAT(NewestDemand(meter, Minute, 5), ElementsAre(72, 10, 10, 10, 10));
  meter.AddReading(20, At("2026-11-16T20:10:13"), 14000);
  EXPECT_THAT(NewestDemand(meter, Minute, 6), ElementsAre(10, None, None, None, None, 20));
  meter.AddReading(30, At("2026-11-18T23:12:00"), 24000);
  EXPECT_THAT(NewestDemand(meter, Minute, 3), ElementsAre(None, None, 30));
  EXPECT_THAT(NewestDemand(meter, Day, 3), ElementsAre(None, None, 30));
  EXPECT_THAT(NewestDemand(meter, Month, 3), ElementsAre(_, None, 30));
}

TEST(MeterStatistics, ASecondReadingWithinASecondLeavesTheMinuteAlone) {
  MeterStatistics meter;
  meter.AddReading(36, At("2026-11-16T20:10:00"), 1000);
  meter.AddReading(36, At("2026-11-16T20:10:01.100"), 2100);
  const std::vector<double> minute = NewestDemand(meter, Minute, 60);
  EXPECT_EQ(meter.AddReading(720, At("2026-11-16T20:10:01.900"), 2900), 0);
  EXPECT_THAT(NewestDemand(meter, Minute, 60), ElementsAreArray(minute));
  EXPECT_NEAR(NewestUsages(meter, Minute).back(), 0.011, 1e-12);
  for (const int i : {Hour, Day, Week, Month, Year}) {
    EXPECT_NEAR(NewestUsage(meter, i), 0.011 + 0.16, 1e-12) << i;
  }
  EXPECT_EQ(meter.Peak(Today), 720);
  EXPECT_EQ(meter.AddReading(36, At("2026-11-16T20:10:02"), 3000), 1) << "boundaries count";
  // Nor does one from before, the clock having been set back, shift anything.
  for (const char* earlier :
       {"2026-11-16T20:10:01", "2026-11-16T19:10:02", "2025-11-16T20:10:02"}) {
    const std::vector<double> before = NewestDemand(meter, Minute, 60);
    const std::vector<double> days = NewestUsages(meter, Month, 31);
    EXPECT_EQ(meter.AddReading(720, At(earlier), 3000), 0);
    EXPECT_EQ(meter.Timestamp(), At(earlier));
    EXPECT_EQ(NewestDemand(meter, Minute, 60), before);
    EXPECT_EQ(NewestUsages(meter, Month, 31), days);
  }
}

TEST(MeterStatistics, AveragesTheNewestPartOfASeries) {
  MeterStatistics meter;
  EXPECT_EQ(meter.AverageDemand(60), None);
  std::vector<double> rising(60);
  for (int i = 0; i < 60; ++i) rising[static_cast<std::size_t>(i)] = i + 1;
  for (const int i : {Minute, Hour, Day}) meter.SetDemandRecent(i, rising);
  using Row = std::pair<std::int32_t, double>;
  for (const auto& [seconds, mean] :
       {Row{1, 60}, Row{2, 59.5}, Row{60, 30.5}, Row{61, 60}, Row{119, 60}, Row{120, 59.5},
        Row{3599, 31}, Row{3600, 30.5}, Row{3601, 24}, Row{7199, 24}, Row{7200, 23.5},
        Row{86399, 13}, Row{86400, 12.5}, Row{86401, 0},
        Row{std::numeric_limits<std::int32_t>::max(), 0}}) {
    EXPECT_DOUBLE_EQ(meter.AverageDemand(seconds), mean) << seconds;
  }
  rising[59] = None;
  rising[57] = None;
  meter.SetDemandRecent(Minute, rising);
  EXPECT_EQ(meter.AverageDemand(1), None);
  EXPECT_EQ(meter.AverageDemand(4), (57 + 59) / 2.0);
}

TEST(MeterStatistics, Resets) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.ResetUsage();
  EXPECT_EQ(meter.Usage(SinceReset), 0);
  EXPECT_EQ(meter.Usage(ToDate), 60);
  EXPECT_EQ(meter.Peak(SinceReset), 70);
  meter.AddReading(50, At("2026-11-16T20:10:00"), 1000);
  meter.ResetStatistics();
  ExpectNoPeriods(meter);
  ExpectNoSeries(meter);
  EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00")) << "the reading clock is no statistic";
  meter.AddReading(50, At("2026-11-16T20:10:01"), 2000);
  for (const int i : {Day, Year}) EXPECT_EQ(NewestDemand(meter, i).back(), 50);
}

TEST(MeterStatistics, TakesTheMeanOfASeriesThatWasWrittenMeanwhile) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.AddReading(50, At("2026-11-16T20:10:02"), 3000);
  for (const Interval finer : {Hour, Day, Month}) {
    meter.SetDemandRecent(finer, std::vector<double>(30, 10.0));
  }
  using Row = std::pair<Interval, Interval>;
  for (const char* time : {"2026-11-16T20:10:04", "2026-11-16T22:10:04", "2026-11-16T22:10:06",
                           "2027-01-17T22:10:06", "2027-01-17T22:10:08"}) {
    meter.AddReading(50, At(time), 5000);
    for (const auto& [finer, coarser] : {Row{Hour, Day}, Row{Day, Week}, Row{Month, Year}}) {
      EXPECT_NEAR(NewestDemand(meter, coarser).back(),
                  AverageSeries(std::as_const(meter).DemandRecent(finer)), 1e-9)
          << time << coarser;
    }
  }
}

// How they follow the calendar and the clock.

// What the periods hold after the clock went from one moment to the other.
TEST(MeterStatisticsPeriods, RollsPeriodsOverAtCalendarBoundaries) {
  enum Yesterdays { Kept, Unknown, WasToday };
  struct Case {
    const char *what, *from, *to;
    Yesterdays yesterday;
    std::vector<int> cleared;
  };
  const std::vector<int> day{Today};
  const std::vector<int> week{Today, ThisWeek};
  const std::vector<int> month{Today, ThisMonth};
  const std::vector<int> year{Today, ThisMonth, ThisYear};
  const std::vector<int> all{Today, ThisWeek, ThisMonth, ThisYear};
  for (const Case& test :
       {Case{"same day", "2026-11-16T00:00:00", "2026-11-16T23:59:59.999", Kept, {}},
        Case{"midnight", "2026-11-16T23:59:59.999", "2026-11-17T00:00:00", WasToday, day},
        Case{"two midnights", "2026-11-16T23:59:59", "2026-11-18T00:00:00", Unknown, day},
        Case{"into Sunday", "2026-11-21T23:59:59", "2026-11-22T00:00:00", WasToday, week},
        Case{"out of Sunday", "2026-11-22T23:59:59", "2026-11-23T00:00:00", WasToday, day},
        Case{"Friday to Monday", "2026-11-20T18:00:00", "2026-11-23T07:00:00", Unknown, week},
        Case{"Sunday to Saturday", "2026-11-15T00:00:00", "2026-11-21T23:59:59", Unknown, day},
        Case{"month end", "2026-11-30T23:59:59", "2026-12-01T00:00:00", WasToday, month},
        Case{"out of a leap day", "2028-02-29T12:00:00", "2028-03-01T12:00:00", WasToday, month},
        Case{"year end", "2026-12-31T23:59:59", "2027-01-01T00:00:00", WasToday, year},
        Case{"year end on a Saturday", "2022-12-31T23:59:59", "2023-01-01T00:00:00", WasToday, all},
        Case{"a year", "2026-11-16T20:10:00", "2027-11-16T20:10:00", Unknown, all},
        Case{"back within the day", "2026-11-16T20:10:00", "2026-11-16T19:10:00", Kept, {}},
        Case{"back across midnight", "2026-11-17T00:30:00", "2026-11-16T23:30:00", Unknown, day},
        Case{"back across a Sunday", "2026-11-22T00:00:00", "2026-11-21T23:59:59", Unknown, week},
        Case{"back across a year", "2027-01-01T00:00:00", "2026-12-31T23:59:59", Unknown, year}}) {
    SCOPED_TRACE(test.what);
    MeterStatistics meter = FullMeter(test.from);
    meter.SetTimestamp(At(test.to));
    EXPECT_EQ(meter.Timestamp(), At(test.to));
    const double yesterday = test.yesterday == Kept ? 10 : test.yesterday == WasToday ? 20 : None;
    EXPECT_EQ(meter.Usage(Yesterday), yesterday);
    EXPECT_EQ(meter.Peak(Yesterday), yesterday);
    EXPECT_EQ(meter.PeakTime(Yesterday).IsNever(), test.yesterday == Unknown);
    for (int i = Today; i < PeriodCount; ++i) {
      const bool cleared = std::ranges::count(test.cleared, i) != 0;
      EXPECT_EQ(meter.Usage(i), cleared ? 0 : 10 * (i + 1)) << i;
      EXPECT_EQ(meter.Peak(i), cleared ? 0 : 10 * (i + 1)) << i;
      EXPECT_EQ(meter.PeakTime(i).IsNever(), cleared) << i;
    }
  }
  // No boundary lies between a moment and never.
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.SetTimestamp(DateTime());
  EXPECT_TRUE(meter.Timestamp().IsNever());
  meter.SetTimestamp(At("2031-01-01T00:00:00"));
  EXPECT_EQ(meter.Usage(Today), 20);
  EXPECT_EQ(meter.Usage(ThisYear), 50);
}

TEST(MeterStatisticsPeriods, CreditsTheFirstReadingAfterMidnightToTheOldDay) {
  MeterStatistics meter;
  meter.AddReading(36, At("2026-11-16T23:59:57"), 1000);
  meter.AddReading(36, At("2026-11-16T23:59:59"), 3000);
  meter.AddReading(72, At("2026-11-17T00:00:01"), 5000);
  EXPECT_NEAR(meter.Usage(Yesterday), 0.02 + 0.04, 1e-12);
  EXPECT_EQ(meter.Peak(Yesterday), 72);
  EXPECT_EQ(meter.PeakTime(Yesterday), At("2026-11-17T00:00:01"));
  EXPECT_EQ(meter.Usage(Today), 0);
  EXPECT_TRUE(meter.PeakTime(Today).IsNever());
  EXPECT_NEAR(meter.Usage(ThisWeek), 0.06, 1e-12);
  // The series are by the reading's own time.
  EXPECT_NEAR(NewestUsage(meter, Week), 0.04, 1e-12);
  meter.AddReading(18, At("2026-11-17T00:00:03"), 7000);
  EXPECT_NEAR(meter.Usage(Today), 0.01, 1e-12);
  EXPECT_EQ(meter.Peak(Today), 18);
}

TEST(MeterStatisticsPeriods, CatchesUpAfterARestart) {
  MeterStatistics meter;
  meter.SetTimestamp(At("2026-11-13T18:00:00"));  // what loading does, a Friday
  meter.SetUsage(Today, 1500);
  meter.SetUsage(ThisWeek, 4000);
  meter.SetUsage(ThisMonth, 9000);
  EXPECT_EQ(meter.AddReading(100, At("2026-11-16T07:00:00"), 12345), 219600);
  EXPECT_EQ(meter.Usage(Yesterday), None);
  EXPECT_EQ(meter.Usage(Today), 0);
  EXPECT_EQ(meter.Usage(ThisWeek), 0);
  EXPECT_EQ(meter.Usage(ThisMonth), 9000) << "the time off adds no energy";
  EXPECT_THAT(NewestDemand(meter, Minute, 3), ElementsAre(None, None, 100));
  EXPECT_THAT(NewestUsages(meter, Week, 4), ElementsAre(None, None, None, 0));
  meter.AddReading(36, At("2026-11-16T07:00:02"), 14345);
  for (const int i : {Hour, Day, Week, Month, Year}) {
    EXPECT_NEAR(NewestUsage(meter, i), 0.02, 1e-12) << i;
  }
}

}  // namespace
}  // namespace wattlark
