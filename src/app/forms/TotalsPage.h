#pragma once

#include <QWidget>

#include "app/MeterSelection.h"
#include "app/Monitor.h"

class QPushButton;

namespace wattlark {

class SelectorGroup;
class TotalsGrid;

/// Page 3 of the main window: the selected meter's totals of the calendar periods.
class TotalsPage : public QWidget {
  Q_OBJECT

 public:
  /// All must outlive this widget.
  TotalsPage(Monitor& monitor, MeterSelection& selection, Prompts& prompts,
             QWidget* parent = nullptr);

  /// Redraws the grid; without a meter it stays as it is. Empty until then: the start does not wait
  /// for a page that is out of sight.
  void Refresh();

  /// Setting it acts like a click on that button; a value outside its row is ignored.
  int TotalUnit() const;
  void SetTotalUnit(int unit);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void BuildLayout();
  void ShowResetIcon();
  void Reset();

  Monitor& monitor_;
  MeterSelection& selection_;
  Prompts& prompts_;
  SelectorGroup* elaTotalUnit_;
  TotalsGrid* flxTotals_;
  QPushButton* elaReset_;
};

}  // namespace wattlark
