#include <gtest/gtest.h>

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <algorithm>
#include <vector>

#include "ZoneScope.h"
#include "platform/qt/StandardRandom.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/SystemRegional.h"
#include "platform/qt/SystemTimeZone.h"
#include "support/modFormat.h"
#include "timezone/modTimeZone.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

constexpr std::int64_t kHour = 3'600'000;

/// A zone of the system's data, and rules made of it.
struct ZoneUnderTest {
  QTimeZone zone;

  std::int64_t Offset(std::int64_t utc) const {
    return zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC)) * std::int64_t{1000};
  }
  /// Made with ten years on either side, as the program does.
  clsTimeZone RulesAt(DateTime now) const {
    const int year = now.Civil().year;
    TimeZoneRegistry registry;
    registry.Serve(
        "Zone", {},
        MakeTimeZoneRules(OffsetsOf(zone, year - 10, year + 10), year - 10, year + 10, now));
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
};

std::int64_t NewYear(int year) {
  return DateTime::FromCivil({.year = year})->Milliseconds();
}

// Wherever one set of rules cannot hold a whole year, the one made at the moment is right.
TEST(SystemTimeZone, EveryZoneOfTheSystemIsRightAtTheMomentOfAConversion) {
  const QList<QByteArray> ids = QTimeZone::availableTimeZoneIds();
  ASSERT_GT(ids.size(), 300);
  for (const QByteArray& id : ids) {
    const ZoneUnderTest zone{QTimeZone(id)};
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

TEST(SystemTimeZone, FollowsTheSystemsSettingWithAZoneOrAnOffset) {
  ZoneScope setting("Australia/Sydney");
  HandClock clock;
  clock.now = At("2026-01-15T12:00:00");
  SystemTimeZone source(clock);
  ASSERT_EQ(source.CurrentZone(), "Australia/Sydney");
  auto zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_EQ(zone->FirstTZI, 2016);
  EXPECT_EQ(zone->LastTZI, 2036);
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T01:00:00"));

  setting.Set("America/New_York");
  zone = GetCurrentTimeZone(source);
  ASSERT_TRUE(zone);
  EXPECT_NE(zone->DisplayName.find("America/New_York"), std::string::npos) << zone->DisplayName;
  EXPECT_EQ(LocalToUTC(clock.now, *zone), At("2026-01-15T17:00:00"));
  // An offset alone serves where the zone has no name.
  using Row = std::pair<const char*, int>;  // minutes behind UTC
  for (const auto& [name, bias] :
       {Row{":/usr/share/zoneinfo/Asia/Kolkata", -330}, Row{"<-0330>3:30", 210}, Row{"", 0}}) {
    setting.Set(name);
    zone = GetCurrentTimeZone(source);
    ASSERT_TRUE(zone) << name;
    EXPECT_EQ(LocalToUTC(clock.now, *zone), clock.now.PlusMinutes(bias)) << name;
  }
}

TEST(SystemClock, TellsTheLocalTimeAndTicksInMilliseconds) {
  const ZoneScope india("IST-5:30");
  const SystemClock clock;
  const std::uint32_t start = clock.Ticks();
  const std::int64_t expected = QDateTime::currentMSecsSinceEpoch() + 19'800'000;
  ASSERT_GE(clock.Now().Milliseconds(), expected);
  // From now on with the offset that was kept.
  while (clock.Now().Milliseconds() < expected + 50) {
  }
  EXPECT_LT(clock.Now().Milliseconds(), expected + 5000);
  EXPECT_GE(clock.Ticks() - start, 45u);
  EXPECT_LT(clock.Ticks() - start, 5000u);
}

TEST(StandardRandom, FillsTheUnitIntervalAndRepeatsNothingWithTheSameSeed) {
  StandardRandom random(1);
  random.Reseed(12345);
  const double first = random.Next();
  random.Reseed(12345);
  EXPECT_NE(random.Next(), first);
  std::vector<double> numbers(10000);
  std::ranges::generate(numbers, [&random] { return random.Next(); });
  const auto [least, largest] = std::ranges::minmax(numbers);
  EXPECT_GE(least, 0.0);
  EXPECT_LT(least, 0.01);
  EXPECT_GT(largest, 0.99);
  EXPECT_LT(largest, 1.0);
}

TEST(SystemRegional, HasTheFormsOfALocale) {
  const struct {
    const char *name, *money, *nothing;
    const char* dateAndTime;  ///< Monday 2026-11-16 20:05:09
  } cases[] = {{"C", "$1,234.5", "$0.00", "11/16/2026 8:05:09 PM"},
               {"fr_FR", "1\u202F234,5\u00A0€", "0,00\u00A0€", "16/11/2026 20:05:09"},
               {"ja_JP", "￥1,234.5", "￥0", "2026/11/16 20時05分09秒"},
               {"bg_BG", "1\u00A0234,5\u00A0лв.", "0,00\u00A0лв.", "16.11.2026 г. 20:05:09 ч."}};
  for (const auto& [name, money, nothing, dateAndTime] : cases) {
    const RegionalSettings regional = RegionalFromLocale(QLocale(QLatin1String(name)));
    EXPECT_EQ(FormatCurrencyAuto(regional, 1234.5), money);
    EXPECT_EQ(FormatCurrencyAuto(regional, 0), nothing);
    EXPECT_EQ(FormatDateAndTime(regional, At("2026-11-16T20:05:09")), dateAndTime);
  }
  const RegionalSettings german = RegionalFromLocale(QLocale(QStringLiteral("de_DE")));
  EXPECT_EQ(FormatDateTime(german, At("2026-12-06T00:00:00"), "dddd MMMM"), "Sonntag Dezember");
}

// What is written in any country's form is what the store and the log later read.
TEST(SystemRegional, EveryLocaleReadsBackWhatItWrites) {
  const QList<QLocale> locales =
      QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
  ASSERT_GT(locales.size(), 300);
  for (const QLocale& locale : locales) {
    const RegionalSettings regional = RegionalFromLocale(locale);
    const std::string name = locale.name().toStdString();
    for (const char* iso : {"2026-01-02T00:03:04", "2026-11-16T12:05:09", "1999-12-31T23:59:58"}) {
      const std::string text = FormatDateAndTime(regional, At(iso));
      EXPECT_EQ(ParseDateAndTime(regional, text), At(iso)) << name << ": " << text;
    }
    EXPECT_EQ(regional.longTime.find('t'), std::string::npos) << name << regional.longTime;
    for (const std::string& pattern : {regional.currencyPositive, regional.currencyNegative}) {
      EXPECT_NE(pattern.find('#'), std::string::npos) << name;
      EXPECT_NE(pattern.find("¤"), std::string::npos) << name;
    }
    EXPECT_NE(regional.currencyPositive, regional.currencyNegative) << name;
  }
}

}  // namespace
}  // namespace wattlark
