#include "app/forms/PageFrame.h"

#include <QPainter>
#include <QVBoxLayout>

namespace wattlark {

namespace {

constexpr int kMargin = 12;
constexpr int kSpacing = 8;
constexpr double kFocusRadius = 4;

}  // namespace

QVBoxLayout* PageColumn(QWidget& page) {
  page.setBackgroundRole(QPalette::Base);
  page.setAutoFillBackground(true);
  auto* column = new QVBoxLayout(&page);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kSpacing);
  return column;
}

void PaintFocus(QPainter& painter, const QWidget& widget, const QRect& place, const Theme& theme) {
  if (!widget.hasFocus() || !widget.window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(theme.text, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), kFocusRadius, kFocusRadius);
  painter.restore();
}

Hairline::Hairline(QWidget* parent) : QWidget(parent) {
  setFixedHeight(1);
}

void Hairline::paintEvent(QPaintEvent* /*event*/) {
  QPainter(this).fillRect(rect(), Theme::FromPalette(palette()).hairline);
}

}  // namespace wattlark
