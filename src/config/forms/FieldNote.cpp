#include "config/forms/FieldNote.h"

#include <QPainter>
#include <QStyle>

#include "platform/qtwidgets/Theme.h"

namespace wattlark {

FieldNote::FieldNote(QWidget& field) : field_(field) {
  setObjectName(field.objectName() + "Note");
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  hide();
}

void FieldNote::Show(const std::string& text) {
  setText(QString::fromStdString(text));
  setVisible(!text.empty());
  field_.setAccessibleDescription(this->text());
}

// A colour kept in a palette or a style sheet would not follow a change to a dark desktop.
void FieldNote::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QPalette colors = palette();
  colors.setColor(foregroundRole(), Theme::FromPalette(colors).warning);
  const Qt::Alignment place = QStyle::visualAlignment(layoutDirection(), alignment());
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(place) | Qt::TextWordWrap,
                        colors, isEnabled(), text(), foregroundRole());
}

}  // namespace wattlark
