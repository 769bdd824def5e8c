#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <functional>
#include <vector>

namespace wattlark {

/// The strip `elaScroller`: pages side by side, of which one is shown. Changing to another slides
/// the strip past, in the background and within 300 ms. A page is made when it is first needed: a
/// start does not wait for those that are out of sight.
class PageStrip : public QWidget {
  Q_OBJECT

 public:
  struct Page {
    std::function<QWidget*(QWidget* parent)> make;  ///< called once
    std::function<void(QWidget& page)> refresh = {};
    QWidget* widget = nullptr;  ///< null until it is made
  };

  explicit PageStrip(std::vector<Page> pages, QWidget* parent = nullptr);

  const std::vector<Page>& Pages() const { return pages_; }
  int PageCount() const { return static_cast<int>(pages_.size()); }
  /// The page shown, or slid to; from 1.
  int CurrentPage() const { return currentPage_; }
  /// A page outside of the strip gives the nearest one.
  void ShowPage(int page);
  /// Makes the pages that were not needed yet.
  void MakePages();
  /// Refreshes whatever page is to be seen.
  void RefreshPages();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void PageShown(int page);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget& PageWidget(int page);
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
