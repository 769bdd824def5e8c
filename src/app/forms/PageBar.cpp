#include "app/forms/PageBar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>

#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr QSize kShapeSize(16, 24);  // larger than the circle: it is to be hit
constexpr double kCircleRadius = 3.5;
constexpr QSize kButtonSize(36, 28);
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

PageBar::PageBar(QWidget* parent) : QWidget(parent) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 8, 12, 8);
  row->setSpacing(0);
  for (int index = 0; index < 2; ++index) {
    auto* button = new QToolButton(this);
    elaNavigation_[static_cast<std::size_t>(index)] = button;
    button->setObjectName("elaNavigation" + QString::number(index));
    button->setAccessibleName(index == 0 ? "Previous page" : "Next page");
    button->setToolTip(button->accessibleName());
    button->setFocusPolicy(Qt::StrongFocus);
    button->setMinimumSize(kButtonSize);
    connect(button, &QToolButton::pressed, this, [this] { SetPictures(); });
    connect(button, &QToolButton::released, this, [this] { SetPictures(); });
    connect(button, &QToolButton::clicked, this, [this, index] { emit Stepped(2 * index - 1); });
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
  SetPictures();
}

void PageBar::ShowPage(int page) {
  for (std::size_t index = 0; index < shpPage_.size(); ++index) {
    shpPage_[index]->SetFilled(static_cast<int>(index) == page - 1);
  }
}

void PageBar::SetPictures() {
  const Theme theme = Theme::FromPalette(palette());
  for (std::size_t index = 0; index < elaNavigation_.size(); ++index) {
    QToolButton& button = *elaNavigation_[index];
    const QColor color = button.isDown() ? theme.accent : theme.text;
    button.setIcon(TintedIcon(index == 0 ? "back" : "forward", {color, color, theme.mutedText}));
  }
}

void PageBar::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && elaNavigation_[1] != nullptr) SetPictures();
}

}  // namespace wattlark
