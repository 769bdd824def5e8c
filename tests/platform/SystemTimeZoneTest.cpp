#include <gtest/gtest.h>

#include <QDateTime>
#include <QTimeZone>
#include <algorithm>
#include <string>

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

class ZoneHours : public testing::TestWithParam<const char*> {};

// With the rules made in the middle of each year, every hour of that year is right.
TEST_P(ZoneHours, ConvertAsTheSystemDoes) {
  const ZoneUnderTest zone(GetParam());
  ASSERT_TRUE(zone.IsValid());
  for (int year = 2022; year <= 2028; ++year) {
    const clsTimeZone rules = zone.RulesAt(*DateTime::FromCivil({.year = year, .month = 7}));
    int repeated = 0;
    for (std::int64_t utc = NewYear(year) - 14 * kHour; utc < NewYear(year + 1) + 12 * kHour;
         utc += kHour) {
      const auto local = DateTime::FromMilliseconds(utc + zone.Offset(utc));
      if (local.Civil().year != year) continue;
      const DateTime converted = LocalToUTC(local, rules);
      if (converted.Milliseconds() == utc) continue;
      ASSERT_TRUE(zone.IsRepeated(utc)) << local.ToIso() << " gave " << converted.ToIso();
      ++repeated;
    }
    EXPECT_LE(repeated, 2) << year;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Zones, ZoneHours,
    testing::Values("UTC", "Africa/Cairo", "Africa/Casablanca", "Africa/El_Aaiun", "Africa/Juba",
                    "America/Asuncion", "America/Caracas", "America/Havana", "America/Mexico_City",
                    "America/New_York", "America/Nuuk", "America/Santiago", "America/Scoresbysund",
                    "America/St_Johns", "Antarctica/Troll", "Antarctica/Vostok", "Asia/Almaty",
                    "Asia/Beirut", "Asia/Gaza", "Asia/Kathmandu", "Asia/Kolkata", "Asia/Tehran",
                    "Australia/Lord_Howe", "Australia/Sydney", "Europe/Berlin", "Europe/Dublin",
                    "Europe/London", "Pacific/Apia", "Pacific/Auckland", "Pacific/Chatham",
                    "Pacific/Kiritimati", "Pacific/Marquesas"),
    [](const auto& test) {
      std::string name = test.param;
      std::replace(name.begin(), name.end(), '/', '_');
      return name;
    });

struct KnownMoment {
  const char* zone;
  const char* local;
  const char* utc;
};

// From the zones' laws, not from the data that the program reads.
TEST(SystemTimeZone, ConvertsAsTheLawsSay) {
  for (const KnownMoment& known : {
           KnownMoment{"America/New_York", "2026-07-01T12:00:00", "2026-07-01T16:00:00"},
           KnownMoment{"America/New_York", "2026-11-01T01:30:00", "2026-11-01T05:30:00"},
           KnownMoment{"Europe/Berlin", "2026-03-29T03:00:00", "2026-03-29T01:00:00"},
           KnownMoment{"Europe/Dublin", "2026-07-01T12:00:00", "2026-07-01T11:00:00"},
           KnownMoment{"Europe/Dublin", "2026-12-01T12:00:00", "2026-12-01T12:00:00"},
           KnownMoment{"Australia/Sydney", "2026-01-15T12:00:00", "2026-01-15T01:00:00"},
           KnownMoment{"Australia/Sydney", "2026-07-15T12:00:00", "2026-07-15T02:00:00"},
           KnownMoment{"Australia/Sydney", "2026-12-15T12:00:00", "2026-12-15T01:00:00"},
           KnownMoment{"Australia/Lord_Howe", "2026-07-15T12:00:00", "2026-07-15T01:30:00"},
           KnownMoment{"Pacific/Chatham", "2026-01-15T12:00:00", "2026-01-14T22:15:00"},
           KnownMoment{"America/St_Johns", "2026-07-01T12:00:00", "2026-07-01T14:30:00"},
           KnownMoment{"Asia/Kathmandu", "2026-07-01T12:00:00", "2026-07-01T06:15:00"},
           KnownMoment{"Pacific/Kiritimati", "2026-07-01T12:00:00", "2026-06-30T22:00:00"},
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

/// Sets the process's zone for as long as it lives.
class ZoneSetting {
 public:
  ZoneSetting() : before_(qgetenv("TZ")), wasSet_(qEnvironmentVariableIsSet("TZ")) {}
  ~ZoneSetting() {
    if (wasSet_) {
      qputenv("TZ", before_);
    } else {
      qunsetenv("TZ");
    }
  }
  ZoneSetting(const ZoneSetting&) = delete;
  ZoneSetting& operator=(const ZoneSetting&) = delete;

  static void Set(const char* zone) { qputenv("TZ", zone); }

 private:
  QByteArray before_;
  bool wasSet_;
};

TEST(SystemTimeZone, FollowsTheSystemsSetting) {
  const ZoneSetting setting;
  HandClock clock;
  clock.now = At("2026-01-15T12:00:00");
  SystemTimeZone source(clock);
  const std::string key = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\";

  ZoneSetting::Set("Australia/Sydney");
  ASSERT_EQ(source.CurrentZone(), "Australia/Sydney");
  EXPECT_TRUE(source.Zones().KeyExists(Hive::LocalMachine, key + "Australia/Sydney"));
  auto zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_EQ(zone->FirstTZI, 2016);
  EXPECT_EQ(zone->LastTZI, 2036);
  EXPECT_NE(zone->StandardName, "");
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T01:00:00"));

  ZoneSetting::Set("America/New_York");
  zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_NE(zone->DisplayName.find("America/New_York"), std::string::npos) << zone->DisplayName;
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T17:00:00"));
  EXPECT_FALSE(source.Zones().KeyExists(Hive::LocalMachine, key + "Australia/Sydney"));
}

TEST(SystemTimeZone, OffsetAloneServesWhereTheZoneHasNoName) {
  const ZoneSetting setting;
  HandClock clock;
  clock.now = At("2026-07-01T12:00:00");
  SystemTimeZone source(clock);
  ZoneSetting::Set(":/usr/share/zoneinfo/Asia/Kolkata");
  ASSERT_TRUE(source.CurrentZone());
  EXPECT_EQ(LocalToUTC(clock.now, *GetCurrentTimeZone(source)), At("2026-07-01T06:30:00"));
  for (const char* zone : {"<-0330>3:30", "Nowhere/Land", ""}) {
    ZoneSetting::Set(zone);
    ASSERT_TRUE(source.CurrentZone()) << zone;
    const DateTime utc = LocalToUTC(clock.now, *GetCurrentTimeZone(source));
    EXPECT_EQ(utc, clock.now.PlusMinutes(*zone == '<' ? 210 : 0)) << zone;
  }
}

TEST(SystemTimeZone, AnyYearOfTheClockIsServed) {
  HandClock clock;
  SystemTimeZone source(clock);
  for (const char* now : {"0001-01-01T00:00:00", "1850-06-01T00:00:00", "9999-12-31T23:59:59"}) {
    clock.now = At(now);
    EXPECT_TRUE(source.CurrentZone()) << now;
    EXPECT_TRUE(GetCurrentTimeZone(source)) << now;
  }
}

}  // namespace
}  // namespace wattlark
