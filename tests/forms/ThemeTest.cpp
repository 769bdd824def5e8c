#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

#include "platform/qtwidgets/Theme.h"

namespace wattlark {
namespace {

// The ratios are those of the WCAG 2 formula, worked out by hand.
TEST(ContrastRatio, FollowsTheFormulaInEitherOrder) {
  EXPECT_NEAR(ContrastRatio(Qt::black, Qt::white), 21, 0.001);
  EXPECT_NEAR(ContrastRatio(Qt::white, Qt::black), 21, 0.001);
  EXPECT_NEAR(ContrastRatio("#336699", "#336699"), 1, 0.001);
  EXPECT_NEAR(ContrastRatio("#777777", Qt::white), 4.478, 0.001);
  EXPECT_NEAR(ContrastRatio("#ff0000", Qt::white), 3.998, 0.001);
  EXPECT_NEAR(ContrastRatio("#0000ff", Qt::black), 2.444, 0.001);
}

struct PaletteCase {
  const char* name;
  const char* base;
  const char* window;
  const char* text;
  bool isDark;
};

std::ostream& operator<<(std::ostream& out, const PaletteCase& palette) {
  return out << palette.name;
}

QPalette PaletteOf(const PaletteCase& colors) {
  QPalette palette;
  palette.setColor(QPalette::Base, colors.base);
  palette.setColor(QPalette::Window, colors.window);
  palette.setColor(QPalette::WindowText, colors.text);
  palette.setColor(QPalette::Text, colors.text);
  return palette;
}

class ThemeTest : public testing::TestWithParam<PaletteCase> {
 protected:
  const Theme theme_ = Theme::FromPalette(PaletteOf(GetParam()));
};

INSTANTIATE_TEST_SUITE_P(
    Palettes, ThemeTest,
    testing::Values(PaletteCase{"Light", "#ffffff", "#efefef", "#000000", false},
                    PaletteCase{"Cool", "#ffffff", "#f5f7fa", "#1f2328", false},
                    PaletteCase{"Classic", "#ffffff", "#c0c0c0", "#000000", false},
                    PaletteCase{"Sepia", "#fdf6e3", "#eee8d5", "#586e75", false},
                    PaletteCase{"Pale", "#ffffff", "#ffffff", "#c8c8c8", false},
                    PaletteCase{"Green", "#7fd6a8", "#8fe0b8", "#0a2018", false},
                    PaletteCase{"Orange", "#ffb37a", "#ffc08f", "#201008", false},
                    PaletteCase{"MiddleGrey", "#8a8a8a", "#808080", "#000000", false},
                    PaletteCase{"Dark", "#1b1e20", "#2a2e32", "#fcfcfc", true},
                    PaletteCase{"Slate", "#242a30", "#1a1d23", "#e8ebee", true},
                    PaletteCase{"Night", "#000000", "#000000", "#ffffff", true},
                    PaletteCase{"YellowOnBlack", "#000000", "#101010", "#ffff00", true},
                    PaletteCase{"DeepBlue", "#002b36", "#073642", "#839496", true},
                    PaletteCase{"DarkGreen", "#1f5a40", "#184a34", "#f0fff8", true}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(ThemeTest, TellsLightFromDark) {
  EXPECT_EQ(theme_.isDark, GetParam().isDark);
}

TEST_P(ThemeTest, TextColorsAreReadableOnTheirGrounds) {
  for (const QColor& ground : {theme_.base, theme_.window}) {
    EXPECT_GE(ContrastRatio(theme_.accent, ground), 4.5);
    EXPECT_GE(ContrastRatio(theme_.warning, ground), 4.5);
    EXPECT_GE(ContrastRatio(theme_.mutedText, ground), 4.5);
  }
  EXPECT_GE(ContrastRatio(theme_.accent, theme_.selectedFill), 4.5);
}

TEST_P(ThemeTest, LinesStandOutFromTheChartAndItsZones) {
  for (const QColor& ground : {theme_.base, theme_.zone}) {
    EXPECT_GE(ContrastRatio(theme_.firstSeries, ground), 3);
    EXPECT_GE(ContrastRatio(theme_.secondSeries, ground), 3);
  }
  EXPECT_GT(ContrastRatio(theme_.firstSeries, theme_.seriesFill), 1.5);
}

TEST_P(ThemeTest, QuietColorsShowAndStayQuiet) {
  for (const QColor& quiet : {theme_.hairline, theme_.zone, theme_.selectedFill}) {
    EXPECT_GT(ContrastRatio(quiet, theme_.base), 1.02);
    EXPECT_LT(ContrastRatio(quiet, theme_.base), 2);
    EXPECT_EQ(quiet.alpha(), 255);
  }
}

TEST(Theme, KeepsItsOwnGreenAndOrangeWhereTheyAreReadable) {
  const Theme light =
      Theme::FromPalette(PaletteOf({"Light", "#ffffff", "#f5f7fa", "#1f2328", false}));
  EXPECT_EQ(light.accent, QColor("#1f7a57"));
  EXPECT_EQ(light.warning, QColor("#c2410c"));
  const Theme dark = Theme::FromPalette(PaletteOf({"Dark", "#242a30", "#1a1d23", "#e8ebee", true}));
  EXPECT_EQ(dark.accent, QColor("#4cc49a"));
  EXPECT_EQ(dark.warning, QColor("#ff9455"));
}

TEST(Theme, MutedTextIsQuieterThanText) {
  const Theme theme =
      Theme::FromPalette(PaletteOf({"Light", "#ffffff", "#f5f7fa", "#1f2328", false}));
  EXPECT_LT(ContrastRatio(theme.mutedText, theme.base),
            ContrastRatio(theme.text, theme.base) * 0.6);
}

// White beside a dark grey: the best grey has about 3.5:1 on either.
TEST(Theme, TakesTheMostReadableColorForGroundsThatAreFarApart) {
  const Theme theme =
      Theme::FromPalette(PaletteOf({"Split", "#ffffff", "#303030", "#808080", false}));
  for (const QColor& color : {theme.accent, theme.warning, theme.mutedText}) {
    EXPECT_GE(ContrastRatio(color, theme.base), 3);
    EXPECT_GE(ContrastRatio(color, theme.window), 3);
  }
}

}  // namespace
}  // namespace wattlark
