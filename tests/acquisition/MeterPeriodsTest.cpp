// How statistics follow the calendar and the clock.

#include <gmock/gmock.h>

#include <algorithm>

#include "acquisition/StatisticsHelpers.h"

namespace wattlark {
namespace {

using testing::ElementsAre;

// What the periods hold after the clock went from one moment to the other.
TEST(MeterPeriods, RollsPeriodsOverAtCalendarBoundaries) {
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
  meter.AddReading(36, At("2026-11-16T07:00:02"), 14345);
  for (const int i : {Hour, Day, Week, Month, Year}) {
    EXPECT_NEAR(NewestUsage(meter, i), 0.02, 1e-12) << i;
  }
}

}  // namespace
}  // namespace wattlark
