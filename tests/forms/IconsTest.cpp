#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {
namespace {

const std::vector<std::string> kPictures = {"power", "energy",  "cost",  "co2",   "receiving",
                                            "back",  "forward", "reset", "alarm", "idle"};
const std::vector<std::string> kTrayKeys = {"KILLAWATT",  "KILLAWATT0", "KILLAWATT1", "KILLAWATT2",
                                            "KILLAWATT3", "KILLAWATT4", "KILLAWATT5"};
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

QImage OnPanel(const QImage& image, const QColor& panel) {
  QImage result(image.size(), QImage::Format_RGB32);
  result.fill(panel);
  QPainter(&result).drawImage(0, 0, image);
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

int DifferentPixels(const QImage& first, const QImage& second) {
  int count = 0;
  for (int y = 0; y < first.height(); ++y) {
    for (int x = 0; x < first.width(); ++x) {
      const QRgb a = first.pixel(x, y);
      const QRgb b = second.pixel(x, y);
      if (std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
              std::abs(qBlue(a) - qBlue(b)) + std::abs(qAlpha(a) - qAlpha(b)) >
          60) {
        ++count;
      }
    }
  }
  return count;
}

class PictureTest : public testing::TestWithParam<std::string> {
 protected:
  const QString name_ = QString::fromStdString(GetParam());
};

INSTANTIATE_TEST_SUITE_P(All, PictureTest, testing::ValuesIn(kPictures),
                         [](const auto& parameter) { return parameter.param; });

TEST_P(PictureTest, IsDrawnInOneColorAtEverySizeAndRatio) {
  for (const int side : {16, 24, 32}) {
    for (const double ratio : {1.0, 1.5, 2.0, 3.0}) {
      const QPixmap pixmap = TintedPixmap(name_, kGreen, QSize(side, side), ratio);
      EXPECT_EQ(pixmap.width(), static_cast<int>(side * ratio));
      EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
      const QImage image = Pixels(pixmap);
      EXPECT_GT(Coverage(image), 0.08) << side << " at " << ratio;
      EXPECT_LT(Coverage(image), 0.6) << side << " at " << ratio;
      int solid = 0;
      for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
          if (qAlpha(image.pixel(x, y)) < 255) continue;
          ++solid;
          ASSERT_EQ(QColor(image.pixel(x, y)), kGreen);
        }
      }
      EXPECT_GT(solid, 0) << side << " at " << ratio;
    }
  }
}

TEST_P(PictureTest, LeavesNoStrokeCutOffAtTheEdge) {
  const QImage image = Pixels(TintedPixmap(name_, kGreen, QSize(64, 64), 1));
  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(qAlpha(image.pixel(i, 0)), 0) << i;
    EXPECT_EQ(qAlpha(image.pixel(i, 63)), 0) << i;
    EXPECT_EQ(qAlpha(image.pixel(0, i)), 0) << i;
    EXPECT_EQ(qAlpha(image.pixel(63, i)), 0) << i;
  }
}

TEST_P(PictureTest, TakesTheColorOfTheButtonsState) {
  const QIcon icon = TintedIcon(name_, {kGrey, kGreen, kOrange});
  const auto solidColor = [&](QIcon::Mode mode, QIcon::State state) {
    const QImage image = Pixels(icon.pixmap(QSize(48, 48), 1.0, mode, state));
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qAlpha(image.pixel(x, y)) == 255) return QColor(image.pixel(x, y));
      }
    }
    return QColor();
  };
  EXPECT_EQ(solidColor(QIcon::Normal, QIcon::Off), kGrey);
  EXPECT_EQ(solidColor(QIcon::Normal, QIcon::On), kGreen);
  EXPECT_EQ(solidColor(QIcon::Disabled, QIcon::Off), kOrange);
  EXPECT_EQ(solidColor(QIcon::Disabled, QIcon::On), kOrange);
}

TEST(Pictures, AreToldApartAt16Pixels) {
  for (std::size_t i = 0; i < kPictures.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const auto pixels = [](const std::string& name) {
        return Pixels(TintedPixmap(QString::fromStdString(name), Qt::black, QSize(16, 16), 1));
      };
      EXPECT_GT(DifferentPixels(pixels(kPictures[i]), pixels(kPictures[j])), 12)
          << kPictures[i] << " " << kPictures[j];
    }
  }
}

TEST(Pictures, AreNullForAnUnknownNameOrNoSize) {
  EXPECT_TRUE(TintedPixmap("nothing", kGreen, QSize(16, 16), 1).isNull());
  EXPECT_TRUE(TintedPixmap("../icons/power.svg/", kGreen, QSize(16, 16), 1).isNull());
  EXPECT_TRUE(TintedPixmap("power", kGreen, QSize(0, 16), 1).isNull());
  EXPECT_TRUE(TintedIcon("nothing", {kGrey, kGreen, kOrange}).isNull());
}

TEST(Icons, AreSharpOnADisplayOfTwiceTheDensity) {
  const QPixmap pixmap = TintedIcon("power", {kGrey, kGreen, kOrange}).pixmap(QSize(16, 16), 2.0);
  EXPECT_EQ(pixmap.width(), 32);
  EXPECT_EQ(pixmap.devicePixelRatio(), 2);
}

TEST(Icons, PaintOntoADenseDeviceWithoutScaling) {
  const QIcon icon = ApplicationIcon();
  QImage device(32, 32, QImage::Format_ARGB32_Premultiplied);
  device.setDevicePixelRatio(2);
  device.fill(Qt::transparent);
  QPainter painter(&device);
  icon.paint(&painter, QRect(0, 0, 16, 16));
  painter.end();
  device.setDevicePixelRatio(1);
  EXPECT_EQ(device.convertToFormat(QImage::Format_ARGB32), Pixels(icon.pixmap(QSize(32, 32), 1.0)));
}

TEST(ApplicationIcon, IsDrawnFrom16To512Pixels) {
  for (const int side : {16, 22, 48, 256, 512}) {
    const QImage image = Pixels(ApplicationIcon().pixmap(QSize(side, side), 1.0));
    ASSERT_EQ(image.width(), side);
    EXPECT_GT(Coverage(image), 0.6) << side;
    EXPECT_LT(qAlpha(image.pixel(0, 0)), 255) << side;
  }
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
  // Two of sixteen units each, in whole pixels.
  const std::map<int, int> heights = {{16, 2}, {22, 3}, {24, 3}, {32, 4}, {44, 6}, {48, 6}};
  for (const auto& [side, height] : heights) {
    EXPECT_EQ(OpaqueRuns(TrayPixels("KILLAWATT4", side)), std::vector<int>(5, height)) << side;
  }
}

TEST(TrayIcon, LightsABarMoreForEachLevel) {
  const QColor lit("#129a63");
  const QColor over("#d9660f");
  // In sixteen pixels a bar has two rows.
  const std::map<std::string, std::pair<int, int>> rows = {
      {"KILLAWATT", {0, 0}},  {"KILLAWATT0", {2, 0}}, {"KILLAWATT1", {4, 0}},
      {"KILLAWATT2", {6, 0}}, {"KILLAWATT3", {8, 0}}, {"KILLAWATT4", {10, 0}},
      {"KILLAWATT5", {0, 10}}};
  for (const auto& [key, expected] : rows) {
    const QImage image = TrayPixels(key, 16);
    std::pair<int, int> found{0, 0};
    for (int y = 0; y < 16; ++y) {
      const QColor color = image.pixelColor(13, y);
      if (color == lit) ++found.first;
      if (color == over) ++found.second;
    }
    EXPECT_EQ(found, expected) << key;
  }
}

TEST(TrayIcon, LevelsDifferOnLightAndDarkPanels) {
  for (const QColor panel : {QColor("#f0f0f0"), QColor("#202020")}) {
    for (const int side : {16, 22, 24, 32}) {
      for (std::size_t i = 0; i < kTrayKeys.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
          // At least one bar of six units by two, rounded corners left out.
          EXPECT_GE(DifferentPixels(OnPanel(TrayPixels(kTrayKeys[i], side), panel),
                                    OnPanel(TrayPixels(kTrayKeys[j], side), panel)),
                    8)
              << kTrayKeys[i] << " " << kTrayKeys[j] << " " << side;
        }
      }
    }
  }
}

TEST(TrayIcon, StandsOutOnLightAndDarkPanels) {
  for (const QColor panel : {QColor("#f0f0f0"), QColor("#202020")}) {
    const QImage image = OnPanel(TrayPixels("KILLAWATT0", 16), panel);
    const QColor plug = image.pixelColor(4, 6);
    const QColor litBar = image.pixelColor(13, 13);
    const QColor dimBar = image.pixelColor(13, 1);
    EXPECT_GE(ContrastRatio(plug, panel), 3) << panel.name().toStdString();
    EXPECT_GE(ContrastRatio(litBar, panel), 3) << panel.name().toStdString();
    EXPECT_GE(ContrastRatio(litBar, dimBar), 2) << panel.name().toStdString();
    EXPECT_GE(ContrastRatio(dimBar, panel), 1.25) << panel.name().toStdString();
    const QImage full = OnPanel(TrayPixels("KILLAWATT5", 16), panel);
    EXPECT_GE(ContrastRatio(full.pixelColor(13, 1), panel), 3) << panel.name().toStdString();
  }
}

TEST(TrayIcon, TakesAnUnknownKeyForNoLoad) {
  const QImage plain = TrayPixels("KILLAWATT", 24);
  for (const std::string_view key : {"", "KILLAWATT6", "KILLAWATT/", "KILLAWATT\xff", "KILLAWATT12",
                                     "killawatt3", "POWER", "KILLAWATTRECEIVING", "XILLAWATT3"}) {
    EXPECT_EQ(TrayPixels(key, 24), plain) << key;
  }
}

TEST(TrayIcon, OffersTheSizesOfPanelsToDesktopsThatWantPixmaps) {
  const QList<QSize> sizes = TrayIcon("KILLAWATT2").availableSizes();
  for (const int side : {16, 22, 24, 32}) EXPECT_TRUE(sizes.contains(QSize(side, side))) << side;
}

}  // namespace
}  // namespace wattlark
