#include "app/forms/PageBar.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

#include "platform/qtwidgets/Controls.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr QSize kShapeSize(16, 24);  // larger than the circle: it is to be hit
constexpr double kCircleRadius = 3.5;
constexpr int kButtonWidth = 36;
constexpr QSize kPictureSize(16, 16);
constexpr double kRadius = 6;
constexpr const char* kPageNames[] = {"Current Conditions", "Graph of Recent Values", "Total Usage",
                                      "Last Kill-A-Watt Packet"};

}  // namespace

PageShape::PageShape(QWidget* parent) : QWidget(parent) {
  setFixedSize(kShapeSize);
  setCursor(Qt::PointingHandCursor);
}

void PageShape::SetFilled(bool filled) {
  if (filled_ == filled) return;
  filled_ = filled;
  update();
}

void PageShape::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme theme = Theme::FromPalette(palette());
  painter.setPen(QPen(filled_ ? theme.text : theme.mutedText, 1.2));
  painter.setBrush(filled_ ? QBrush(theme.text) : QBrush(Qt::NoBrush));
  painter.drawEllipse(QRectF(rect()).center(), kCircleRadius, kCircleRadius);
}

void PageShape::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit Clicked();
}

NavigationButton::NavigationButton(const QString& picture, QWidget* parent)
    : QAbstractButton(parent), picture_(picture) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
}

QSize NavigationButton::sizeHint() const {
  return {kButtonWidth, ControlHeight(*this)};
}

void NavigationButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme theme = Theme::FromPalette(palette());
  painter.setPen(QPen(isDown() || underMouse() ? theme.mutedText : theme.hairline, 1));
  painter.setBrush(isDown() ? theme.selectedFill : theme.base);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
  QRect picture(QPoint(), kPictureSize);
  picture.moveCenter(rect().center());
  painter.drawPixmap(picture, TintedPixmap(picture_, isDown() ? theme.accent : theme.text,
                                           kPictureSize, devicePixelRatioF()));
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = rect().adjusted(3, 3, -3, -3);
    option.backgroundColor = theme.base;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

PageBar::PageBar(QWidget* parent) : QWidget(parent) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 8, 12, 8);
  row->setSpacing(0);
  for (int index = 0; index < 2; ++index) {
    auto* button = new NavigationButton(index == 0 ? "back" : "forward", this);
    elaNavigation_[static_cast<std::size_t>(index)] = button;
    button->setObjectName("elaNavigation" + QString::number(index));
    button->setAccessibleName(index == 0 ? "Previous page" : "Next page");
    button->setToolTip(button->accessibleName());
    connect(button, &QAbstractButton::clicked, this,
            [this, index] { emit Stepped(2 * index - 1); });
  }
  row->addWidget(elaNavigation_[0]);
  row->addStretch(1);
  for (int index = 0; index < 4; ++index) {
    auto* shape = new PageShape(this);
    shpPage_[static_cast<std::size_t>(index)] = shape;
    shape->setObjectName("shpPage" + QString::number(index));
    shape->setAccessibleName(QString("Page %1 of 4: %2").arg(index + 1).arg(kPageNames[index]));
    shape->setToolTip(kPageNames[index]);
    connect(shape, &PageShape::Clicked, this, [this, index] { emit Chosen(index + 1); });
    row->addWidget(shape);
  }
  row->addStretch(1);
  row->addWidget(elaNavigation_[1]);
}

void PageBar::ShowPage(int page) {
  for (std::size_t index = 0; index < shpPage_.size(); ++index) {
    shpPage_[index]->SetFilled(static_cast<int>(index) == page - 1);
  }
}

}  // namespace wattlark
