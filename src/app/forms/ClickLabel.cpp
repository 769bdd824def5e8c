#include "app/forms/ClickLabel.h"

#include <QKeyEvent>
#include <QPainter>

#include "platform/qtwidgets/Controls.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kPadding = 8;
constexpr int kRadius = 4;

}  // namespace

ClickLabel::ClickLabel(QWidget* parent) : QPushButton(parent) {
  setCursor(Qt::PointingHandCursor);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QSize ClickLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + 2 * kPadding, ControlHeight(*this)};
}

void ClickLabel::enterEvent(QEnterEvent* event) {
  pointed_ = true;
  QPushButton::enterEvent(event);
  update();
}

void ClickLabel::leaveEvent(QEvent* event) {
  pointed_ = false;
  QPushButton::leaveEvent(event);
  update();
}

void ClickLabel::keyPressEvent(QKeyEvent* event) {
  // Outside a dialog a button leaves Enter to its window.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QPushButton::keyPressEvent(event);
  }
}

void ClickLabel::paintEvent(QPaintEvent* /*event*/) {
  const Theme theme = Theme::FromPalette(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (pointed_ || hasFocus()) {
    painter.setPen(theme.accent);
    painter.setBrush(pointed_ ? theme.accent : theme.base);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
  }
  QFont underlined = font();
  underlined.setUnderline(true);
  painter.setFont(underlined);
  painter.setPen(pointed_ ? theme.base : theme.accent);
  const QRect inside = rect().adjusted(kPadding, 0, -kPadding, 0);
  const QString shown = painter.fontMetrics().elidedText(text(), Qt::ElideRight, inside.width());
  painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, shown);
}

}  // namespace wattlark
