#pragma once

#include <QLabel>
#include <QScrollBar>
#include <QWidget>
#include <functional>

#include "config/MeterCalibration.h"

namespace wattlark {

class FitLabel;

/// One step of the calibration wizard: instructions, readout, the scroll bar that adjusts and the
/// value that it has set.
class CalibrationPanel : public QWidget {
  Q_OBJECT

 public:
  /// `onMoved` hears every change of the scroll bar's position.
  CalibrationPanel(CalibrationStep step, std::function<void(int position)> onMoved,
                   QWidget* parent);

  void ShowReadout(const QString& text);
  void ShowValue(const QString& text, bool isLimited);
  QScrollBar& Bar() { return *bar_; }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void FitToFont();
  void Describe();

  const QString instructions_;
  QLabel* lblInstructions_;
  FitLabel* readout_;
  FitLabel* value_;
  FitLabel* limit_;
  QScrollBar* bar_;
};

}  // namespace wattlark
