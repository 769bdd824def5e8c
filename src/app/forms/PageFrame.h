#pragma once

#include <QWidget>

class QVBoxLayout;

namespace wattlark {

/// Gives a page the pages' common ground and an empty column for its content.
QVBoxLayout* PageColumn(QWidget& page);

/// A line of one pixel that parts one block of a page from the next.
class Hairline : public QWidget {
 public:
  explicit Hairline(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace wattlark
