#include <gtest/gtest.h>

#include "support/DisplayText.h"

namespace wattlark {
namespace {

TEST(DisplayText, ShowsWhatWouldDriveATerminalAsQuestionMarks) {
  const struct {
    std::string_view text;
    const char* printable;
  } cases[] = {
      {"Küche 1", "Küche 1"},
      {"台所", "台所"},
      {"a\x1b[2Jb", "a?[2Jb"},
      {"a\r\nb\tc\x7f", "a??b?c?"},
      {std::string_view("a\0b", 3), "a?b"},
      {"a\u009b2Jb", "a?2Jb"},       // the one-character form of ESC [
      {"a\u202Eb\u2066c", "a?b?c"},  // right-to-left override, isolate
      {"a\x80\xff", "a??"},          // no UTF-8
      {"\xc3", "?"},                 // cut character
      {"\xe2\x82", "??"},            //
      {"\xc0\xaf", "??"},            // overlong "/"
      {"\xed\xa0\x80", "???"},       // half of a surrogate pair
      {"\xf4\x90\x80\x80", "????"},  // above the last character
      {"\U0001F50C", "\U0001F50C"},
  };
  for (const auto& c : cases) EXPECT_EQ(PrintableText(c.text), c.printable);
}

TEST(DisplayText, CountsColumns) {
  EXPECT_EQ(DisplayWidth(""), 0u);
  EXPECT_EQ(DisplayWidth("Küche"), 5u);
  EXPECT_EQ(DisplayWidth("台所"), 4u);
  EXPECT_EQ(DisplayWidth("e\u0301"), 1u);
  EXPECT_EQ(DisplayWidth("\U0001F50C"), 2u);
}

TEST(DisplayText, CutsBetweenCharacters) {
  const struct {
    const char* text;
    std::size_t columns;
    const char* cut;
  } cases[] = {
      {"Küche", 5, "Küche"}, {"Küche", 4, "Küc…"}, {"Küche", 2, "K…"},
      {"Küche", 1, "…"},     {"Küche", 0, ""},     {"台所", 4, "台所"},
      {"台所", 3, "台…"},    {"台所", 2, "…"},     {"e\u0301xy", 2, "e\u0301…"},
  };
  for (const auto& c : cases) EXPECT_EQ(CutToWidth(c.text, c.columns), c.cut);
}

}  // namespace
}  // namespace wattlark
