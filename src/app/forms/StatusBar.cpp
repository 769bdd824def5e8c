#include "app/forms/StatusBar.h"

#include <QEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <algorithm>

#include "app/forms/modForm.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kPanelHeight = 28;
constexpr int kPanelMargin = 8;
constexpr int kPictureSide = 16;

}  // namespace

StatusPanel::StatusPanel(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::TabFocus);
  setIconSize({kPictureSide, kPictureSide});
}

QSize StatusPanel::sizeHint() const {
  return {iconSize().width() + 2 * kPanelMargin,
          std::max(kPanelHeight, fontMetrics().height() + kPanelMargin)};
}

QSize StatusPanel::minimumSizeHint() const {
  return sizeHint();
}

void StatusPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect inner = rect().adjusted(kPanelMargin, 0, -kPanelMargin, 0);
  if (!icon().isNull()) icon().paint(&painter, inner);
  painter.setPen(Theme::FromPalette(palette()).mutedText);
  painter.drawText(inner, Qt::AlignVCenter | Qt::TextSingleLine,
                   fontMetrics().elidedText(text(), Qt::ElideRight, inner.width()));
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = rect().adjusted(2, 2, -2, -2);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

StatusBar::StatusBar(QWidget* parent) : QStatusBar(parent) {
  setObjectName("sbStatusBar");
  setSizeGripEnabled(false);
  info_ = new StatusPanel(this);
  comm_ = new StatusPanel(this);
  addWidget(info_, 1);
  addPermanentWidget(comm_);
  for (StatusPanel* panel : {info_, comm_}) {
    const QString key = panel == info_ ? "INFO" : "COMM";
    panel->setObjectName(key);
    connect(panel, &StatusPanel::clicked, this, [this, key] { emit PanelClicked(key); });
  }
  SetInfoText({});
  ShowCommImage();
}

void StatusBar::SetInfoText(const QString& text) {
  info_->setText(text);
  info_->setShortcut({});  // an "&" of the text is no mnemonic
  info_->setToolTip(PlainToolTip(text));
  info_->setAccessibleName(text.isEmpty() ? "Information" : text);
}

void StatusBar::Refresh() {
  if (image_ == shownImage_) return;
  ShowCommImage();
}

void StatusBar::ShowCommImage() {
  shownImage_ = image_;
  const Theme theme = Theme::FromPalette(palette());
  const bool isReceiving = image_ == CommImage::Receiving;
  const QColor color = isReceiving ? theme.accent : theme.mutedText;
  comm_->setIcon(TintedIcon(isReceiving ? "receiving" : "idle", {color, color, color}));
  comm_->setToolTip(isReceiving ? "Receiving serial input" : "Waiting for serial input");
  comm_->setAccessibleName(comm_->toolTip());
}

// One line above the panels instead of a frame around each.
void StatusBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(0, 0, width(), 1, Theme::FromPalette(palette()).hairline);
}

void StatusBar::changeEvent(QEvent* event) {
  QStatusBar::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && comm_ != nullptr) ShowCommImage();
}

}  // namespace wattlark
