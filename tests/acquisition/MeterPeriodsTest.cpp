// How statistics follow the calendar and the clock.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "acquisition/StatisticsHelpers.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;

// What the periods hold after the clock went from one moment to the other.
TEST(MeterPeriods, RollsPeriodsOverAtCalendarBoundaries) {
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

TEST(MeterPeriods, OnlyStoresATimestampWhenOneOfThemIsNever) {
  MeterStatistics meter = FullMeter("2026-11-16T20:10:00");
  meter.SetTimestamp(DateTime());
  EXPECT_TRUE(meter.Timestamp().IsNever());
  EXPECT_EQ(meter.Usage(Today), 20);
  meter.SetTimestamp(At("2031-01-01T00:00:00"));
  EXPECT_EQ(meter.Usage(Today), 20);
  EXPECT_EQ(meter.Usage(ThisYear), 50);
}

TEST(MeterPeriods, CreditsTheFirstReadingAfterMidnightToTheOldDay) {
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

TEST(MeterPeriods, AnOlderReadingShiftsNothing) {
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
    EXPECT_THAT(NewestDemand(meter, Minute, 3), ElementsAre(100, 36, 36));
  }
}

TEST(MeterPeriods, CatchesUpAfterARestart) {
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
}

// Two weeks of a reading every four seconds, against sums made by hand.
TEST(MeterPeriods, AddsUpOverWeeks) {
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
  EXPECT_THAT(NewestUsages(meter, Hour, 3),
              ElementsAre(testing::DoubleNear(3, 1e-6), testing::DoubleNear(3, 1e-6),
                          testing::DoubleNear(0.2, 1e-6)));
  EXPECT_THAT(NewestUsages(meter, Week, 7).front(), testing::DoubleNear(4320, 1e-3));
  EXPECT_THAT(NewestUsages(meter, Month, 15), testing::Not(testing::Contains(None)));
  EXPECT_THAT(NewestUsages(meter, Month, 16).front(), None);
  EXPECT_THAT(NewestUsages(meter, Year, 3),
              ElementsAre(None, testing::DoubleNear(11 * 4320 - 0.2, 1e-3),
                          testing::DoubleNear(3 * 4320 + 0.2, 1e-3)));
}

}  // namespace
}  // namespace wattlark
