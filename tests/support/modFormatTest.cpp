#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "RegionalForms.h"
#include "support/NoValue.h"
#include "support/modFormat.h"

namespace wattlark {
namespace {

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();
constexpr int kAuto = AutomaticDecimals;

struct FormatCase {
  double value;
  int decimals;
  const char* text;
};

// Automatic decimals change at the square roots between the powers of ten.
TEST(FormatNumberAuto, ChoosesDecimalsAndRounds) {
  for (const FormatCase& c :
       {FormatCase{12345, kAuto, "12,345"}, FormatCase{98.7, kAuto, "98.70"},
        FormatCase{3.21, kAuto, "3.210"}, FormatCase{0.25, kAuto, "0.25000"},
        FormatCase{0, kAuto, "0.00"}, FormatCase{-0.0, kAuto, "0.00"},
        FormatCase{999.95, kAuto, "1,000.0"}, FormatCase{-1500, kAuto, "-1,500.0"},
        FormatCase{3.16, kAuto, "3.1600"}, FormatCase{3.17, kAuto, "3.170"},
        FormatCase{3162, kAuto, "3,162.0"}, FormatCase{3163, kAuto, "3,163"},
        FormatCase{-0.000004, kAuto, "0.00000"}, FormatCase{-0.000005, kAuto, "-0.00001"}}) {
    EXPECT_EQ(FormatNumberAuto(kUnitedStates, c.value, c.decimals), c.text);
  }
  for (const FormatCase& c :
       {FormatCase{12.5, -7, "12.500"}, FormatCase{2.5, 0, "3"}, FormatCase{-2.5, 0, "-3"},
        FormatCase{1.005, 2, "1.01"}, FormatCase{9.996, 2, "10.00"},
        FormatCase{999999.95, 1, "1,000,000.0"}, FormatCase{0.05, 1, "0.1"},
        FormatCase{-0.04, 1, "0.0"}, FormatCase{0.49, 0, "0"},
        FormatCase{1234567.891, 2, "1,234,567.89"}}) {
    EXPECT_EQ(FormatNumberAuto(kUnitedStates, c.value, c.decimals), c.text);
  }
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 1234567.5, 1, "", false), "1234567.5");
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 0.1, 20), "0.10000000000000000000");
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 1, std::numeric_limits<int>::max()),
            "1." + std::string(99, '0'));
  std::string huge = "-1";
  for (int i = 0; i < 100; ++i) huge += ",000";
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, -1E300), huge);
}

TEST(FormatAuto, GivesTheMissingText) {
  for (const double value : {NoValue, -NoValue, std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(FormatNumberAuto(kUnitedStates, value, 2, "none"), "none");
    EXPECT_EQ(FormatCurrencyAuto(kUnitedStates, value, 2, "none"), "none");
    EXPECT_EQ(FormatPercentAuto(kUnitedStates, value, 2, "none"), "none");
    EXPECT_EQ(FormatPower(kUnitedStates, value), "--- W");
    EXPECT_EQ(FormatPower(kUnitedStates, value, kAuto, UnitForm::Long), "--- Watts");
    EXPECT_EQ(FormatEnergy(kUnitedStates, value), "--- Wh");
    EXPECT_EQ(FormatEnergy(kUnitedStates, value, kAuto, UnitForm::Long), "--- Watt-hours");
  }
}

TEST(FormatAuto, WritesTheRegionsForms) {
  using Row =
      std::tuple<RegionalSettings, const char*, const char*, const char*, const char*, const char*>;
  for (const auto& [regional, number, currency, negativeCurrency, percent, power] :
       {Row{Germany(), "-1.234.567,5", "1.234,50\u00A0€", "-1.234,50\u00A0€", "-50,0\u00A0%",
            "1,5000 kW"},
        Row{Sweden(), "\u22121\u202F234\u202F567,5", "1\u202F234,50\u00A0kr",
            "\u22121\u202F234,50\u00A0kr", "\u221250,0\u202F%", "1,5000 kW"},
        Row{WithParentheses(), "-1,234,567.5", "$1,234.50", "($1,234.50)", "-%50.0",
            "1.5000 kW"}}) {
    EXPECT_EQ(FormatNumberAuto(regional, -1234567.5, 1), number);
    EXPECT_EQ(FormatCurrencyAuto(regional, 1234.5, 2), currency);
    EXPECT_EQ(FormatCurrencyAuto(regional, -1234.5, 2), negativeCurrency);
    EXPECT_EQ(FormatPercentAuto(regional, -0.5), percent);
    EXPECT_EQ(FormatPower(regional, 1500), power);
  }
}

TEST(FormatCurrencyAuto, UsesTheDecimalsOfTheCurrencyForZero) {
  for (const FormatCase& c : {FormatCase{-1.272, kAuto, "-$1.2720"}, FormatCase{0, kAuto, "$0.00"},
                              FormatCase{0.265, kAuto, "$0.26500"}, FormatCase{-0.001, 2, "$0.00"},
                              FormatCase{1E6, kAuto, "$1,000,000"}}) {
    EXPECT_EQ(FormatCurrencyAuto(kUnitedStates, c.value, c.decimals), c.text);
  }
  RegionalSettings yen = kUnitedStates;
  yen.currencySymbol = "¥";
  yen.currencyDecimals = 0;
  EXPECT_EQ(FormatCurrencyAuto(yen, 0), "¥0");
}

// 0.285 * 100 lies below the half in doubles.
TEST(FormatPercentAuto, ChoosesDecimalsByMagnitude) {
  for (const FormatCase& c :
       {FormatCase{12.5, kAuto, "1,250%"}, FormatCase{5, kAuto, "500%"},
        FormatCase{1, kAuto, "100.0%"}, FormatCase{0.05, kAuto, "5.00%"},
        FormatCase{0.005, kAuto, "0.500%"}, FormatCase{0.0005, kAuto, "0.0500%"},
        FormatCase{0.00005, kAuto, "0.00500%"}, FormatCase{0, kAuto, "0.00%"},
        FormatCase{0.07, 0, "7%"}, FormatCase{0.285, 0, "29%"}, FormatCase{-0.001, 0, "0%"}}) {
    EXPECT_EQ(FormatPercentAuto(kUnitedStates, c.value, c.decimals), c.text);
  }
}

TEST(FormatPowerAndEnergy, ChangeTheUnitAboveAThousandOrTenThousand) {
  using Row = std::tuple<decltype(FormatPower)*, double, int, UnitForm, const char*>;
  for (const auto& [format, value, decimals, form, text] :
       {Row{FormatPower, 450, kAuto, UnitForm::Short, "450.0 W"},
        Row{FormatPower, 1000, kAuto, UnitForm::Short, "1,000.0 W"},
        Row{FormatPower, 1000.5, kAuto, UnitForm::Short, "1.0005 kW"},
        Row{FormatPower, -1500, kAuto, UnitForm::Short, "-1,500.0 W"},
        Row{FormatPower, 450.4, 0, UnitForm::Short, "450 W"},
        Row{FormatPower, 1499, 0, UnitForm::Short, "1 kW"},
        Row{FormatPower, 10000, kAuto, UnitForm::Long, "10,000 Watts"},
        Row{FormatPower, 12000, kAuto, UnitForm::Long, "12.000 Kilowatts"},
        Row{FormatEnergy, 72000, kAuto, UnitForm::Short, "72.00 kWh"},
        Row{FormatEnergy, 1000, kAuto, UnitForm::Short, "1,000.0 Wh"},
        Row{FormatEnergy, 1000, kAuto, UnitForm::Long, "1,000.0 Watt-hours"},
        Row{FormatEnergy, 1000.5, kAuto, UnitForm::Long, "1.0005 Kilowatt-hours"},
        Row{FormatEnergy, -2500, 0, UnitForm::Short, "-2,500 Wh"}}) {
    EXPECT_EQ(format(kUnitedStates, value, decimals, form), text);
  }
}

}  // namespace
}  // namespace wattlark
