#include <gtest/gtest.h>

#include "RegionalForms.h"
#include "support/RegionalSettings.h"
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

TEST(DateTime, RefusesFieldsOutOfRangeAndOtherForms) {
  for (const CivilTime& civil :
       {CivilTime{0, 1, 1}, CivilTime{10000, 1, 1}, CivilTime{2010, 0, 1}, CivilTime{2010, 13, 1},
        CivilTime{2010, 1, 0}, CivilTime{2010, 2, 29}, CivilTime{2100, 2, 29},
        CivilTime{2010, 4, 31}, CivilTime{2010, 1, 1, 24}, CivilTime{2010, 1, 1, -1},
        CivilTime{2010, 1, 1, 0, 60}, CivilTime{2010, 1, 1, 0, 0, 60},
        CivilTime{2010, 1, 1, 0, 0, 0, 1000}}) {
    EXPECT_FALSE(DateTime::FromCivil(civil)) << civil.year << ' ' << civil.month;
  }
  for (const char* text :
       {"", "2010-01-02", "2010-01-02 03:04:05", "2010-01-02T03:04", "2010-01-02T03:04:05Z",
        "2010-01-02T03:04:05.1", "2010-01-02T03:04:05.1234", "2010-01-02T03:04:05,123",
        "2010-1-02T03:04:005", "+010-01-02T03:04:05", "2010-01-02T03:04:-5",
        "2010-02-30T00:00:00"}) {
    EXPECT_FALSE(DateTime::FromIso(text)) << text;
  }
}

TEST(DateTime, StartsOfHourAndDayAndSums) {
  EXPECT_EQ(At("1969-07-20T20:17:40").StartOfHour(), At("1969-07-20T20:00:00"));
  EXPECT_EQ(At("1969-07-20T20:17:40").StartOfDay(), At("1969-07-20T00:00:00"));
  const DateTime never;
  EXPECT_TRUE(never.IsNever());
  EXPECT_EQ(never.ToIso(), "");
  EXPECT_TRUE(never.StartOfHour().IsNever());
  EXPECT_TRUE(never.StartOfDay().IsNever());
  const DateTime start = At("2008-02-28T23:59:59.500");
  EXPECT_EQ(start.PlusMilliseconds(500).ToIso(), "2008-02-29T00:00:00");
  EXPECT_EQ(start.PlusSeconds(-60).ToIso(), "2008-02-28T23:58:59.500");
  EXPECT_EQ(start.PlusDays(-59).ToIso(), "2007-12-31T23:59:59.500");
}

TEST(FormatDateTime, WritesThePattern) {
  using Row = std::tuple<const char*, const char*, const char*>;
  for (const auto& [pattern, moment, text] :
       {Row{"h:mm:ss AP", "2010-03-07T00:05:09", "12:05:09 AM"},
        Row{"h:mm:ss AP", "2010-03-07T12:05:09", "12:05:09 PM"},
        Row{"hh AP", "2010-03-07T13:00:00", "01 PM"}, Row{"H:mm", "2010-03-07T03:04:05", "3:04"},
        Row{"yyyy-MM-ddTHH:mm:ss'.000Z'", "2010-03-07T03:04:05", "2010-03-07T03:04:05.000Z"},
        Row{"ddd MMM d, yyyy", "2010-03-07T03:04:05", "Sun Mar 7, 2010"},
        Row{"dddd MMMM", "2010-12-04T03:04:05", "Saturday December"},
        Row{"d'd' H'h'", "2010-12-06T03:04:05", "6d 3h"},
        Row{"h 'o''clock'", "2010-12-06T03:04:05", "3 o'clock"},
        Row{"''yyyy", "0099-12-06T03:04:05", "'0099"},
        Row{"d 'never closed yyyy", "2010-12-06T03:04:05", "6 never closed yyyy"}}) {
    EXPECT_EQ(FormatDateTime(RegionalSettings::UnitedStates(), At(moment), pattern), text);
  }
  EXPECT_EQ(FormatDateTime(RegionalSettings::UnitedStates(), DateTime(), "'text'"), "");
  EXPECT_EQ(FormatDateAndTime(RegionalSettings::UnitedStates(), DateTime()), "");
}

// Besides, every moment that tells hours, halves of the day and months apart comes back.
TEST(FormatDateAndTime, IsWrittenInEachRegionsFormAndReadBack) {
  using Row = std::tuple<RegionalSettings, const char*, const char*>;
  for (const auto& [regional, moment, text] :
       {Row{RegionalSettings::UnitedStates(), "2010-03-07T15:04:05", "3/7/2010 3:04:05 PM"},
        Row{Germany(), "2010-03-07T15:04:05", "07.03.2010 15:04:05"},
        Row{WithPatterns("ddMMyyyy", "HHmmss"), "2010-11-12T15:04:05", "12112010 150405"},
        Row{WithPatterns("d. M. yyyy ", "H:mm:ss"), "2010-11-12T05:04:05", "12. 11. 2010  5:04:05"},
        Row{WithPatterns("d.MM.yyyy 'г'.", "H:mm:ss 'ч'."), "2010-11-02T05:04:05",
            "2.11.2010 г. 5:04:05 ч."},
        Row{WithPatterns("yyyy'年'M'月'd'日'", "AP h:mm:ss", "오전", "오후"), "2010-11-02T15:04:05",
            "2010年11月2日 오후 3:04:05"},
        Row{WithPatterns("dddd, d MMMM yyyy", "HH:mm:ss"), "2010-05-31T00:00:00",
            "Monday, 31 May 2010 00:00:00"},
        Row{WithPatterns("ddd, d-MMM-yyyy", "hh:mm:ss\u202FAP"), "2010-05-31T12:00:00",
            "Mon, 31-May-2010 12:00:00\u202FPM"},
        Row{WithPatterns("M/d/yyyy", "h:mm:ss AP", "", "p.m."), "2010-05-31T13:00:00",
            "5/31/2010 1:00:00 p.m."}}) {
    EXPECT_EQ(FormatDateAndTime(regional, At(moment)), text);
    EXPECT_EQ(ParseDateAndTime(regional, text), At(moment)) << text;
    for (int hours = 0; hours < 366 * 24; hours += 5) {
      const DateTime other = At("2008-01-01T00:59:07").PlusHours(hours);
      const std::string written = FormatDateAndTime(regional, other);
      ASSERT_EQ(ParseDateAndTime(regional, written), other) << written;
    }
  }
}

TEST(ParseDateAndTime, AcceptsWhatPeopleAndSystemsVary) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  for (const char* text :
       {" 3/7/2010 3:04:05 PM\r\n", "3/7/2010 3:04:05 pm", "03/07/2010 03:04:05 PM",
        "3/7/2010 3:04:05\u202FPM", "3/7/2010\u00A03:04:05 Pm\t"}) {
    EXPECT_EQ(ParseDateAndTime(regional, text), At("2010-03-07T15:04:05")) << text;
  }
  // A missing time is midnight.
  EXPECT_EQ(ParseDateAndTime(regional, "3/7/2010"), At("2010-03-07T00:00:00"));
  EXPECT_EQ(ParseDateAndTime(WithPatterns("d. M. yyyy. ", "HH:mm"), " 7. 3. 2010. "),
            At("2010-03-07T00:00:00"));
}

TEST(ParseDateAndTime, RefusesWhatIsNone) {
  for (const char* text :
       {"", " ", "0", "garbage", "3/7", "3/7/", "3/7/10", "3/7/10 3:04:05 PM", "3/7/20100",
        "13/7/2010", "2/29/2010", "0/7/2010", "-3/7/2010", "3/7/-201", "3.7.2010", "3//2010"}) {
    EXPECT_FALSE(ParseDateAndTime(RegionalSettings::UnitedStates(), text)) << text;
  }
  for (const char* time :
       {" 3:04:05", " 3:04:05 XM", " 13:04:05 PM", " 0:04:05 AM", " 3:60:05 AM", " 3:04:60 AM",
        " 3:04 AM", " 3:04:05 PM x", "x3:04:05 PM", " 99999999999:04:05 PM", " \xFF\xC3"}) {
    const std::string text = std::string("3/7/2010") + time;
    EXPECT_FALSE(ParseDateAndTime(RegionalSettings::UnitedStates(), text)) << text;
  }
  const RegionalSettings regional = WithPatterns("dddd d MMM M yyyy", "HH:mm:ss");
  EXPECT_TRUE(ParseDateAndTime(regional, "Sunday 7 Mar 3 2010"));
  for (const char* contradiction : {"Monday 7 Mar 3 2010", "Sunday 7 Mar 4 2010"}) {
    EXPECT_FALSE(ParseDateAndTime(regional, contradiction)) << contradiction;
  }
  EXPECT_FALSE(ParseDateAndTime(WithPatterns("M/yyyy", "HH:mm:ss"), "3/2010 00:00:00"));
  EXPECT_FALSE(ParseDateAndTime(WithPatterns("", ""), "3/2010"));
}

}  // namespace
}  // namespace wattlark
