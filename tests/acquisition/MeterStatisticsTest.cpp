#include <limits>
#include <stdexcept>
#include <utility>

#include "acquisition/MeterStatistics.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

constexpr double None = NoValue;

void ExpectNothing(const MeterStatistics& meter) {
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_THAT(meter.DemandRecent(i), Each(None));
    EXPECT_THAT(meter.UsageRecent(i), Each(None));
  }
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

TEST(MeterStatistics, TakesEnergyFromTicksAtTheNewPower) {
  using Row = std::tuple<const char*, std::uint32_t, std::uint32_t, double>;
  for (const auto& [what, before, after, milliseconds] :
       {Row{"an hour", 1000, 3601000, 3600000}, Row{"none", 1000, 1000, 0},
        Row{"wrap", 0xFFFFFC18, 1000, 2000}, Row{"backwards", 3000, 1000, 0},
        Row{"the longest interval", 1000, 1000 + 0x7FFFFFFFU, 2147483647},
        Row{"half the count is backwards", 1000, 1000 + 0x80000000U, 0},
        Row{"no ticks yet", 0, 5000, 0}}) {
    SCOPED_TRACE(what);
    MeterStatistics meter;
    meter.AddReading(1000, At("2026-11-16T20:10:00"), before);
    meter.AddReading(36, At("2026-11-16T20:10:02"), after);
    const double energy = milliseconds / 100000;  // 36 W for 1/3600000 h a millisecond
    for (int i = Today; i < PeriodCount; ++i) {
      EXPECT_NEAR(meter.Usage(i), energy, 1e-9 * (1 + energy));
    }
    EXPECT_EQ(meter.Usage(Yesterday), 0);
    for (const int i : {Hour, Day, Week, Month, Year}) {
      EXPECT_NEAR(meter.UsageRecent(i).back(), energy, 1e-9 * (1 + energy));
    }
  }
}

TEST(MeterStatistics, KeepsTheHighestReadingAndItsTimeUntilItIsReset) {
  MeterStatistics meter;
  meter.AddReading(300, At("2026-11-16T20:10:01"), 0);
  meter.AddReading(300, At("2026-11-16T20:10:02"), 0);
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

TEST(MeterStatistics, ResetsRefusesWhatDoesNotExistAndTakesTheMeanOfWhatWasWritten) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.ResetUsage();
  EXPECT_EQ(meter.Usage(SinceReset), 0);
  EXPECT_EQ(meter.Usage(ToDate), 60);
  EXPECT_EQ(meter.Peak(SinceReset), 70);
  meter.AddReading(50, At("2026-11-16T20:10:00"), 1000);
  meter.ResetStatistics();
  ExpectNothing(meter);
  EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00")) << "the reading clock is no statistic";
  for (const int index : {-1, 7}) EXPECT_THROW(meter.Usage(index), std::out_of_range);
  for (const int index : {-1, 6}) EXPECT_THROW(meter.DemandRecent(index), std::out_of_range);
  meter.AddReading(50, At("2026-11-16T20:10:01"), 2000);
  for (const int i : {Day, Year}) EXPECT_EQ(meter.DemandRecent(i).back(), 50);
  meter.SetDemandRecent(Hour, std::vector<double>(59, 10.0));
  meter.AddReading(50, At("2026-11-16T20:10:02"), 3000);
  EXPECT_NEAR(meter.DemandRecent(Day).back(), (59 * 10 + 50) / 60.0, 1e-9);
}

// 2023 begins on a Sunday.
TEST(MeterStatistics, ClearsWhatEndsWithTheYear) {
  MeterStatistics meter = FullMeter("2022-12-31T23:59:59");
  meter.SetTimestamp(At("2023-01-01T00:00:00"));
  EXPECT_EQ(meter.Usage(Yesterday), 20);
  for (const int cleared : {Today, ThisWeek, ThisMonth, ThisYear}) {
    EXPECT_EQ(meter.Usage(cleared), 0) << cleared;
    EXPECT_TRUE(meter.PeakTime(cleared).IsNever()) << cleared;
  }
  EXPECT_EQ(meter.Usage(ToDate), 60);
  EXPECT_EQ(meter.Peak(SinceReset), 70);
  // No boundary lies between a moment and never.
  meter = FullMeter("2026-11-16T20:10:00");
  meter.SetTimestamp(DateTime());
  EXPECT_TRUE(meter.Timestamp().IsNever());
  meter.SetTimestamp(At("2031-01-01T00:00:00"));
  EXPECT_EQ(meter.Usage(Today), 20);
  EXPECT_EQ(meter.Usage(ThisYear), 50);
}

}  // namespace
}  // namespace wattlark
