#include <gtest/gtest.h>

#include <QImage>

#include "platform/TemporaryFolder.h"
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

TEST(Pictures, AreDrawnInOneColorAtEverySizeAndRatio) {
  for (const char* name : {"power", "energy", "cost", "co2", "receiving", "back", "forward",
                           "reset", "alarm", "idle"}) {
    for (const int side : {16, 24, 64}) {
      for (const double ratio : {1.0, 1.5, 3.0}) {
        const QPixmap pixmap = TintedPixmap(name, kGreen, QSize(side, side), ratio);
        EXPECT_EQ(pixmap.width(), static_cast<int>(side * ratio)) << name;
        EXPECT_EQ(SolidColor(pixmap), kGreen) << name << " " << side << " at " << ratio;
        EXPECT_EQ(qAlpha(Pixels(pixmap).pixel(0, 0)), 0) << name;
      }
    }
  }
}

TEST(Pictures, TakeTheColorOfTheButtonsStateAndTheDensityOfItsDisplay) {
  const QIcon icon = TintedIcon("power", {kGrey, kGreen, kOrange});
  const auto color = [&](QIcon::Mode mode, QIcon::State state) {
    return SolidColor(icon.pixmap(QSize(48, 48), 1.0, mode, state));
  };
  EXPECT_EQ(color(QIcon::Normal, QIcon::Off), kGrey);
  EXPECT_EQ(color(QIcon::Normal, QIcon::On), kGreen);
  EXPECT_EQ(color(QIcon::Disabled, QIcon::On), kOrange);
  EXPECT_EQ(icon.pixmap(QSize(16, 16), 2.0).width(), 32);
}

TEST(TrayIcon, LightsABarMoreForEachLevel) {
  for (const int side : {16, 22, 24, 32, 48}) {
    EXPECT_TRUE(TrayIcon("KILLAWATT4").availableSizes().contains(QSize(side, side))) << side;
  }
  // Rows lit and over the peak: in sixteen pixels a bar has two.
  using Row = std::tuple<const char*, int, int>;
  for (const auto& [key, lit, over] :
       {Row{"KILLAWATT", 0, 0}, Row{"KILLAWATT0", 2, 0}, Row{"KILLAWATT1", 4, 0},
        Row{"KILLAWATT2", 6, 0}, Row{"KILLAWATT3", 8, 0}, Row{"KILLAWATT4", 10, 0},
        Row{"KILLAWATT5", 0, 10}, Row{"", 0, 0}}) {
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

TEST(TrayIcon, HasTheNameOfAnInstalledSymbolicIcon) {
  const QString name = "org.wattlark.Wattlark-tray3-symbolic";
  EXPECT_EQ(TrayIcon("KILLAWATT2").name(), "") << "nothing is installed";
  const TemporaryFolder themes;
  const std::filesystem::path theme = std::filesystem::path(themes.Path()) / "hicolor";
  std::filesystem::create_directories(theme / "apps");
  WriteFile(theme / "index.theme",
            "[Icon Theme]\nName=Hicolor\nDirectories=apps\n[apps]\nSize=16\nType=Scalable\n");
  WriteFile(theme / "apps" / (name.toStdString() + ".svg"), "<svg/>");
  const QStringList before = QIcon::themeSearchPaths();
  QIcon::setThemeSearchPaths({QString::fromStdString(themes.Path())});
  QIcon::setThemeName("hicolor");
  EXPECT_EQ(TrayIcon("KILLAWATT2").name(), name);
  EXPECT_EQ(TrayIcon("KILLAWATT1").name(), "") << "this one is not";
  EXPECT_FALSE(TrayIcon("KILLAWATT2").pixmap(QSize(22, 22), 1.0).isNull());
  QIcon::setThemeSearchPaths(before);
  QIcon::setThemeName({});
}

TEST(ApplicationIcon, IsDrawnFrom16To512Pixels) {
  for (const int side : {16, 22, 48, 256, 512}) {
    const QImage image = Pixels(ApplicationIcon().pixmap(QSize(side, side), 1.0));
    ASSERT_EQ(image.width(), side);
    EXPECT_EQ(qAlpha(image.pixel(side / 2, side / 2)), 255) << side;
    EXPECT_LT(qAlpha(image.pixel(0, 0)), 255) << side;
  }
}

}  // namespace
}  // namespace wattlark
