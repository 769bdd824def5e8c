#include "app/forms/MainArea.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QVBoxLayout>

#include "app/forms/TabOrder.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr QSize kPictureSize(48, 48);
constexpr int kFocusMargin = 8;

QLabel* CentredLabel(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

MainArea::MainArea(QWidget* content, QWidget* parent) : QWidget(parent), content_(content) {
  setObjectName("elaWindow");
  message_ = new QWidget(this);
  picture_ = CentredLabel(message_);
  first_ = CentredLabel(message_);
  second_ = CentredLabel(message_);
  QFont font = first_->font();
  font.setPointSizeF(font.pointSizeF() * 1.2);
  font.setBold(true);
  first_->setFont(font);
  auto* column = new QVBoxLayout(message_);
  column->setContentsMargins(24, 24, 24, 24);
  column->setSpacing(8);
  column->addStretch(2);
  column->addWidget(picture_);
  column->addSpacing(8);
  column->addWidget(first_);
  column->addWidget(second_);
  column->addStretch(3);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(content_);
  layout->addWidget(message_);
  message_->hide();
}

// Large fonts and many devices may need more room than the window has.
void MainArea::SetGuide(QWidget& guide) {
  guideArea_ = new QScrollArea(this);
  guideArea_->setFrameShape(QFrame::NoFrame);
  guideArea_->setWidgetResizable(true);
  guideArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  guideArea_->setFocusPolicy(Qt::NoFocus);
  guideArea_->setWidget(&guide);
  guideArea_->viewport()->setAutoFillBackground(false);
  guide.setAutoFillBackground(false);
  guideArea_->hide();
  static_cast<QVBoxLayout*>(layout())->addWidget(guideArea_, 1);
  if (const auto others = TabOrderWithin(*content_); !others.empty()) {
    PlaceInTabOrder(*guideArea_, *others.back());
  }
}

void MainArea::SetCaption(const QString& caption, bool showsGuide) {
  if (guideArea_ != nullptr) {
    guideArea_->setVisible(showsGuide);
    picture_->setVisible(!showsGuide);
  }
  if (caption == caption_) return;
  caption_ = caption;
  const QStringList lines = QString(caption).remove('\r').split('\n');
  first_->setText(lines.value(0));
  second_->setText(lines.value(1));
  if (!caption.isEmpty()) SetColors();
  setAccessibleName(QString(caption).replace("\r\n", " "));
  setFocusPolicy(caption.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
  content_->setVisible(caption.isEmpty());
  message_->setVisible(!caption.isEmpty());
}

void MainArea::SetColors() {
  const Theme theme = Theme::FromPalette(palette());
  picture_->setPixmap(TintedPixmap("idle", theme.mutedText, kPictureSize, devicePixelRatioF()));
  QPalette muted = palette();
  muted.setColor(QPalette::WindowText, theme.mutedText);
  second_->setPalette(muted);
}

void MainArea::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit DoubleClicked();
}

void MainArea::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    emit DoubleClicked();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void MainArea::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  update();
}

void MainArea::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  update();
}

void MainArea::paintEvent(QPaintEvent*) {
  if (!hasFocus()) return;
  QPainter painter(this);
  QStyleOptionFocusRect option;
  option.initFrom(this);
  option.rect = rect().adjusted(kFocusMargin, kFocusMargin, -kFocusMargin, -kFocusMargin);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void MainArea::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && !caption_.isEmpty()) SetColors();
}

}  // namespace wattlark
