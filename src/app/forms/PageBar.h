#pragma once

#include <QAbstractButton>
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

/// One of the two buttons that step through the pages.
class NavigationButton : public QAbstractButton {
  Q_OBJECT

 public:
  /// `picture` is the name of a tinted icon.
  explicit NavigationButton(const QString& picture, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString picture_;
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

 private:
  std::array<NavigationButton*, 2> elaNavigation_{};
  std::array<PageShape*, 4> shpPage_{};
};

}  // namespace wattlark
