#include <gtest/gtest.h>

#include <QLocale>

#include "platform/qt/SystemRegional.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

TEST(SystemRegional, HasTheFormsOfALocale) {
  const struct {
    const char *name, *decimal, *group, *shortDate, *longTime, *positive;
    int currencyDecimals;
    const char* symbol;
    const char* dateAndTime;  ///< Monday 2026-11-16 20:05:09
  } cases[] = {
      {"en_US", ".", ",", "M/d/yyyy", "h:mm:ss AP", "¤#", 2, "$", "11/16/2026 8:05:09 PM"},
      {"C", ".", ",", "M/d/yyyy", "h:mm:ss AP", "¤#", 2, "$", "11/16/2026 8:05:09 PM"},
      {"fr_FR", ",", "\u202F", "dd/MM/yyyy", "HH:mm:ss", "#\u00A0¤", 2, "€", "16/11/2026 20:05:09"},
      {"ja_JP", ".", ",", "yyyy/MM/dd", "H時mm分ss秒", "¤#", 0, "￥", "2026/11/16 20時05分09秒"},
      {"bg_BG", ",", "\u00A0", "d.MM.yyyy г.", "H:mm:ss ч.", "#\u00A0¤", 2, "лв.",
       "16.11.2026 г. 20:05:09 ч."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const RegionalSettings regional = RegionalFromLocale(QLocale(QLatin1String(c.name)));
    EXPECT_EQ(regional.decimalSeparator, c.decimal);
    EXPECT_EQ(regional.groupSeparator, c.group);
    EXPECT_EQ(regional.shortDate, c.shortDate);
    EXPECT_EQ(regional.longTime, c.longTime);
    EXPECT_EQ(regional.currencyPositive, c.positive);
    EXPECT_EQ(regional.currencyDecimals, c.currencyDecimals);
    EXPECT_EQ(regional.currencySymbol, c.symbol);
    EXPECT_EQ(FormatDateAndTime(regional, At("2026-11-16T20:05:09")), c.dateAndTime);
  }
  const RegionalSettings german = RegionalFromLocale(QLocale(QStringLiteral("de_DE")));
  EXPECT_EQ(german.dayNames[0], "Sonntag");
  EXPECT_EQ(german.dayNames[6], "Samstag");
  EXPECT_EQ(german.monthNames[0], "Januar");
  EXPECT_EQ(german.monthNames[11], "Dezember");
  // No locale is the United States.
  const RegionalSettings plain = RegionalFromLocale(QLocale::c());
  EXPECT_EQ(plain.dayNames, RegionalSettings::UnitedStates().dayNames);
  EXPECT_EQ(plain.currencyNegative, RegionalSettings::UnitedStates().currencyNegative);
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
