#include <gtest/gtest.h>

#include <array>

#include "twins/HandClock.h"

namespace wattlark {
namespace {

TEST(DateTime, ReadsWritesAndNamesTheDay) {
  using Row = std::tuple<const char*, std::int64_t, int>;
  for (const auto& [iso, milliseconds, dayOfWeek] :
       {Row{"1970-01-01T00:00:00", 0, 4}, Row{"1969-12-31T23:59:59.999", -1, 3},
        Row{"1969-12-28T00:00:00", -4 * 86400000LL, 0},
        Row{"2009-02-13T23:31:30.045", 1234567890045, 5},
        Row{"0001-01-01T00:00:00", -62135596800000, 1},
        Row{"9999-12-31T23:59:59.999", 253402300799999, 5}}) {
    EXPECT_EQ(At(iso).Milliseconds(), milliseconds);
    EXPECT_EQ(DateTime::FromMilliseconds(milliseconds).ToIso(), iso);
    EXPECT_EQ(At(iso).DayOfWeek(), dayOfWeek) << iso;
  }
}

TEST(DateTime, CountsEveryDayOfFourCenturies) {
  DateTime day = At("1800-01-01T00:00:00");
  int weekDay = day.DayOfWeek();
  int leapDays = 0;
  for (; day < At("2200-01-01T00:00:00"); day = day.PlusDays(1)) {
    const CivilTime civil = day.Civil();
    ASSERT_EQ(DateTime::FromCivil(civil), day) << day.ToIso();
    ASSERT_EQ(day.DayOfWeek(), weekDay) << day.ToIso();
    weekDay = (weekDay + 1) % 7;
    if (civil.month == 2 && civil.day == 29) ++leapDays;
  }
  EXPECT_EQ(leapDays, 97);
}

TEST(DateTime, RefusesFieldsOutOfRange) {
  for (const CivilTime& civil :
       {CivilTime{0, 1, 1}, CivilTime{10000, 1, 1}, CivilTime{2010, 0, 1}, CivilTime{2010, 13, 1},
        CivilTime{2010, 1, 0}, CivilTime{2010, 2, 29}, CivilTime{2100, 2, 29},
        CivilTime{2010, 4, 31}, CivilTime{2010, 1, 1, 24}, CivilTime{2010, 1, 1, -1},
        CivilTime{2010, 1, 1, 0, 60}, CivilTime{2010, 1, 1, 0, 0, 60},
        CivilTime{2010, 1, 1, 0, 0, 0, 1000}, CivilTime{2010, 1, 1, 0, 0, 0, -1}}) {
    EXPECT_FALSE(DateTime::FromCivil(civil))
        << civil.year << ' ' << civil.month << ' ' << civil.day;
  }
}

TEST(DateTime, RefusesOtherForms) {
  for (const char* text :
       {"", "2010-01-02", "2010-01-02 03:04:05", "2010-01-02T03:04", "2010-01-02T03:04:05Z",
        "2010-01-02T03:04:05.1", "2010-01-02T03:04:05.1234", "2010-01-02T03:04:05,123",
        "2010-1-02T03:04:005", "+010-01-02T03:04:05", "2010-01-02T03:04:-5", " 2010-01-02T03:04:0",
        "2010-02-30T00:00:00", "2010-01-02T24:00:00", "2010-01-02T03:04:05.-12"}) {
    EXPECT_FALSE(DateTime::FromIso(text)) << text;
  }
}

TEST(DateTime, CountsBoundaries) {
  using Counts =
      std::array<std::int64_t, 7>;  // seconds, minutes, hours, days, weeks, months, years
  using Row = std::tuple<const char*, const char*, Counts>;
  const auto between = [](DateTime from, DateTime to, int sign) {
    Counts counts{from.SecondsTo(to), from.MinutesTo(to), from.HoursTo(to), from.DaysTo(to),
                  from.WeeksTo(to),   from.MonthsTo(to),  from.YearsTo(to)};
    for (std::int64_t& count : counts) count *= sign;
    return counts;
  };
  for (const auto& [from, to, counts] :
       {Row{"2010-01-01T10:00:00.999", "2010-01-01T10:00:01", {1, 0, 0, 0, 0, 0, 0}},
        Row{"2010-01-01T10:00:00", "2010-01-01T10:00:00.999", {0, 0, 0, 0, 0, 0, 0}},
        Row{"2010-01-01T23:59:00", "2010-01-02T00:01:00", {120, 2, 1, 1, 0, 0, 0}},
        // Saturday to Sunday, Sunday to Saturday, and Friday to Monday.
        Row{"2010-01-02T23:59:59", "2010-01-03T00:00:00", {1, 1, 1, 1, 1, 0, 0}},
        Row{"2010-01-03T00:00:00", "2010-01-09T00:00:00", {518400, 8640, 144, 6, 0, 0, 0}},
        Row{"2010-01-08T12:00:00", "2010-01-11T12:00:00", {259200, 4320, 72, 3, 1, 0, 0}},
        Row{"1969-12-31T23:59:59.500", "1970-01-01T00:00:00.500", {1, 1, 1, 1, 0, 1, 1}},
        Row{"2008-02-28T00:00:00",
            "2010-03-01T00:00:00",
            {63244800, 1054080, 17568, 732, 105, 25, 2}}}) {
    EXPECT_EQ(between(At(from), At(to), 1), counts) << from;
    EXPECT_EQ(between(At(to), At(from), -1), counts) << from;
  }
}

TEST(DateTime, StartsOfHourAndDay) {
  EXPECT_EQ(At("2010-05-06T17:59:59.999").StartOfHour(), At("2010-05-06T17:00:00"));
  EXPECT_EQ(At("2010-05-06T17:59:59.999").StartOfDay(), At("2010-05-06T00:00:00"));
  EXPECT_EQ(At("1969-07-20T20:17:40").StartOfHour(), At("1969-07-20T20:00:00"));
  EXPECT_EQ(At("1969-07-20T20:17:40").StartOfDay(), At("1969-07-20T00:00:00"));
  const DateTime never;
  EXPECT_TRUE(never.IsNever());
  EXPECT_EQ(never.ToIso(), "");
  EXPECT_TRUE(never.StartOfHour().IsNever());
  EXPECT_TRUE(never.StartOfDay().IsNever());
  EXPECT_LT(never, At("0001-01-01T00:00:00"));
}

TEST(DateTime, AddsEveryUnit) {
  const DateTime start = At("2008-02-28T23:59:59.500");
  EXPECT_EQ(start.PlusMilliseconds(500).ToIso(), "2008-02-29T00:00:00");
  EXPECT_EQ(start.PlusSeconds(-60).ToIso(), "2008-02-28T23:58:59.500");
  EXPECT_EQ(start.PlusMinutes(1).ToIso(), "2008-02-29T00:00:59.500");
  EXPECT_EQ(start.PlusHours(48).ToIso(), "2008-03-01T23:59:59.500");
  EXPECT_EQ(start.PlusDays(-59).ToIso(), "2007-12-31T23:59:59.500");
}

}  // namespace
}  // namespace wattlark
