#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <utility>

#include "acquisition/MeterStatistics.h"
#include "acquisition/StatisticsHelpers.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

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

// From a Monday, 20:10:30, with full series: how many entries without a value each series then has.
TEST(MeterStatistics, LeavesGapsOfTheirLength) {
  struct Case {
    const char* time;
    std::array<int, IntervalCount> gaps;
    std::array<bool, IntervalCount> restarts;  // the newest usage entry counts from 0 again
  };
  constexpr bool T = true;
  constexpr bool F = false;
  for (const Case& test :
       {Case{"2026-11-16T20:10:30", {0, 0, 0, 0, 0, 0}, {F, F, F, F, F, F}},
        Case{"2026-11-16T20:10:34", {0, 0, 0, 0, 0, 0}, {T, F, F, F, F, F}},
        Case{"2026-11-16T20:10:35", {4, 0, 0, 0, 0, 0}, {T, F, F, F, F, F}},
        Case{"2026-11-16T20:11:30", {59, 0, 0, 0, 0, 0}, {T, T, F, F, F, F}},
        Case{"2026-11-16T20:12:00", {59, 1, 0, 0, 0, 0}, {T, T, F, F, F, F}},
        Case{"2026-11-16T21:00:00", {59, 49, 0, 0, 0, 0}, {T, T, T, F, F, F}},
        Case{"2026-11-16T23:59:59", {59, 59, 2, 0, 0, 0}, {T, T, T, F, F, F}},
        Case{"2026-11-17T00:00:00", {59, 59, 3, 0, 0, 0}, {T, T, T, T, T, F}},
        Case{"2026-11-19T08:00:00", {59, 59, 23, 2, 2, 0}, {T, T, T, T, T, F}},
        Case{"2026-11-23T20:10:30", {59, 59, 23, 6, 6, 0}, {T, T, T, T, T, F}},
        Case{"2026-12-01T00:00:00", {59, 59, 23, 6, 14, 0}, {T, T, T, T, T, T}},
        Case{"2027-02-28T00:00:00", {59, 59, 23, 6, 30, 2}, {T, T, T, T, T, T}},
        Case{"2096-02-29T00:00:00", {59, 59, 23, 6, 30, 11}, {T, T, T, T, T, T}}}) {
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
        EXPECT_THAT(NewestEntries(series.first(series.size() - 1), static_cast<std::size_t>(gaps)),
                    Each(None));
        EXPECT_NE(series.back(), None);
      }
      const double withoutRestart = i == Minute ? 100 : 107;  // the minute takes no energy at s = 0
      EXPECT_EQ(NewestUsage(meter, i), restarts ? 7 : withoutRestart);
    }
    const bool sameSecond = At(test.time) == At("2026-11-16T20:10:30");
    EXPECT_EQ(NewestDemand(meter, Minute).back(), sameSecond ? 100 : 7);
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
  meter.AddReading(50, At("2026-11-16T20:10:04"), 5000);
  using Row = std::pair<Interval, Interval>;
  for (const auto& [finer, coarser] : {Row{Hour, Day}, Row{Day, Week}, Row{Month, Year}}) {
    EXPECT_NEAR(NewestDemand(meter, coarser).back(), AverageSeries(meter.DemandRecent(finer)), 1e-9)
        << coarser;
  }
}

}  // namespace
}  // namespace wattlark
