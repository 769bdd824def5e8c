#include "platform/qtwidgets/Icons.h"

#include <QFile>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>

#include "platform/xdg/DesktopID.h"

// The pictures lie in a static library, whose resources nobody registers unless asked; the macro
// has to stand outside of any namespace.
static void RegisterPictures() {
  Q_INIT_RESOURCE(wattlark);
}

namespace wattlark {

namespace {

constexpr double kTrayGrid = 16;
constexpr double kBarPitch = 3;
constexpr int kBars = 5;

// The picture centred in an image of this size.
using Painting = std::function<QImage(const QSize& pixels, QIcon::Mode, QIcon::State)>;

QString PictureFile(const QString& name) {
  RegisterPictures();
  return ":/icons/" + name + ".svg";
}

QImage EmptyImage(const QSize& pixels) {
  QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

QRectF CentredSquare(const QSize& pixels) {
  const int side = std::min(pixels.width(), pixels.height());
  return QRect((pixels.width() - side) / 2, (pixels.height() - side) / 2, side, side);
}

QImage RenderPicture(QSvgRenderer& picture, const QSize& pixels) {
  QImage image = EmptyImage(pixels);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  picture.render(&painter, CentredSquare(pixels));
  return image;
}

QImage RenderPicture(const QString& name, const QSize& pixels) {
  QSvgRenderer picture(PictureFile(name));
  return RenderPicture(picture, pixels);
}

QImage Tinted(QImage image, const QColor& color) {
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
  return image;
}

struct TrayState {
  int litBars;
  QString barPicture;
};

// The bars are put on whole pixels one by one: at 22 or 24 pixels the grid itself would smear them.
QImage RenderTray(const TrayState& state, const QSize& pixels) {
  QImage image = EmptyImage(pixels);
  QSvgRenderer renderer(PictureFile("tray"));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF square = CentredSquare(pixels);
  const double scale = square.width() / kTrayGrid;
  const auto place = [&](const QString& element, double raisedBy) {
    const QRectF bounds = renderer.boundsOnElement(element).translated(0, -raisedBy);
    const double left = std::round(bounds.left() * scale);
    const double width = std::max(1.0, std::round(bounds.right() * scale) - left);
    const double height = std::max(1.0, std::round(bounds.height() * scale));
    const double bottom = std::round(bounds.bottom() * scale);
    renderer.render(&painter, element,
                    QRectF(left, bottom - height, width, height).translated(square.topLeft()));
  };
  place("plug", 0);
  for (int bar = 0; bar < kBars; ++bar) {
    place(bar < state.litBars ? state.barPicture : QString("dim"), bar * kBarPitch);
  }
  return image;
}

TrayState TrayStateOf(std::string_view key) {
  constexpr std::string_view kPrefix = "KILLAWATT";
  if (key.size() != kPrefix.size() + 1 || !key.starts_with(kPrefix)) return {0, {}};
  const int level = key.back() - '0';
  if (level < 0 || level > kBars) return {0, {}};
  if (level == kBars) return {kBars, "over"};
  return {level + 1, "lit"};
}

// Draws at the very size and ratio asked for and keeps what it has drawn in the pixmap cache.
class PictureEngine : public QIconEngine {
 public:
  PictureEngine(QString key, QList<QSize> sizes, Painting painting, QString symbolicName = {})
      : key_(std::move(key)),
        sizes_(std::move(sizes)),
        painting_(std::move(painting)),
        symbolicName_(std::move(symbolicName)) {}

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    if (size.isEmpty()) return {};
    const QString key = QString("wattlark/%1/%2x%3/%4%5")
                            .arg(key_)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(int{mode})
                            .arg(int{state});
    QPixmap result;
    if (!QPixmapCache::find(key, &result)) {
      result = QPixmap::fromImage(painting_(size, mode, state));
      QPixmapCache::insert(key, result);
    }
    return result;
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const double ratio = painter->device()->devicePixelRatioF();
    painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state));
  }

  // Desktops that colour such icons to suit their panel take the installed one of this name.
  QString iconName() override {
    const bool isInstalled = !symbolicName_.isEmpty() && QIcon::hasThemeIcon(symbolicName_);
    return isInstalled ? symbolicName_ : QString();
  }

  QIconEngine* clone() const override { return new PictureEngine(*this); }

  // Desktops that are sent the icon as pixmaps take these.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return sizes_; }

  bool isNull() override { return false; }

 private:
  QString key_;
  QList<QSize> sizes_;
  Painting painting_;
  QString symbolicName_;
};

QList<QSize> Squares(std::initializer_list<int> sides) {
  QList<QSize> sizes;
  for (const int side : sides) sizes.append(QSize(side, side));
  return sizes;
}

}  // namespace

QPixmap TintedPixmap(const QString& name, const QColor& color, const QSize& size,
                     double devicePixelRatio) {
  const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
  if (pixels.isEmpty() || !QFile::exists(PictureFile(name))) return {};
  QPixmap pixmap = QPixmap::fromImage(Tinted(RenderPicture(name, pixels), color));
  pixmap.setDevicePixelRatio(devicePixelRatio);
  return pixmap;
}

QIcon TintedIcon(const QString& name, const IconColors& colors) {
  if (!QFile::exists(PictureFile(name))) return {};
  const QString key = name + colors.off.name(QColor::HexArgb) + colors.on.name(QColor::HexArgb) +
                      colors.disabled.name(QColor::HexArgb);
  return QIcon(new PictureEngine(key, Squares({16, 24, 32}),
                                 [=](const QSize& pixels, QIcon::Mode mode, QIcon::State state) {
                                   const QColor& color = mode == QIcon::Disabled ? colors.disabled
                                                         : state == QIcon::On    ? colors.on
                                                                                 : colors.off;
                                   return Tinted(RenderPicture(name, pixels), color);
                                 }));
}

QIcon TrayIcon(std::string_view key) {
  const TrayState state = TrayStateOf(key);
  const bool isSymbolic = state.barPicture != "over";  // no panel's colours tell that
  const QString name = QString("%1-tray%2-symbolic").arg(DesktopID).arg(state.litBars);
  return QIcon(new PictureEngine(
      QString("tray%1%2").arg(state.litBars).arg(state.barPicture),
      Squares({16, 22, 24, 32, 44, 48, 64}),
      [state](const QSize& pixels, QIcon::Mode, QIcon::State) { return RenderTray(state, pixels); },
      isSymbolic ? name : QString()));
}

// The window system is handed every size at each start; it scales what it shows in others.
QIcon ApplicationIcon() {
  const auto picture = std::make_shared<QSvgRenderer>(PictureFile("wattlark"));
  return QIcon(new PictureEngine("application", Squares({16, 32, 48, 96}),
                                 [picture](const QSize& pixels, QIcon::Mode, QIcon::State) {
                                   return RenderPicture(*picture, pixels);
                                 }));
}

}  // namespace wattlark
