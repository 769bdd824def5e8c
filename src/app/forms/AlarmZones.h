#pragma once

#include <qcustomplot.h>

#include <optional>

#include "app/RecentChartView.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

/// The shaded zones "Lower" and "Upper" of a plot, below its grid.
class AlarmZones {
 public:
  /// The plot owns what is drawn and must outlive this object.
  explicit AlarmZones(QCustomPlot& plot);

  /// Places the zones within the plot's present ranges, or hides them.
  void Show(const std::optional<RecentChartView::Zones>& zones);
  void ApplyTheme(const Theme& theme);

 private:
  void Place(QCPItemRect& zone, double top, double bottom, double limit);

  QCustomPlot& plot_;
  QCPItemRect* lower_;
  QCPItemRect* upper_;
  QColor edge_;
};

}  // namespace wattlark
