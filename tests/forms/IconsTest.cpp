#include <gtest/gtest.h>

#include <QImage>

#include "platform/qtwidgets/Icons.h"

namespace wattlark {
namespace {

const QColor kGreen("#1f7a57");
const QColor kOrange("#c2410c");
const QColor kGrey("#8a8f94");

QImage Pixels(const QPixmap& pixmap) {
  return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

// The color of the pixels that are covered whole, or none when they differ or there are none.
QColor SolidColor(const QPixmap& pixmap) {
  const QImage image = Pixels(pixmap);
  QColor color;
  for (int i = 0; i < image.width() * image.height(); ++i) {
    const QColor pixel = image.pixelColor(i % image.width(), i / image.width());
    if (pixel.alpha() < 255) continue;
    if (color.isValid() && pixel != color) return {};
    color = pixel;
  }
  return color;
}

TEST(Pictures, TakeTheColorOfTheButtonsStateAndTheDensityOfItsDisplay) {
  for (const char* name : {"power", "energy", "cost", "co2", "receiving", "back", "forward",
                           "reset", "alarm", "idle"}) {
    const QIcon icon = TintedIcon(name, {kGrey, kGreen, kOrange});
    const auto color = [&](QIcon::Mode mode, QIcon::State state) {
      return SolidColor(icon.pixmap(QSize(48, 48), 1.0, mode, state));
    };
    EXPECT_EQ(color(QIcon::Normal, QIcon::Off), kGrey) << name;
    EXPECT_EQ(color(QIcon::Normal, QIcon::On), kGreen) << name;
    EXPECT_EQ(color(QIcon::Disabled, QIcon::On), kOrange) << name;
    EXPECT_EQ(icon.pixmap(QSize(16, 16), 1.5).width(), 24) << name;
  }
}

TEST(TrayIcon, LightsABarMoreForEachLevel) {
  // Rows lit and over the peak: in sixteen pixels a bar has two.
  using Row = std::tuple<const char*, int, int>;
  for (const auto& [key, lit, over] :
       {Row{"KILLAWATT", 0, 0}, Row{"KILLAWATT0", 2, 0}, Row{"KILLAWATT3", 8, 0},
        Row{"KILLAWATT4", 10, 0}, Row{"KILLAWATT5", 0, 10}, Row{"", 0, 0}}) {
    const QImage image = Pixels(TrayIcon(key).pixmap(QSize(16, 16), 1.0));
    const auto rows = [&image](const char* color) {
      int count = 0;
      for (int y = 0; y < 16; ++y) count += image.pixelColor(13, y) == QColor(color) ? 1 : 0;
      return count;
    };
    EXPECT_EQ(rows("#129a63"), lit) << key;
    EXPECT_EQ(rows("#d9660f"), over) << key;
  }
}

}  // namespace
}  // namespace wattlark
