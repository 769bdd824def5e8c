#include "app/forms/ChartView.h"

#include <algorithm>
#include <cmath>

#include "app/forms/PageFrame.h"

namespace wattlark {

namespace {

constexpr double kLabelFont = 0.85;
constexpr int kPixelsPerValueLabel = 44;
constexpr int kLabelGap = 6;
constexpr int kEdge = 2;  ///< keeps the labels off the focus ring
constexpr int kMostValueSteps = 5;

}  // namespace

void FixedTicker::Set(QVector<double> ticks, QVector<QString> labels) {
  ticks_ = std::move(ticks);
  labels_ = std::move(labels);
}

void FixedTicker::generate(const QCPRange& /*range*/, const QLocale& /*locale*/,
                           QChar /*formatChar*/, int /*precision*/, QVector<double>& ticks,
                           QVector<double>* subTicks, QVector<QString>* tickLabels) {
  ticks = ticks_;
  if (subTicks != nullptr) subTicks->clear();
  if (tickLabels != nullptr) *tickLabels = labels_;
}

ChartView::ChartView(const QString& objectName, const QString& accessibleName, QWidget* parent)
    : QCustomPlot(parent) {
  setObjectName(objectName);
  setAccessibleName(accessibleName);
  setAntialiasedElements(QCP::aePlottables | QCP::aeItems | QCP::aeScatters);
  setNotAntialiasedElements(QCP::aeAxes | QCP::aeGrid | QCP::aeZeroLine);
  // Without this the plot paints itself at once instead of with the rest of the window.
  setPlottingHint(QCP::phImmediateRefresh, false);
  setInteractions(QCP::iNone);
  plotLayout()->setMargins(QMargins());
  axisRect()->setAutoMargins(QCP::msNone);
}

void ChartView::UpdateTheme() {
  theme_ = Theme::FromPalette(palette());
  setBackground(QBrush(theme_.base));
  ApplyTheme(theme_);
  Redraw();
}

QFont ChartView::LabelFont() const {
  QFont small = font();
  small.setPixelSize(std::max(8, qRound(QFontInfo(small).pixelSize() * kLabelFont)));
  return small;
}

void ChartView::StyleAxis(QCPAxis& axis, const QColor& color, const QFont& font) {
  axis.setBasePen(Qt::NoPen);
  axis.setTickPen(Qt::NoPen);
  axis.setSubTickPen(Qt::NoPen);
  axis.setTickLabelColor(color);
  axis.setTickLabelFont(font);
  axis.setTickLengthIn(0);
  axis.setTickLengthOut(0);
  axis.setTickLabelPadding(kLabelGap);
  axis.setPadding(0);
}

int ChartView::SetValueAxis(QCPAxis& axis, const ValueScale& scale,
                            const RegionalSettings& regional) {
  const QFontMetrics metrics(axis.tickLabelFont());
  int widest = 0;
  QVector<double> ticks;
  QVector<QString> labels;
  const int count = static_cast<int>(std::lround((scale.upper - scale.lower) / scale.step));
  for (int i = 0; i <= count; ++i) {
    ticks.append(scale.lower + i * scale.step);
    labels.append(QString::fromStdString(ValueLabel(regional, scale, ticks.back())));
    widest = std::max(widest, metrics.horizontalAdvance(labels.back()));
  }
  if (auto ticker = qSharedPointerDynamicCast<FixedTicker>(axis.ticker())) {
    ticker->Set(ticks, labels);
  }
  axis.setRange(scale.lower, scale.upper);
  return widest + kLabelGap + kEdge;
}

int ChartView::TimeLabelHeight() const {
  return QFontMetrics(LabelFont()).height() + kLabelGap;
}

int ChartView::ValueSteps() const {
  return std::clamp(height() / kPixelsPerValueLabel - 1, 2, kMostValueSteps);
}

void ChartView::Redraw() {
  isStale_ = true;
  update();
}

void ChartView::paintEvent(QPaintEvent* event) {
  if (isStale_) {
    isStale_ = false;
    // The plot would ask for another paint event, but it is drawn by this one.
    setAttribute(Qt::WA_UpdatesDisabled, true);
    Prepare();
    replot(rpQueuedRefresh);
    setAttribute(Qt::WA_UpdatesDisabled, false);
  }
  QCustomPlot::paintEvent(event);
  QPainter painter(this);
  PaintFocus(painter, *this, rect(), theme_);
}

void ChartView::resizeEvent(QResizeEvent* /*event*/) {
  setViewport(rect());
  Redraw();
}

void ChartView::changeEvent(QEvent* event) {
  QCustomPlot::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) UpdateTheme();
}

}  // namespace wattlark
