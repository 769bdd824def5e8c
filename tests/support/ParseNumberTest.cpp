#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegionalForms.h"
#include "support/modFormat.h"

namespace wattlark {
namespace {

struct ParseCase {
  const char* text;
  double value;
};

struct RegionTexts {
  const char* name;
  RegionalSettings regional;
  std::vector<ParseCase> numbers;
  std::vector<const char*> refused;
};

RegionalSettings Sweden() {
  RegionalSettings regional = France();
  regional.negativeSign = "\u2212";
  regional.currencySymbol = "kr";
  return regional;
}

RegionalSettings WithParentheses() {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.currencyNegative = "(¤#)";
  return regional;
}

class ParseNumberTest : public testing::TestWithParam<RegionTexts> {};

TEST_P(ParseNumberTest, ReadsTheRegionsNumbers) {
  for (const auto& [text, value] : GetParam().numbers) {
    const auto parsed = ParseNumber(GetParam().regional, text);
    ASSERT_TRUE(parsed) << text;
    EXPECT_EQ(*parsed, value) << text;
  }
}

TEST_P(ParseNumberTest, RefusesOtherTexts) {
  for (const char* text : GetParam().refused) {
    EXPECT_FALSE(ParseNumber(GetParam().regional, text)) << text;
  }
}

TEST_P(ParseNumberTest, ReadsWhatIsWritten) {
  const RegionalSettings& regional = GetParam().regional;
  for (const double value : {0.0, 500.0, -12.5, 1234.5, -1234567.25, 999999.0}) {
    const std::string number = FormatNumberAuto(regional, value, 2);
    const std::string currency = FormatCurrencyAuto(regional, value, 2);
    EXPECT_EQ(ParseNumber(regional, number), value) << number;
    EXPECT_EQ(ParseNumber(regional, currency), value) << currency;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Regions, ParseNumberTest,
    testing::Values(
        RegionTexts{"UnitedStates",
                    RegionalSettings::UnitedStates(),
                    {{"500", 500},
                     {" 12.5 ", 12.5},
                     {"+7", 7},
                     {"-12.5", -12.5},
                     {"- 12.5", -12.5},
                     {"\u221212.5", -12.5},
                     {".5", 0.5},
                     {"5.", 5},
                     {"1,234", 1234},
                     {"12,345.67", 12345.67},
                     {"1,234,567", 1234567},
                     {"1234567.5", 1234567.5},
                     {"$ 0.106", 0.106},
                     {"0.106 $", 0.106},
                     {"$-5", -5},
                     {"007", 7}},
                    {"",        " ",     ".",         "-",      "$",       "abc",   "12a",
                     "12,5",    "1,23",  ",123",      "1,,234", "1,234,",  "0,123", "1234,567",
                     "1.234,5", "1.2.3", "1.234,567", "1 234",  "12 $ 34", "--5",   "-+5",
                     "5-",      "$$5",   "1e5",       "0x10",   "nan",     "inf",   "1\n2"}},
        RegionTexts{"Germany",
                    Germany(),
                    {{"12,5", 12.5},
                     {"12.5", 12.5},
                     {"1.234", 1234},
                     {"1.234,5", 1234.5},
                     {"1234,5", 1234.5},
                     {"1234.567", 1234.567},
                     {"0.0125", 0.0125},
                     {"-0,25 €", -0.25},
                     {"0.106 €", 0.106},
                     {"€ 3", 3}},
                    {"1,234.5", "1.23,4", "1.234.5", "12,5,5", "1,234,567", "12 345", ",", "$5"}},
        RegionTexts{"France",
                    France(),
                    {{"1 234,5", 1234.5},
                     {"1\u00A0234,5", 1234.5},
                     {"1\u202F234\u202F567", 1234567},
                     {"12.5", 12.5},
                     {"1.234", 1.234},
                     {"12 €", 12}},
                    {"12 34", "1  234", "1 2345", "12 €345", "1.234,5"}},
        RegionTexts{"Sweden", Sweden(), {{"-12,5", -12.5}, {"\u221212,5 kr", -12.5}}, {"12,5 €"}},
        RegionTexts{"Parentheses",
                    WithParentheses(),
                    {{"($1,234.50)", -1234.5}, {"(5)", -5}},
                    {"(5", "5)", "-(5)", "()"}}),
    [](const auto& region) { return region.param.name; });

TEST(ParseNumber, RefusesWhatNoDoubleHolds) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  EXPECT_EQ(ParseNumber(regional, "1" + std::string(300, '0')), 1E300);
  EXPECT_FALSE(ParseNumber(regional, "1" + std::string(309, '0')));
  EXPECT_EQ(ParseNumber(regional, "0." + std::string(400, '0') + "1"), 0);
}

TEST(ParseNumber, StandsARegionWithoutSeparators) {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.groupSeparator = "";
  regional.decimalSeparator = "";
  regional.currencySymbol = "";
  regional.negativeSign = "";
  EXPECT_EQ(ParseNumber(regional, "-1234.5"), -1234.5);
  EXPECT_FALSE(ParseNumber(regional, "1,234"));
}

}  // namespace
}  // namespace wattlark
