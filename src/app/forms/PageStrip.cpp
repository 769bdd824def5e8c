#include "app/forms/PageStrip.h"

#include <QResizeEvent>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/forms/TabOrder.h"

namespace wattlark {

namespace {

constexpr int kLongestSlide = 250;  // ms

}  // namespace

PageStrip::PageStrip(std::vector<Page> pages, QWidget* parent)
    : QWidget(parent), pages_(std::move(pages)) {
  setObjectName("elaScroller");
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

QWidget& PageStrip::PageWidget(int page) {
  const auto found = pages_.begin() + (page - 1);
  if (found->widget == nullptr) {
    found->widget = found->make(this);
    found->widget->hide();
    QWidget* before = nullptr;
    for (auto earlier = pages_.begin(); earlier != found; ++earlier) {
      if (earlier->widget == nullptr) continue;
      if (const auto controls = TabOrderWithin(*earlier->widget); !controls.empty()) {
        before = controls.back();
      }
    }
    if (before != nullptr) PlaceInTabOrder(*found->widget, *before);
    PlacePages();
    updateGeometry();
  }
  return *found->widget;
}

void PageStrip::MakePages() {
  for (int page = 1; page <= PageCount(); ++page) PageWidget(page);
}

void PageStrip::RefreshPages() {
  for (const Page& page : pages_) {
    if (page.widget != nullptr && !page.widget->isHidden() && page.refresh) {
      page.refresh(*page.widget);
    }
  }
}

// A desktop that wants no animations says so through its style.
int PageStrip::SlideMilliseconds() const {
  const int wanted = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
  return wanted > 0 ? kLongestSlide : 0;
}

void PageStrip::PlacePages() {
  for (int page = 0; page < PageCount(); ++page) {
    QWidget* widget = pages_[static_cast<std::size_t>(page)].widget;
    const double left = (page - offset_) * width();
    if (widget != nullptr) {
      widget->setGeometry(static_cast<int>(std::lround(left)), 0, width(), height());
    }
  }
}

// Pages out of sight are hidden, so that the keyboard does not reach them.
void PageStrip::EndSlide() {
  offset_ = currentPage_ - 1;
  PlacePages();
  QWidget& current = PageWidget(currentPage_);
  for (const Page& page : pages_) {
    if (page.widget != nullptr) page.widget->setVisible(page.widget == &current);
  }
}

void PageStrip::MoveFocus(QWidget& from, QWidget& to) {
  const QWidget* focus = window()->focusWidget();
  if (focus == nullptr || !from.isAncestorOf(focus)) return;
  for (QWidget* control : TabOrderWithin(to)) {
    if ((control->focusPolicy() & Qt::TabFocus) == 0 || !control->isEnabled()) continue;
    control->setFocus(Qt::OtherFocusReason);
    return;
  }
}

QSize PageStrip::sizeHint() const {
  QSize size;
  for (const Page& page : pages_) {
    if (page.widget != nullptr) size = size.expandedTo(page.widget->sizeHint());
  }
  return size;
}

QSize PageStrip::minimumSizeHint() const {
  QSize size;
  for (const Page& page : pages_) {
    if (page.widget != nullptr) size = size.expandedTo(page.widget->minimumSizeHint());
  }
  return size;
}

void PageStrip::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  PlacePages();
}

}  // namespace wattlark
