#include "app/forms/ChoiceButton.h"

#include <QPainter>
#include <QStyleOptionFocusRect>
#include <algorithm>

#include "app/forms/modForm.h"
#include "platform/qtwidgets/Controls.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kPadding = 10;
constexpr int kAround = 7;
constexpr int kFocusMargin = 3;
constexpr int kLeastCharacters = 12;
constexpr double kRadius = 6;
constexpr double kDetailSize = 0.9;

}  // namespace

ChoiceButton::ChoiceButton(QWidget* parent) : QPushButton(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setAttribute(Qt::WA_Hover);
}

void ChoiceButton::SetTexts(const QString& title, const QString& detail) {
  const QString whole = detail.isEmpty() ? title : title + ", " + detail;
  setAccessibleName(whole);
  setToolTip(PlainToolTip(whole));
  if (title == title_ && detail == detail_) return;
  title_ = title;
  detail_ = detail;
  updateGeometry();
  update();
}

QFont ChoiceButton::DetailFont() const {
  QFont small = font();
  small.setPixelSize(std::max(8, qRound(QFontInfo(small).pixelSize() * kDetailSize)));
  return small;
}

QSize ChoiceButton::sizeHint() const {
  const int width = std::max(fontMetrics().horizontalAdvance(title_),
                             QFontMetrics(DetailFont()).horizontalAdvance(detail_));
  return {width + 2 * kPadding, minimumSizeHint().height()};
}

QSize ChoiceButton::minimumSizeHint() const {
  int height = fontMetrics().height() + 2 * kAround;
  if (!detail_.isEmpty()) height += QFontMetrics(DetailFont()).height();
  return {fontMetrics().averageCharWidth() * kLeastCharacters + 2 * kPadding,
          std::max(height, ControlHeight(*this))};
}

void ChoiceButton::paintEvent(QPaintEvent* /*event*/) {
  const Theme theme = Theme::FromPalette(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double pen = isChecked() ? 2 : 1;
  painter.setPen(QPen(isChecked()                ? theme.accent
                      : isDown() || underMouse() ? theme.text
                                                 : theme.mutedText,
                      pen));
  painter.setBrush(isChecked() || isDown() ? theme.selectedFill : theme.base);
  painter.drawRoundedRect(QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), kRadius,
                          kRadius);

  QRect space = rect().adjusted(kPadding, kAround, -kPadding, -kAround);
  const auto write = [&](const QString& text, const QFont& font, const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect line(space.left(), space.top(), space.width(),
                     detail_.isEmpty() ? space.height() : metrics.height());
    painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeading,
                     metrics.elidedText(text, Qt::ElideMiddle, line.width()));
    space.setTop(space.top() + metrics.height());
  };
  QFont titleFont = font();
  titleFont.setBold(isChecked());
  write(title_, titleFont, isChecked() ? theme.accent : theme.text);
  if (!detail_.isEmpty()) {
    write(detail_, DetailFont(), isChecked() ? theme.text : theme.mutedText);
  }

  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  option.backgroundColor = theme.base;
  option.rect = rect().adjusted(kFocusMargin, kFocusMargin, -kFocusMargin, -kFocusMargin);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

}  // namespace wattlark
