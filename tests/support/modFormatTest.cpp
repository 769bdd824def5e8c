#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>

#include "RegionalForms.h"
#include "support/NoValue.h"
#include "support/modFormat.h"

namespace wattlark {
namespace {

using Number = std::pair<const char*, double>;

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

void ExpectNumbers(const RegionalSettings& regional, std::initializer_list<Number> numbers,
                   std::initializer_list<const char*> refused) {
  for (const auto& [text, value] : numbers) EXPECT_EQ(ParseNumber(regional, text), value) << text;
  for (const char* text : refused) EXPECT_FALSE(ParseNumber(regional, text)) << text;
  for (const double value : {0.0, -12.5, 1234.5, -1234567.25}) {
    const std::string number = FormatNumberAuto(regional, value, 2);
    const std::string currency = FormatCurrencyAuto(regional, value, 2);
    EXPECT_EQ(ParseNumber(regional, number), value) << number;
    EXPECT_EQ(ParseNumber(regional, currency), value) << currency;
  }
}

TEST(ParseNumber, ReadsTheRegionsNumbers) {
  ExpectNumbers(
      RegionalSettings::UnitedStates(),
      {Number{"500", 500}, Number{" 12.5 ", 12.5}, Number{"+7", 7}, Number{"- 12.5", -12.5},
       Number{"\u221212.5", -12.5}, Number{".5", 0.5}, Number{"5.", 5},
       Number{"12,345.67", 12345.67}, Number{"1234567.5", 1234567.5}, Number{"$ 0.106", 0.106},
       Number{"0.106 $", 0.106}, Number{"$-5", -5}, Number{"007", 7}},
      {"",     " ",      ".",      "-",     "$",        "abc",   "12a",       "12,5",  "1,23",
       ",123", "1,,234", "1,234,", "0,123", "1234,567", "1.2.3", "1.234,567", "1 234", "12 $ 34",
       "--5",  "-+5",    "5-",     "$$5",   "1e5",      "0x10",  "nan",       "inf",   "1\n2"});
  ExpectNumbers(Germany(),
                {Number{"12,5", 12.5}, Number{"12.5", 12.5}, Number{"1.234,5", 1234.5},
                 Number{"1.234", 1234}, Number{"1234,5", 1234.5}, Number{"1234.567", 1234.567},
                 Number{"0.0125", 0.0125}, Number{"-0,25 €", -0.25}, Number{"€ 3", 3}},
                {"1,234.5", "1.23,4", "1.234.5", "12,5,5", "1,234,567", "12 345", ",", "$5"});
  ExpectNumbers(France(),
                {Number{"1 234,5", 1234.5}, Number{"1\u00A0234,5", 1234.5}, Number{"12 €", 12},
                 Number{"1\u202F234\u202F567", 1234567}, Number{"1.234", 1.234}},
                {"12 34", "1  234", "1 2345", "12 €345", "1.234,5"});
  ExpectNumbers(Sweden(), {Number{"-12,5", -12.5}, Number{"\u221212,5 kr", -12.5}}, {"12,5 €"});
  ExpectNumbers(WithParentheses(), {Number{"($1,234.50)", -1234.5}, Number{"(5)", -5}},
                {"(5", "5)", "-(5)", "()"});
}

TEST(ParseNumber, RefusesWhatNoDoubleHoldsAndStandsARegionWithoutSeparators) {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  EXPECT_FALSE(ParseNumber(regional, "1" + std::string(309, '0')));
  regional.groupSeparator = regional.decimalSeparator = "";
  regional.currencySymbol = regional.negativeSign = "";
  EXPECT_EQ(ParseNumber(regional, "-1234.5"), -1234.5);
  EXPECT_FALSE(ParseNumber(regional, "1,234"));
}

}  // namespace
}  // namespace wattlark
