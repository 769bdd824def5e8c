#include <gtest/gtest.h>

#include <vector>

#include "support/RegistryValues.h"
#include "timezone/modTimeZone.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

clsSystemTime Relative(std::uint16_t month, std::uint16_t dayOfWeek, std::uint16_t occurrence,
                       std::uint16_t hour) {
  return {.wMonth = month, .wDayOfWeek = dayOfWeek, .wDay = occurrence, .wHour = hour};
}

clsSystemTime Absolute(int year, std::uint16_t month, std::uint16_t day) {
  return {.wYear = static_cast<std::uint16_t>(year), .wMonth = month, .wDay = day};
}

/// Five hours behind UTC; daylight time from the second Sunday of March to the first of November,
/// at 02:00.
clsTimeZoneInformation EasternRule() {
  return {300, 0, -60, Relative(11, 0, 1, 2), Relative(3, 0, 2, 2)};
}

TEST(clsTimeZoneInformation, HasEveryFieldAtItsPlace) {
  const std::vector<std::uint8_t> blob = {
      0x2C, 0x01, 0x00, 0x00,                          // Bias 300
      0x05, 0x04, 0x03, 0x02,                          // StandardBias 0x02030405
      0xC4, 0xFF, 0xFF, 0xFF,                          // DaylightBias -60
      0xEA, 0x07, 0x0B, 0x00, 0x06, 0x00, 0x01, 0x00,  // 2026-11, Saturday, 1
      0x02, 0x00, 0x1E, 0x00, 0x0F, 0x00, 0xE7, 0x03,  // 02:30:15.999
      0xFF, 0xFF, 0x00, 0x80, 0x01, 0x02, 0x03, 0x04,  // any bits at all
      0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C,
  };
  const clsTimeZoneInformation rule{
      300,
      0x02030405,
      -60,
      {2026, 11, 6, 1, 2, 30, 15, 999},
      {0xFFFF, 0x8000, 0x0201, 0x0403, 0x0605, 0x0807, 0x0A09, 0x0C0B}};
  EXPECT_EQ(rule.ToBlob(), blob);
  EXPECT_EQ(clsTimeZoneInformation::FromBlob(blob).value().ToBlob(), blob);
}

TEST(clsTimeZone, ChoosesTheRuleByYear) {
  clsTimeZone zone;
  zone.StandardRule = {1, 2, 3, Relative(1, 0, 1, 0), Relative(2, 0, 1, 0)};
  EXPECT_EQ(zone.Bias(2008), 1) << "without rules of years";
  zone.FirstTZI = 2006;
  zone.LastTZI = 2010;
  // 2008 has none, as after a reading that ended early.
  for (const int year : {2006, 2007, 2009, 2010}) {
    zone.AddDynamicTZI(year) = {year, year * 2, 0, {}, {}};
  }
  using Row = std::pair<int, int>;  // the year asked for, and whose rule answers; 0: the standard
  for (const auto& [year, rule] :
       {Row{1, 2006}, Row{2005, 2006}, Row{2006, 2006}, Row{2007, 2007}, Row{2008, 0},
        Row{2009, 2009}, Row{2010, 2010}, Row{2011, 2010}, Row{9999, 2010}, Row{0, 0}}) {
    EXPECT_EQ(zone.Bias(year), rule == 0 ? 1 : rule) << year;
    EXPECT_EQ(zone.StandardBias(year), rule == 0 ? 2 : rule * 2) << year;
  }
}

clsTimeZone ZoneOf(const clsTimeZoneInformation& rule) {
  clsTimeZone zone;
  zone.StandardRule = rule;
  return zone;
}

TEST(TransitionDate, IsAsInTheCalendar) {
  using Row = std::pair<clsSystemTime, const char*>;
  for (const auto& [rule, expected] :
       {Row{Relative(3, 0, 2, 2), "2026-03-08T02:00:00"},
        Row{Relative(11, 0, 1, 2), "2026-11-01T02:00:00"},  // the month begins on the day
        Row{Relative(11, 6, 1, 0), "2026-11-07T00:00:00"},
        Row{Relative(3, 0, 5, 1), "2026-03-29T01:00:00"},   // the last of five
        Row{Relative(10, 0, 5, 1), "2026-10-25T01:00:00"},  // the last of four
        Row{Relative(3, 0, 4, 1), "2026-03-22T01:00:00"},
        Row{Relative(12, 4, 5, 0), "2026-12-31T00:00:00"},
        Row{{0, 3, 0, 2, 23, 59, 58, 999}, "2026-03-08T23:59:58"},
        Row{Relative(3, 0, 2, 24), "2026-03-09T00:00:00"},
        Row{{2024, 2, 99, 29, 4, 5, 6, 7}, "2024-02-29T04:05:06"},
        // None.
        Row{{2026, 0, 0, 1, 0, 0, 0, 0}, ""}, Row{Relative(13, 0, 1, 0), ""},
        Row{Relative(3, 7, 1, 0), ""}, Row{Relative(3, 0, 0, 0), ""}, Row{Relative(3, 0, 6, 0), ""},
        Row{Absolute(2026, 2, 29), ""}, Row{Absolute(10000, 1, 1), ""}}) {
    EXPECT_EQ(TransitionDate(2026, rule).ToIso(), expected)
        << rule.wYear << ' ' << rule.wMonth << ' ' << rule.wDayOfWeek << ' ' << rule.wDay;
  }
  EXPECT_EQ(TransitionDate(2004, Relative(2, 0, 5, 0)).ToIso(), "2004-02-29T00:00:00");
  EXPECT_TRUE(TransitionDate(10000, Relative(3, 0, 1, 0)).IsNever());
}

TEST(LocalToUTC, TakesDaylightTimeOff) {
  const std::pair<const char*, const char*> cases[] = {
      {"2026-07-01T12:00:00", "2026-07-01T16:00:00"},
      {"2026-11-16T20:10:00", "2026-11-17T01:10:00"},
      {"2026-12-31T20:00:00", "2027-01-01T01:00:00"},
      {"2026-03-08T02:00:00", "2026-03-08T06:00:00"},
      {"2026-03-08T03:00:00", "2026-03-08T07:00:00"},
      // Within 0.864 s of the change a time counts as behind it.
      {"2026-03-08T01:59:59.136", "2026-03-08T06:59:59.136"},
      {"2026-03-08T01:59:59.137", "2026-03-08T05:59:59.137"},
      {"2026-11-01T01:59:59.135", "2026-11-01T05:59:59.135"},
      {"2026-11-01T01:59:59.136", "2026-11-01T06:59:59.136"},
      // The dates are those of the time's own year.
      {"2024-03-10T12:00:00", "2024-03-10T16:00:00"},
      {"2024-03-09T12:00:00", "2024-03-09T17:00:00"}};
  for (const auto& [local, utc] : cases) {
    EXPECT_EQ(LocalToUTC(At(local), ZoneOf(EasternRule())).ToIso(), utc);
  }
  EXPECT_TRUE(LocalToUTC(DateTime(), ZoneOf(EasternRule())).IsNever());
  EXPECT_FALSE(IsDaylightTime(DateTime(), ZoneOf(EasternRule()), false));
  // A span over the new year is not seen: Sydney's, from October to April.
  const clsTimeZone south = ZoneOf({-600, 0, -60, Relative(4, 0, 1, 3), Relative(10, 0, 1, 2)});
  EXPECT_EQ(LocalToUTC(At("2026-01-15T12:00:00"), south), At("2026-01-15T02:00:00"));
}

TEST(IsDaylightTime, OnlyTheRepeatedHourIsInDoubt) {
  const clsTimeZone zone = ZoneOf(EasternRule());
  using Case = std::tuple<const char*, bool, bool>;
  for (const auto& [local, asDaylight, asStandard] :
       {Case{"2026-11-01T00:59:59.136", true, true}, Case{"2026-11-01T00:59:59.137", true, false},
        Case{"2026-11-01T01:59:59.135", true, false}, Case{"2026-11-01T01:59:59.136", false, false},
        Case{"2026-07-01T00:00:00", true, true}, Case{"2026-01-01T00:00:00", false, false}}) {
    EXPECT_EQ(IsDaylightTime(At(local), zone, false), asDaylight) << local;
    EXPECT_EQ(IsDaylightTime(At(local), zone, true), asStandard) << local;
  }
}

TEST(LocalToUTC, TakesTheBiasOfNoYearAndTheDaylightBiasOfItsOwn) {
  clsTimeZone zone = ZoneOf(EasternRule());
  zone.FirstTZI = zone.LastTZI = 2026;
  zone.AddDynamicTZI(2026) = {300, 0, -60, {}, Relative(3, 0, 2, 2)};
  EXPECT_FALSE(IsDaylightTime(At("2026-07-01T12:00:00"), zone, false)) << "it has no end";
  zone.AddDynamicTZI(2026) = {300, 0, -60, Relative(11, 0, 1, 2), {}};
  EXPECT_TRUE(IsDaylightTime(At("2026-01-01T12:00:00"), zone, false)) << "always begun";
  zone.AddDynamicTZI(2026) = {9999, 8888, -30, Relative(11, 0, 1, 2), Relative(3, 0, 2, 2)};
  EXPECT_EQ(LocalToUTC(At("2026-12-01T12:00:00"), zone), At("2026-12-01T17:00:00"));
  EXPECT_EQ(LocalToUTC(At("2026-07-01T12:00:00"), zone), At("2026-07-01T16:30:00"));
}

RegistryValue Number(std::uint32_t number) {
  RegistryValue value{RegistryType::DWord, {}};
  for (const int shift : {0, 8, 16, 24}) {
    value.data.push_back(static_cast<std::uint8_t>(number >> shift & 0xFF));
  }
  return value;
}

RegistryValue Rule(std::int32_t bias = 300) {
  clsTimeZoneInformation rule = EasternRule();
  rule.Bias = bias;
  return {RegistryType::Binary, rule.ToBlob()};
}

class GetTimeZoneByNameTest : public testing::Test {
 protected:
  GetTimeZoneByNameTest() { Fill(); }

  void Fill() {
    registry_ = {};
    Write("Display", TextValue("(UTC-05:00) Eastern"));
    Write("Std", TextValue(std::string("Eastern Standard Time\0", 22)));
    Write("Dlt", TextValue("Eastern Daylight Time"));
    Write("MapID", TextValue("12,13"));
    Write("Index", Number(35));
    Write("TZI", Rule());
    WriteYear("FirstEntry", Number(2006));
    WriteYear("LastEntry", Number(2008));
    for (const int year : {2006, 2007, 2008}) WriteYear(std::to_string(year), Rule(year));
  }
  void Write(const std::string& name, const RegistryValue& value, const char* key = "") {
    registry_.Write(Hive::LocalMachine,
                    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\"
                    "Eastern Standard Time" +
                        std::string(key),
                    name, value);
  }
  void WriteYear(const std::string& name, const RegistryValue& value) {
    Write(name, value, "\\Dynamic DST");
  }
  clsTimeZone Read(const std::string& name = "Eastern Standard Time") {
    return GetTimeZoneByName(modRegistry(registry_), name);
  }

  MemoryRegistry registry_;
};

TEST_F(GetTimeZoneByNameTest, ReadsEverything) {
  const clsTimeZone zone = Read("  Eastern Standard Time ");
  EXPECT_EQ(zone.DisplayName, "(UTC-05:00) Eastern");
  EXPECT_EQ(zone.StandardName, "Eastern Standard Time");
  EXPECT_EQ(zone.DaylightName, "Eastern Daylight Time");
  EXPECT_EQ(zone.MapID, "12,13");
  EXPECT_EQ(zone.Index, 35);
  EXPECT_EQ(zone.StandardRule.ToBlob(), EasternRule().ToBlob());
  EXPECT_EQ(zone.FirstTZI, 2006);
  EXPECT_EQ(zone.LastTZI, 2008);
  EXPECT_EQ(zone.DynamicTZI.size(), 3u);
  for (const int year : {2006, 2007, 2008}) EXPECT_EQ(zone.Bias(year), year);
}

TEST_F(GetTimeZoneByNameTest, WhatIsBrokenEndsTheReadingAndLeavesWhatWasBefore) {
  const auto bytes = [](std::size_t length) {
    return RegistryValue{RegistryType::Binary, std::vector<std::uint8_t>(length, 1)};
  };
  using Row = std::tuple<const char*, RegistryValue>;
  for (const auto& [name, value] :
       {Row{"TZI", TextValue(std::string(44, 'x'))}, Row{"TZI", Number(44)}, Row{"TZI", bytes(0)},
        Row{"TZI", bytes(43)}, Row{"TZI", bytes(45)}, Row{"2007", bytes(43)},
        Row{"FirstEntry", TextValue("2006")}, Row{"LastEntry", TextValue("2008")},
        Row{"FirstEntry", {RegistryType::DWord, {1, 2, 3}}}, Row{"FirstEntry", Number(2009)},
        Row{"FirstEntry", Number(2005)}, Row{"LastEntry", Number(4'000'000'000)},
        Row{"FirstEntry", Number(0x80000000)}}) {
    SCOPED_TRACE(name);
    Fill();
    const bool isRule = std::string(name) == "TZI";
    Write(name, value, isRule ? "" : "\\Dynamic DST");
    const clsTimeZone zone = Read();
    EXPECT_EQ(zone.Index, 35);
    EXPECT_EQ(zone.StandardRule.ToBlob(),
              (isRule ? clsTimeZoneInformation() : EasternRule()).ToBlob());
    if (isRule) {
      EXPECT_EQ(zone.FirstTZI, 0);
    }
    EXPECT_EQ(zone.Bias(2008), isRule ? 0 : 300);
    const bool isYear = std::string(name) == "2007";
    EXPECT_EQ(zone.DynamicTZI.size(), isYear ? 1u : 0u);
    EXPECT_EQ(zone.Bias(2006), isRule ? 0 : isYear ? 2006 : 300);
  }
}

TEST_F(GetTimeZoneByNameTest, WithoutTextsThereAreRulesAndWithoutAKeyNothing) {
  for (const char* name : {"Display", "Std", "Dlt", "MapID", "Index"}) {
    Write(name, {RegistryType::Binary, {1, 2}});
  }
  EXPECT_EQ(Read().DisplayName + Read().StandardName + Read().MapID, "");
  EXPECT_EQ(Read().Index, 0);
  EXPECT_EQ(Read().DynamicTZI.size(), 3u);
  EXPECT_FALSE(Read("Nowhere").ObserveDST());
  EXPECT_EQ(LocalToUTC(At("2026-07-01T12:00:00"), Read("Nowhere")), At("2026-07-01T12:00:00"));
}

}  // namespace
}  // namespace wattlark
