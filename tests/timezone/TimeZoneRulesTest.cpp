#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "timezone/TimeZoneRegistry.h"
#include "timezone/TimeZoneRules.h"
#include "timezone/modTimeZone.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using Change = std::pair<const char*, int>;  // at a moment in UTC, to an offset

ZoneOffsets Zone(int firstOffset, const std::vector<Change>& changes) {
  ZoneOffsets zone;
  zone.firstOffset = firstOffset;
  for (const auto& [utc, offset] : changes) zone.changes.push_back({At(utc), offset});
  return zone;
}

/// Rules made at `now`, as a conversion reads them.
clsTimeZone RulesAt(const ZoneOffsets& zone, int firstYear, int lastYear, DateTime now) {
  TimeZoneRegistry registry;
  registry.Serve("Test/Zone", {}, MakeTimeZoneRules(zone, firstYear, lastYear, now));
  return GetTimeZoneByName(modRegistry(registry), "Test/Zone");
}

int OffsetAt(const ZoneOffsets& zone, DateTime utc) {
  int offset = zone.firstOffset;
  for (const OffsetChange& change : zone.changes) {
    if (change.utc <= utc) offset = change.offset;
  }
  return offset;
}

bool IsRepeated(const ZoneOffsets& zone, DateTime local) {
  int before = zone.firstOffset;
  for (const OffsetChange& change : zone.changes) {
    if (local >= change.utc.PlusMinutes(change.offset) && local < change.utc.PlusMinutes(before)) {
      return true;
    }
    before = change.offset;
  }
  return false;
}

/// At every hour of a span (UTC), and on either side of each change, the rules that are made at
/// `rulesAt` (local) give the moment back.
void ExpectRight(const ZoneOffsets& zone, int firstYear, int lastYear, DateTime from, DateTime to,
                 const char* rulesAt) {
  std::vector<DateTime> moments;
  for (DateTime utc = from; utc < to; utc = utc.PlusHours(1)) moments.push_back(utc);
  for (const OffsetChange& change : zone.changes) {
    for (const int milliseconds : {-1000, -1, 0, 1, 1000}) {
      const DateTime utc = change.utc.PlusMilliseconds(milliseconds);
      if (utc >= from && utc < to) moments.push_back(utc);
    }
  }
  const clsTimeZone rules = RulesAt(zone, firstYear, lastYear, At(rulesAt));
  for (const DateTime utc : moments) {
    const DateTime local = utc.PlusMinutes(OffsetAt(zone, utc));
    if (IsRepeated(zone, local)) continue;
    ASSERT_EQ(LocalToUTC(local, rules).ToIso(), utc.ToIso()) << "local time " << local.ToIso();
  }
}

TEST(TimeZoneRules, OfWholeYearsAreRightWheneverTheyWereMade) {
  // The years from whose first to whose last they are right.
  const std::tuple<const char*, ZoneOffsets, int, int> cases[] = {
      {"constant", Zone(345, {}), 2025, 2027},
      {"northern summer",
       Zone(-300, {{"2025-03-09T07:00:00", -240},
                   {"2025-11-02T06:00:00", -300},
                   {"2026-03-08T07:00:00", -240},
                   {"2026-11-01T06:00:00", -300}}),
       2025, 2027},
      {"southern summer of half an hour",
       Zone(660, {{"2026-04-04T15:00:00", 630}, {"2026-10-03T15:30:00", 660}}), 2026, 2026},
      {"forward for good", Zone(60, {{"2026-06-01T00:00:00", 120}}), 2025, 2027},
      {"back for good", Zone(60, {{"2026-06-01T00:00:00", -120}}), 2025, 2027},
      {"summers end for good",
       Zone(60, {{"2025-03-30T01:00:00", 120},
                 {"2025-10-26T01:00:00", 60},
                 {"2026-03-29T01:00:00", 120}}),
       2025, 2028},
      {"summers begin",
       Zone(120, {{"2026-10-25T01:00:00", 60},
                  {"2027-03-28T01:00:00", 120},
                  {"2027-10-31T01:00:00", 60}}),
       2025, 2028},
      {"another offset in each year",
       Zone(180, {{"2025-12-31T21:00:00", 240}, {"2026-12-31T20:00:00", 120}}), 2025, 2027},
      {"an hour forward at the new year", Zone(-60, {{"2026-01-01T00:30:00", 0}}), 2025, 2026},
      {"a day left out", Zone(-600, {{"2026-12-31T10:00:00", 840}}), 2025, 2027},
      {"a change of the name alone",
       Zone(60, {{"2026-03-29T01:00:00", 120},
                 {"2026-05-01T01:00:00", 120},
                 {"2026-10-25T01:00:00", 60}}),
       2026, 2026}};
  for (const auto& [name, zone, firstYear, lastYear] : cases) {
    SCOPED_TRACE(name);
    const DateTime from = *DateTime::FromCivil({.year = firstYear});
    const DateTime to = *DateTime::FromCivil({.year = lastYear + 1});
    for (const char* now : {"2026-01-01T00:00:00", "2026-07-01T12:00:00", "2026-12-31T23:59:59"}) {
      ExpectRight(zone, firstYear, lastYear, from.PlusMinutes(-zone.firstOffset),
                  to.PlusMinutes(-OffsetAt(zone, to)), now);
    }
  }
}

TEST(TimeZoneRules, KeepAsMuchOfThePresentYearAsCanBeKept) {
  // Two fasting months in one year: the ten days of the second are the least to lose, unless it is
  // the present one.
  const ZoneOffsets zone = Zone(60, {{"2030-01-20T02:00:00", 0},
                                     {"2030-02-10T02:00:00", 60},
                                     {"2030-12-22T02:00:00", 0},
                                     {"2031-01-26T02:00:00", 60}});
  ExpectRight(zone, 2029, 2031, At("2029-01-01T00:00:00"), At("2030-12-22T02:00:00"),
              "2030-07-01T12:00:00");
  ExpectRight(zone, 2029, 2031, At("2030-01-20T02:00:00"), At("2031-12-31T00:00:00"),
              "2030-12-24T12:00:00");
}

TEST(TimeZoneRules, RepeatedTimesAreThoseBeforeTheChangeAndTimesOutsideTakeTheNearest) {
  const ZoneOffsets southern =
      Zone(660, {{"2026-04-04T16:00:00", 600}, {"2026-10-03T16:00:00", 660}});
  const ZoneOffsets northern =
      Zone(-300, {{"2026-03-08T07:00:00", -240}, {"2026-11-01T06:00:00", -300}});
  using Row = std::tuple<ZoneOffsets, const char*, const char*, const char*>;
  for (const auto& [zone, now, local, utc] :
       {Row{southern, "2026-04-05T02:30:00", "2026-04-05T02:30:00", "2026-04-04T15:30:00"},
        Row{northern, "2026-11-01T01:30:00", "2026-11-01T01:30:00", "2026-11-01T05:30:00"},
        Row{northern, "1999-07-01T00:00:00", "2026-07-01T12:00:00", "2026-07-01T16:00:00"},
        Row{northern, "2050-07-01T00:00:00", "2026-12-01T12:00:00", "2026-12-01T17:00:00"}}) {
    EXPECT_EQ(LocalToUTC(At(local), RulesAt(zone, 2026, 2026, At(now))), At(utc)) << now;
  }
}

TEST(TimeZoneRegistry, HasOneZoneAndRefusesChanges) {
  TimeZoneRegistry registry;
  constexpr Hive kMachine = Hive::LocalMachine;
  const std::string root = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";
  EXPECT_FALSE(registry.KeyExists(kMachine, root));
  registry.Serve("Old/Zone", {}, {});
  registry.Serve("New/Zone", {"shown", "standard", "daylight"}, {{}, 2025, {{}, {}}});
  EXPECT_EQ(registry.SubKeys(kMachine, root), std::vector<std::string>{"New/Zone"});
  EXPECT_FALSE(registry.KeyExists(Hive::CurrentUser, root));
  EXPECT_EQ(registry.Values(kMachine, root + "\\New/Zone\\Dynamic DST").size(), 4u);
  EXPECT_FALSE(registry.Read(kMachine, root + "\\Old/Zone", "Std"));
  EXPECT_FALSE(registry.Read(kMachine, root + "\\New/Zone", "Nothing"));
  EXPECT_TRUE(registry.Values(kMachine, root).empty());
  EXPECT_TRUE(registry.SubKeys(Hive::CurrentUser, root).empty());
  EXPECT_FALSE(registry.Write(kMachine, root + "\\New/Zone", "Std", {}));
  EXPECT_FALSE(registry.DeleteKey(kMachine, root + "\\New/Zone\\Dynamic DST"));
  const clsTimeZone zone = GetTimeZoneByName(modRegistry(registry), "new/zone");
  EXPECT_EQ(zone.DisplayName + zone.StandardName + zone.DaylightName, "shownstandarddaylight");
  EXPECT_EQ(zone.LastTZI, 2026);
}

}  // namespace
}  // namespace wattlark
