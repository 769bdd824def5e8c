#include <gtest/gtest.h>

#include "support/DisplayText.h"

namespace wattlark {
namespace {

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

TEST(DisplayText, CountsColumns) {
  EXPECT_EQ(DisplayWidth(""), 0u);
  EXPECT_EQ(DisplayWidth("Küche"), 5u);
  EXPECT_EQ(DisplayWidth("台所"), 4u);
  EXPECT_EQ(DisplayWidth("e\u0301"), 1u);
  EXPECT_EQ(DisplayWidth("\U0001F50C"), 2u);
}

TEST(DisplayText, CutsBetweenCharacters) {
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
