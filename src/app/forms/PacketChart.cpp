#include "app/forms/PacketChart.h"

#include <algorithm>
#include <cmath>

namespace wattlark {

namespace {

constexpr int kTopMargin = 32;
constexpr int kBottomMargin = 12;
constexpr int kSampleWidth = 24;
constexpr int kSampleHeight = 20;  ///< above the plot
constexpr int kTitleGap = 6;

}  // namespace

PacketChart::PacketChart(const RegionalSettings& regional, QWidget* parent)
    : ChartView("chtPacket", "Last Kill-A-Watt packet", parent), regional_(regional) {
  xAxis->setTicks(false);
  xAxis->grid()->setVisible(false);
  yAxis2->setVisible(true);
  Build(volts_, yAxis, "Volts");
  Build(amps_, yAxis2, "Amps");
  UpdateTheme();
}

// The name of a series with a sample of its line stands above its axis and serves as legend.
void PacketChart::Build(Series& series, QCPAxis* axis, const QString& name) {
  const bool isLeft = axis == yAxis;
  series.axis = axis;
  axis->setTicker(QSharedPointer<FixedTicker>(new FixedTicker));
  series.graph = addGraph(xAxis, axis);
  series.graph->setName(name);
  series.graph->setObjectName(name);

  series.sample = new QCPItemLine(this);
  series.sample->setClipToAxisRect(false);
  series.title = new QCPItemText(this);
  series.title->setClipToAxisRect(false);
  series.title->setText(name);
  series.title->setPositionAlignment(Qt::AlignVCenter | (isLeft ? Qt::AlignLeft : Qt::AlignRight));
  for (QCPItemPosition* corner :
       {series.sample->start, series.sample->end, series.title->position}) {
    corner->setType(QCPItemPosition::ptAbsolute);
  }
}

void PacketChart::ApplyTheme(const Theme& theme) {
  const QFont small = LabelFont();
  StyleAxis(*xAxis, theme.mutedText, small);
  StyleAxis(*yAxis, theme.mutedText, small);
  StyleAxis(*yAxis2, theme.mutedText, small);
  yAxis->grid()->setPen(QPen(theme.hairline, 0));
  yAxis->grid()->setZeroLinePen(QPen(theme.mutedText, 0));
  Style(volts_, theme.firstSeries, Qt::SolidLine);
  Style(amps_, theme.secondSeries, Qt::DashLine);
}

void PacketChart::Style(const Series& series, const QColor& color, Qt::PenStyle style) {
  const QPen pen(color, 2, style, Qt::FlatCap, Qt::RoundJoin);
  series.graph->setPen(pen);
  series.sample->setPen(pen);
  series.title->setColor(Colors().text);
  series.title->setFont(font());
}

void PacketChart::SetSamples(std::vector<double> volts, std::vector<double> amps) {
  volts_.samples = std::move(volts);
  amps_.samples = std::move(amps);
  Redraw();
}

void PacketChart::Prepare() {
  const int leftLabels = Fill(volts_);
  const int rightLabels = Fill(amps_);
  SetPlotMargins({leftLabels, kTopMargin, rightLabels, kBottomMargin});
  const double count = static_cast<double>(volts_.samples.size());
  xAxis->setRange(1, std::max(2.0, count));
  const double left = 0;
  const double right = width();
  const double y = kSampleHeight / 2.0;
  volts_.sample->start->setCoords(left, y);
  volts_.sample->end->setCoords(left + kSampleWidth, y);
  volts_.title->position->setCoords(left + kSampleWidth + kTitleGap, y);
  amps_.sample->start->setCoords(right - kSampleWidth, y);
  amps_.sample->end->setCoords(right, y);
  amps_.title->position->setCoords(right - kSampleWidth - kTitleGap, y);
}

int PacketChart::Fill(Series& series) {
  QVector<QCPGraphData> points;
  points.reserve(static_cast<qsizetype>(series.samples.size()));
  double largest = 0;
  for (const double sample : series.samples) {
    points.append({static_cast<double>(points.size() + 1), sample});
    if (std::isfinite(sample)) largest = std::max(largest, std::abs(sample));
  }
  series.graph->data()->set(points, true);
  // Both axes have 0 in their middle and as many steps, so that one grid serves both.
  return SetValueAxis(*series.axis, MakeCentredScale(largest, 2), regional_);
}

}  // namespace wattlark
