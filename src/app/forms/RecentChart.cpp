#include "app/forms/RecentChart.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <limits>

#include "support/NoValue.h"

namespace wattlark {

namespace {

constexpr double kZoneEnd = 50000;
constexpr double kReachPixels = 8;
constexpr int kTopMargin = 20;
constexpr int kRightMargin = 12;
constexpr int kLabelGap = 14;
constexpr double kMarkSize = 9;
constexpr double kLonerSize = 5;

QCPItemRect* AddZone(QCustomPlot& plot, const char* name) {
  auto* zone = new QCPItemRect(&plot);
  zone->setObjectName(name);
  zone->setLayer("background");
  zone->setVisible(false);
  return zone;
}

}  // namespace

RecentChart::RecentChart(const RegionalSettings& regional, QWidget* parent)
    : ChartView("chtRecent", "Recent values", parent), regional_(regional) {
  setFocusPolicy(Qt::TabFocus);
  BuildAxes();
  BuildPlottables();
  UpdateTheme();
}

void RecentChart::BuildAxes() {
  xAxis->setTicker(timeTicker_);
  yAxis->setTicker(valueTicker_);
  xAxis->grid()->setVisible(false);
  // The title of the value axis stands upright above its labels.
  title_ = new QCPItemText(this);
  title_->setObjectName("axisTitle");
  title_->setClipToAxisRect(false);
  title_->position->setType(QCPItemPosition::ptAxisRectRatio);
  title_->position->setCoords(0, 0);
  title_->setPositionAlignment(Qt::AlignRight | Qt::AlignBottom);
  title_->setPadding(QMargins(0, 0, 6, 7));
}

void RecentChart::BuildPlottables() {
  lower_ = AddZone(*this, "Lower");
  upper_ = AddZone(*this, "Upper");
  line_ = addGraph();
  line_->setObjectName("values");
  // A value between two gaps has no line to either side.
  loners_ = addGraph();
  loners_->setObjectName("loners");
  loners_->setLineStyle(QCPGraph::lsNone);
  markGraph_ = addGraph();
  markGraph_->setObjectName("mark");
  markGraph_->setLineStyle(QCPGraph::lsNone);
  markGraph_->setLayer("overlay");
}

void RecentChart::ApplyTheme(const Theme& theme) {
  const QFont small = LabelFont();
  StyleAxis(*xAxis, theme.mutedText, small);
  StyleAxis(*yAxis, theme.mutedText, small);
  yAxis->grid()->setPen(QPen(theme.hairline, 0));
  yAxis->grid()->setZeroLinePen(QPen(theme.mutedText, 0));
  title_->setFont(small);
  title_->setColor(theme.mutedText);
  line_->setPen(QPen(theme.firstSeries, 1.75, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  loners_->setPen(QPen(theme.firstSeries, 1));
  loners_->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, theme.firstSeries, kLonerSize));
  markGraph_->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssCircle, QPen(theme.text, 2),
                                              QBrush(theme.base), kMarkSize));
  lower_->setBrush(theme.zone);
  upper_->setBrush(theme.zone);
}

void RecentChart::SetView(RecentChartView view, int unit, int interval) {
  if (unit != unit_ || interval != interval_) mark_.reset();
  view_ = std::move(view);
  unit_ = unit;
  interval_ = interval;
  setAccessibleDescription(QString::fromStdString(view_.header));
  Redraw();
}

void RecentChart::Prepare() {
  if (view_.x.empty()) return;
  FillGraphs();
  double low = 0;
  double high = 0;
  for (const double value : view_.y) {
    if (!HasValue(value)) continue;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  const int labels = SetValueAxis(*yAxis, MakeValueScale(low, high, ValueSteps()), regional_);
  SetPlotMargins({labels, kTopMargin, kRightMargin, TimeLabelHeight()});
  timeSpace_ = {labels, width() - labels - kRightMargin};
  xAxis->setRange(static_cast<double>(view_.x.front()) - 0.5,
                  static_cast<double>(view_.x.back()) + 0.5);
  title_->setText(QString::fromStdString(view_.axisTitle));
  SetZones();
  SetTimeAxis();
  ShowMark(mark_ ? std::optional(static_cast<int>(*mark_ - view_.x.front())) : std::nullopt);
}

void RecentChart::FillGraphs() {
  QVector<QCPGraphData> values;
  QVector<QCPGraphData> loners;
  const int count = static_cast<int>(view_.x.size());
  values.reserve(count + 1);
  // A step begins half a slot before its value's place and ends where the next one begins.
  const double shift = view_.filledSteps ? -0.5 : 0;
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<std::size_t>(i);
    const double key = static_cast<double>(view_.x[slot]);
    values.append({key + shift, HasPoint(i) ? view_.y[slot] : qQNaN()});
    const bool isAlone = HasPoint(i) && !HasPoint(i - 1) && !HasPoint(i + 1);
    if (isAlone && !view_.filledSteps) loners.append({key, view_.y[slot]});
  }
  if (view_.filledSteps) values.append({values.back().key + 1, values.back().value});
  line_->setLineStyle(view_.filledSteps ? QCPGraph::lsStepLeft : QCPGraph::lsLine);
  line_->setBrush(view_.filledSteps ? QBrush(Colors().seriesFill) : QBrush(Qt::NoBrush));
  line_->data()->set(values, true);
  loners_->data()->set(loners, true);
}

void RecentChart::SetTimeAxis() {
  const QFontMetrics metrics(xAxis->tickLabelFont());
  const auto label = [&](std::int64_t x) {
    return QString::fromStdString(RecentAxisLabel(interval_, x, regional_));
  };
  const int labelWidth = metrics.horizontalAdvance(label(view_.x.back())) + kLabelGap;
  const int space = std::max(1, timeSpace_.width);
  QVector<double> ticks;
  QVector<QString> labels;
  for (const std::int64_t x :
       TimeTicks(interval_, view_.x.front(), view_.x.back(), std::max(1, space / labelWidth))) {
    const double share = (static_cast<double>(x) - xAxis->range().lower) / xAxis->range().size();
    const double centre = timeSpace_.left + share * space;
    const QString text = label(x);
    const double half = metrics.horizontalAdvance(text) / 2.0;
    if (centre + half > width() || centre - half < 0) continue;
    ticks.append(static_cast<double>(x));
    labels.append(text);
  }
  timeTicker_->Set(ticks, labels);
}

void RecentChart::SetZones() {
  lower_->setVisible(view_.zones.has_value());
  upper_->setVisible(view_.zones.has_value());
  if (!view_.zones) return;
  // A band may reach far beyond the plot; what is drawn of it does not, or dashes would take long.
  const auto place = [this](QCPItemRect& zone, double top, double bottom, double limit) {
    const QCPRange x = xAxis->range();
    const QCPRange y = yAxis->range();
    const auto near = [&](double value) {
      return std::clamp(value, y.lower - y.size(), y.upper + y.size());
    };
    zone.topLeft->setCoords(x.lower - x.size(), near(top));
    zone.bottomRight->setCoords(x.upper + x.size(), near(bottom));
    // The dashed edge says where the limit is to those who do not see the band's colour.
    const bool isOnScreen = limit > y.lower && limit < y.upper;
    zone.setPen(isOnScreen ? QPen(Colors().warning, 1, Qt::DashLine) : QPen(Qt::NoPen));
  };
  place(*lower_, view_.zones->lower, -kZoneEnd, view_.zones->lower);
  place(*upper_, kZoneEnd, view_.zones->upper, view_.zones->upper);
}

bool RecentChart::HasPoint(int index) const {
  return index >= 0 && index < static_cast<int>(view_.y.size()) &&
         HasValue(view_.y[static_cast<std::size_t>(index)]);
}

std::optional<int> RecentChart::PointAt(const QPointF& place) const {
  // A point on the plot's very edge is reached from beyond it as well.
  constexpr double reach = kReachPixels;
  const QRectF reachable = QRectF(axisRect()->rect()).adjusted(-reach, -reach, reach, reach);
  if (view_.x.empty() || !reachable.contains(place)) return std::nullopt;
  const int nearest = static_cast<int>(
      std::lround(xAxis->pixelToCoord(place.x()) - static_cast<double>(view_.x.front())));
  if (view_.filledSteps) {
    if (!HasPoint(nearest)) return std::nullopt;
    const double edge = yAxis->coordToPixel(view_.y[static_cast<std::size_t>(nearest)]);
    const double zero = yAxis->coordToPixel(0);
    const bool isInside = place.y() >= std::min(edge, zero) - kReachPixels &&
                          place.y() <= std::max(edge, zero) + kReachPixels;
    return isInside ? std::optional(nearest) : std::nullopt;
  }
  std::optional<int> found;
  double least = kReachPixels;
  for (int i = nearest - 8; i <= nearest + 8; ++i) {
    if (!HasPoint(i)) continue;
    const auto slot = static_cast<std::size_t>(i);
    const double distance =
        std::hypot(xAxis->coordToPixel(static_cast<double>(view_.x[slot])) - place.x(),
                   yAxis->coordToPixel(view_.y[slot]) - place.y());
    if (distance > least) continue;
    least = distance;
    found = i;
  }
  return found;
}

std::optional<int> RecentChart::NextPoint(int index, int step) const {
  for (; index >= 0 && index < static_cast<int>(view_.y.size()); index += step) {
    if (HasPoint(index)) return index;
  }
  return std::nullopt;
}

void RecentChart::Reach(int index) {
  const auto slot = static_cast<std::size_t>(index);
  ShowMark(index);
  layer("overlay")->replot();
  emit PointReached(QString::fromStdString(
      RecentHoverText(unit_, interval_, view_.x[slot], view_.y[slot], regional_)));
}

void RecentChart::ShowMark(std::optional<int> index) {
  if (index && HasPoint(*index)) {
    const auto slot = static_cast<std::size_t>(*index);
    mark_ = view_.x[slot];
    markGraph_->data()->set({{static_cast<double>(*mark_), view_.y[slot]}}, true);
  } else {
    mark_.reset();
    markGraph_->data()->clear();
  }
}

void RecentChart::mouseMoveEvent(QMouseEvent* event) {
  ChartView::mouseMoveEvent(event);
  if (const auto point = PointAt(event->position())) {
    Reach(*point);
  } else if (mark_) {
    ShowMark(std::nullopt);
    layer("overlay")->replot();
  }
}

void RecentChart::leaveEvent(QEvent* event) {
  ChartView::leaveEvent(event);
  ShowMark(std::nullopt);
  layer("overlay")->replot();
}

void RecentChart::keyPressEvent(QKeyEvent* event) {
  const int last = static_cast<int>(view_.y.size()) - 1;
  const int marked = mark_ ? static_cast<int>(*mark_ - view_.x.front()) : last + 1;
  std::optional<int> point;
  switch (event->key()) {
    case Qt::Key_Left:
      point = NextPoint(marked - 1, -1);
      break;
    case Qt::Key_Right:
      point = mark_ ? NextPoint(marked + 1, 1) : NextPoint(last, -1);
      break;
    case Qt::Key_Home:
      point = NextPoint(0, 1);
      break;
    case Qt::Key_End:
      point = NextPoint(last, -1);
      break;
    default:
      ChartView::keyPressEvent(event);
      return;
  }
  if (point) Reach(*point);
}

void RecentChart::focusOutEvent(QFocusEvent* event) {
  ChartView::focusOutEvent(event);
  ShowMark(std::nullopt);
  layer("overlay")->replot();
}

}  // namespace wattlark
