#include <gtest/gtest.h>

#include "support/DateTime.h"

namespace wattlark {
namespace {

DateTime At(const char* iso) {
  const std::optional<DateTime> moment = DateTime::FromIso(iso);
  EXPECT_TRUE(moment) << iso;
  return moment.value_or(DateTime());
}

struct KnownMoment {
  const char* iso;
  std::int64_t milliseconds;
  int dayOfWeek;
};

class DateTimeKnown : public testing::TestWithParam<KnownMoment> {};

TEST_P(DateTimeKnown, ReadsWritesAndNamesTheDay) {
  const KnownMoment& known = GetParam();
  EXPECT_EQ(At(known.iso).Milliseconds(), known.milliseconds);
  EXPECT_EQ(DateTime::FromMilliseconds(known.milliseconds).ToIso(), known.iso);
  EXPECT_EQ(At(known.iso).DayOfWeek(), known.dayOfWeek);
}

INSTANTIATE_TEST_SUITE_P(Calendar, DateTimeKnown,
                         testing::Values(KnownMoment{"1970-01-01T00:00:00", 0, 4},
                                         KnownMoment{"1969-12-31T23:59:59.999", -1, 3},
                                         KnownMoment{"1969-12-28T00:00:00", -4 * 86400000LL, 0},
                                         KnownMoment{"2000-03-01T00:00:00", 951868800000, 3},
                                         KnownMoment{"2001-09-09T01:46:40", 1000000000000, 0},
                                         KnownMoment{"2009-02-13T23:31:30.045", 1234567890045, 5},
                                         KnownMoment{"2038-01-19T03:14:07", 2147483647000, 2},
                                         KnownMoment{"0001-01-01T00:00:00", -62135596800000, 1},
                                         KnownMoment{"9999-12-31T23:59:59.999", 253402300799999,
                                                     5}));

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

class DateTimeInvalid : public testing::TestWithParam<CivilTime> {};

TEST_P(DateTimeInvalid, IsRefused) {
  EXPECT_FALSE(DateTime::FromCivil(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    FieldsOutOfRange, DateTimeInvalid,
    testing::Values(CivilTime{0, 1, 1}, CivilTime{10000, 1, 1}, CivilTime{2010, 0, 1},
                    CivilTime{2010, 13, 1}, CivilTime{2010, 1, 0}, CivilTime{2010, 1, 32},
                    CivilTime{2010, 2, 29}, CivilTime{2100, 2, 29}, CivilTime{2000, 2, 30},
                    CivilTime{2010, 4, 31}, CivilTime{2010, 1, 1, 24}, CivilTime{2010, 1, 1, -1},
                    CivilTime{2010, 1, 1, 0, 60}, CivilTime{2010, 1, 1, 0, 0, 60},
                    CivilTime{2010, 1, 1, 0, 0, 0, 1000}, CivilTime{2010, 1, 1, 0, 0, 0, -1}));

class DateTimeBadIso : public testing::TestWithParam<const char*> {};

TEST_P(DateTimeBadIso, IsRefused) {
  EXPECT_FALSE(DateTime::FromIso(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(OtherForms, DateTimeBadIso,
                         testing::Values("", "2010-01-02", "2010-01-02 03:04:05",
                                         "2010-01-02T03:04", "2010-01-02T03:04:05Z",
                                         "2010-01-02T03:04:05.1", "2010-01-02T03:04:05.1234",
                                         "2010-01-02T03:04:05,123", "2010-1-02T03:04:005",
                                         "+010-01-02T03:04:05", "2010-01-02T03:04:-5",
                                         " 2010-01-02T03:04:0", "2010-02-30T00:00:00",
                                         "2010-01-02T24:00:00", "2010-01-02T03:04:05.-12"));

TEST(DateTime, ReadsLeapDays) {
  EXPECT_TRUE(DateTime::FromIso("2000-02-29T00:00:00"));
  EXPECT_TRUE(DateTime::FromIso("2008-02-29T00:00:00"));
}

struct Difference {
  const char* from;
  const char* to;
  std::int64_t seconds, minutes, hours, days, weeks, months, years;
};

class DateTimeDifference : public testing::TestWithParam<Difference> {
 protected:
  static void Expect(DateTime from, DateTime to, std::int64_t sign) {
    const Difference& d = GetParam();
    EXPECT_EQ(from.SecondsTo(to), sign * d.seconds);
    EXPECT_EQ(from.MinutesTo(to), sign * d.minutes);
    EXPECT_EQ(from.HoursTo(to), sign * d.hours);
    EXPECT_EQ(from.DaysTo(to), sign * d.days);
    EXPECT_EQ(from.WeeksTo(to), sign * d.weeks);
    EXPECT_EQ(from.MonthsTo(to), sign * d.months);
    EXPECT_EQ(from.YearsTo(to), sign * d.years);
  }
};

TEST_P(DateTimeDifference, CountsBoundariesForwards) {
  Expect(At(GetParam().from), At(GetParam().to), 1);
}

TEST_P(DateTimeDifference, CountsBoundariesBackwards) {
  Expect(At(GetParam().to), At(GetParam().from), -1);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, DateTimeDifference,
    testing::Values(
        Difference{"2010-01-01T10:00:00.999", "2010-01-01T10:00:01", 1, 0, 0, 0, 0, 0, 0},
        Difference{"2010-01-01T10:00:00", "2010-01-01T10:00:00.999", 0, 0, 0, 0, 0, 0, 0},
        Difference{"2010-01-01T23:59:00", "2010-01-02T00:01:00", 120, 2, 1, 1, 0, 0, 0},
        // Saturday to Sunday.
        Difference{"2010-01-02T23:59:59", "2010-01-03T00:00:00", 1, 1, 1, 1, 1, 0, 0},
        Difference{"2010-01-03T00:00:00", "2010-01-09T00:00:00", 518400, 8640, 144, 6, 0, 0, 0},
        // Friday to Monday.
        Difference{"2010-01-08T12:00:00", "2010-01-11T12:00:00", 259200, 4320, 72, 3, 1, 0, 0},
        Difference{"2009-12-31T23:59:59.999", "2010-01-01T00:00:00", 1, 1, 1, 1, 0, 1, 1},
        Difference{"1969-12-31T23:59:59.500", "1970-01-01T00:00:00.500", 1, 1, 1, 1, 0, 1, 1},
        Difference{"2008-02-28T00:00:00", "2010-03-01T00:00:00", 63244800, 1054080, 17568, 732, 105,
                   25, 2}));

struct Start {
  const char* moment;
  const char* hour;
  const char* day;
};

class DateTimeStart : public testing::TestWithParam<Start> {};

TEST_P(DateTimeStart, OfHourAndDay) {
  EXPECT_EQ(At(GetParam().moment).StartOfHour().ToIso(), GetParam().hour);
  EXPECT_EQ(At(GetParam().moment).StartOfDay().ToIso(), GetParam().day);
}

INSTANTIATE_TEST_SUITE_P(
    AnyMoment, DateTimeStart,
    testing::Values(Start{"2010-05-06T17:59:59.999", "2010-05-06T17:00:00", "2010-05-06T00:00:00"},
                    Start{"2010-05-06T00:00:00", "2010-05-06T00:00:00", "2010-05-06T00:00:00"},
                    Start{"1969-07-20T20:17:40", "1969-07-20T20:00:00", "1969-07-20T00:00:00"}));

TEST(DateTime, DefaultIsNever) {
  const DateTime never;
  EXPECT_TRUE(never.IsNever());
  EXPECT_EQ(never.ToIso(), "");
  EXPECT_TRUE(never.StartOfHour().IsNever());
  EXPECT_TRUE(never.StartOfDay().IsNever());
  EXPECT_LT(never, At("0001-01-01T00:00:00"));
  EXPECT_FALSE(DateTime::FromMilliseconds(0).IsNever());
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
