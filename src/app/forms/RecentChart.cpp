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

constexpr double kReachPixels = 8;
constexpr int kTopMargin = 20;
constexpr int kRightMargin = 12;
constexpr int kBottomMargin = 4;
constexpr int kLabelGap = 10;
constexpr int kLeastLabelPixels = 8;
constexpr double kMarkSize = 9;
constexpr double kLonerSize = 5;

}  // namespace

RecentChart::RecentChart(const RegionalSettings& regional, QWidget* parent)
    : ChartView("chtRecent", "Recent values", parent), regional_(regional), zones_(*this) {
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
  line_ = addGraph();
  line_->setObjectName("values");
  // A value between two gaps has no line to either side.
  loners_ = addGraph();
  loners_->setObjectName("loners");
  loners_->setLineStyle(QCPGraph::lsNone);
  ring_ = new QCPItemTracer(this);
  ring_->setObjectName("mark");
  ring_->setStyle(QCPItemTracer::tsCircle);
  ring_->setSize(kMarkSize);
  ring_->setClipToAxisRect(false);
  ring_->setLayer("overlay");
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
  ring_->setPen(QPen(theme.text, 2));
  ring_->setBrush(theme.base);
  zones_.ApplyTheme(theme);
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
  SetPlotMargins({labels, kTopMargin, kRightMargin, TimeLabelHeight() + kBottomMargin});
  timeSpace_ = {labels, std::max(1, width() - labels - kRightMargin)};
  xAxis->setRange(static_cast<double>(view_.x.front()) - 0.5,
                  static_cast<double>(view_.x.back()) + 0.5);
  title_->setText(QString::fromStdString(view_.axisTitle));
  zones_.Show(view_.zones);
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
  // A single label says nothing of the scale: two are worth a smaller font.
  QFont font = LabelFont();
  while (PlaceTimeLabels(font) < 2 && font.pixelSize() > kLeastLabelPixels) {
    font.setPixelSize(font.pixelSize() - 1);
  }
  xAxis->setTickLabelFont(font);
}

int RecentChart::PlaceTimeLabels(const QFont& font) {
  const QFontMetrics metrics(font);
  const auto label = [this](std::int64_t x) {
    return QString::fromStdString(RecentAxisLabel(interval_, x, regional_));
  };
  const int labelWidth = metrics.horizontalAdvance(label(view_.x.back())) + kLabelGap;
  const int most = std::max(1, timeSpace_.width / labelWidth);
  QVector<double> ticks;
  QVector<QString> labels;
  for (const std::int64_t x : TimeTicks(interval_, view_.x.front(), view_.x.back(), most)) {
    const double share = (static_cast<double>(x) - xAxis->range().lower) / xAxis->range().size();
    const double centre = timeSpace_.left + share * timeSpace_.width;
    const QString text = label(x);
    const double half = metrics.horizontalAdvance(text) / 2.0;
    if (centre + half > width() || centre - half < 0) continue;
    ticks.append(static_cast<double>(x));
    labels.append(text);
  }
  timeTicker_->Set(ticks, labels);
  return static_cast<int>(labels.size());
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
  mark_.reset();
  if (index && HasPoint(*index)) {
    const auto slot = static_cast<std::size_t>(*index);
    mark_ = view_.x[slot];
    ring_->position->setCoords(static_cast<double>(*mark_), view_.y[slot]);
  }
  ring_->setVisible(mark_.has_value());
}

void RecentChart::ClearMark() {
  ShowMark(std::nullopt);
  layer("overlay")->replot();
}

void RecentChart::mouseMoveEvent(QMouseEvent* event) {
  ChartView::mouseMoveEvent(event);
  if (const auto point = PointAt(event->position())) {
    Reach(*point);
  } else if (mark_) {
    ClearMark();
  }
}

void RecentChart::leaveEvent(QEvent* event) {
  ChartView::leaveEvent(event);
  ClearMark();
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
  ClearMark();
}

}  // namespace wattlark
