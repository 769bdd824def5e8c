#include <gtest/gtest.h>

#include <vector>

#include "RegionalForms.h"
#include "support/RegionalSettings.h"

namespace wattlark {
namespace {

DateTime At(const char* iso) {
  return DateTime::FromIso(iso).value();
}

struct PatternCase {
  const char* pattern;
  const char* moment;
  const char* text;
};

class FormatDateTimeTest : public testing::TestWithParam<PatternCase> {};

TEST_P(FormatDateTimeTest, WritesThePattern) {
  EXPECT_EQ(
      FormatDateTime(RegionalSettings::UnitedStates(), At(GetParam().moment), GetParam().pattern),
      GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, FormatDateTimeTest,
    testing::Values(PatternCase{"h:mm:ss AP", "2010-03-07T00:05:09", "12:05:09 AM"},
                    PatternCase{"h:mm:ss AP", "2010-03-07T12:05:09", "12:05:09 PM"},
                    PatternCase{"hh AP", "2010-03-07T13:00:00", "01 PM"},
                    PatternCase{"H:mm", "2010-03-07T03:04:05", "3:04"},
                    PatternCase{"HH", "2010-03-07T03:04:05", "03"},
                    PatternCase{"yyyy-MM-ddTHH:mm:ss'.000Z'", "2010-03-07T03:04:05",
                                "2010-03-07T03:04:05.000Z"},
                    PatternCase{"ddd MMM d, yyyy", "2010-03-07T03:04:05", "Sun Mar 7, 2010"},
                    PatternCase{"dddd", "2010-03-06T03:04:05", "Saturday"},
                    PatternCase{"MMMM yyyy", "2010-12-06T03:04:05", "December 2010"},
                    PatternCase{"d'd' H'h'", "2010-12-06T03:04:05", "6d 3h"},
                    PatternCase{"h 'o''clock'", "2010-12-06T03:04:05", "3 o'clock"},
                    PatternCase{"''yyyy", "0099-12-06T03:04:05", "'0099"},
                    PatternCase{"d 'never closed yyyy", "2010-12-06T03:04:05",
                                "6 never closed yyyy"},
                    PatternCase{"", "2010-12-06T03:04:05", ""}));

struct RegionCase {
  RegionalSettings regional;
  const char* moment;
  const char* text;
};

class DateAndTimeTest : public testing::TestWithParam<RegionCase> {};

TEST_P(DateAndTimeTest, IsWrittenAndReadBack) {
  const RegionCase& region = GetParam();
  EXPECT_EQ(FormatDateAndTime(region.regional, At(region.moment)), region.text);
  EXPECT_EQ(ParseDateAndTime(region.regional, region.text), At(region.moment)) << region.text;
}

INSTANTIATE_TEST_SUITE_P(
    Regions, DateAndTimeTest,
    testing::Values(
        RegionCase{RegionalSettings::UnitedStates(), "2010-03-07T15:04:05", "3/7/2010 3:04:05 PM"},
        RegionCase{Germany(), "2010-03-07T15:04:05", "07.03.2010 15:04:05"},
        RegionCase{France(), "2010-03-07T05:04:05", "07/03/2010 05:04:05"},
        RegionCase{WithPatterns("ddMMyyyy", "HHmmss"), "2010-11-12T15:04:05", "12112010 150405"},
        RegionCase{WithPatterns("d. M. yyyy", "H:mm:ss"), "2010-11-12T05:04:05",
                   "12. 11. 2010 5:04:05"},
        RegionCase{WithPatterns("d.MM.yyyy 'г'.", "H:mm:ss 'ч'."), "2010-11-02T05:04:05",
                   "2.11.2010 г. 5:04:05 ч."},
        RegionCase{WithPatterns("yyyy. M. d.", "AP h:mm:ss", "오전", "오후"), "2010-11-02T15:04:05",
                   "2010. 11. 2. 오후 3:04:05"},
        RegionCase{WithPatterns("d/M/yyyy", "h:mm:ss AP", "π.μ.", "μ.μ."), "2010-11-02T00:04:05",
                   "2/11/2010 12:04:05 π.μ."},
        RegionCase{WithPatterns("dddd, d MMMM yyyy", "HH:mm:ss"), "2010-05-31T00:00:00",
                   "Monday, 31 May 2010 00:00:00"},
        RegionCase{WithPatterns("d-MMM-yyyy", "h:mm:ss\u202FAP"), "2010-05-31T12:00:00",
                   "31-May-2010 12:00:00\u202FPM"},
        RegionCase{WithPatterns("yyyy-MM-dd", "h:mm:ss AP", "M", "MM"), "2010-05-31T13:00:00",
                   "2010-05-31 1:00:00 MM"}));

/// Every moment that tells hours, halves of the day and months apart, in many patterns.
class DateAndTimeRoundTrip : public testing::TestWithParam<RegionalSettings> {};

TEST_P(DateAndTimeRoundTrip, KeepsEveryHourAndMonth) {
  const RegionalSettings& regional = GetParam();
  for (int hours = 0; hours < 366 * 24; hours += 5) {
    const DateTime moment = At("2008-01-01T00:59:07").PlusHours(hours);
    const std::string text = FormatDateAndTime(regional, moment);
    ASSERT_EQ(ParseDateAndTime(regional, text), moment) << text;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, DateAndTimeRoundTrip,
    testing::Values(RegionalSettings::UnitedStates(), Germany(), France(),
                    WithPatterns("d/M/yyyy", "H:mm:ss"), WithPatterns("yyyy-MM-dd", "HH:mm:ss"),
                    WithPatterns("dd MMM yyyy", "hh:mm:ss AP"),
                    WithPatterns("ddd, MMMM d, yyyy", "AP hh:mm:ss", "上午", "下午"),
                    WithPatterns("M/d/yyyy", "h:mm:ss AP", "", "p.m."),
                    WithPatterns("yyyy'年'M'月'd'日'", "H'時'mm'分'ss'秒'"),
                    WithPatterns("d. M. yyyy ", "HH:mm:ss ")));

TEST(ParseDateAndTime, AcceptsWhatPeopleAndSystemsVary) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  const DateTime expected = At("2010-03-07T15:04:05");
  for (const char* text :
       {" 3/7/2010 3:04:05 PM\r\n", "3/7/2010 3:04:05 pm", "03/07/2010 03:04:05 PM",
        "3/7/2010 3:04:05\u202FPM", "3/7/2010\u00A03:04:05 Pm\t"}) {
    EXPECT_EQ(ParseDateAndTime(regional, text), expected) << text;
  }
}

TEST(ParseDateAndTime, TakesAMissingTimeAsMidnight) {
  EXPECT_EQ(ParseDateAndTime(RegionalSettings::UnitedStates(), "3/7/2010"),
            At("2010-03-07T00:00:00"));
  EXPECT_EQ(ParseDateAndTime(WithPatterns("d. M. yyyy. ", "HH:mm"), " 7. 3. 2010. "),
            At("2010-03-07T00:00:00"));
}

class BadDateAndTime : public testing::TestWithParam<const char*> {};

TEST_P(BadDateAndTime, IsRefused) {
  EXPECT_FALSE(ParseDateAndTime(RegionalSettings::UnitedStates(), GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BadDateAndTime,
    testing::Values("", " ", "0", "garbage", "3/7", "3/7/", "3/7/10", "3/7/10 3:04:05 PM",
                    "3/7/20100", "13/7/2010", "2/29/2010", "0/7/2010", "-3/7/2010", "3/7/-201",
                    "3.7.2010", "3/7/2010 3:04:05", "3/7/2010 3:04:05 XM", "3/7/2010 13:04:05 PM",
                    "3/7/2010 0:04:05 AM", "3/7/2010 3:60:05 AM", "3/7/2010 3:04:60 AM",
                    "3/7/2010 3:04 AM", "3/7/2010 3:04:05 PM x", "3/7/2010x3:04:05 PM",
                    "3/7/2010 99999999999:04:05 PM", "3/7/2010 \xFF\xC3", "3//2010"));

TEST(ParseDateAndTime, RefusesContradictions) {
  const RegionalSettings regional = WithPatterns("dddd d MMM M yyyy", "HH:mm:ss");
  EXPECT_TRUE(ParseDateAndTime(regional, "Sunday 7 Mar 3 2010 00:00:00"));
  EXPECT_FALSE(ParseDateAndTime(regional, "Monday 7 Mar 3 2010 00:00:00"));
  EXPECT_FALSE(ParseDateAndTime(regional, "Sunday 7 Mar 4 2010 00:00:00"));
  EXPECT_FALSE(ParseDateAndTime(regional, "Someday 7 Mar 3 2010 00:00:00"));
}

TEST(ParseDateAndTime, RefusesAPatternWithoutAWholeDate) {
  EXPECT_FALSE(ParseDateAndTime(WithPatterns("M/yyyy", "HH:mm:ss"), "3/2010 00:00:00"));
  EXPECT_FALSE(ParseDateAndTime(WithPatterns("", ""), "3/2010"));
}

TEST(RegionalSettings, NeverIsEmptyEverywhere) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  EXPECT_EQ(FormatDateTime(regional, DateTime(), "'text'"), "");
  EXPECT_EQ(FormatShortDate(regional, DateTime()), "");
  EXPECT_EQ(FormatLongTime(regional, DateTime()), "");
  EXPECT_EQ(FormatDateAndTime(regional, DateTime()), "");
}

}  // namespace
}  // namespace wattlark
