#pragma once

#include <QWidget>

#include "platform/qtwidgets/Theme.h"

class QPainter;
class QVBoxLayout;

namespace wattlark {

/// Gives a page the pages' common ground and an empty column for its content.
QVBoxLayout* PageColumn(QWidget& page);

/// Rings the focus of a widget that paints itself, while the keyboard is in use.
void PaintFocus(QPainter& painter, const QWidget& widget, const QRect& place, const Theme& theme);

/// A line of one pixel that parts one block of a page from the next.
class Hairline : public QWidget {
 public:
  explicit Hairline(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace wattlark
