#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/DisplayText.h"
#include "support/modText.h"

namespace wattlark {
namespace {

using namespace std::string_literals;

TEST(Trim, TakesBlanksAndLineEndsOffBothEnds) {
  EXPECT_EQ(Trim(" \r\n a b\tc \n\r "), "a b\tc");
  EXPECT_EQ(Trim("\ta"), "\ta");
  EXPECT_EQ(Trim(" \r\n"), "");
}

TEST(GetTextBetween, FindsTheFirstPairOfMarkers) {
  constexpr std::size_t kNoLimit = std::string_view::npos;
  constexpr std::string_view kLinks = "<a href='x'/><b href='y'/>";
  using Row = std::tuple<std::string_view, std::string_view, std::string_view, std::size_t, bool,
                         std::size_t, std::string_view>;
  for (const auto& [text, startMarker, endMarker, startPosition, includeMarkers, limit, expected] :
       {Row{kLinks, "href='", "'", 0, false, kNoLimit, "x"},
        Row{kLinks, "href='", "'", 4, false, kNoLimit, "y"},
        Row{kLinks, "href='", "'", 0, true, kNoLimit, "href='x'"},
        Row{kLinks, "href='", "'", 0, false, 11, "x"}, Row{kLinks, "href='", "'", 0, false, 10, ""},
        Row{kLinks, "HREF='", "'", 0, false, kNoLimit, ""},
        Row{kLinks, "href='", "'", 1000, false, kNoLimit, ""},
        Row{"token=t&path=/u/1 ", "path=", "", 0, false, kNoLimit, "/u/1 "},
        Row{"token=t&path=/u/1 ", "", "&", 6, false, kNoLimit, "t"},
        Row{"token=t", "token=", "&", 0, false, kNoLimit, ""},
        Row{"||", "|", "|", 0, false, kNoLimit, ""},
        Row{"||", "|", "|", 0, true, kNoLimit, "||"}}) {
    EXPECT_EQ(GetTextBetween(text, startMarker, endMarker, startPosition, includeMarkers, limit),
              expected)
        << startMarker << ' ' << startPosition << ' ' << limit;
  }
}

TEST(FoldCase, MakesSmallLetters) {
  using Row = std::pair<std::string, std::string>;
  for (const auto& [text, folded] :
       {Row{"AZ[@az09", "az[@az09"}, Row{"ÀÖØÞ×÷ß", "àöøþ×÷ß"},
        Row{"ŽLUŤOUČKÝ ĹŇĀŊŶŸĶ", "žluťoučký ĺňāŋŷÿķ"}, Row{"ΆΈΉΊΌΎΏ ΟΔΌΣ", "άέήίόύώ οδόσ"},
        Row{"ЁЂЏ АЯ ҐӀӁӐԮ", "ёђџ ая ґӏӂӑԯ"}, Row{"日本A€", "日本a€"},
        // Bytes that are not UTF-8.
        Row{"A\xC3", "a\xC3"}, Row{"\xC3\x41", "\xC3\x61"}, Row{"\xC1\x81", "\xC1\x81"},
        Row{"\x80\xBF\xFF", "\x80\xBF\xFF"}, Row{"\xE1\xC3\x84", "\xE1\xC3\xA4"},
        Row{"A\0B"s, "a\0b"s}}) {
    EXPECT_EQ(FoldCase(text), folded);
    EXPECT_EQ(FoldCase(folded), folded);
  }
}

using NumberText = std::pair<double, const char*>;

TEST(DoubleToText, IsWrittenShortlyAndReadBack) {
  for (const auto& [value, text] :
       {NumberText{0, "0"}, NumberText{-0.0, "0"}, NumberText{-1.5, "-1.5"},
        NumberText{500000, "500000"}, NumberText{999999999999999, "999999999999999"},
        NumberText{1E15, "1E+15"}, NumberText{0.0001, "0.0001"}, NumberText{0.00001, "1E-05"},
        NumberText{-2.5E-7, "-2.5E-07"}, NumberText{1E308, "1E+308"}, NumberText{5E-324, "5E-324"},
        NumberText{std::numeric_limits<double>::max(), "1.7976931348623157E+308"},
        NumberText{1.0 / 3, "0.3333333333333333"}}) {
    EXPECT_EQ(DoubleToText(value), text);
    EXPECT_EQ(TextToDouble(text), value) << text;
  }
  std::mt19937_64 random(20100307);
  for (int i = 0; i < 20000; ++i) {
    const double value =
        std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1000);
    const double expected = std::isfinite(value) ? value : 1;
    ASSERT_EQ(TextToDouble(DoubleToText(expected)), expected) << DoubleToText(expected);
  }
}

TEST(TextToDouble, AcceptsEveryFormOfADecimalNumber) {
  for (const auto& [value, text] :
       {NumberText{1.5, " \t1.5\r\n"}, NumberText{1.5, "+1.5"}, NumberText{-1.5, "-1,5"},
        NumberText{0.5, ".5"}, NumberText{5, "5."}, NumberText{1500, "1,5e3"},
        NumberText{0.15, "1.5E-1"}, NumberText{1500, "+1.5E+3"}, NumberText{7, "007"},
        NumberText{0, "1E-400"}, NumberText{0, "0E99999999"}, NumberText{1E300, "0.001E303"}}) {
    EXPECT_EQ(TextToDouble(text), value) << text;
  }
  EXPECT_EQ(TextToDouble("1" + std::string(400, '0') + "E-400"), 1.0);
  for (const char* text : {"", " ", ".", "-", "e5", "1e", "1e+", "1 2", "1,234.5", "1.2.3", "--1",
                           "+-1", "1x", "x1", "0x10", "inf", "nan", "-Infinity"}) {
    EXPECT_FALSE(TextToDouble(text)) << text;
  }
  for (const std::string& text :
       {"1E+309"s, "1E99999999999999999999"s, "-1" + std::string(400, '0'), "1\0"s, "\xC2\xA0"s}) {
    EXPECT_FALSE(TextToDouble(text)) << text;
  }
}

TEST(TextToInteger, KeepsToItsRange) {
  constexpr auto kMinimum = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMaximum = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(TextToInteger(" 1023\r\n", 0, 1023), 1023);
  EXPECT_EQ(TextToInteger("+7", 0, 1023), 7);
  EXPECT_EQ(TextToInteger("-9223372036854775808", kMinimum, kMaximum), kMinimum);
  EXPECT_FALSE(TextToInteger("9223372036854775808", kMinimum, kMaximum));
  EXPECT_FALSE(TextToInteger("1024", 0, 1023));
  EXPECT_FALSE(TextToInteger("-1", 0, 1023));
  for (const char* text : {"", "+", "-", "+-1", "1.0", "1,0", "1e2", "0x1", "1 2", "x"}) {
    EXPECT_FALSE(TextToInteger(text, kMinimum, kMaximum)) << text;
  }
}

TEST(DisplayText, ShowsWhatWouldDriveATerminalAsQuestionMarks) {
  using Row = std::pair<std::string_view, const char*>;
  for (const auto& [text, printable] :
       {Row{"Küche 1", "Küche 1"}, Row{"台所", "台所"}, Row{"a\x1b[2Jb", "a?[2Jb"},
        Row{"a\r\nb\tc\x7f", "a??b?c?"}, Row{std::string_view("a\0b", 3), "a?b"},
        // The one-character form of ESC [, a right-to-left override, an isolate.
        Row{"a\u009b2Jb", "a?2Jb"}, Row{"a\u202Eb\u2066c", "a?b?c"},
        // No UTF-8, cut characters, an overlong "/", half of a surrogate pair, above the last one.
        Row{"a\x80\xff", "a??"}, Row{"\xc3", "?"}, Row{"\xe2\x82", "??"}, Row{"\xc0\xaf", "??"},
        Row{"\xed\xa0\x80", "???"}, Row{"\xf4\x90\x80\x80", "????"},
        Row{"\U0001F50C", "\U0001F50C"}}) {
    EXPECT_EQ(PrintableText(text), printable);
  }
}

TEST(DisplayText, CountsColumnsAndCutsBetweenCharacters) {
  EXPECT_EQ(DisplayWidth(""), 0u);
  EXPECT_EQ(DisplayWidth("Küche"), 5u);
  EXPECT_EQ(DisplayWidth("台所"), 4u);
  EXPECT_EQ(DisplayWidth("e\u0301"), 1u);
  EXPECT_EQ(DisplayWidth("\U0001F50C"), 2u);
  using Row = std::tuple<const char*, std::size_t, const char*>;
  for (const auto& [text, columns, cut] :
       {Row{"Küche", 5, "Küche"}, Row{"Küche", 4, "Küc…"}, Row{"Küche", 2, "K…"},
        Row{"Küche", 1, "…"}, Row{"Küche", 0, ""}, Row{"台所", 4, "台所"}, Row{"台所", 3, "台…"},
        Row{"台所", 2, "…"}, Row{"e\u0301xy", 2, "e\u0301…"}}) {
    EXPECT_EQ(CutToWidth(text, columns), cut);
  }
}

}  // namespace
}  // namespace wattlark
