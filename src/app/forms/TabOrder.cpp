#include "app/forms/TabOrder.h"

#include <QWidget>

namespace wattlark {

std::vector<QWidget*> TabOrderWithin(QWidget& whole) {
  std::vector<QWidget*> result;
  for (QWidget* next = whole.nextInFocusChain(); next != &whole; next = next->nextInFocusChain()) {
    // Qt leaves the order as it is when it is given a widget without a focus.
    if (whole.isAncestorOf(next) && next->focusPolicy() != Qt::NoFocus) result.push_back(next);
  }
  return result;
}

void PlaceInTabOrder(QWidget& whole, QWidget& before) {
  QWidget* last = &before;
  for (QWidget* control : TabOrderWithin(whole)) {
    QWidget::setTabOrder(last, control);
    last = control;
  }
}

}  // namespace wattlark
