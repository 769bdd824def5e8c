#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <functional>
#include <vector>

namespace wattlark {

/// The strip `elaScroller`: pages side by side, of which one is shown. Changing to another slides
/// the strip past, in the background and within 300 ms.
class PageStrip : public QWidget {
  Q_OBJECT

 public:
  struct Page {
    QWidget* widget;  ///< becomes a child
    std::function<void()> refresh;
  };

  explicit PageStrip(std::vector<Page> pages, QWidget* parent = nullptr);

  const std::vector<Page>& Pages() const { return pages_; }
  int PageCount() const { return static_cast<int>(pages_.size()); }
  /// The page shown, or slid to; from 1.
  int CurrentPage() const { return currentPage_; }
  /// A page outside of the strip gives the nearest one.
  void ShowPage(int page);
  /// Refreshes whatever page is to be seen.
  void RefreshPages();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void PageShown(int page);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget& PageWidget(int page) const { return *pages_[static_cast<std::size_t>(page - 1)].widget; }
  void PlacePages();
  void EndSlide();
  void MoveFocus(QWidget& from, QWidget& to);
  int SlideMilliseconds() const;

  std::vector<Page> pages_;
  QVariantAnimation slide_{this};
  double offset_ = 0;  ///< of the strip's left end, in pages
  int currentPage_ = 1;
};

}  // namespace wattlark
