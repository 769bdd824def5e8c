#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <map>
#include <string>
#include <vector>

#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {
namespace {

const QColor kGreen("#1f7a57");
const QColor kOrange("#c2410c");
const QColor kGrey("#8a8f94");

QImage Pixels(const QPixmap& pixmap) {
  QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
  image.setDevicePixelRatio(1);
  return image;
}

QImage TrayPixels(std::string_view key, int side) {
  return Pixels(TrayIcon(key).pixmap(QSize(side, side), 1.0));
}

QImage OnPanel(std::string_view key, const QColor& panel) {
  QImage result(16, 16, QImage::Format_RGB32);
  result.fill(panel);
  QPainter(&result).drawImage(0, 0, TrayPixels(key, 16));
  return result;
}

// The share of the area that a picture covers.
double Coverage(const QImage& image) {
  double alpha = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) alpha += qAlpha(image.pixel(x, y));
  }
  return alpha / 255 / (image.width() * image.height());
}

// The color of the pixels that are covered whole, or none when they differ.
QColor SolidColor(const QImage& image) {
  QColor color;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor pixel = image.pixelColor(x, y);
      if (pixel.alpha() < 255) continue;
      if (color.isValid() && pixel != color) return {};
      color = pixel;
    }
  }
  return color;
}

TEST(Pictures, AreDrawnInOneColorAtEverySizeAndRatio) {
  for (const std::string name : {"power", "energy", "cost", "co2", "receiving", "back", "forward",
                                 "reset", "alarm", "idle"}) {
    for (const int side : {16, 24, 32, 64}) {
      for (const double ratio : {1.0, 1.5, 3.0}) {
        SCOPED_TRACE(name + " " + std::to_string(side) + " at " + std::to_string(ratio));
        const QPixmap pixmap =
            TintedPixmap(QString::fromStdString(name), kGreen, QSize(side, side), ratio);
        EXPECT_EQ(pixmap.width(), static_cast<int>(side * ratio));
        const QImage image = Pixels(pixmap);
        EXPECT_GT(Coverage(image), 0.08);
        EXPECT_LT(Coverage(image), 0.6);
        EXPECT_EQ(SolidColor(image), kGreen);
        const int last = image.width() - 1;
        for (int i = 0; i <= last && side == 64; ++i) {
          EXPECT_EQ(qAlpha(image.pixel(i, 0)) | qAlpha(image.pixel(i, last)) |
                        qAlpha(image.pixel(0, i)) | qAlpha(image.pixel(last, i)),
                    0)
              << "cut off at the edge";
        }
      }
    }
  }
}

TEST(Pictures, TakeTheColorOfTheButtonsStateAndTheDensityOfItsDisplayOrAreNull) {
  const QIcon icon = TintedIcon("power", {kGrey, kGreen, kOrange});
  const auto color = [&](QIcon::Mode mode, QIcon::State state) {
    return SolidColor(Pixels(icon.pixmap(QSize(48, 48), 1.0, mode, state)));
  };
  EXPECT_EQ(color(QIcon::Normal, QIcon::Off), kGrey);
  EXPECT_EQ(color(QIcon::Normal, QIcon::On), kGreen);
  EXPECT_EQ(color(QIcon::Disabled, QIcon::Off), kOrange);
  EXPECT_EQ(color(QIcon::Disabled, QIcon::On), kOrange);
  const QPixmap dense = icon.pixmap(QSize(16, 16), 2.0);
  EXPECT_EQ(dense.width(), 32);
  EXPECT_EQ(dense.devicePixelRatio(), 2);
  for (const char* unknown : {"nothing", "../icons/power.svg/"}) {
    EXPECT_TRUE(TintedPixmap(unknown, kGreen, QSize(16, 16), 1).isNull());
  }
  EXPECT_TRUE(TintedPixmap("power", kGreen, QSize(0, 16), 1).isNull());
  EXPECT_TRUE(TintedIcon("nothing", {kGrey, kGreen, kOrange}).isNull());
}

TEST(ApplicationIcon, IsDrawnFrom16To512PixelsAndOntoADenseDevice) {
  const QIcon icon = ApplicationIcon();
  for (const int side : {16, 22, 48, 256, 512}) {
    const QImage image = Pixels(icon.pixmap(QSize(side, side), 1.0));
    ASSERT_EQ(image.width(), side);
    EXPECT_GT(Coverage(image), 0.6) << side;
    EXPECT_LT(qAlpha(image.pixel(0, 0)), 255) << side;
  }
  QImage device(32, 32, QImage::Format_ARGB32_Premultiplied);
  device.setDevicePixelRatio(2);
  device.fill(Qt::transparent);
  QPainter painter(&device);
  icon.paint(&painter, QRect(0, 0, 16, 16));
  painter.end();
  device.setDevicePixelRatio(1);
  EXPECT_EQ(device.convertToFormat(QImage::Format_ARGB32), Pixels(icon.pixmap(QSize(32, 32), 1.0)));
}

// Lengths of the runs of opaque pixels, from the top, in the column through the middle of the bars
// (units 10 to 16 of 16); nothing where a pixel is half covered.
std::vector<int> OpaqueRuns(const QImage& image) {
  std::vector<int> runs;
  bool inside = false;
  for (int y = 0; y < image.height(); ++y) {
    const int alpha = qAlpha(image.pixel(image.width() * 13 / 16, y));
    if (alpha != 0 && alpha != 255) return {};
    if (alpha == 255 && !inside) runs.push_back(0);
    inside = alpha == 255;
    if (inside) ++runs.back();
  }
  return runs;
}

TEST(TrayIcon, BarsStandOnWholePixelsAtTheSizesOfPanels) {
  const QList<QSize> sizes = TrayIcon("KILLAWATT4").availableSizes();
  // Two of sixteen units each, in whole pixels.
  for (const auto& [side, height] :
       std::map<int, int>{{16, 2}, {22, 3}, {24, 3}, {32, 4}, {48, 6}}) {
    EXPECT_EQ(OpaqueRuns(TrayPixels("KILLAWATT4", side)), std::vector<int>(5, height)) << side;
    EXPECT_TRUE(sizes.contains(QSize(side, side))) << "offered to desktops that want pixmaps";
  }
}

TEST(TrayIcon, LightsABarMoreForEachLevel) {
  // In sixteen pixels a bar has two rows. An unknown key is taken for no load.
  const std::map<std::string, std::pair<int, int>> rows = {
      {"KILLAWATT", {0, 0}},     {"KILLAWATT0", {2, 0}},
      {"KILLAWATT1", {4, 0}},    {"KILLAWATT2", {6, 0}},
      {"KILLAWATT3", {8, 0}},    {"KILLAWATT4", {10, 0}},
      {"KILLAWATT5", {0, 10}},   {"", {0, 0}},
      {"KILLAWATT6", {0, 0}},    {"KILLAWATT/", {0, 0}},
      {"KILLAWATT\xff", {0, 0}}, {"KILLAWATT12", {0, 0}},
      {"XILLAWATT3", {0, 0}}};
  for (const auto& [key, expected] : rows) {
    const QImage image = TrayPixels(key, 16);
    std::pair<int, int> found{0, 0};
    for (int y = 0; y < 16; ++y) {
      const QColor color = image.pixelColor(13, y);
      if (color == QColor("#129a63")) ++found.first;
      if (color == QColor("#d9660f")) ++found.second;
    }
    EXPECT_EQ(found, expected) << key;
  }
}

TEST(TrayIcon, StandsOutOnLightAndDarkPanels) {
  for (const QColor panel : {QColor("#f0f0f0"), QColor("#202020")}) {
    const QImage image = OnPanel("KILLAWATT0", panel);
    const QColor litBar = image.pixelColor(13, 13);
    const QColor dimBar = image.pixelColor(13, 1);
    const QColor overBar = OnPanel("KILLAWATT5", panel).pixelColor(13, 1);
    for (const QColor& color : {image.pixelColor(4, 6), litBar, overBar}) {
      EXPECT_GE(ContrastRatio(color, panel), 3) << panel.name().toStdString();
    }
    EXPECT_GE(ContrastRatio(litBar, dimBar), 2) << panel.name().toStdString();
    EXPECT_GE(ContrastRatio(dimBar, panel), 1.25) << panel.name().toStdString();
  }
}

}  // namespace
}  // namespace wattlark
