#pragma once

#include <QLabel>
#include <QScrollArea>
#include <QString>
#include <QWidget>

namespace wattlark {

/// The main area `elaWindow`: shows its content (tabs and pages), or in its place a caption of two
/// lines, which can be chosen with a double click or, from the keyboard, with Enter. Below the
/// caption there may be a guide.
class MainArea : public QWidget {
  Q_OBJECT

 public:
  /// `content` becomes a child.
  explicit MainArea(QWidget* content, QWidget* parent = nullptr);

  /// The guide, which becomes a child, stays hidden until a caption shows it. At most once.
  void SetGuide(QWidget& guide);
  /// An empty caption shows the content.
  void SetCaption(const QString& caption, bool showsGuide = false);
  QString Caption() const { return caption_; }

 signals:
  void DoubleClicked();

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void SetColors();

  QWidget* content_;
  QScrollArea* guideArea_ = nullptr;
  QLabel* picture_ = nullptr;
  QLabel* first_ = nullptr;
  QLabel* second_ = nullptr;
  QWidget* message_ = nullptr;
  QString caption_;
};

}  // namespace wattlark
