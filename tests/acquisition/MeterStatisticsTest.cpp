#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include "acquisition/MeterStatistics.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr double None = NoValue;

std::vector<double> Newest(std::span<const double> series, std::size_t count) {
  return {series.end() - static_cast<std::ptrdiff_t>(count), series.end()};
}

std::vector<double> Demand(const MeterStatistics& meter, int interval, std::size_t count = 1) {
  return Newest(meter.DemandRecent(interval), count);
}

std::vector<double> UsageOf(const MeterStatistics& meter, int interval, std::size_t count = 1) {
  return Newest(meter.UsageRecent(interval), count);
}

double NewestUsage(const MeterStatistics& meter, int interval) {
  return meter.UsageRecent(interval).back();
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
    EXPECT_THAT(meter.DemandRecent(i), Each(None));
    EXPECT_THAT(meter.UsageRecent(i), Each(None));
  }
  for (int i = 0; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 0);
    EXPECT_TRUE(meter.PeakTime(i).IsNever());
  }
  EXPECT_TRUE(meter.Timestamp().IsNever());
}

TEST(MeterStatistics, RefusesIndexesThatDoNotExist) {
  MeterStatistics meter;
  for (const int index : {-1, 7, 1000}) {
    EXPECT_THROW(meter.Usage(index), std::out_of_range);
    EXPECT_THROW(meter.SetPeak(index, 1), std::out_of_range);
    EXPECT_THROW(meter.PeakTime(index), std::out_of_range);
  }
  for (const int index : {-1, 6, 1000}) {
    EXPECT_THROW(meter.DemandRecent(index), std::out_of_range);
    EXPECT_THROW(meter.SetUsageRecent(index, {}), std::out_of_range);
  }
}

TEST(MeterStatistics, WritingASeriesCoversWhatItHas) {
  MeterStatistics meter;
  meter.SetDemandRecent(Week, std::vector<double>{1, 2, 3});
  EXPECT_THAT(meter.DemandRecent(Week), ElementsAre(1, 2, 3, None, None, None, None));
  meter.SetDemandRecent(Week, std::vector<double>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0});
  EXPECT_THAT(meter.DemandRecent(Week), ElementsAre(9, 8, 7, 6, 5, 4, 3));
  EXPECT_THAT(meter.DemandRecent(Month), Each(None));
}

TEST(MeterStatistics, FirstReadingSetsTimeAndPeaksAlone) {
  MeterStatistics meter;
  EXPECT_EQ(meter.AddReading(450, At("2026-11-16T20:10:00"), 1000), 0);
  EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00"));
  EXPECT_EQ(meter.Peak(Yesterday), 0);
  EXPECT_TRUE(meter.PeakTime(Yesterday).IsNever());
  for (int i = Today; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 450);
    EXPECT_EQ(meter.PeakTime(i), At("2026-11-16T20:10:00"));
  }
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_THAT(meter.DemandRecent(i), Each(None));
    EXPECT_THAT(meter.UsageRecent(i), Each(None));
  }
}

TEST(MeterStatistics, TakesEnergyFromTicksAtTheNewPower) {
  struct Case {
    const char* what;
    std::uint32_t before;
    std::uint32_t after;
    double milliseconds;
  };
  const Case cases[] = {
      {"an hour", 1000, 3601000, 3600000},
      {"none", 1000, 1000, 0},
      {"wrap", 0xFFFFFC18, 1000, 2000},
      {"wrap onto 0", 0xFFFFFFFF, 0, 1},
      {"backwards", 3000, 1000, 0},
      {"the longest interval", 1000, 1000 + 0x7FFFFFFFU, 2147483647},
      {"half the count is backwards", 1000, 1000 + 0x80000000U, 0},
      {"no ticks yet", 0, 5000, 0},
  };
  for (const Case& test : cases) {
    MeterStatistics meter;
    meter.AddReading(1000, At("2026-11-16T20:10:00"), test.before);
    meter.AddReading(36, At("2026-11-16T20:10:02"), test.after);
    const double energy = test.milliseconds / 100000;  // 36 W for 1/3600000 h a millisecond
    for (int i = Today; i < PeriodCount; ++i) {
      EXPECT_NEAR(meter.Usage(i), energy, 1e-9 * (1 + energy)) << test.what;
    }
    EXPECT_EQ(meter.Usage(Yesterday), 0) << test.what;
    for (const int i : {Hour, Day, Week, Month, Year}) {
      EXPECT_NEAR(NewestUsage(meter, i), energy, 1e-9 * (1 + energy)) << test.what;
    }
  }
}

TEST(MeterStatistics, LosesNoEnergyWhenTicksWrapOntoZero) {
  MeterStatistics meter;
  meter.AddReading(36, At("2026-11-16T20:10:00"), 0xFFFFFFFF);
  meter.AddReading(36, At("2026-11-16T20:10:00"), 0);
  meter.AddReading(36, At("2026-11-16T20:10:02"), 2000);
  EXPECT_NEAR(meter.Usage(Today), 2001 / 100000.0, 1e-12);
  meter.AddReading(36, At("2026-11-16T20:10:02"), 500);  // backwards
  meter.AddReading(36, At("2026-11-16T20:10:03"), 1500);
  EXPECT_NEAR(meter.Usage(Today), 3001 / 100000.0, 1e-12);
}

TEST(MeterStatistics, KeepsTheHighestReadingAndItsTime) {
  MeterStatistics meter;
  const std::pair<double, const char*> readings[] = {{100, "2026-11-16T20:10:00"},
                                                     {300, "2026-11-16T20:10:01"},
                                                     {300, "2026-11-16T20:10:02"},
                                                     {200, "2026-11-16T20:10:03"}};
  for (const auto& [watts, time] : readings) meter.AddReading(watts, At(time), 0);
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
  EXPECT_THAT(Demand(meter, Minute, 5), ElementsAre(None, 36, 36, 72, 72));
  EXPECT_THAT(UsageOf(meter, Minute, 5), ElementsAre(None, 0.02, 0.02, 0.04, 0.04));
  EXPECT_NEAR(NewestUsage(meter, Hour), 0.06, 1e-12) << "the energy itself only once a reading";
  EXPECT_EQ(Demand(meter, Hour).back(), 54);
  EXPECT_EQ(Demand(meter, Day).back(), 54);
  EXPECT_EQ(Demand(meter, Year).back(), 54);
}

TEST(MeterStatistics, ASecondReadingWithinASecondLeavesTheMinuteAlone) {
  MeterStatistics meter;
  meter.AddReading(36, At("2026-11-16T20:10:00"), 1000);
  meter.AddReading(36, At("2026-11-16T20:10:01.100"), 2100);
  const std::vector<double> minute = Demand(meter, Minute, 60);
  EXPECT_EQ(meter.AddReading(720, At("2026-11-16T20:10:01.900"), 2900), 0);
  EXPECT_THAT(Demand(meter, Minute, 60), ElementsAreArray(minute));
  EXPECT_NEAR(UsageOf(meter, Minute).back(), 0.011, 1e-12);
  for (const int i : {Hour, Day, Week, Month, Year}) {
    EXPECT_NEAR(NewestUsage(meter, i), 0.011 + 0.16, 1e-12) << i;
  }
  EXPECT_EQ(meter.Peak(Today), 720);
  EXPECT_EQ(meter.AddReading(36, At("2026-11-16T20:10:02"), 3000), 1) << "boundaries count";
}

// From a Monday, 20:10:30, with full series: how many entries without a value each series then has.
TEST(MeterStatistics, LeavesGapsOfTheirLength) {
  struct Case {
    const char* time;
    std::array<int, IntervalCount> gaps;
    std::array<bool, IntervalCount> restarts;  // the newest usage entry counts from 0 again
  };
  constexpr bool T = true;
  constexpr bool F = false;
  const Case cases[] = {
      {"2026-11-16T20:10:30", {0, 0, 0, 0, 0, 0}, {F, F, F, F, F, F}},
      {"2026-11-16T20:10:34", {0, 0, 0, 0, 0, 0}, {T, F, F, F, F, F}},
      {"2026-11-16T20:10:35", {4, 0, 0, 0, 0, 0}, {T, F, F, F, F, F}},
      {"2026-11-16T20:11:29", {58, 0, 0, 0, 0, 0}, {T, T, F, F, F, F}},
      {"2026-11-16T20:11:30", {59, 0, 0, 0, 0, 0}, {T, T, F, F, F, F}},
      {"2026-11-16T20:12:00", {59, 1, 0, 0, 0, 0}, {T, T, F, F, F, F}},
      {"2026-11-16T21:00:00", {59, 49, 0, 0, 0, 0}, {T, T, T, F, F, F}},
      {"2026-11-16T21:10:30", {59, 59, 0, 0, 0, 0}, {T, T, T, F, F, F}},
      {"2026-11-16T23:59:59", {59, 59, 2, 0, 0, 0}, {T, T, T, F, F, F}},
      {"2026-11-17T00:00:00", {59, 59, 3, 0, 0, 0}, {T, T, T, T, T, F}},
      {"2026-11-17T20:10:30", {59, 59, 23, 0, 0, 0}, {T, T, T, T, T, F}},
      {"2026-11-19T08:00:00", {59, 59, 23, 2, 2, 0}, {T, T, T, T, T, F}},
      {"2026-11-23T20:10:30", {59, 59, 23, 6, 6, 0}, {T, T, T, T, T, F}},
      {"2026-12-01T00:00:00", {59, 59, 23, 6, 14, 0}, {T, T, T, T, T, T}},
      {"2026-12-17T20:10:30", {59, 59, 23, 6, 30, 0}, {T, T, T, T, T, T}},
      {"2027-02-28T00:00:00", {59, 59, 23, 6, 30, 2}, {T, T, T, T, T, T}},
      {"2027-11-01T00:00:00", {59, 59, 23, 6, 30, 11}, {T, T, T, T, T, T}},
      {"2096-02-29T00:00:00", {59, 59, 23, 6, 30, 11}, {T, T, T, T, T, T}},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.time);
    MeterStatistics meter = FullMeter("2026-11-16T20:10:30");
    meter.AddReading(7, At(test.time), 1000 + 3600000);  // 7 Wh
    for (int i = 0; i < IntervalCount; ++i) {
      SCOPED_TRACE(i);
      const auto gaps = test.gaps[static_cast<std::size_t>(i)];
      const bool restarts = test.restarts[static_cast<std::size_t>(i)];
      for (const auto series : {meter.DemandRecent(i), meter.UsageRecent(i)}) {
        EXPECT_EQ(std::count(series.begin(), series.end(), None), gaps);
        // They stand in one run just before the newest entry.
        EXPECT_THAT(Newest(series.first(series.size() - 1), static_cast<std::size_t>(gaps)),
                    Each(None));
        EXPECT_NE(series.back(), None);
      }
      const double withoutRestart = i == Minute ? 100 : 107;  // the minute takes no energy at s = 0
      EXPECT_EQ(NewestUsage(meter, i), restarts ? 7 : withoutRestart);
    }
    const bool sameSecond = At(test.time) == At("2026-11-16T20:10:30");
    EXPECT_EQ(Demand(meter, Minute).back(), sameSecond ? 100 : 7);
  }
}

TEST(MeterStatistics, CoarserDemandIsTheMeanOfTheWholeFinerSeries) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:30");
  meter.AddReading(160, At("2026-11-16T20:10:31"), 2000);
  EXPECT_DOUBLE_EQ(Demand(meter, Hour).back(), 101);         // 59 of 100, one of 160
  EXPECT_DOUBLE_EQ(Demand(meter, Day).back(), 6001.0 / 60);  // 59 of 100, one of 101
  EXPECT_DOUBLE_EQ(Demand(meter, Week).back(), 100 + 1 / 1440.0);
  EXPECT_EQ(Demand(meter, Month).back(), Demand(meter, Week).back());
  EXPECT_DOUBLE_EQ(Demand(meter, Year).back(), 100 + 1 / 44640.0);
  // After a long silence nothing but the new reading is left to average.
  meter.AddReading(40, At("2026-11-18T00:00:00"), 3000);
  for (const int i : {Hour, Day}) EXPECT_EQ(Demand(meter, i).back(), 40) << i;
  EXPECT_EQ(Demand(meter, Week).back(), 40);
  EXPECT_DOUBLE_EQ(Demand(meter, Year).back(), (28 * 100 + (100 + 1 / 1440.0) + 40) / 30);
}

TEST(MeterStatistics, TheNewestDayOfTheMonthCopiesTheWeek) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:30");
  meter.SetUsageRecent(Month, std::vector<double>(31, 5.0));
  meter.AddReading(36, At("2026-11-16T20:10:32"), 3000);
  EXPECT_NEAR(NewestUsage(meter, Week), 100.02, 1e-12);
  EXPECT_NEAR(NewestUsage(meter, Month), 100.02, 1e-12);
}

TEST(MeterStatistics, StartsAnEntryWithoutAValueFrom0) {
  MeterStatistics meter;
  meter.SetTimestamp(At("2026-11-16T20:10:00"));  // loaded with empty series
  meter.AddReading(36, At("2026-11-16T20:10:00"), 1000);
  meter.AddReading(36, At("2026-11-16T20:10:02"), 3000);
  for (const int i : {Hour, Day, Week, Month, Year}) {
    EXPECT_NEAR(NewestUsage(meter, i), 0.02, 1e-12) << i;
  }
}

// What the periods hold after the clock went from one moment to the other.
TEST(MeterStatistics, RollsPeriodsOverAtCalendarBoundaries) {
  enum Yesterdays { Kept, Unknown, WasToday };
  struct Case {
    const char* what;
    const char* from;
    const char* to;
    Yesterdays yesterday;
    std::vector<int> cleared;
  };
  const std::vector<int> day{Today};
  const std::vector<int> week{Today, ThisWeek};
  const std::vector<int> month{Today, ThisMonth};
  const std::vector<int> year{Today, ThisMonth, ThisYear};
  const std::vector<int> all{Today, ThisWeek, ThisMonth, ThisYear};
  const Case cases[] = {
      {"same second", "2026-11-16T20:10:00", "2026-11-16T20:10:00", Kept, {}},
      {"same day", "2026-11-16T00:00:00", "2026-11-16T23:59:59.999", Kept, {}},
      {"midnight", "2026-11-16T23:59:59.999", "2026-11-17T00:00:00", WasToday, day},
      {"nearly two days", "2026-11-16T00:00:00", "2026-11-17T23:59:59", WasToday, day},
      {"two midnights", "2026-11-16T23:59:59", "2026-11-18T00:00:00", Unknown, day},
      {"into Sunday", "2026-11-21T23:59:59", "2026-11-22T00:00:00", WasToday, week},
      {"out of Sunday", "2026-11-22T23:59:59", "2026-11-23T00:00:00", WasToday, day},
      {"Friday to Monday", "2026-11-20T18:00:00", "2026-11-23T07:00:00", Unknown, week},
      {"Sunday to Saturday", "2026-11-15T00:00:00", "2026-11-21T23:59:59", Unknown, day},
      {"a week", "2026-11-17T12:00:00", "2026-11-24T12:00:00", Unknown, week},
      {"month end", "2026-11-30T23:59:59", "2026-12-01T00:00:00", WasToday, month},
      {"into a leap day", "2028-02-28T12:00:00", "2028-02-29T12:00:00", WasToday, day},
      {"out of a leap day", "2028-02-29T12:00:00", "2028-03-01T12:00:00", WasToday, month},
      {"over a leap day", "2028-02-28T12:00:00", "2028-03-01T12:00:00", Unknown, month},
      {"no leap day", "2027-02-28T12:00:00", "2027-03-01T12:00:00", WasToday, month},
      {"no leap day in 2100",
       "2100-02-28T12:00:00",
       "2100-03-01T12:00:00",
       WasToday,
       {Today, ThisMonth}},
      {"year end", "2026-12-31T23:59:59", "2027-01-01T00:00:00", WasToday, year},
      {"year end on a Saturday", "2022-12-31T23:59:59", "2023-01-01T00:00:00", WasToday, all},
      {"a year", "2026-11-16T20:10:00", "2027-11-16T20:10:00", Unknown, all},
      {"back within the day", "2026-11-16T20:10:00", "2026-11-16T19:10:00", Kept, {}},
      {"back across midnight", "2026-11-17T00:30:00", "2026-11-16T23:30:00", Unknown, day},
      {"back across a Sunday", "2026-11-22T00:00:00", "2026-11-21T23:59:59", Unknown, week},
      {"back across a year", "2027-01-01T00:00:00", "2026-12-31T23:59:59", Unknown, year},
      {"before 1970", "1969-12-31T23:59:59", "1970-01-01T00:00:00", WasToday, year},
  };
  for (const Case& test : cases) {
    MeterStatistics meter = FullMeter(test.from);
    meter.SetTimestamp(At(test.to));
    EXPECT_EQ(meter.Timestamp(), At(test.to)) << test.what;
    const double yesterday = test.yesterday == Kept ? 10 : test.yesterday == WasToday ? 20 : None;
    EXPECT_EQ(meter.Usage(Yesterday), yesterday) << test.what;
    EXPECT_EQ(meter.Peak(Yesterday), yesterday) << test.what;
    EXPECT_EQ(meter.PeakTime(Yesterday).IsNever(), test.yesterday == Unknown) << test.what;
    for (int i = Today; i < PeriodCount; ++i) {
      const bool cleared =
          std::find(test.cleared.begin(), test.cleared.end(), i) != test.cleared.end();
      EXPECT_EQ(meter.Usage(i), cleared ? 0 : 10 * (i + 1)) << test.what << ' ' << i;
      EXPECT_EQ(meter.Peak(i), cleared ? 0 : 10 * (i + 1)) << test.what << ' ' << i;
      EXPECT_EQ(meter.PeakTime(i).IsNever(), cleared) << test.what << ' ' << i;
    }
  }
}

TEST(MeterStatistics, OnlyStoresATimestampWhenOneOfThemIsNever) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.SetTimestamp(DateTime());
  EXPECT_TRUE(meter.Timestamp().IsNever());
  EXPECT_EQ(meter.Usage(Today), 20);
  meter.SetTimestamp(At("2031-01-01T00:00:00"));
  EXPECT_EQ(meter.Usage(Today), 20);
  EXPECT_EQ(meter.Usage(ThisYear), 50);
}

TEST(MeterStatistics, CreditsTheFirstReadingAfterMidnightToTheOldDay) {
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

TEST(MeterStatistics, AnOlderReadingShiftsNothing) {
  struct Case {
    const char* time;
    double today;  // after 36 W for 2 s were added to 20 Wh
    double yesterday;
  };
  const Case cases[] = {{"2026-11-16T00:10:29", 20.02, 10},  // a second
                        {"2026-11-16T00:05:00", 20.02, 10},  // minutes
                        {"2026-11-15T23:10:30", 0, None},    // an hour, across midnight and Sunday
                        {"2025-11-16T00:10:30", 0, None}};
  for (const Case& test : cases) {
    SCOPED_TRACE(test.time);
    MeterStatistics meter = FullMeter("2026-11-16T00:10:30");
    EXPECT_EQ(meter.AddReading(36, At(test.time), 3000), 0);
    EXPECT_EQ(meter.Timestamp(), At(test.time));
    EXPECT_THAT(meter.DemandRecent(Minute), Each(100));
    EXPECT_THAT(meter.UsageRecent(Minute), Each(100));
    for (const int i : {Hour, Day, Week, Month, Year}) {
      EXPECT_NEAR(NewestUsage(meter, i), 100.02, 1e-9);
      EXPECT_THAT(meter.UsageRecent(i).first(meter.UsageRecent(i).size() - 1), Each(100));
      EXPECT_THAT(meter.DemandRecent(i), Each(100));
    }
    EXPECT_NEAR(meter.Usage(Today), test.today, 1e-9);
    EXPECT_EQ(meter.Usage(Yesterday), test.yesterday);
    EXPECT_NEAR(meter.Usage(ToDate), 60.02, 1e-9);
    // Time goes on from there.
    EXPECT_EQ(meter.AddReading(36, At(test.time).PlusSeconds(2), 5000), 2);
    EXPECT_THAT(Demand(meter, Minute, 3), ElementsAre(100, 36, 36));
  }
}

TEST(MeterStatistics, CatchesUpAfterARestart) {
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
  EXPECT_THAT(Demand(meter, Minute, 3), ElementsAre(None, None, 100));
  EXPECT_THAT(UsageOf(meter, Week, 4), ElementsAre(None, None, None, 0));
}

TEST(MeterStatistics, AveragesTheNewestPartOfASeries) {
  MeterStatistics meter;
  EXPECT_EQ(meter.AverageDemand(60), None);
  std::vector<double> rising(60);
  for (int i = 0; i < 60; ++i) rising[static_cast<std::size_t>(i)] = i + 1;
  for (const int i : {Minute, Hour, Day}) meter.SetDemandRecent(i, rising);
  const std::pair<std::int32_t, double> cases[] = {
      {1, 60},       {2, 59.5},    {10, 55.5},
      {60, 30.5},    {61, 60},     {90, 60},
      {119, 60},     {120, 59.5},  {300, 58},
      {3599, 31},    {3600, 30.5}, {3601, 24},
      {7199, 24},    {7200, 23.5}, {86399, 13},
      {86400, 12.5}, {86401, 0},   {std::numeric_limits<std::int32_t>::max(), 0}};
  for (const auto& [seconds, mean] : cases) {
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
  meter.ResetStatistics();
  for (int i = 0; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 0);
    EXPECT_TRUE(meter.PeakTime(i).IsNever());
  }
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_THAT(meter.DemandRecent(i), Each(None));
    EXPECT_THAT(meter.UsageRecent(i), Each(None));
  }
  EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00")) << "the reading clock is no statistic";
}

// Two weeks of a reading every four seconds, against sums made by hand.
TEST(MeterStatistics, AddsUpOverWeeks) {
  MeterStatistics meter;
  DateTime time = At("2026-11-20T00:00:00");  // a Friday
  std::uint32_t ticks = 0xFFFFFFFFU - 400000000U;
  for (int i = 0; i <= 14 * 21600; ++i) {
    meter.AddReading(180, time, ticks);
    time = time.PlusSeconds(4);
    ticks += 4000;
  }
  // 180 W are 4320 Wh a day; the reading at midnight of December 4th still counts for the 3rd.
  EXPECT_NEAR(meter.Usage(ToDate), 14 * 4320, 1e-3);
  EXPECT_NEAR(meter.Usage(Yesterday), 4320, 1e-3);
  EXPECT_EQ(meter.Usage(Today), 0);
  EXPECT_NEAR(meter.Usage(ThisWeek), 5 * 4320, 1e-3) << "since Sunday the 29th";
  EXPECT_NEAR(meter.Usage(ThisMonth), 3 * 4320, 1e-3);
  EXPECT_THAT(meter.DemandRecent(Minute), Each(180));
  EXPECT_THAT(meter.DemandRecent(Hour), Each(180));
  EXPECT_THAT(meter.DemandRecent(Day), Each(180));
  EXPECT_THAT(UsageOf(meter, Hour, 3),
              ElementsAre(testing::DoubleNear(3, 1e-6), testing::DoubleNear(3, 1e-6),
                          testing::DoubleNear(0.2, 1e-6)));
  EXPECT_THAT(UsageOf(meter, Week, 7).front(), testing::DoubleNear(4320, 1e-3));
  EXPECT_THAT(UsageOf(meter, Month, 15), testing::Not(testing::Contains(None)));
  EXPECT_THAT(UsageOf(meter, Month, 16).front(), None);
  EXPECT_THAT(UsageOf(meter, Year, 3), ElementsAre(None, testing::DoubleNear(11 * 4320 - 0.2, 1e-3),
                                                   testing::DoubleNear(3 * 4320 + 0.2, 1e-3)));
}

}  // namespace
}  // namespace wattlark
