#include <gtest/gtest.h>

#include <QDateTime>
#include <QTimeZone>
#include <string>

#include "ZoneScope.h"
#include "platform/qt/SystemTimeZone.h"
#include "timezone/modTimeZone.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

constexpr std::int64_t kHour = 3'600'000;

/// A zone of the system's data, and rules made of it.
class ZoneUnderTest {
 public:
  explicit ZoneUnderTest(const QByteArray& id) : zone_(id) {}

  bool IsValid() const { return zone_.isValid(); }
  std::int64_t Offset(std::int64_t utc) const {
    return zone_.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC)) * std::int64_t{1000};
  }
  /// Made with ten years on either side, as the program does.
  clsTimeZone RulesAt(DateTime now) const {
    const int year = now.Civil().year;
    TimeZoneRegistry registry;
    registry.Serve(
        "Zone", {},
        MakeTimeZoneRules(OffsetsOf(zone_, year - 10, year + 10), year - 10, year + 10, now));
    return GetTimeZoneByName(modRegistry(registry), "Zone");
  }
  /// Whether another moment shows the same local time.
  bool IsRepeated(std::int64_t utc) const {
    const std::int64_t local = utc + Offset(utc);
    for (const std::int64_t aside : {-25 * kHour, 25 * kHour}) {
      const std::int64_t other = local - Offset(utc + aside);
      if (other != utc && other + Offset(other) == local) return true;
    }
    return false;
  }

 private:
  QTimeZone zone_;
};

std::int64_t NewYear(int year) {
  return DateTime::FromCivil({.year = year})->Milliseconds();
}

// From the zones' laws, not from the data that the program reads.
TEST(SystemTimeZone, ConvertsAsTheLawsSay) {
  struct KnownMoment {
    const char *zone, *local, *utc;
  };
  for (const KnownMoment& known : {
           KnownMoment{"America/New_York", "2026-11-01T01:30:00", "2026-11-01T05:30:00"},
           KnownMoment{"Europe/Berlin", "2026-03-29T03:00:00", "2026-03-29T01:00:00"},
           KnownMoment{"Europe/Dublin", "2026-07-01T12:00:00", "2026-07-01T11:00:00"},
           KnownMoment{"Europe/Dublin", "2026-12-01T12:00:00", "2026-12-01T12:00:00"},
           KnownMoment{"Australia/Sydney", "2026-01-15T12:00:00", "2026-01-15T01:00:00"},
           KnownMoment{"Australia/Sydney", "2026-07-15T12:00:00", "2026-07-15T02:00:00"},
           KnownMoment{"Australia/Lord_Howe", "2026-07-15T12:00:00", "2026-07-15T01:30:00"},
           // The day before the one that Samoa left out, and the day after it.
           KnownMoment{"Pacific/Apia", "2011-12-29T12:00:00", "2011-12-29T22:00:00"},
           KnownMoment{"Pacific/Apia", "2011-12-31T12:00:00", "2011-12-30T22:00:00"},
       }) {
    const clsTimeZone rules = ZoneUnderTest(known.zone).RulesAt(At(known.local));
    EXPECT_EQ(LocalToUTC(At(known.local), rules).ToIso(), known.utc)
        << known.zone << " " << known.local;
  }
}

// Wherever one set of rules cannot hold a whole year, the one made at the moment is right.
TEST(SystemTimeZone, EveryZoneOfTheSystemIsRightAtTheMomentOfAConversion) {
  const QList<QByteArray> ids = QTimeZone::availableTimeZoneIds();
  ASSERT_GT(ids.size(), 300);
  for (const QByteArray& id : ids) {
    const ZoneUnderTest zone(id);
    for (const int year : {2011, 2016, 2026, 2030}) {
      const clsTimeZone rules = zone.RulesAt(*DateTime::FromCivil({.year = year, .month = 7}));
      for (std::int64_t utc = NewYear(year); utc < NewYear(year + 1); utc += 13 * kHour) {
        const auto local = DateTime::FromMilliseconds(utc + zone.Offset(utc));
        if (local.Civil().year == year && LocalToUTC(local, rules).Milliseconds() == utc) continue;
        if (zone.IsRepeated(utc)) continue;
        ASSERT_EQ(LocalToUTC(local, zone.RulesAt(local)), DateTime::FromMilliseconds(utc))
            << id.constData() << " " << local.ToIso();
      }
    }
  }
}

TEST(SystemTimeZone, FollowsTheSystemsSetting) {
  ZoneScope setting("Australia/Sydney");
  HandClock clock;
  clock.now = At("2026-01-15T12:00:00");
  SystemTimeZone source(clock);
  const std::string key = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\";

  ASSERT_EQ(source.CurrentZone(), "Australia/Sydney");
  auto zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_EQ(zone->FirstTZI, 2016);
  EXPECT_EQ(zone->LastTZI, 2036);
  EXPECT_NE(zone->StandardName, "");
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T01:00:00"));

  setting.Set("America/New_York");
  zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_NE(zone->DisplayName.find("America/New_York"), std::string::npos) << zone->DisplayName;
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T17:00:00"));
  EXPECT_FALSE(source.Zones().KeyExists(Hive::LocalMachine, key + "Australia/Sydney"));
}

TEST(SystemTimeZone, OffsetAloneServesWhereTheZoneHasNoName) {
  ZoneScope setting("");
  HandClock clock;
  SystemTimeZone source(clock);
  using Row = std::pair<const char*, int>;  // minutes behind UTC
  for (const auto& [zone, bias] : {Row{":/usr/share/zoneinfo/Asia/Kolkata", -330},
                                   Row{"<-0330>3:30", 210}, Row{"Nowhere/Land", 0}, Row{"", 0}}) {
    setting.Set(zone);
    ASSERT_TRUE(source.CurrentZone()) << zone;
    EXPECT_EQ(LocalToUTC(clock.now, *GetCurrentTimeZone(source)), clock.now.PlusMinutes(bias))
        << zone;
  }
  // Any year of the clock is served.
  for (const char* now : {"0001-01-01T00:00:00", "1850-06-01T00:00:00", "9999-12-31T23:59:59"}) {
    clock.now = At(now);
    EXPECT_TRUE(source.CurrentZone()) << now;
    EXPECT_TRUE(GetCurrentTimeZone(source)) << now;
  }
}

}  // namespace
}  // namespace wattlark
