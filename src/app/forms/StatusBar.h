#pragma once

#include <QAbstractButton>
#include <QStatusBar>

#include "app/Monitor.h"

namespace wattlark {

/// A field of the status bar, a picture or a text that is cut where it does not fit. Can be
/// clicked.
class StatusPanel : public QAbstractButton {
  Q_OBJECT

 public:
  explicit StatusPanel(QWidget* parent = nullptr);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// The status bar `sbStatusBar` with its panels "INFO" (text) and "COMM" (picture).
class StatusBar : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusBar(QWidget* parent = nullptr);

  void SetInfoText(const QString& text);
  /// Shown at the next `Refresh`: frames come too fast to draw each of them.
  void SetCommImage(CommImage image) { image_ = image; }
  void Refresh();

 signals:
  /// "INFO" or "COMM".
  void PanelClicked(const QString& key);

 protected:
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void ShowCommImage();

  StatusPanel* info_ = nullptr;
  StatusPanel* comm_ = nullptr;
  CommImage image_ = CommImage::Idle;
  CommImage shownImage_ = CommImage::Idle;
};

}  // namespace wattlark
