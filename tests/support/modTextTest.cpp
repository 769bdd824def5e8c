#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "support/modText.h"

namespace wattlark {
namespace {

using namespace std::string_literals;

TEST(Trim, TakesBlanksAndLineEndsOffBothEnds) {
  EXPECT_EQ(Trim(" \r\n a b\tc \n\r "), "a b\tc");
  EXPECT_EQ(Trim("\ta"), "\ta");
  EXPECT_EQ(Trim(" \r\n"), "");
  EXPECT_EQ(Trim(""), "");
}

TEST(Split, KeepsEmptyParts) {
  using Parts = std::vector<std::string_view>;
  EXPECT_EQ(Split("a,b", ','), (Parts{"a", "b"}));
  EXPECT_EQ(Split(",a,,", ','), (Parts{"", "a", "", ""}));
  EXPECT_EQ(Split("", ','), (Parts{""}));
}

struct BetweenCase {
  std::string_view text, startMarker, endMarker;
  std::size_t startPosition;
  bool includeMarkers;
  std::size_t limit;
  std::string_view expected;
};

class GetTextBetweenTest : public testing::TestWithParam<BetweenCase> {};

TEST_P(GetTextBetweenTest, Finds) {
  const BetweenCase& c = GetParam();
  EXPECT_EQ(GetTextBetween(c.text, c.startMarker, c.endMarker, c.startPosition, c.includeMarkers,
                           c.limit),
            c.expected);
}

constexpr std::size_t kNoLimit = std::string_view::npos;
constexpr std::string_view kLinks = "<a href='x'/><b href='y'/>";

INSTANTIATE_TEST_SUITE_P(
    Texts, GetTextBetweenTest,
    testing::Values(BetweenCase{kLinks, "href='", "'", 0, false, kNoLimit, "x"},
                    BetweenCase{kLinks, "href='", "'", 4, false, kNoLimit, "y"},
                    BetweenCase{kLinks, "href='", "'", 3, false, kNoLimit, "x"},
                    BetweenCase{kLinks, "href='", "'", 0, true, kNoLimit, "href='x'"},
                    BetweenCase{kLinks, "href='", "'", 0, false, 11, "x"},
                    BetweenCase{kLinks, "href='", "'", 0, false, 10, ""},
                    BetweenCase{kLinks, "href='", "'", 4, false, 20, ""},
                    BetweenCase{kLinks, "src='", "'", 0, false, kNoLimit, ""},
                    BetweenCase{kLinks, "href='", "\"", 0, true, kNoLimit, ""},
                    BetweenCase{kLinks, "HREF='", "'", 0, false, kNoLimit, ""},
                    BetweenCase{kLinks, "href='", "'", 1000, false, kNoLimit, ""},
                    BetweenCase{"token=t&path=/u/1 ", "path=", "", 0, false, kNoLimit, "/u/1 "},
                    BetweenCase{"token=t&path=/u/1 ", "", "&", 6, false, kNoLimit, "t"},
                    BetweenCase{"token=t", "token=", "&", 0, false, kNoLimit, ""},
                    BetweenCase{"||", "|", "|", 0, false, kNoLimit, ""},
                    BetweenCase{"||", "|", "|", 0, true, kNoLimit, "||"},
                    BetweenCase{"", "", "", 0, true, kNoLimit, ""}));

struct FoldPair {
  std::string text, folded;
};

class FoldCaseTest : public testing::TestWithParam<FoldPair> {};

TEST_P(FoldCaseTest, MakesSmallLetters) {
  EXPECT_EQ(FoldCase(GetParam().text), GetParam().folded);
  EXPECT_EQ(FoldCase(GetParam().folded), GetParam().folded);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, FoldCaseTest,
    testing::Values(FoldPair{"AZ[@az09", "az[@az09"}, FoldPair{"ÀÖØÞ×÷ß", "àöøþ×÷ß"},
                    FoldPair{"ŽLUŤOUČKÝ ĹŇĀŊŶŸĶ", "žluťoučký ĺňāŋŷÿķ"}, FoldPair{"İıĸŉſ", "iıĸŉſ"},
                    FoldPair{"ΆΈΉΊΌΎΏ ΟΔΌΣ ΑΩΪΫ", "άέήίόύώ οδόσ αωϊϋ"}, FoldPair{"οδός", "οδόσ"},
                    FoldPair{"ЁЂЏ АЯ ҐӀӁӐԮ", "ёђџ ая ґӏӂӑԯ"},
                    FoldPair{"日本A€", "日本a€"}));

INSTANTIATE_TEST_SUITE_P(
    BytesThatAreNotUtf8, FoldCaseTest,
    testing::Values(FoldPair{"A\xC3", "a\xC3"}, FoldPair{"\xC3\x41", "\xC3\x61"},
                    FoldPair{"\xC1\x81", "\xC1\x81"}, FoldPair{"\x80\xBF\xFF", "\x80\xBF\xFF"},
                    FoldPair{"\xE1\xC3\x84", "\xE1\xC3\xA4"}, FoldPair{"A\0B"s, "a\0b"s}));

struct NumberText {
  double value;
  const char* text;
};

class DoubleTextTest : public testing::TestWithParam<NumberText> {};

TEST_P(DoubleTextTest, IsWrittenAndReadBack) {
  EXPECT_EQ(DoubleToText(GetParam().value), GetParam().text);
  EXPECT_EQ(TextToDouble(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Values, DoubleTextTest,
    testing::Values(NumberText{0, "0"}, NumberText{-0.0, "0"}, NumberText{0.1, "0.1"},
                    NumberText{-1.5, "-1.5"}, NumberText{500000, "500000"},
                    NumberText{123456789.25, "123456789.25"},
                    NumberText{999999999999999, "999999999999999"}, NumberText{1E15, "1E+15"},
                    NumberText{0.0001, "0.0001"}, NumberText{0.00001, "1E-05"},
                    NumberText{-2.5E-7, "-2.5E-07"}, NumberText{1E308, "1E+308"},
                    NumberText{5E-324, "5E-324"},
                    NumberText{std::numeric_limits<double>::max(), "1.7976931348623157E+308"},
                    NumberText{1.0 / 3, "0.3333333333333333"}));

TEST(DoubleToText, ReadsBackWhateverItWrites) {
  std::mt19937_64 random(20100307);
  for (int i = 0; i < 20000; ++i) {
    const double value =
        std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1000);
    const double expected = std::isfinite(value) ? value : 1;
    ASSERT_EQ(TextToDouble(DoubleToText(expected)), expected) << DoubleToText(expected);
  }
}

TEST(TextToDouble, AcceptsEveryFormOfADecimalNumber) {
  const NumberText cases[] = {
      {1.5, "1,5"},      {1.5, " \t1.5\r\n"}, {1.5, "+1.5"},   {-1.5, "-1,5"},
      {0.5, ".5"},       {5, "5."},           {1500, "1,5e3"}, {0.15, "1.5E-1"},
      {1500, "+1.5E+3"}, {7, "007"},          {0, "1E-400"},   {0, "-1E-99999999999999999999"},
      {0, "0E99999999"}, {1E300, "0.001E303"}};
  for (const NumberText& c : cases) EXPECT_EQ(TextToDouble(c.text), c.value) << c.text;
  EXPECT_EQ(TextToDouble("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(TextToDouble("1" + std::string(400, '0') + "E-400"), 1.0);
}

class NoNumberTest : public testing::TestWithParam<std::string> {};

TEST_P(NoNumberTest, IsRefused) {
  EXPECT_FALSE(TextToDouble(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoNumberTest,
                         testing::Values("", " ", ".", ",", "-", "+", "e5", "1e", "1e+", "1 2",
                                         "1,234.5", "1.2.3", "--1", "+-1", "1x", "x1", "0x10",
                                         "inf", "nan", "-Infinity", "1E+309",
                                         "1E99999999999999999999", "-1" + std::string(400, '0'),
                                         "1\0"s, "\xC2\xA0"));

TEST(TextToInteger, KeepsToItsRange) {
  constexpr auto kMinimum = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMaximum = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(TextToInteger("0", 0, 1023), 0);
  EXPECT_EQ(TextToInteger(" 1023\r\n", 0, 1023), 1023);
  EXPECT_EQ(TextToInteger("+7", 0, 1023), 7);
  EXPECT_EQ(TextToInteger("-7", -7, 1023), -7);
  EXPECT_EQ(TextToInteger("-9223372036854775808", kMinimum, kMaximum), kMinimum);
  EXPECT_EQ(TextToInteger("9223372036854775807", kMinimum, kMaximum), kMaximum);
  EXPECT_FALSE(TextToInteger("9223372036854775808", kMinimum, kMaximum));
  EXPECT_FALSE(TextToInteger("1024", 0, 1023));
  EXPECT_FALSE(TextToInteger("-1", 0, 1023));
  for (const char* text : {"", "+", "-", "+-1", "1.0", "1,0", "1e2", "0x1", "1 2", "x"}) {
    EXPECT_FALSE(TextToInteger(text, kMinimum, kMaximum)) << text;
  }
}

TEST(TextToBoolean, ReadsWordsAndNumbers) {
  for (const char* text : {"True", "true", " TRUE ", "1", "-1", "0,5"}) {
    EXPECT_EQ(TextToBoolean(text), true) << text;
  }
  for (const char* text : {"False", "fALSE", "0", "-0", "0.0"}) {
    EXPECT_EQ(TextToBoolean(text), false) << text;
  }
  for (const char* text : {"", "yes", "tru", "truee", "1x"}) {
    EXPECT_FALSE(TextToBoolean(text)) << text;
  }
}

}  // namespace
}  // namespace wattlark
