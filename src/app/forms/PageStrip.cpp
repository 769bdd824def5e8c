#include "app/forms/PageStrip.h"

#include <QResizeEvent>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <utility>

namespace wattlark {

namespace {

constexpr int kLongestSlide = 250;  // ms

}  // namespace

PageStrip::PageStrip(std::vector<Page> pages, QWidget* parent)
    : QWidget(parent), pages_(std::move(pages)) {
  setObjectName("elaScroller");
  for (const Page& page : pages_) page.widget->setParent(this);
  slide_.setEasingCurve(QEasingCurve::InOutQuad);
  connect(&slide_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
    offset_ = value.toDouble();
    PlacePages();
  });
  connect(&slide_, &QVariantAnimation::finished, this, [this] { EndSlide(); });
  EndSlide();
}

void PageStrip::ShowPage(int page) {
  const int target = std::clamp(page, 1, PageCount());
  if (target != currentPage_) {
    QWidget& left = PageWidget(currentPage_);
    currentPage_ = target;
    slide_.stop();
    for (int passed = 1; passed <= PageCount(); ++passed) {
      const double position = passed - 1;
      const double destination = target - 1;
      if (position > std::min(offset_, destination) - 1 &&
          position < std::max(offset_, destination) + 1) {
        PageWidget(passed).show();
      }
    }
    RefreshPages();
    MoveFocus(left, PageWidget(target));
    const int duration = SlideMilliseconds();
    if (duration > 0 && isVisible()) {
      slide_.setStartValue(offset_);
      slide_.setEndValue(static_cast<double>(target - 1));
      slide_.setDuration(duration);
      slide_.start();
    } else {
      EndSlide();
    }
  }
  emit PageShown(currentPage_);
}

void PageStrip::RefreshPages() {
  for (const Page& page : pages_) {
    if (!page.widget->isHidden()) page.refresh();
  }
}

// A desktop that wants no animations says so through its style.
int PageStrip::SlideMilliseconds() const {
  const int wanted = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
  return wanted > 0 ? kLongestSlide : 0;
}

void PageStrip::PlacePages() {
  for (int page = 1; page <= PageCount(); ++page) {
    const double left = (page - 1 - offset_) * width();
    PageWidget(page).setGeometry(static_cast<int>(std::lround(left)), 0, width(), height());
  }
}

// Pages out of sight are hidden, so that the keyboard does not reach them.
void PageStrip::EndSlide() {
  offset_ = currentPage_ - 1;
  PlacePages();
  for (int page = 1; page <= PageCount(); ++page) {
    PageWidget(page).setVisible(page == currentPage_);
  }
}

void PageStrip::MoveFocus(QWidget& from, QWidget& to) {
  const QWidget* focus = window()->focusWidget();
  if (focus == nullptr || !from.isAncestorOf(focus)) return;
  for (QWidget* next = to.nextInFocusChain(); next != &to; next = next->nextInFocusChain()) {
    const bool takesFocus = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled();
    if (takesFocus && to.isAncestorOf(next)) {
      next->setFocus(Qt::OtherFocusReason);
      return;
    }
  }
}

QSize PageStrip::sizeHint() const {
  QSize size;
  for (const Page& page : pages_) size = size.expandedTo(page.widget->sizeHint());
  return size;
}

QSize PageStrip::minimumSizeHint() const {
  QSize size;
  for (const Page& page : pages_) size = size.expandedTo(page.widget->minimumSizeHint());
  return size;
}

void PageStrip::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  PlacePages();
}

}  // namespace wattlark
