#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "RegionalForms.h"
#include "support/modFormat.h"

namespace wattlark {
namespace {

using Number = std::pair<const char*, double>;

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
  EXPECT_EQ(ParseNumber(regional, "1" + std::string(300, '0')), 1E300);
  EXPECT_FALSE(ParseNumber(regional, "1" + std::string(309, '0')));
  EXPECT_EQ(ParseNumber(regional, "0." + std::string(400, '0') + "1"), 0);
  regional.groupSeparator = regional.decimalSeparator = "";
  regional.currencySymbol = regional.negativeSign = "";
  EXPECT_EQ(ParseNumber(regional, "-1234.5"), -1234.5);
  EXPECT_FALSE(ParseNumber(regional, "1,234"));
}

}  // namespace
}  // namespace wattlark
