#pragma once

#include <QString>
#include <QWidget>

#include "app/MeterSelection.h"
#include "app/Monitor.h"

namespace wattlark {

class FitLabel;
class RecentChart;
class SelectorGroup;

/// Page 2 of the main window: the chart of the selected meter's recent values.
class RecentPage : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive this widget.
  RecentPage(Monitor& monitor, MeterSelection& selection, QWidget* parent = nullptr);

  /// Takes the present values; the chart is painted once, when it is next on screen. Without a
  /// meter the page stays as it is.
  void Refresh();

  /// Setting one acts like a click on that button; a value outside its row is ignored.
  int RecentUnit() const;
  void SetRecentUnit(int unit);
  int RecentInterval() const;
  void SetRecentInterval(int interval);

 signals:
  /// What the status bar is to say of the data point that the pointer, or the arrow keys, have
  /// reached.
  void hoverText(const QString& text);

 private:
  void BuildLayout();

  Monitor& monitor_;
  MeterSelection& selection_;
  SelectorGroup* elaRecentUnit_;
  SelectorGroup* elaRecentInterval_;
  FitLabel* elaRecentHeader_;
  RecentChart* chtRecent_;
};

}  // namespace wattlark
