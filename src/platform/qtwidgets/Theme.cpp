#include "platform/qtwidgets/Theme.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace wattlark {

namespace {

constexpr double kTextContrast = 4.5;
constexpr double kLineContrast = 3.0;

using Grounds = std::vector<QColor>;

double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

QColor Opaque(const QColor& color) {
  return {color.red(), color.green(), color.blue()};
}

// 0 is the ground itself, 1 the colour.
QColor Mix(const QColor& ground, const QColor& color, double share) {
  const auto part = [share](int from, int to) {
    return static_cast<int>(std::lround(from + share * (to - from)));
  };
  return {part(ground.red(), color.red()), part(ground.green(), color.green()),
          part(ground.blue(), color.blue())};
}

double LeastContrast(const QColor& color, const Grounds& grounds) {
  double least = 21;
  for (const QColor& ground : grounds) least = std::min(least, ContrastRatio(color, ground));
  return least;
}

// The colour, or the nearest mix of it with black or white that has the contrast on all grounds.
QColor Readable(const QColor& color, const Grounds& grounds, double contrast) {
  constexpr int kSteps = 64;
  QColor best = color;
  for (int step = 0; step <= kSteps; ++step) {
    for (const QColor& end : {QColor(Qt::black), QColor(Qt::white)}) {
      const QColor candidate = Mix(color, end, static_cast<double>(step) / kSteps);
      const double reached = LeastContrast(candidate, grounds);
      if (reached >= contrast) return candidate;
      if (reached > LeastContrast(best, grounds)) best = candidate;
    }
  }
  return best;
}

// The palest mix of the text colour that is still readable; at least two thirds of it.
QColor Muted(const QColor& text, const Grounds& grounds) {
  for (double share = 0.66; share < 1; share += 0.02) {
    const QColor candidate = Mix(grounds.front(), text, share);
    if (LeastContrast(candidate, grounds) >= kTextContrast) return candidate;
  }
  return Readable(text, grounds, kTextContrast);
}

}  // namespace

double ContrastRatio(const QColor& first, const QColor& second) {
  const double a = Luminance(first);
  const double b = Luminance(second);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Theme Theme::FromPalette(const QPalette& palette) {
  Theme theme;
  theme.base = Opaque(palette.color(QPalette::Active, QPalette::Base));
  theme.window = Opaque(palette.color(QPalette::Active, QPalette::Window));
  theme.text = Opaque(palette.color(QPalette::Active, QPalette::WindowText));
  // Measured against both grounds' mean, so that a palette's odd text colour decides nothing.
  const QColor ground = Mix(theme.base, theme.window, 0.5);
  theme.isDark = ContrastRatio(ground, Qt::white) > ContrastRatio(ground, Qt::black);

  const QColor green(theme.isDark ? "#4cc49a" : "#1f7a57");
  const QColor orange(theme.isDark ? "#ff9455" : "#c2410c");
  theme.selectedFill = Mix(theme.base, green, theme.isDark ? 0.18 : 0.10);
  theme.zone = Mix(theme.base, orange, theme.isDark ? 0.20 : 0.12);
  theme.hairline = Mix(theme.base, theme.text, theme.isDark ? 0.16 : 0.13);

  const Grounds grounds{theme.base, theme.window};
  theme.accent = Readable(green, {theme.base, theme.window, theme.selectedFill}, kTextContrast);
  theme.warning = Readable(orange, grounds, kTextContrast);
  theme.mutedText = Muted(theme.text, grounds);

  const Grounds chart{theme.base, theme.zone};
  theme.firstSeries = Readable(theme.accent, chart, kLineContrast);
  theme.secondSeries = Readable(theme.warning, chart, kLineContrast);
  theme.seriesFill = Mix(theme.base, theme.firstSeries, theme.isDark ? 0.35 : 0.25);
  return theme;
}

}  // namespace wattlark
