#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "RegionalForms.h"
#include "support/NoValue.h"
#include "support/modFormat.h"

namespace wattlark {
namespace {

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();

struct FormatCase {
  double value;
  int decimals;
  const char* text;
};

constexpr int kAuto = AutomaticDecimals;

class NumberTest : public testing::TestWithParam<FormatCase> {};

TEST_P(NumberTest, UnitedStates) {
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, GetParam().value, GetParam().decimals),
            GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    AutomaticDecimals, NumberTest,
    testing::Values(FormatCase{12345, kAuto, "12,345"}, FormatCase{1234, kAuto, "1,234.0"},
                    FormatCase{98.7, kAuto, "98.70"}, FormatCase{3.21, kAuto, "3.210"},
                    FormatCase{0.25, kAuto, "0.25000"}, FormatCase{0, kAuto, "0.00"},
                    FormatCase{-0.0, kAuto, "0.00"}, FormatCase{999.95, kAuto, "1,000.0"},
                    FormatCase{1000, kAuto, "1,000.0"}, FormatCase{-1500, kAuto, "-1,500.0"},
                    FormatCase{1E16, kAuto, "10,000,000,000,000,000"},
                    // The decimals change at the square roots between the powers of ten.
                    FormatCase{3.16, kAuto, "3.1600"}, FormatCase{3.17, kAuto, "3.170"},
                    FormatCase{3162, kAuto, "3,162.0"}, FormatCase{3163, kAuto, "3,163"},
                    FormatCase{-0.000004, kAuto, "0.00000"},
                    FormatCase{-0.000005, kAuto, "-0.00001"}, FormatCase{5E-324, kAuto, "0.00000"},
                    FormatCase{12.5, -7, "12.500"}));

INSTANTIATE_TEST_SUITE_P(
    Rounding, NumberTest,
    testing::Values(FormatCase{2.5, 0, "3"}, FormatCase{-2.5, 0, "-3"},
                    FormatCase{0.125, 2, "0.13"}, FormatCase{1.005, 2, "1.01"},
                    FormatCase{1.0049, 2, "1.00"}, FormatCase{9.996, 2, "10.00"},
                    FormatCase{999.5, 0, "1,000"}, FormatCase{999999.95, 1, "1,000,000.0"},
                    FormatCase{0.05, 1, "0.1"}, FormatCase{0.04, 1, "0.0"},
                    FormatCase{-0.04, 1, "0.0"}, FormatCase{-0.5, 0, "-1"},
                    FormatCase{0.49, 0, "0"}, FormatCase{0.0996, 3, "0.100"},
                    FormatCase{1234567.891, 2, "1,234,567.89"}, FormatCase{123, 0, "123"},
                    FormatCase{-123, 0, "-123"}, FormatCase{0.1, 20, "0.10000000000000000000"}));

TEST(FormatNumberAuto, WritesHugeValuesWhole) {
  std::string expected = "1";
  for (int i = 0; i < 100; ++i) expected += ",000";
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 1E300), expected);
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, -1E300), "-" + expected);
}

TEST(FormatNumberAuto, LeavesGroupingOut) {
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 1234567.5, 1, "", false), "1234567.5");
}

TEST(FormatNumberAuto, LimitsDecimals) {
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, 1, std::numeric_limits<int>::max()),
            "1." + std::string(99, '0'));
}

class MissingTest : public testing::TestWithParam<double> {};

TEST_P(MissingTest, GivesTheMissingText) {
  EXPECT_EQ(FormatNumberAuto(kUnitedStates, GetParam(), 2, "none"), "none");
  EXPECT_EQ(FormatCurrencyAuto(kUnitedStates, GetParam(), 2, "none"), "none");
  EXPECT_EQ(FormatPercentAuto(kUnitedStates, GetParam(), 2, "none"), "none");
  EXPECT_EQ(FormatPower(kUnitedStates, GetParam()), "--- W");
  EXPECT_EQ(FormatPower(kUnitedStates, GetParam(), kAuto, UnitForm::Long), "--- Watts");
  EXPECT_EQ(FormatEnergy(kUnitedStates, GetParam()), "--- Wh");
  EXPECT_EQ(FormatEnergy(kUnitedStates, GetParam(), kAuto, UnitForm::Long), "--- Watt-hours");
}

INSTANTIATE_TEST_SUITE_P(Values, MissingTest,
                         testing::Values(NoValue, -NoValue, std::nan(""), HUGE_VAL, -HUGE_VAL));

struct RegionCase {
  const char* name;
  RegionalSettings regional;
  const char* number;            ///< -1234567.5 with one decimal
  const char* currency;          ///< 1234.5 with two decimals
  const char* negativeCurrency;  ///< -1234.5 with two decimals
  const char* percent;           ///< -0.5
  const char* power;             ///< 1500 W
};

RegionalSettings WithParentheses() {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.currencyNegative = "(¤#)";
  regional.percentPattern = "%#";
  return regional;
}

RegionalSettings Sweden() {
  RegionalSettings regional = France();
  regional.groupSeparator = "\u00A0";
  regional.negativeSign = "\u2212";
  regional.currencySymbol = "kr";
  return regional;
}

class RegionTest : public testing::TestWithParam<RegionCase> {};

TEST_P(RegionTest, WritesItsForms) {
  const RegionCase& region = GetParam();
  EXPECT_EQ(FormatNumberAuto(region.regional, -1234567.5, 1), region.number);
  EXPECT_EQ(FormatCurrencyAuto(region.regional, 1234.5, 2), region.currency);
  EXPECT_EQ(FormatCurrencyAuto(region.regional, -1234.5, 2), region.negativeCurrency);
  EXPECT_EQ(FormatPercentAuto(region.regional, -0.5), region.percent);
  EXPECT_EQ(FormatPower(region.regional, 1500), region.power);
}

INSTANTIATE_TEST_SUITE_P(
    Regions, RegionTest,
    testing::Values(RegionCase{"UnitedStates", kUnitedStates, "-1,234,567.5", "$1,234.50",
                               "-$1,234.50", "-50.0%", "1.5000 kW"},
                    RegionCase{"Germany", Germany(), "-1.234.567,5", "1.234,50\u00A0€",
                               "-1.234,50\u00A0€", "-50,0\u00A0%", "1,5000 kW"},
                    RegionCase{"France", France(), "-1\u202F234\u202F567,5", "1\u202F234,50\u00A0€",
                               "-1\u202F234,50\u00A0€", "-50,0\u202F%", "1,5000 kW"},
                    RegionCase{"Sweden", Sweden(), "\u22121\u00A0234\u00A0567,5",
                               "1\u00A0234,50\u00A0kr", "\u22121\u00A0234,50\u00A0kr",
                               "\u221250,0\u202F%", "1,5000 kW"},
                    RegionCase{"Parentheses", WithParentheses(), "-1,234,567.5", "$1,234.50",
                               "($1,234.50)", "-%50.0", "1.5000 kW"}),
    [](const auto& region) { return region.param.name; });

class CurrencyTest : public testing::TestWithParam<FormatCase> {};

TEST_P(CurrencyTest, UnitedStates) {
  EXPECT_EQ(FormatCurrencyAuto(kUnitedStates, GetParam().value, GetParam().decimals),
            GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, CurrencyTest,
    testing::Values(FormatCase{1.272, kAuto, "$1.2720"}, FormatCase{-1.272, kAuto, "-$1.2720"},
                    FormatCase{0, kAuto, "$0.00"}, FormatCase{0.265, kAuto, "$0.26500"},
                    FormatCase{-0.001, 2, "$0.00"}, FormatCase{1E6, kAuto, "$1,000,000"}));

TEST(FormatCurrencyAuto, UsesTheDecimalsOfTheCurrencyForZero) {
  RegionalSettings yen = RegionalSettings::UnitedStates();
  yen.currencySymbol = "¥";
  yen.currencyDecimals = 0;
  EXPECT_EQ(FormatCurrencyAuto(yen, 0), "¥0");
}

class PercentTest : public testing::TestWithParam<FormatCase> {};

TEST_P(PercentTest, UnitedStates) {
  EXPECT_EQ(FormatPercentAuto(kUnitedStates, GetParam().value, GetParam().decimals),
            GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, PercentTest,
    testing::Values(FormatCase{12.5, kAuto, "1,250%"}, FormatCase{5, kAuto, "500%"},
                    FormatCase{1, kAuto, "100.0%"}, FormatCase{0.5, kAuto, "50.0%"},
                    FormatCase{0.05, kAuto, "5.00%"}, FormatCase{0.005, kAuto, "0.500%"},
                    FormatCase{0.0005, kAuto, "0.0500%"}, FormatCase{0.00005, kAuto, "0.00500%"},
                    FormatCase{0, kAuto, "0.00%"}, FormatCase{0.07, 0, "7%"},
                    // 0.285 * 100 and 0.01005 * 100 lie below the half in doubles.
                    FormatCase{0.285, 0, "29%"}, FormatCase{0.01005, 2, "1.01%"},
                    FormatCase{-0.001, 0, "0%"}));

struct UnitCase {
  double value;
  int decimals;
  UnitForm form;
  const char* text;
};

class PowerTest : public testing::TestWithParam<UnitCase> {};

TEST_P(PowerTest, UnitedStates) {
  const UnitCase& c = GetParam();
  EXPECT_EQ(FormatPower(kUnitedStates, c.value, c.decimals, c.form), c.text);
}

INSTANTIATE_TEST_SUITE_P(Values, PowerTest,
                         testing::Values(UnitCase{450, kAuto, UnitForm::Short, "450.0 W"},
                                         UnitCase{0, kAuto, UnitForm::Short, "0.00 W"},
                                         UnitCase{1000, kAuto, UnitForm::Short, "1,000.0 W"},
                                         UnitCase{1000.5, kAuto, UnitForm::Short, "1.0005 kW"},
                                         UnitCase{1500, kAuto, UnitForm::Short, "1.5000 kW"},
                                         UnitCase{-1500, kAuto, UnitForm::Short, "-1,500.0 W"},
                                         UnitCase{450.4, 0, UnitForm::Short, "450 W"},
                                         UnitCase{1499, 0, UnitForm::Short, "1 kW"},
                                         UnitCase{9500, kAuto, UnitForm::Long, "9,500 Watts"},
                                         UnitCase{10000, kAuto, UnitForm::Long, "10,000 Watts"},
                                         UnitCase{12000, kAuto, UnitForm::Long,
                                                  "12.000 Kilowatts"}));

class EnergyTest : public testing::TestWithParam<UnitCase> {};

TEST_P(EnergyTest, UnitedStates) {
  const UnitCase& c = GetParam();
  EXPECT_EQ(FormatEnergy(kUnitedStates, c.value, c.decimals, c.form), c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, EnergyTest,
    testing::Values(UnitCase{72000, kAuto, UnitForm::Short, "72.00 kWh"},
                    UnitCase{1000, kAuto, UnitForm::Short, "1,000.0 Wh"},
                    UnitCase{1000, kAuto, UnitForm::Long, "1,000.0 Watt-hours"},
                    UnitCase{1000.5, kAuto, UnitForm::Long, "1.0005 Kilowatt-hours"},
                    UnitCase{-2500, 0, UnitForm::Short, "-2,500 Wh"}));

}  // namespace
}  // namespace wattlark
