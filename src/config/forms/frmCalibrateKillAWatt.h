#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <array>
#include <optional>

#include "config/MeterCalibration.h"
#include "platform/Clock.h"

namespace wattlark {

class CalibrationPanel;
class PageStrip;

/// The wizard that calibrates one meter in three steps against the meter's own display, while its
/// readings go on. Every change is the meter's at once; cancelling gives it back the values it had.
/// Closing the window by its frame leaves it those that it has.
class frmCalibrateKillAWatt : public QDialog {
  Q_OBJECT

 public:
  /// All must outlive the dialog.
  struct Context {
    const RegionalSettings& regional;
    const Clock& clock;
  };

  explicit frmCalibrateKillAWatt(const Context& context, QWidget* parent = nullptr);

  /// The meter to calibrate, which must outlive the dialog; to be called once, before it is shown.
  void SetKillAWatt(clsKillAWatt& meter);
  /// The step shown, 1 to 3.
  int Step() const;
  /// Any other number shows the nearest step.
  void SetStep(int step);
  /// True once the wizard was cancelled.
  bool Cancelled() const { return cancelled_; }

  /// What Escape does, as the button does.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* BuildButtons();
  QPushButton* Button(const QString& caption, const QString& name);
  void FitToFont();
  void Adjust(CalibrationStep step, int position);
  void ShowValue(CalibrationStep step);
  void tmrUpdate_Timer();
  void EnableControls(bool isReceiving);
  void cmdNext_Click();
  CalibrationPanel& Panel(CalibrationStep step) const;
  QWidget& BarOfStep() const;

  Context context_;
  std::optional<MeterCalibration> calibration_;
  QTimer tmrUpdate_{this};
  bool cancelled_ = false;
  QPointer<QWidget> interrupted_;  ///< what had the focus when the meter fell silent
  QLabel* lblName_ = nullptr;
  std::array<CalibrationPanel*, CalibrationSteps> panels_{};
  PageStrip* elaScroller_ = nullptr;
  QPushButton* cmdBack_ = nullptr;
  QPushButton* cmdNext_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
};

/// Shows the wizard over `owner` until the user ends it.
void CalibrateMeter(const frmCalibrateKillAWatt::Context& context, clsKillAWatt& meter,
                    QWidget* owner);

}  // namespace wattlark
