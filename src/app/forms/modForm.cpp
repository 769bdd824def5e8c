#include "app/forms/modForm.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTextDocument>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "config/WindowPlacement.h"

namespace wattlark {

namespace {

constexpr const char* kWindowSection = "WindowSettings";
constexpr double kLargestPixels = 1e6;  // stored numbers may be anything

int Pixels(double twips) {
  const double pixels = std::clamp(twips / TwipsPerPixel, -kLargestPixels, kLargestPixels);
  return std::isnan(pixels) ? 0 : static_cast<int>(std::lround(pixels));
}

WindowPlacement InTwips(const QRect& rect, int state) {
  return {rect.x() * TwipsPerPixel, rect.y() * TwipsPerPixel, rect.width() * TwipsPerPixel,
          rect.height() * TwipsPerPixel, state};
}

// The screen that shows the middle of the stored window, so that a second monitor keeps it.
const QScreen* ScreenOf(const std::string& stored) {
  if (const auto placement = ParseWindowPlacement(stored)) {
    const QPoint middle(Pixels(placement->left + placement->width / 2),
                        Pixels(placement->top + placement->height / 2));
    if (const QScreen* screen = QGuiApplication::screenAt(middle)) return screen;
  }
  return QGuiApplication::primaryScreen();
}

int StateOf(const QWidget& window) {
  if (window.isMinimized()) return MinimizedWindow;
  return window.isMaximized() || window.isFullScreen() ? MaximizedWindow : NormalWindow;
}

}  // namespace

void RestoreWindowSettings(QWidget& window, const modRegistry& store, const std::string& name,
                           int defaultState) {
  const std::string stored = store.GetAppSetting("", kWindowSection, name, "");
  const QScreen* screen = ScreenOf(stored);
  if (screen == nullptr) return;
  const QRect area = screen->geometry();
  // The rules for a placement know one screen, whose left upper corner is 0,0.
  std::string onScreen = stored;
  if (auto placement = ParseWindowPlacement(stored)) {
    if (placement->left != -1) placement->left -= area.x() * TwipsPerPixel;
    if (placement->top != -1) placement->top -= area.y() * TwipsPerPixel;
    onScreen = WindowPlacementText(*placement);
  }
  const WindowPlacement placement =
      RestoredPlacement(onScreen, defaultState, InTwips(area, NormalWindow),
                        InTwips(QRect(window.pos(), window.size()), NormalWindow));
  const QSize largest = screen->availableSize();
  window.resize(QSize(Pixels(placement.width), Pixels(placement.height))
                    .expandedTo(window.minimumSizeHint())
                    .boundedTo(largest));
  window.move(area.topLeft() + QPoint(Pixels(placement.left), Pixels(placement.top)));
  Qt::WindowStates state = Qt::WindowNoState;
  if (placement.state == MinimizedWindow) state = Qt::WindowMinimized;
  if (placement.state == MaximizedWindow) state = Qt::WindowMaximized;
  window.setWindowState(state);
}

bool SaveWindowSettings(const QWidget& window, modRegistry& store, const std::string& name) {
  const std::string stored = store.GetAppSetting("", kWindowSection, name, "");
  const WindowPlacement placement =
      SavedPlacement(stored, InTwips(QRect(window.pos(), window.size()), StateOf(window)));
  return store.SaveAppSetting("", kWindowSection, name, WindowPlacementText(placement));
}

void SetAlwaysOnTop(QWidget& window, bool on) {
  // Through the widget, the change would hide the window.
  window.overrideWindowFlags(window.windowFlags().setFlag(Qt::WindowStaysOnTopHint, on));
  if (QWindow* handle = window.windowHandle()) handle->setFlag(Qt::WindowStaysOnTopHint, on);
}

QString PlainToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

}  // namespace wattlark
