#include <gtest/gtest.h>

#include "platform/qtwidgets/Theme.h"

namespace wattlark {
namespace {

// The ratios are those of the WCAG 2 formula, worked out by hand.
TEST(ContrastRatio, FollowsTheFormulaInEitherOrder) {
  EXPECT_NEAR(ContrastRatio(Qt::black, Qt::white), 21, 0.001);
  EXPECT_NEAR(ContrastRatio(Qt::white, Qt::black), 21, 0.001);
  EXPECT_NEAR(ContrastRatio("#777777", Qt::white), 4.478, 0.001);
  EXPECT_NEAR(ContrastRatio("#ff0000", Qt::white), 3.998, 0.001);
  EXPECT_NEAR(ContrastRatio("#0000ff", Qt::black), 2.444, 0.001);
}

Theme ThemeOf(const char* base, const char* window, const char* text) {
  QPalette palette;
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Text, text);
  return Theme::FromPalette(palette);
}

TEST(Theme, IsReadableAndQuietOnEveryPalette) {
  using Row = std::tuple<const char*, const char*, const char*, bool>;
  for (const auto& [base, window, text, isDark] :
       {Row{"#ffffff", "#ffffff", "#c8c8c8", false}, Row{"#8a8a8a", "#808080", "#000000", false},
        Row{"#1b1e20", "#2a2e32", "#fcfcfc", true}, Row{"#002b36", "#073642", "#839496", true}}) {
    SCOPED_TRACE(base);
    const Theme theme = ThemeOf(base, window, text);
    EXPECT_EQ(theme.isDark, isDark);
    for (const QColor& ground : {theme.base, theme.window}) {
      for (const QColor& color : {theme.accent, theme.warning, theme.mutedText}) {
        EXPECT_GE(ContrastRatio(color, ground), 4.5);
      }
    }
    EXPECT_GE(ContrastRatio(theme.accent, theme.selectedFill), 4.5);
    for (const QColor& ground : {theme.base, theme.zone}) {
      EXPECT_GE(ContrastRatio(theme.firstSeries, ground), 3);
      EXPECT_GE(ContrastRatio(theme.secondSeries, ground), 3);
    }
    EXPECT_GT(ContrastRatio(theme.firstSeries, theme.seriesFill), 1.5);
    for (const QColor& quiet : {theme.hairline, theme.zone, theme.selectedFill}) {
      EXPECT_GT(ContrastRatio(quiet, theme.base), 1.02);
      EXPECT_LT(ContrastRatio(quiet, theme.base), 2);
    }
  }
}

}  // namespace
}  // namespace wattlark
