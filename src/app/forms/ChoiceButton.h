#pragma once

#include <QPushButton>
#include <QString>

namespace wattlark {

/// One of several things to choose, in a frame as wide as there is room: a title and, where there
/// is more to say, a smaller line below it. What is too long is shortened in its middle and shown
/// whole in the tool tip. Checked, it is the one that is in use; a click does not change that.
class ChoiceButton : public QPushButton {
 public:
  explicit ChoiceButton(QWidget* parent = nullptr);

  void SetTexts(const QString& title, const QString& detail);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void nextCheckState() override {}

 private:
  QFont DetailFont() const;

  QString title_;
  QString detail_;
};

}  // namespace wattlark
