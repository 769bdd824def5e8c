#pragma once

#include <QString>
#include <optional>

#include "app/RecentChartView.h"
#include "app/forms/AlarmZones.h"
#include "app/forms/ChartView.h"

namespace wattlark {

/// The chart `chtRecent`: a line for power and filled steps for the other units, with gaps where
/// there is no value. The pointer, or the arrow keys, mark one data point.
class RecentChart : public ChartView {
  Q_OBJECT

 public:
  /// `regional` must outlive this widget.
  RecentChart(const RegionalSettings& regional, QWidget* parent);

  /// `unit` and `interval` are those that `view` was made for.
  void SetView(RecentChartView view, int unit, int interval);

 signals:
  /// The pointer or the arrow keys are on this data point.
  void PointReached(const QString& text);

 protected:
  void Prepare() override;
  void ApplyTheme(const Theme& theme) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void BuildAxes();
  void BuildPlottables();
  void FillGraphs();
  void SetTimeAxis();
  /// Takes the round slots whose labels fit; answers how many there are.
  int PlaceTimeLabels(const QFont& font);
  bool HasPoint(int index) const;
  /// The data point at a place of the plot, by index.
  std::optional<int> PointAt(const QPointF& place) const;
  /// The next data point from `index` on in the direction of `step`.
  std::optional<int> NextPoint(int index, int step) const;
  void Reach(int index);
  void ShowMark(std::optional<int> index);
  void ClearMark();

  struct Span {
    int left;
    int width;
  };

  const RegionalSettings& regional_;
  AlarmZones zones_;
  RecentChartView view_;
  int unit_ = 0;
  int interval_ = 0;
  std::optional<std::int64_t> mark_;  ///< x of the marked point
  QSharedPointer<FixedTicker> timeTicker_{new FixedTicker};
  QSharedPointer<FixedTicker> valueTicker_{new FixedTicker};
  Span timeSpace_{};  ///< pixels of the time axis
  QCPGraph* line_ = nullptr;
  QCPGraph* loners_ = nullptr;
  QCPItemTracer* ring_ = nullptr;  ///< around the marked point
  QCPItemText* title_ = nullptr;
};

}  // namespace wattlark
