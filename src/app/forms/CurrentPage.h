#pragma once

#include <QWidget>

#include "app/MeterSelection.h"
#include "app/Monitor.h"

namespace wattlark {

class AlarmSign;
class FitLabel;
class MeterScale;
class SelectorGroup;

/// Page 1 of the main window: what the selected meter reads now.
class CurrentPage : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive this widget.
  CurrentPage(Monitor& monitor, MeterSelection& selection, QWidget* parent = nullptr);

  /// Redraws the page; without a meter it stays as it is.
  void Refresh();

  /// Setting one acts like a click on that button; a value outside its row is ignored.
  int CurrentUnit() const;
  void SetCurrentUnit(int unit);
  int CurrentInterval() const;
  void SetCurrentInterval(int interval);

 private:
  void BuildLayout();
  void ResetPeak();

  Monitor& monitor_;
  MeterSelection& selection_;
  SelectorGroup* elaCurrentUnit_;
  SelectorGroup* elaCurrentInterval_;
  FitLabel* lblCurrentValue_;
  FitLabel* lblCurrentInterval_;
  FitLabel* lblCurrentVolts_;
  FitLabel* lblCurrentAmps_;
  FitLabel* lblMax_;
  MeterScale* scale_;
  AlarmSign* picAlarm_;
};

}  // namespace wattlark
