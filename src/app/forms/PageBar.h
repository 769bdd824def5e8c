#pragma once

#include <QToolButton>
#include <QWidget>
#include <array>

namespace wattlark {

/// One shape of the page indicator: solid for the page shown, an outline for the others.
class PageShape : public QWidget {
  Q_OBJECT
  Q_PROPERTY(bool filled READ IsFilled WRITE SetFilled)

 public:
  explicit PageShape(QWidget* parent = nullptr);
  bool IsFilled() const { return filled_; }
  void SetFilled(bool filled);

 signals:
  void Clicked();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  bool filled_ = false;
};

/// Below the pages: the buttons `elaNavigation0` (back) and `elaNavigation1` (forward), and the
/// indicator `shpPage0` to `shpPage3` between them.
class PageBar : public QWidget {
  Q_OBJECT

 public:
  explicit PageBar(QWidget* parent = nullptr);
  void ShowPage(int page);  ///< 1..4

 signals:
  void Stepped(int pages);  ///< -1 or 1
  void Chosen(int page);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void SetPictures();

  std::array<QToolButton*, 2> elaNavigation_{};
  std::array<PageShape*, 4> shpPage_{};
};

}  // namespace wattlark
