#include "app/forms/PageFrame.h"

#include <QPainter>
#include <QVBoxLayout>

#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr int kMargin = 12;
constexpr int kSpacing = 8;

}  // namespace

QVBoxLayout* PageColumn(QWidget& page) {
  page.setBackgroundRole(QPalette::Base);
  page.setAutoFillBackground(true);
  auto* column = new QVBoxLayout(&page);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kSpacing);
  return column;
}

Hairline::Hairline(QWidget* parent) : QWidget(parent) {
  setFixedHeight(1);
}

void Hairline::paintEvent(QPaintEvent* /*event*/) {
  QPainter(this).fillRect(rect(), Theme::FromPalette(palette()).hairline);
}

}  // namespace wattlark
