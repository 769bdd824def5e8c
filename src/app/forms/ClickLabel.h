#pragma once

#include <QPushButton>

namespace wattlark {

/// A line of text that acts when it is clicked, or chosen with the keyboard; highlighted while the
/// pointer is on it, framed while it has the focus.
class ClickLabel : public QPushButton {
  Q_OBJECT

 public:
  explicit ClickLabel(QWidget* parent = nullptr);

  QSize sizeHint() const override;

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool pointed_ = false;
};

}  // namespace wattlark
